// The long waits of the link, run on the fake clock: send retries, event
// retries, the ready-flag wait, the reply wait and the queue's polling.

#include <unistd.h>

#include <string>
#include <tuple>
#include <vector>

#include "fake_clock.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"
#include "link_test_util.h"

namespace atapi::test {
namespace {

constexpr uint32_t kPauseUs = 100000;
constexpr uint32_t kPollUs = 30000;

// Sending is tried 30 times and waking the server 5 times, 100 ms apart.
// When the queues vanished after the server was resolved, every failed send
// re-resolves it, with the whole ready-flag wait inside when the flag is gone
// too. A request whose server cannot be woken stays queued until the next
// exchange of the thread withdraws it.
TEST(ExchangeRetry, SendAndWakeUpTriesThenFailure) {
    struct Case {
        const char *name;
        std::string pidFile;
        bool queuesGone;
        bool flagGone;
        size_t pauses;
    };
    const std::string self = std::to_string(getpid()) + "\n";
    const Case cases[] = {
        {"queues gone", self, true, false, 30},
        {"queues and ready flag gone", self, true, true, 30 + 30 * 301},
        {"pid 0", "0\n", false, false, 5},
        {"no such process", "2147483647\n", false, false, 5},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        runtime.CreateReadyFlag();
        runtime.WritePidFile(c.pidFile);
        ServerQueues queues;
        AtserverMsgInit();
        if (c.queuesGone) {
            AtsMsgQueueDelete(queues.recv);
            AtsMsgQueueDelete(queues.send);
        }
        if (c.flagGone) runtime.RemoveReadyFlag();

        FakeClock clock;
        AtSrvMsg msg = MakeRequest("AT+CSQ");
        EXPECT_EQ(GetDataFromAtServer(&msg), -1);
        EXPECT_EQ(clock.Sleeps(), std::vector<uint32_t>(c.pauses, kPauseUs));
        if (c.queuesGone) continue;
        EXPECT_EQ(AtsMsgQueueNum(queues.recv), 1) << "the request stays queued";
        EXPECT_EQ(GetDataFromAtServer(&msg), -1);
        EXPECT_EQ(AtsMsgQueueNum(queues.recv), 1) << "withdrawn, then sent anew";
    }
}

// The flag is looked for up to 302 times: at once, then after each pause.
TEST(ReadyWait, UpTo302ChecksOneHundredMsApart) {
    for (long flagAfterSleeps : {0L, 301L, -1L}) {  // -1: never; 0: there from the start
        SCOPED_TRACE(flagAfterSleeps);
        IsolatedRuntime runtime;
        runtime.WritePidFile("4321\n");
        if (flagAfterSleeps == 0) runtime.CreateReadyFlag();
        FakeClock clock;
        clock.OnSleep([&](size_t count) {
            if (static_cast<long>(count) == flagAfterSleeps) runtime.CreateReadyFlag();
        });
        const int32_t start = AtsElapse();
        EXPECT_EQ(M2mGetAtsTaskId(), 4321) << "the pid is read in every case";
        EXPECT_EQ(AtsElapse() - start, flagAfterSleeps == 0 ? 0 : 30) << "seconds on the clock";
        EXPECT_EQ(clock.Sleeps(), std::vector<uint32_t>(flagAfterSleeps == 0 ? 0 : 301, kPauseUs));
        EXPECT_EQ(CheckAtServerReady(), flagAfterSleeps == -1 ? -1 : 0);
    }
}

// The reply wait polls every 30 ms for timeoutSec (timeout 0: one try); a
// stale reply starts the whole wait again. Another thread's reply is never
// taken.
TEST(ReadFromMsgQueue, WaitsTheTimeoutOutInPolls) {
    for (bool stale : {false, true}) {
        SCOPED_TRACE(stale ? "stale reply, then nothing for 1 s" : "timeout 0");
        IsolatedRuntime runtime;
        ServerQueues queues;
        AtSrvMsg reply = MakeRequest("", "+X");
        reply.seq = 49;
        ASSERT_TRUE(!stale || AtsMsgQueueExSend(queues.send, &reply, sizeof reply, 0));
        AtSrvMsg other = MakeRequest("", "+OTHER");
        other.mtype = CurrentTid() + 1;
        other.seq = 50;
        ASSERT_EQ(AtsMsgQueueExSend(queues.send, &other, sizeof other, 0), 1);

        FakeClock clock;
        AtSrvMsg msg = MakeRequest("AT+X", "", stale ? 1 : 0);
        msg.seq = 50;
        int32_t retCode = 99;
        EXPECT_EQ(ReadFromMsgQueue(queues.send, &msg, 1, &retCode), -1);
        EXPECT_EQ(clock.Sleeps(), std::vector<uint32_t>(stale ? 34 : 0, kPollUs));
        EXPECT_EQ(AtsMsgQueueNum(queues.send), 1) << "another thread's reply is never taken";
    }
}

// Sleeps of 30 ms on an empty queue until the timeout is used up; a message
// arriving meanwhile is taken at the next try.
TEST(MsgQueuePoll, TriesEvery30MsUntilTheTimeoutIsUsedUp) {
    // timeout in ms, 30 ms sleeps on an empty queue, result of the plain receive
    const std::tuple<int, size_t, int> cases[] = {
        {0, 0, -1},
        {30, 1, -1},
        {31, 2, -1},
        {61, 3, -1},
        {-5, 0, 0}};  // never tries: the plain receive reports 0
    IsolatedRuntime runtime;
    const int qid = AtsMsgQueueCreate(2, 10, AT_SRV_MSG_SIZE);
    ASSERT_NE(qid, -1);
    AtSrvMsg msg;
    for (const auto &[timeoutMs, tries, plainResult] : cases) {
        SCOPED_TRACE(timeoutMs);
        FakeClock clock;
        EXPECT_EQ(AtsMsgQueueRecv(qid, &msg, sizeof msg, timeoutMs), plainResult);
        EXPECT_EQ(AtsMsgQueueExRecv(qid, &msg, sizeof msg, timeoutMs, 0), -1);
        EXPECT_EQ(clock.Sleeps(), std::vector<uint32_t>(2 * tries, kPollUs));
    }

    FakeClock clock;
    AtSrvMsg late = MakeRequest("AT+LATE");
    clock.OnSleep([&](size_t count) {
        if (count == 2) AtsMsgQueueSend(qid, &late, sizeof late);
    });
    EXPECT_EQ(AtsMsgQueueExRecv(qid, &msg, sizeof msg, 1000, late.mtype), AT_SRV_MSG_PAYLOAD);
    EXPECT_EQ(clock.Sleeps().size(), 2u);
    EXPECT_STREQ(msg.sndRcvMsg.sMsg.atCmdStr, "AT+LATE");
}

}  // namespace
}  // namespace atapi::test
