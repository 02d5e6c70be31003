// Load through atserver and atsim: many threads, each sending commands that
// carry its own token, with random modem delays and unsolicited lines between
// and inside replies. No reply may be lost or reach the wrong thread, and
// atserver's memory, descriptors and queues must stay flat. The size comes
// from ATAPI_SOAK_THREADS and ATAPI_SOAK_COMMANDS (per thread); bench/soak.sh
// runs it long and by hand. The speed figures are printed, never asserted.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>

#include "atapi/at_link.h"
#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

using Clock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

int FromEnvironment(const char *name, int fallback) {
    const char *value = std::getenv(name);
    return value != nullptr && std::atoi(value) > 0 ? std::atoi(value) : fallback;
}

// What atserver holds: resident memory, open descriptors, records waiting
// in its queues (-1 when a queue is gone).
struct Footprint {
    long rssKb = -1, descriptors = -1, queuedRequests = -1, queuedReplies = -1;
};

Footprint FootprintOf(pid_t pid) {
    Footprint footprint;
    const std::string proc = "/proc/" + std::to_string(pid);
    std::ifstream status(proc + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) footprint.rssKb = std::atol(line.c_str() + 6);
    }
    std::error_code error;
    footprint.descriptors = std::distance(std::filesystem::directory_iterator(proc + "/fd", error),
                                          std::filesystem::directory_iterator());
    const auto queued = [](int projId) {
        const int qid = AtsGetMsgQueueId(projId);
        return qid == -1 ? -1L : static_cast<long>(AtsMsgQueueNum(qid));
    };
    footprint.queuedRequests = queued(kServerRecvProjId);
    footprint.queuedReplies = queued(kServerSendProjId);
    return footprint;
}

struct Load {
    std::mutex lock;
    long answered = 0;
    long wrong = 0;
    std::string firstWrong;
    std::vector<double> latenciesMs;
};

// threads x commands exchanges; each reply must be the two lines of its own token.
void RunLoad(int threads, int commands, int round, Load &load) {
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&load, t, commands, round] {
            for (int i = 0; i < commands; ++i) {
                const std::string token =
                    std::to_string(round) + "." + std::to_string(t) + "." + std::to_string(i);
                const Clock::time_point start = Clock::now();
                const Exchange reply = Send("AT+SOAK=" + token, 30);
                const std::chrono::duration<double, std::milli> took = Clock::now() - start;
                std::lock_guard<std::mutex> guard(load.lock);
                load.latenciesMs.push_back(took.count());
                if (reply.status == 0 && reply.retVal == AT_RET_OK &&
                    reply.text == "+SOAK: " + token + "\r\n+SOAK: " + token) {
                    ++load.answered;
                } else if (load.wrong++ == 0) {
                    load.firstWrong = token + ": status " + std::to_string(reply.status) +
                                      ", class " + std::to_string(reply.retVal) + ", \"" +
                                      reply.text + "\"";
                }
            }
        });
    }
    for (std::thread &worker : workers) worker.join();
    std::sort(load.latenciesMs.begin(), load.latenciesMs.end());
}

class SoakTest : public E2eTest {
  protected:
    std::string Scenario() const override { return std::string(ATSIM_SCENARIO_DIR) + "/soak.scn"; }
    std::vector<std::string> ServerArgs() const override {
        return {"--sim-arg", "--urc-interval-ms", "--sim-arg", "20", "--log-level", "warn"};
    }
};

TEST_F(SoakTest, Load_NothingLostMisroutedOrLeaked) {
    const int threads = FromEnvironment("ATAPI_SOAK_THREADS", 64);
    const int commands = FromEnvironment("ATAPI_SOAK_COMMANDS", 200);
    // A first round brings atserver to its working size.
    Load warmUp, load;
    RunLoad(threads, 5, 0, warmUp);
    ASSERT_EQ(warmUp.wrong, 0) << warmUp.firstWrong;
    const Footprint before = FootprintOf(server_->Pid());

    const Clock::time_point start = Clock::now();
    RunLoad(threads, commands, 1, load);
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const Footprint after = FootprintOf(server_->Pid());

    EXPECT_EQ(load.wrong, 0) << "first: " << load.firstWrong;
    EXPECT_EQ(load.answered, static_cast<long>(threads) * commands);
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.queuedRequests, 0);
    EXPECT_EQ(after.queuedReplies, 0);
    // Allocator noise aside, serving the same load again must not grow atserver.
    // Sanitizer runtimes hold freed memory back and an emulator grows its code
    // cache: there the leak checker at atserver's exit speaks for its memory.
    if (!kSanitized && !RunsThroughLauncher()) {
        EXPECT_LT(after.rssKb - before.rssKb, 1024) << before.rssKb << " kB before";
    }
    const std::vector<double> &ms = load.latenciesMs;
    std::printf(
        "soak: %d threads x %d commands in %.1f s: %.0f commands/s, latency median %.1f ms,"
        " p99 %.1f ms; atserver %ld -> %ld kB, %ld -> %ld descriptors\n",
        threads, commands, seconds, static_cast<double>(load.answered) / seconds, ms[ms.size() / 2],
        ms[ms.size() * 99 / 100], before.rssKb, after.rssKb, before.descriptors, after.descriptors);
}

}  // namespace
}  // namespace atapi::e2e
