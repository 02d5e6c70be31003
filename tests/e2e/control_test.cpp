// Clear requests (types 7 and 8) written straight into atserver's request
// queue reach its scheduler from the queue intake; the cases of clearing are
// the scheduler suite's.
#include <cstring>
#include <initializer_list>
#include <string>

#include "atapi/at_link.h"
#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

AtSrvMsg Request(int32_t mtype, uint32_t reqType, const std::string &cmd) {
    AtSrvMsg msg{};
    msg.mtype = mtype;
    msg.reqType = reqType;
    msg.seq = 7;
    msg.timeoutSec = 1;
    std::strncpy(msg.sndRcvMsg.sMsg.atName, "+E2E", AT_NAME_LEN - 1);
    std::strncpy(msg.sndRcvMsg.sMsg.atCmdStr, cmd.c_str(), AT_CMD_STR_LEN - 1);
    return msg;
}

// Writes requests straight into the request queue and wakes the server.
void Inject(pid_t server, std::initializer_list<AtSrvMsg> requests) {
    const int qid = AtsGetMsgQueueId(kServerRecvProjId);
    ASSERT_NE(qid, -1);
    for (const AtSrvMsg &msg : requests) ASSERT_TRUE(SendRaw(qid, &msg, sizeof msg));
    ASSERT_EQ(AtsEventSend(server, 1), 1);
}

// The text of the reply addressed to mtype ("" when none came in time).
std::string ReplyTextTo(int32_t mtype, int32_t *retVal = nullptr) {
    AtSrvMsg reply{};
    const int got =
        AtsMsgQueueExRecv(AtsGetMsgQueueId(kServerSendProjId), &reply, sizeof reply, 8000, mtype);
    EXPECT_EQ(got, AT_SRV_MSG_PAYLOAD) << "no reply to " << mtype;
    EXPECT_EQ(reply.seq, 7u);
    if (retVal != nullptr) *retVal = reply.sndRcvMsg.rMsg.retVal;
    return reply.sndRcvMsg.rMsg.atReportStr;
}

// Both clear types take effect in their place among the commands around them.
TEST_F(E2eTest, Clear_QueuedRequestsAreAnsweredErrorInArrivalOrder) {
    const int32_t busy = ForeignMtype(10), own = ForeignMtype(11), other = ForeignMtype(12),
                  later = ForeignMtype(13);
    // The slow command runs while the others wait in the server's queue.
    Inject(server_->Pid(),
           {Request(busy, AT_REQ_COMMAND, "AT+SLOW=600"),
            Request(own, AT_REQ_COMMAND, "AT+ECHOCMD=11"), Request(own, AT_REQ_CLEAR, "AT"),
            Request(other, AT_REQ_COMMAND, "AT+ECHOCMD=12"), Request(later, AT_REQ_CLEAR_ALL, "AT"),
            Request(later, AT_REQ_COMMAND, "AT+ECHOCMD=13")});
    int32_t retVal = 0;
    EXPECT_EQ(ReplyTextTo(own, &retVal), "ERROR");
    EXPECT_EQ(retVal, AT_RET_ERROR);
    EXPECT_EQ(ReplyTextTo(other), "ERROR");
    EXPECT_EQ(ReplyTextTo(busy), "");
    EXPECT_EQ(ReplyTextTo(later), "+ECHOCMD: AT+ECHOCMD=13");
}

}  // namespace
}  // namespace atapi::e2e
