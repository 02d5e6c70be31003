// The exchange under load, as callers see it: 1, 4, 16 and 64 threads call
// GetDataFromAtServer through the real atserver and atsim for a while, each
// thread group spread over three distinct queries. For each thread count it
// prints commands per second, median and p99 latency, the share of the rate
// that the library's 30 ms receive poll allows (one poll step per command),
// the share of commands answered at the first poll after the request, the
// sends that found the request queue full, and the processor time
// atserver and atsim spent per command. Then atserver's own time per command
// with nothing waiting on a poll: one caller on the bare queues with blocking
// reads, atsim answering at once.
//
// Run by hand: exchange_load [SECONDS_PER_RUN [THREADS...]] (default 5 s; 1,
// 4, 16 and 64 threads). Needs a build with ATAPI_ISOLATED_PATHS=ON.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "atapi/at_link.h"
#include "atapi/at_send.h"
#include "bench_world.h"
#include "link/ats_paths.h"
#include "platform/trace.h"

namespace {

using Clock = std::chrono::steady_clock;
using atapi::bench::BenchWorld;

constexpr int kDefaultThreadCounts[] = {1, 4, 16, 64};
constexpr const char *kQueries[] = {"AT+CGMI", "AT+COPS?", "AT+CSQ"};
constexpr double kPollStepMs = 30.0;
constexpr int kBareRoundTrips = 300;
constexpr char kSendRetryLog[] = "SendToMsgQueue retcode";

std::atomic<long> g_sendRetries{0};

void CountRetries(void *, const char *, const char *, int, const char *text) {
    if (std::strncmp(text, kSendRetryLog, sizeof kSendRetryLog - 1) == 0) ++g_sendRetries;
}

// Processor time a process has used so far, in microseconds (0 when unknown).
double CpuUs(pid_t pid) {
    if (pid <= 0) return 0;
    std::ifstream stat("/proc/" + std::to_string(pid) + "/schedstat");
    double ns = 0;
    stat >> ns;
    return ns / 1000.0;
}

// atsim runs as atserver's only child.
pid_t SimPid(pid_t server) {
    const std::string id = std::to_string(server);
    std::ifstream children("/proc/" + id + "/task/" + id + "/children");
    pid_t pid = 0;
    children >> pid;
    return pid;
}

struct CpuMark {
    double serverUs;
    double simUs;
};

CpuMark TakeCpuMark(pid_t server, pid_t sim) { return {CpuUs(server), CpuUs(sim)}; }

double Quantile(const std::vector<double> &sorted, double q) {
    if (sorted.empty()) return 0;
    return sorted[static_cast<size_t>(q * static_cast<double>(sorted.size() - 1))];
}

struct ThreadResult {
    std::vector<double> latenciesMs;
    long failures = 0;
};

void Caller(const char *cmd, Clock::time_point until, ThreadResult *result) {
    while (Clock::now() < until) {
        AtSrvMsg msg;
        AtInitCommonMsgHandler(&msg, cmd, nullptr, 0, 10);
        const auto start = Clock::now();
        const int32_t status = GetDataFromAtServer(&msg);
        result->latenciesMs.push_back(
            std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        if (status != 0 || msg.sndRcvMsg.rMsg.retVal != AT_RET_OK) ++result->failures;
    }
}

void RunLoad(int threads, double seconds, pid_t server, pid_t sim) {
    std::vector<ThreadResult> results(static_cast<size_t>(threads));
    std::vector<std::thread> callers;
    g_sendRetries = 0;
    const CpuMark before = TakeCpuMark(server, sim);
    const auto start = Clock::now();
    const auto until =
        start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    for (int i = 0; i < threads; ++i) {
        callers.emplace_back(Caller, kQueries[i % 3], until, &results[static_cast<size_t>(i)]);
    }
    for (std::thread &caller : callers) caller.join();
    const double elapsedS = std::chrono::duration<double>(Clock::now() - start).count();
    const CpuMark after = TakeCpuMark(server, sim);

    std::vector<double> all;
    long failures = 0;
    for (const ThreadResult &result : results) {
        all.insert(all.end(), result.latenciesMs.begin(), result.latenciesMs.end());
        failures += result.failures;
    }
    std::sort(all.begin(), all.end());
    const double commands = static_cast<double>(all.size());
    const double rate = commands / elapsedS;
    const double pollBound = threads * 1000.0 / kPollStepMs;
    const auto firstPoll = std::lower_bound(all.begin(), all.end(), 1.5 * kPollStepMs);
    std::printf("%7d %9.0f %9.2f %8.2f %8.2f %9.1f%% %8.1f%% %8ld %8ld %10.1f %9.1f\n", threads,
                rate, Quantile(all, 0.5), Quantile(all, 0.99), all.empty() ? 0.0 : all.back(),
                100.0 * rate / pollBound,
                100.0 * static_cast<double>(firstPoll - all.begin()) / commands,
                g_sendRetries.load(), failures, (after.serverUs - before.serverUs) / commands,
                (after.simUs - before.simUs) / commands);
}

// One caller on the bare queues: the request written straight into
// atserver's queue, the reply taken with a blocking read.
void RunBare(pid_t server, pid_t sim) {
    const int requestQid = AtsGetMsgQueueId(atapi::kServerRecvProjId);
    const int replyQid = AtsGetMsgQueueId(atapi::kServerSendProjId);
    AtSrvMsg request;
    AtInitCommonMsgHandler(&request, kQueries[0], nullptr, 0, 10);
    std::vector<double> roundTripsUs;
    const CpuMark before = TakeCpuMark(server, sim);
    for (int i = 0; i < kBareRoundTrips; ++i) {
        AtSrvMsg msg = request;
        const auto start = Clock::now();
        AtsMsgQueueExSend(requestQid, &msg, sizeof msg, 1);
        AtsEventSend(server, 1);
        const int got = AtsMsgQueueExRecv(replyQid, &msg, sizeof msg, -1, msg.mtype);
        roundTripsUs.push_back(
            std::chrono::duration<double, std::micro>(Clock::now() - start).count());
        if (got != AT_SRV_MSG_PAYLOAD || msg.sndRcvMsg.rMsg.retVal != AT_RET_OK) {
            std::printf("bare round trip failed\n");
            return;
        }
    }
    const CpuMark after = TakeCpuMark(server, sim);
    std::sort(roundTripsUs.begin(), roundTripsUs.end());
    std::printf(
        "bare queues, 1 caller, %d round trips: median %.0f us, p99 %.0f us; "
        "atserver %.1f us and atsim %.1f us of processor time per command\n",
        kBareRoundTrips, Quantile(roundTripsUs, 0.5), Quantile(roundTripsUs, 0.99),
        (after.serverUs - before.serverUs) / kBareRoundTrips,
        (after.simUs - before.simUs) / kBareRoundTrips);
}

}  // namespace

int main(int argc, char **argv) {
    const double seconds = argc > 1 ? std::atof(argv[1]) : 5.0;
    std::vector<int> threadCounts(std::begin(kDefaultThreadCounts), std::end(kDefaultThreadCounts));
    if (argc > 2) threadCounts.clear();
    for (int i = 2; i < argc; ++i) threadCounts.push_back(std::atoi(argv[i]));
    const bool countsValid = std::all_of(threadCounts.begin(), threadCounts.end(),
                                         [](int threads) { return threads > 0; });
    if (!atapi::PathsAreIsolated() || seconds <= 0 || !countsValid) {
        std::fprintf(
            stderr, "usage: exchange_load [SECONDS_PER_RUN [THREADS...]] (isolated-paths build)\n");
        return 1;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    PlatformSetLogSink(CountRetries, nullptr);
    BenchWorld world;
    if (!world.Start()) {
        std::fprintf(stderr, "exchange_load: atserver did not become ready\n");
        world.Stop();
        return 1;
    }
    const pid_t server = world.ServerPid();
    const pid_t sim = SimPid(server);
    std::printf("%7s %9s %9s %8s %8s %10s %9s %8s %8s %10s %9s\n", "threads", "cmds/s", "median_ms",
                "p99_ms", "max_ms", "poll_share", "1st_poll", "retries", "failed", "srv_us/cmd",
                "sim_us/cmd");
    for (const int threads : threadCounts) RunLoad(threads, seconds, server, sim);
    RunBare(server, sim);
    PlatformSetLogSink(nullptr, nullptr);
    return world.Stop() == 0 ? 0 : 1;
}
