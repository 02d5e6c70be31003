// The long waits of the exchange, run on the fake clock: send retries, event
// retries, the ready-flag wait, and the reply wait's timeout and seq checks.

#include <csignal>
#include <string>

#include "atapi/at_link.h"
#include "fake_clock.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"
#include "link/at_lib_state.h"
#include "link_test_util.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr uint32_t kPauseUs = 100000;
constexpr uint32_t kPollUs = 30000;

// Both queues of atserver, created by the test itself (no serving thread).
struct ServerQueues {
    ServerQueues()
        : recv(AtsMsgQueueCreate(2, 10, AT_SRV_MSG_SIZE)),
          send(AtsMsgQueueCreate(1, 10, AT_SRV_MSG_SIZE)) {}
    void Remove() {
        AtsMsgQueueDelete(recv);
        AtsMsgQueueDelete(send);
    }
    int recv;
    int send;
};

size_t MlogCount(const TraceCapture &trace, const std::string &text) {
    size_t n = 0;
    for (const auto &line : trace.Lines()) n += line.channel == "mlog" && line.text == text;
    return n;
}

// The server was resolved once and its queues vanished since: every send
// fails and re-resolves, with the ready-flag wait inside each resolution.
TEST(ExchangeRetry, ThirtySendTriesThenFailure) {
    struct Case {
        const char *name;
        bool readyFlag;
        size_t pauses;  // 100 ms sleeps in all
        size_t readyTimeouts;
    };
    const Case cases[] = {
        {"server ready", true, 30, 0},
        {"ready flag gone", false, 30 + 30 * 301, 30},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        runtime.CreateReadyFlag();
        runtime.WritePidFile(std::to_string(getpid()) + "\n");
        ServerQueues queues;
        AtserverMsgInit();
        ASSERT_EQ(g_atsRecvMsgQueueId, queues.recv);
        queues.Remove();
        if (!c.readyFlag) runtime.RemoveReadyFlag();

        FakeClock clock;
        TraceCapture trace;
        AtSrvMsg msg = MakeRequest("AT+CSQ");
        EXPECT_EQ(GetDataFromAtServer(&msg), -1);
        EXPECT_EQ(clock.Sleeps().size(), c.pauses);
        EXPECT_EQ(clock.SleepsOf(kPauseUs), c.pauses);
        EXPECT_EQ(trace.Count("SendToMsgQueue retcode = <"), 30u);
        EXPECT_EQ(trace.Count(">, cnt = 30\n"), 1u);
        EXPECT_EQ(trace.Count("main already wait for atserver 30s\n"), c.readyTimeouts);
        EXPECT_EQ(MlogCount(trace, "AtserverMsgSend failed\n"), 1u);
        EXPECT_EQ(trace.Count("Error: send message failed errno["), 2u) << "trace and mlog";
        EXPECT_EQ(g_atsRecvMsgQueueId, -1);
    }
}

TEST(ExchangeRetry, FiveEventTriesThenFailure) {
    const char *pidFiles[] = {"0\n", "2147483647\n", ""};
    for (const char *pidFile : pidFiles) {
        SCOPED_TRACE(pidFile);
        IsolatedRuntime runtime;
        runtime.CreateReadyFlag();
        runtime.WritePidFile(pidFile);
        ServerQueues queues;

        FakeClock clock;
        TraceCapture trace;
        AtSrvMsg msg = MakeRequest("AT+CSQ");
        EXPECT_EQ(GetDataFromAtServer(&msg), -1);
        EXPECT_EQ(clock.Sleeps().size(), 5u);
        EXPECT_EQ(clock.SleepsOf(kPauseUs), 5u);
        EXPECT_EQ(trace.Count("AtsEventSend errno = <"), 5u);
        EXPECT_EQ(MlogCount(trace, "AtserverMsgSend failed\n"), 1u);
        EXPECT_EQ(trace.Count("Error: send event failed errno["), 2u);
        EXPECT_EQ(AtsMsgQueueNum(queues.recv), 1) << "the request stays queued";

        // The next exchange of this thread withdraws it before sending anew.
        msg = MakeRequest("AT+CSQ");
        EXPECT_EQ(GetDataFromAtServer(&msg), -1);
        EXPECT_EQ(trace.Count("Read a mtype="), 1u);
        EXPECT_EQ(AtsMsgQueueNum(queues.recv), 1);
        queues.Remove();
    }
}

TEST(ReadyWait, UpTo302ChecksOneHundredMsApart) {
    struct Case {
        const char *name;
        long flagAfterSleeps;  // -1: never; 0: present from the start
        size_t sleeps;
        bool timedOut;
    };
    const Case cases[] = {
        {"ready at once", 0, 0, false},
        {"ready after one pause", 1, 1, false},
        {"ready at the last check", 301, 301, false},
        {"never ready", -1, 301, true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        runtime.WritePidFile("4321\n");
        if (c.flagAfterSleeps == 0) runtime.CreateReadyFlag();
        FakeClock clock;
        clock.OnSleep([&](size_t count) {
            if (static_cast<long>(count) == c.flagAfterSleeps) runtime.CreateReadyFlag();
        });
        TraceCapture trace;
        EXPECT_EQ(M2mGetAtsTaskId(), 4321) << "the pid is read in every case";
        EXPECT_EQ(clock.Sleeps().size(), c.sleeps);
        EXPECT_EQ(clock.SleepsOf(kPauseUs), c.sleeps);
        EXPECT_EQ(trace.Contains("main already wait for atserver 30s\n"), c.timedOut);
        EXPECT_EQ(CheckAtServerReady(), c.timedOut ? -1 : 0);
    }
}

// ReadFromMsgQueue against replies placed in the queue beforehand.
TEST(ReadFromMsgQueue, SeqCheckLengthAndTimeout) {
    constexpr uint32_t kSeq = 50;
    struct Queued {
        uint32_t seq;
        uint32_t length;
    };
    struct Case {
        const char *name;
        std::vector<Queued> queued;
        int32_t checkSeq;
        int32_t timeoutSec;
        int32_t result;
        uint32_t acceptedSeq;
        size_t polls;
        const char *log;
    };
    const std::vector<Case> cases = {
        {"matching", {{kSeq, AT_SRV_MSG_SIZE}}, 1, 30, 0, kSeq, 0, nullptr},
        {"older dropped",
         {{kSeq - 1, AT_SRV_MSG_SIZE}, {kSeq, AT_SRV_MSG_SIZE}},
         1,
         30,
         0,
         kSeq,
         0,
         "Error:Msg seq error\n"},
        {"newer fails at once",
         {{kSeq + 1, AT_SRV_MSG_SIZE}},
         1,
         30,
         -1,
         0,
         0,
         "Error:tmp_msg.seq = 51, pmsg->seq =50\n"},
        {"older then nothing: full wait again",
         {{kSeq - 1, AT_SRV_MSG_SIZE}},
         1,
         1,
         -1,
         0,
         34,
         "There is no Message in the queue"},
        {"seq not checked", {{kSeq + 7, AT_SRV_MSG_SIZE}}, 0, 30, 0, kSeq + 7, 0, nullptr},
        {"short reply", {{kSeq, 1000}}, 1, 30, -1, 0, 0, "Message length is not enough\n"},
        {"timeout 0: one non-blocking try", {}, 1, 0, -1, 0, 0, "There is no Message in the queue"},
        {"timeout 2 s", {}, 1, 2, -1, 0, 67, "There is no Message in the queue"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        ServerQueues queues;
        for (const Queued &q : c.queued) {
            AtSrvMsg reply = MakeRequest("", "+X");
            reply.seq = q.seq;
            ASSERT_EQ(AtsMsgQueueExSend(queues.send, &reply, q.length, 0), 1);
        }
        AtSrvMsg other = MakeRequest("", "+OTHER");
        other.mtype = CurrentTid() + 1;
        ASSERT_EQ(AtsMsgQueueExSend(queues.send, &other, sizeof other, 0), 1);

        FakeClock clock;
        TraceCapture trace;
        AtSrvMsg msg = MakeRequest("AT+X", "", c.timeoutSec);
        msg.seq = kSeq;
        int32_t retCode = 99;
        EXPECT_EQ(ReadFromMsgQueue(queues.send, &msg, c.checkSeq, &retCode), c.result);
        EXPECT_EQ(retCode, 0);
        EXPECT_EQ(clock.SleepsOf(kPollUs), c.polls);
        if (c.log != nullptr) {
            EXPECT_EQ(trace.Count(c.log), 1u) << c.log;
        }
        if (c.result == 0) {
            EXPECT_EQ(msg.seq, c.acceptedSeq);
            EXPECT_STREQ(msg.sndRcvMsg.rMsg.atName, "+X");
        }
        EXPECT_EQ(AtsMsgQueueExRecv(queues.send, &msg, sizeof msg, 0, other.mtype),
                  AT_SRV_MSG_PAYLOAD)
            << "another thread's reply is never taken";
        queues.Remove();
    }
}

TEST(ReadFromMsgQueue, RefusesBadArguments) {
    AtSrvMsg msg = MakeRequest("AT");
    int32_t retCode = 5;
    EXPECT_EQ(ReadFromMsgQueue(-1, &msg, 1, &retCode), -1);
    EXPECT_EQ(ReadFromMsgQueue(3, nullptr, 1, &retCode), -1);
    EXPECT_EQ(ReadFromMsgQueue(3, &msg, 1, nullptr), -1);
    EXPECT_EQ(retCode, 5);
}

TEST(SendToMsgQueue, ReportsErrnoOnFailure) {
    IsolatedRuntime runtime;
    TraceCapture trace;
    AtSrvMsg msg = MakeRequest("AT");
    int32_t retCode = 0;
    EXPECT_EQ(SendToMsgQueue(12345678, &msg, &retCode), -1);
    EXPECT_NE(retCode, 0);
    EXPECT_TRUE(trace.Contains(
        "Error: send msg failed, qid = 12345678, *retCode = " + std::to_string(retCode) + "\n"));
    EXPECT_EQ(SendToMsgQueue(1, nullptr, &retCode), -1);
    EXPECT_EQ(SendToMsgQueue(1, &msg, nullptr), -1);
    EXPECT_EQ(trace.Count("input invalid\n"), 2u);
}

TEST(Exchange, UnresolvableServerFailsBeforeSending) {
    IsolatedRuntime runtime;
    runtime.CreateReadyFlag();
    FakeClock clock;
    AtSrvMsg msg = MakeRequest("AT");
    EXPECT_EQ(GetDataFromAtServer(&msg), -1);
    EXPECT_EQ(GetDataFromAtServer(nullptr), -1);
    EXPECT_EQ(ReadDataFromAtSrvProc(nullptr), -1);
    EXPECT_TRUE(clock.Sleeps().empty());
    EXPECT_EQ(g_atsMsgSeq, 1u) << "nothing stamped";
}

}  // namespace
}  // namespace atapi::test
