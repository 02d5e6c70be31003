// Round trips through the real atserver (atsim on a pseudo-terminal) with 1,
// 4 and 16 client threads, and the bare queue round trip as the floor.
// Runs in a private runtime root; needs a build with ATAPI_ISOLATED_PATHS=ON.
#include <benchmark/benchmark.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <vector>

#include "atapi/at_link.h"
#include "atapi/at_send.h"
#include "bench_world.h"
#include "link/at_lib_state.h"
#include "link/ats_paths.h"
#include "platform/trace.h"

namespace {

using Clock = std::chrono::steady_clock;

// Project ids of the floor's own queue pair, apart from atserver's 1 and 2.
constexpr int kFloorRequestProjId = 11;
constexpr int kFloorReplyProjId = 12;

struct LatencyStats {
    double medianUs = 0;
    double p99Us = 0;
};

LatencyStats Summarise(std::vector<double> samplesUs) {
    if (samplesUs.empty()) return {};
    std::sort(samplesUs.begin(), samplesUs.end());
    const auto at = [&](double q) {
        return samplesUs[static_cast<size_t>(q * static_cast<double>(samplesUs.size() - 1))];
    };
    return {at(0.5), at(0.99)};
}

void SetLatencyCounters(benchmark::State &state, const std::vector<double> &samplesUs) {
    const LatencyStats stats = Summarise(samplesUs);
    // Each thread reports its own figures; the run shows their average.
    state.counters["median_us"] =
        benchmark::Counter(stats.medianUs, benchmark::Counter::kAvgThreads);
    state.counters["p99_us"] = benchmark::Counter(stats.p99Us, benchmark::Counter::kAvgThreads);
    state.counters["cmds_per_s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// One command through library, queues, atserver, pty and atsim and back.
void BM_Exchange(benchmark::State &state) {
    std::vector<double> samplesUs;
    for (auto _ : state) {
        AtSrvMsg msg;
        AtInitCommonMsgHandler(&msg, "AT+CGMI", nullptr, 0, 10);
        const auto start = Clock::now();
        const int32_t status = GetDataFromAtServer(&msg);
        samplesUs.push_back(
            std::chrono::duration<double, std::micro>(Clock::now() - start).count());
        if (status != 0 || msg.sndRcvMsg.rMsg.retVal != AT_RET_OK) {
            state.SkipWithError("exchange failed");
            break;
        }
    }
    SetLatencyCounters(state, samplesUs);
}
BENCHMARK(BM_Exchange)->Threads(1)->Threads(4)->Threads(16)->UseRealTime()->MinTime(3.0);

// atserver's own share: the request written straight into its queue, the
// reply taken with a blocking read instead of the library's 30 ms polling.
void BM_ServerRoundTrip(benchmark::State &state) {
    const int requestQid = AtsGetMsgQueueId(atapi::kServerRecvProjId);
    const int replyQid = AtsGetMsgQueueId(atapi::kServerSendProjId);
    const int32_t server = AtsTaskNameToId(atapi::kServerTaskName);
    AtSrvMsg request;
    AtInitCommonMsgHandler(&request, "AT+CGMI", nullptr, 0, 10);
    std::vector<double> samplesUs;
    for (auto _ : state) {
        AtSrvMsg msg = request;
        const auto start = Clock::now();
        AtsMsgQueueExSend(requestQid, &msg, sizeof msg, 1);
        AtsEventSend(server, 1);
        const int got = AtsMsgQueueExRecv(replyQid, &msg, sizeof msg, -1, msg.mtype);
        samplesUs.push_back(
            std::chrono::duration<double, std::micro>(Clock::now() - start).count());
        if (got != AT_SRV_MSG_PAYLOAD || msg.sndRcvMsg.rMsg.retVal != AT_RET_OK) {
            state.SkipWithError("round trip failed");
            break;
        }
    }
    SetLatencyCounters(state, samplesUs);
}
BENCHMARK(BM_ServerRoundTrip)->UseRealTime();

// The floor: send on a queue, wake an echo thread with a signal, receive the
// echo with a blocking read (no 30 ms polling).
class EchoThread {
  public:
    EchoThread(int requestQid, int replyQid) : requestQid_(requestQid), replyQid_(replyQid) {
        pthread_create(&thread_, nullptr, &EchoThread::Main, this);
    }
    ~EchoThread() {
        stop_ = true;
        AtsEventThreadSend(thread_, 1);
        pthread_join(thread_, nullptr);
    }
    void Wake() { AtsEventThreadSend(thread_, 1); }

  private:
    static void *Main(void *self) {
        static_cast<EchoThread *>(self)->Serve();
        return nullptr;
    }
    void Serve() {
        AtSrvMsg msg;
        uint32_t event = 0;
        while (AtsEventThreadRecv(1, &event) == 1 && !stop_) {
            while (AtsMsgQueueExRecv(requestQid_, &msg, sizeof msg, 0, 0) > 0) {
                AtsMsgQueueExSend(replyQid_, &msg, sizeof msg, 1);
            }
        }
    }

    int requestQid_;
    int replyQid_;
    std::atomic<bool> stop_{false};
    pthread_t thread_{};
};

void BM_QueueRoundTrip(benchmark::State &state) {
    const int requestQid = AtsMsgQueueCreate(kFloorRequestProjId, 10, AT_SRV_MSG_SIZE);
    const int replyQid = AtsMsgQueueCreate(kFloorReplyProjId, 10, AT_SRV_MSG_SIZE);
    if (requestQid == -1 || replyQid == -1) {
        state.SkipWithError("cannot create the queues");
    } else {
        EchoThread echo(requestQid, replyQid);
        AtSrvMsg msg{};
        msg.mtype = atapi::CurrentTid();
        std::vector<double> samplesUs;
        for (auto _ : state) {
            const auto start = Clock::now();
            AtsMsgQueueExSend(requestQid, &msg, sizeof msg, 1);
            echo.Wake();
            AtsMsgQueueExRecv(replyQid, &msg, sizeof msg, -1, msg.mtype);
            samplesUs.push_back(
                std::chrono::duration<double, std::micro>(Clock::now() - start).count());
        }
        SetLatencyCounters(state, samplesUs);
    }
    AtsMsgQueueDelete(requestQid);
    AtsMsgQueueDelete(replyQid);
}
BENCHMARK(BM_QueueRoundTrip)->UseRealTime();

}  // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (!atapi::PathsAreIsolated()) {
        std::fprintf(stderr, "exchange_bench needs a build with ATAPI_ISOLATED_PATHS=ON\n");
        return 1;
    }
    PlatformSetLogThreshold(0);
    // The echo thread waits for its wake-up with sigwait: blocked everywhere.
    AtsEventInit(1);
    atapi::bench::BenchWorld world;
    if (!world.Start()) {
        std::fprintf(stderr, "exchange_bench: atserver did not become ready\n");
        world.Stop();
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return world.Stop() == 0 ? 0 : 1;
}
