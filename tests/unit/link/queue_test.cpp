// The message queue layer: exclusive creation and byte limits, deletion and
// the 64-bit wire copy (the polling is in waits_test).

#include <sys/msg.h>

#include <cstring>
#include <string>

#include "atapi/at_link.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"

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

// At most 1000 messages of at most 8192 bytes, 16384 bytes in all; the
// byte limit is set to what was asked for. Deleting no queue (-1) succeeds,
// deleting a queue that is gone fails.
TEST(MsgQueueCreate, ExclusiveWithinTheByteLimit) {
    struct Case {
        uint32_t maxMsgs;
        uint32_t msgSize;
        bool accepted;
    };
    const Case cases[] = {{2, 8192, true},  {1000, 16, true}, {1000, 17, false},
                          {1001, 1, false}, {1, 8193, false}, {17, 1024, false}};
    for (const Case &c : cases) {
        SCOPED_TRACE(std::to_string(c.maxMsgs) + " x " + std::to_string(c.msgSize));
        IsolatedRuntime runtime;
        const int qid = AtsMsgQueueCreate(kProjId, c.maxMsgs, c.msgSize);
        EXPECT_EQ(AtsGetMsgQueueId(kProjId), qid);
        if (!c.accepted) {
            EXPECT_EQ(qid, -1);
            continue;
        }
        msqid_ds attrs{};
        ASSERT_EQ(msgctl(qid, IPC_STAT, &attrs), 0);
        EXPECT_EQ(attrs.msg_qbytes, c.maxMsgs * c.msgSize);
        EXPECT_EQ(AtsMsgQueueExCreate(kProjId, c.maxMsgs, c.msgSize), -1) << "exclusive create";
        EXPECT_EQ(AtsMsgQueueExDelete(qid), 1);
        EXPECT_EQ(AtsMsgQueueDelete(qid), 0);
        EXPECT_EQ(AtsMsgQueueDelete(-1), 1);
        EXPECT_EQ(AtsMsgQueueExDelete(-1), 1);
    }
}

// The kernel must carry the type word in its own long and exactly the 1632
// bytes behind it, whatever the width of long.
TEST(MsgQueueWire, TypeWordAndPayloadSurviveTheRoundTrip) {
    IsolatedRuntime runtime;
    const int qid = AtsMsgQueueCreate(kProjId, 10, AT_SRV_MSG_SIZE);
    ASSERT_NE(qid, -1);
    AtSrvMsg sent = PatternRecord(4242);

    ASSERT_EQ(AtsMsgQueueExSend(qid, &sent, sizeof sent, 1), 1);
    struct {
        long mtype;
        char payload[AT_SRV_MSG_PAYLOAD + 16];
    } raw{};
    ASSERT_EQ(msgrcv(qid, &raw, sizeof raw.payload, 0, IPC_NOWAIT), AT_SRV_MSG_PAYLOAD);
    EXPECT_EQ(raw.mtype, 4242);
    EXPECT_EQ(std::memcmp(raw.payload, reinterpret_cast<char *>(&sent) + 4, AT_SRV_MSG_PAYLOAD), 0);

    ASSERT_EQ(AtsMsgQueueExSend(qid, &sent, sizeof sent, 0), 1);
    AtSrvMsg received;
    std::memset(&received, 0, sizeof received);
    EXPECT_EQ(AtsMsgQueueExRecv(qid, &received, sizeof received, 0, 4243), -1) << "other type";
    ASSERT_EQ(AtsMsgQueueExRecv(qid, &received, sizeof received, 0, 4242), AT_SRV_MSG_PAYLOAD);
    EXPECT_EQ(std::memcmp(&received, &sent, sizeof sent), 0);
}

}  // namespace
}  // namespace atapi::test
