// The message queue layer: argument checks, exclusive creation and byte
// limits, the 64-bit wire copy and the 30 ms polling receive.

#include <sys/msg.h>

#include <cstring>
#include <string>

#include "atapi/at_link.h"
#include "fake_clock.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr int kProjId = 2;

// A record whose every payload byte is distinct enough to catch a shifted copy.
AtSrvMsg PatternRecord(int32_t type) {
    AtSrvMsg msg;
    auto *bytes = reinterpret_cast<unsigned char *>(&msg);
    for (size_t i = 0; i < sizeof msg; ++i) bytes[i] = static_cast<unsigned char>(i * 7 + 3);
    msg.mtype = type;
    return msg;
}

TEST(MsgQueueCreate, ValidatesSizesAndSetsByteLimit) {
    struct Case {
        uint32_t maxMsgs;
        uint32_t msgSize;
        bool accepted;
    };
    const Case cases[] = {
        {1000, 17, false},  // 17000 bytes
        {2, 8192, true},    // exactly 16384
        {10, 1636, true},   // atserver's queues
        {1001, 1, false},   // too many messages
        {1, 8193, false},   // message too large
        {17, 1024, false},  // 17408 bytes
        {1000, 16, true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::to_string(c.maxMsgs) + " x " + std::to_string(c.msgSize));
        IsolatedRuntime runtime;
        TraceCapture trace;
        const int qid = AtsMsgQueueCreate(kProjId, c.maxMsgs, c.msgSize);
        if (!c.accepted) {
            EXPECT_EQ(qid, -1);
            EXPECT_TRUE(trace.Contains("Error! para error\n"));
            EXPECT_EQ(AtsGetMsgQueueId(kProjId), -1) << "nothing may be created";
            continue;
        }
        ASSERT_NE(qid, -1);
        EXPECT_EQ(AtsGetMsgQueueId(kProjId), qid);
        msqid_ds attrs{};
        ASSERT_EQ(msgctl(qid, IPC_STAT, &attrs), 0);
        EXPECT_EQ(attrs.msg_qbytes, c.maxMsgs * c.msgSize);
        EXPECT_EQ(AtsMsgQueueExCreate(kProjId, c.maxMsgs, c.msgSize), -1) << "exclusive create";
        EXPECT_TRUE(trace.Contains("Error! msgQueueId = -1. errno = "));
        EXPECT_EQ(AtsMsgQueueDelete(qid), 1);
        EXPECT_EQ(AtsGetMsgQueueId(kProjId), -1);
    }
}

TEST(MsgQueueDelete, NoQueueIsSuccessAndAGoneQueueIsFailure) {
    IsolatedRuntime runtime;
    TraceCapture trace;
    EXPECT_EQ(AtsMsgQueueDelete(-1), 1);
    EXPECT_EQ(AtsMsgQueueExDelete(-1), 1);
    EXPECT_FALSE(trace.Contains("Error!"));
    const int qid = AtsMsgQueueCreate(kProjId, 10, 1636);
    ASSERT_NE(qid, -1);
    EXPECT_EQ(AtsMsgQueueExDelete(qid), 1);
    EXPECT_EQ(AtsMsgQueueDelete(qid), 0);
    EXPECT_TRUE(trace.Contains("Error! errno = "));
}

TEST(MsgQueueNum, CountsWaitingMessages) {
    IsolatedRuntime runtime;
    EXPECT_EQ(AtsMsgQueueNum(-1), 0);
    const int qid = AtsMsgQueueCreate(kProjId, 10, 1636);
    ASSERT_NE(qid, -1);
    AtSrvMsg msg = PatternRecord(77);
    for (int expected = 0; expected < 3; ++expected) {
        EXPECT_EQ(AtsMsgQueueExNum(qid), expected);
        ASSERT_EQ(AtsMsgQueueSend(qid, &msg, sizeof msg), 1);
    }
    ASSERT_EQ(AtsMsgQueueDelete(qid), 1);
    EXPECT_EQ(AtsMsgQueueNum(qid), -1);
}

TEST(MsgQueueArguments, BadBuffersAreRefusedWithTheirOwnConvention) {
    IsolatedRuntime runtime;
    const int qid = AtsMsgQueueCreate(kProjId, 10, 1636);
    ASSERT_NE(qid, -1);
    AtSrvMsg msg = PatternRecord(5);
    struct Case {
        const char *name;
        int qid;
        void *buf;
        uint32_t length;
    };
    const Case cases[] = {
        {"null buffer", qid, nullptr, sizeof msg},
        {"no queue", -1, &msg, sizeof msg},
        {"shorter than the type word", qid, &msg, 3},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(AtsMsgQueueSend(c.qid, c.buf, c.length), 0);
        EXPECT_EQ(AtsMsgQueueExSend(c.qid, c.buf, c.length, 0), 0);
        EXPECT_EQ(AtsMsgQueueRecv(c.qid, c.buf, c.length, 0), -1);
        EXPECT_EQ(AtsMsgQueueExRecv(c.qid, c.buf, c.length, 0, 0), -1);
    }
    EXPECT_EQ(AtsMsgQueueNum(qid), 0) << "nothing may have been sent";
}

// The kernel must carry the type word in its own long and exactly the 1632
// bytes behind it, whatever the width of long.
TEST(MsgQueueWire, TypeWordAndPayloadSurviveTheRoundTrip) {
    IsolatedRuntime runtime;
    const int qid = AtsMsgQueueCreate(kProjId, 10, 1636);
    ASSERT_NE(qid, -1);
    const AtSrvMsg sent = PatternRecord(4242);

    ASSERT_EQ(AtsMsgQueueExSend(qid, const_cast<AtSrvMsg *>(&sent), sizeof sent, 1), 1);
    struct {
        long mtype;
        char payload[AT_SRV_MSG_PAYLOAD + 16];
    } raw{};
    ASSERT_EQ(msgrcv(qid, &raw, sizeof raw.payload, 0, IPC_NOWAIT), AT_SRV_MSG_PAYLOAD);
    EXPECT_EQ(raw.mtype, 4242);
    EXPECT_EQ(
        std::memcmp(raw.payload, reinterpret_cast<const char *>(&sent) + 4, AT_SRV_MSG_PAYLOAD), 0);

    ASSERT_EQ(AtsMsgQueueExSend(qid, const_cast<AtSrvMsg *>(&sent), sizeof sent, 0), 1);
    AtSrvMsg received;
    std::memset(&received, 0, sizeof received);
    EXPECT_EQ(AtsMsgQueueExRecv(qid, &received, sizeof received, 0, 4243), -1) << "other type";
    ASSERT_EQ(AtsMsgQueueExRecv(qid, &received, sizeof received, 0, 4242), AT_SRV_MSG_PAYLOAD);
    EXPECT_EQ(std::memcmp(&received, &sent, sizeof sent), 0);
    EXPECT_EQ(received.mtype, 4242);
    EXPECT_EQ(received.reqType, sent.reqType);
    EXPECT_EQ(received.reserved3, sent.reserved3);
}

TEST(MsgQueueWire, ReceiveBufferTooSmallForTheMessageFails) {
    IsolatedRuntime runtime;
    const int qid = AtsMsgQueueCreate(kProjId, 10, 1636);
    ASSERT_NE(qid, -1);
    AtSrvMsg sent = PatternRecord(9);
    ASSERT_EQ(AtsMsgQueueSend(qid, &sent, sizeof sent), 1);
    char small[100] = {};
    EXPECT_EQ(AtsMsgQueueRecv(qid, small, sizeof small, 0), -1);
    EXPECT_EQ(AtsMsgQueueNum(qid), 1) << "the message stays queued";
}

TEST(MsgQueuePoll, TriesEvery30MsUntilTheTimeoutIsUsedUp) {
    struct Case {
        int timeoutMs;
        size_t tries;  // sleeps of 30 ms on an empty queue
        int plainResult;
    };
    const Case cases[] = {
        {0, 0, -1},  // one non-blocking try, no sleep
        {1, 1, -1},  {30, 1, -1}, {31, 2, -1}, {45, 2, -1},
        {60, 2, -1}, {61, 3, -1}, {-5, 0, 0},  // never tries: the plain receive reports 0
    };
    IsolatedRuntime runtime;
    const int qid = AtsMsgQueueCreate(kProjId, 10, 1636);
    ASSERT_NE(qid, -1);
    AtSrvMsg msg;
    for (const Case &c : cases) {
        SCOPED_TRACE(c.timeoutMs);
        {
            FakeClock clock;
            EXPECT_EQ(AtsMsgQueueRecv(qid, &msg, sizeof msg, c.timeoutMs), c.plainResult);
            EXPECT_EQ(clock.Sleeps().size(), c.tries);
            EXPECT_EQ(clock.SleepsOf(30000), c.tries);
        }
        FakeClock clock;
        EXPECT_EQ(AtsMsgQueueExRecv(qid, &msg, sizeof msg, c.timeoutMs, 0), -1);
        EXPECT_EQ(clock.SleepsOf(30000), c.tries);
    }
}

TEST(MsgQueuePoll, MessageArrivingDuringTheWaitIsTaken) {
    IsolatedRuntime runtime;
    const int qid = AtsMsgQueueCreate(kProjId, 10, 1636);
    ASSERT_NE(qid, -1);
    FakeClock clock;
    AtSrvMsg late = PatternRecord(31);
    clock.OnSleep([&](size_t count) {
        if (count == 2) AtsMsgQueueSend(qid, &late, sizeof late);
    });
    AtSrvMsg got;
    EXPECT_EQ(AtsMsgQueueExRecv(qid, &got, sizeof got, 1000, 31), AT_SRV_MSG_PAYLOAD);
    EXPECT_EQ(clock.Sleeps().size(), 2u);
    EXPECT_EQ(std::memcmp(&got, &late, sizeof got), 0);
}

TEST(MsgQueuePoll, NegativeQueueIdEndsTheWaitAtOnce) {
    FakeClock clock;
    TraceCapture trace;
    AtSrvMsg msg;
    EXPECT_EQ(AtsMsgQueueExRecv(-2, &msg, sizeof msg, 1000, 0), -1);
    EXPECT_EQ(AtsMsgQueueRecv(-2, &msg, sizeof msg, 1000), -1);
    EXPECT_TRUE(clock.Sleeps().empty());
    EXPECT_EQ(trace.Count("Error! msgQueueId < 0. errno = "), 2u);
}

}  // namespace
}  // namespace atapi::test
