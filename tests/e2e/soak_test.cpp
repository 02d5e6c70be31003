// Load through atserver and atsim: many threads, each sending commands that
// carry its own token, with random modem delays and unsolicited lines between
// and inside replies. No reply may be lost or reach the wrong thread, and
// atserver's memory, descriptors and queues must stay flat. The size comes
// from ATAPI_SOAK_THREADS and ATAPI_SOAK_COMMANDS (per thread); bench/soak.sh
// runs it long and by hand. The figures are printed, never asserted.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

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

// What atserver holds: resident memory, open descriptors, records waiting.
struct Footprint {
    long rssKb = -1;
    long descriptors = -1;
    long queuedRequests = -1;
    long queuedReplies = -1;
};

// -1 when the queue is gone.
long QueuedRecords(int projId) {
    const int qid = AtsGetMsgQueueId(projId);
    return qid == -1 ? -1 : AtsMsgQueueNum(qid);
}

Footprint FootprintOf(pid_t pid) {
    Footprint footprint;
    const std::string proc = "/proc/" + std::to_string(pid);
    std::ifstream status(proc + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmRSS:", 0) == 0) footprint.rssKb = std::atol(line.c_str() + 6);
    }
    std::error_code error;
    footprint.descriptors = std::distance(std::filesystem::directory_iterator(proc + "/fd", error),
                                          std::filesystem::directory_iterator());
    footprint.queuedRequests = QueuedRecords(kServerRecvProjId);
    footprint.queuedReplies = QueuedRecords(kServerSendProjId);
    return footprint;
}

struct Load {
    long answered = 0;
    long wrong = 0;
    std::string firstWrong;
    std::vector<double> latenciesMs;
};

// threads x commands exchanges; each reply must be the two lines of its own token.
Load RunLoad(int threads, int commands, int round) {
    std::vector<Load> perThread(threads);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&load = perThread[t], t, commands, round] {
            load.latenciesMs.reserve(commands);
            for (int i = 0; i < commands; ++i) {
                const std::string token =
                    std::to_string(round) + "." + std::to_string(t) + "." + std::to_string(i);
                const std::string expected = "+SOAK: " + token + "\r\n+SOAK: " + token;
                const Clock::time_point start = Clock::now();
                const Exchange reply = Send("AT+SOAK=" + token, 30);
                load.latenciesMs.push_back(
                    std::chrono::duration<double, std::milli>(Clock::now() - start).count());
                if (reply.status == 0 && reply.retVal == AT_RET_OK && reply.text == expected) {
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
    Load all;
    for (Load &load : perThread) {
        all.answered += load.answered;
        all.wrong += load.wrong;
        if (all.firstWrong.empty()) all.firstWrong = load.firstWrong;
        all.latenciesMs.insert(all.latenciesMs.end(), load.latenciesMs.begin(),
                               load.latenciesMs.end());
    }
    return all;
}

double Percentile(std::vector<double> values, double share) {
    if (values.empty()) return 0;
    const auto at = static_cast<size_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + static_cast<long>(at), values.end());
    return values[at];
}

class SoakTest : public ::testing::Test {
  protected:
    void SetUp() override {
        runtime_ = std::make_unique<test::IsolatedRuntime>();
        server_ = std::make_unique<AtServerProcess>(*runtime_);
        server_->Start(
            std::string(ATSIM_SCENARIO_DIR) + "/soak.scn",
            {"--sim-arg", "--urc-interval-ms", "--sim-arg", "20", "--log-level", "warn"});
    }
    void TearDown() override {
        if (server_ != nullptr && server_->Pid() > 0) {
            EXPECT_EQ(server_->Stop(), 0) << server_->Log();
            ExpectNothingLeft();
        }
    }

    std::unique_ptr<test::IsolatedRuntime> runtime_;
    std::unique_ptr<AtServerProcess> server_;
};

TEST_F(SoakTest, Load_NothingLostMisroutedOrLeaked) {
    const int threads = FromEnvironment("ATAPI_SOAK_THREADS", 64);
    const int commands = FromEnvironment("ATAPI_SOAK_COMMANDS", 200);
    // A first round brings atserver to its working size.
    const Load warmUp = RunLoad(threads, 5, 0);
    ASSERT_EQ(warmUp.wrong, 0) << warmUp.firstWrong;
    const Footprint before = FootprintOf(server_->Pid());

    const Clock::time_point start = Clock::now();
    const Load load = RunLoad(threads, commands, 1);
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
    std::printf(
        "soak: %d threads x %d commands in %.1f s: %.0f commands/s, latency median %.1f ms,"
        " p99 %.1f ms; atserver %ld -> %ld kB, %ld -> %ld descriptors\n",
        threads, commands, seconds, static_cast<double>(load.answered) / seconds,
        Percentile(load.latenciesMs, 0.5), Percentile(load.latenciesMs, 0.99), before.rssKb,
        after.rssKb, before.descriptors, after.descriptors);
}

}  // namespace
}  // namespace atapi::e2e
