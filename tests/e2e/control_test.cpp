// Requests written straight into atserver's request queue, all at once while
// a slow command runs: clear requests (types 7 and 8) and emergency commands
// reach the scheduler from the queue intake and take effect in their place
// among the waiting commands. The cases of each are the scheduler suite's.
#include <cstring>
#include <sstream>

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
    msg.timeoutSec = 5;
    std::strncpy(msg.sndRcvMsg.sMsg.atName, "+E2E", AT_NAME_LEN - 1);
    std::strncpy(msg.sndRcvMsg.sMsg.atCmdStr, cmd.c_str(), AT_CMD_STR_LEN - 1);
    return msg;
}

// Writes requests straight into the request queue and wakes the server.
void Inject(pid_t server, const std::vector<AtSrvMsg> &requests) {
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

TEST_F(E2eTest, Clear_QueuedRequestsAreAnsweredErrorInArrivalOrder) {
    const int32_t busy = ForeignMtype(10), own = ForeignMtype(11), other = ForeignMtype(12),
                  later = ForeignMtype(13);
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

// An own list of emergency numbers, which replaces the default one; atsim
// logs each command it receives.
class EmergencyTest : public E2eTest {
  protected:
    std::vector<std::string> ServerArgs() const override {
        return {"--sim-arg", "--verbose", "--emergency-numbers", "999,+112"};
    }
};

TEST_F(EmergencyTest, Emergency_CommandsGoRightAfterTheCommandInProgress) {
    const std::string ecall = "AT^ECLSTART=1,2,\"112\",3";
    const std::vector<std::string> sent{"AT+SLOW=600", "AT+ECHOCMD=1", "ATD112;", "AT+ECHOCMD=2",
                                        "ATD999;",     "ATD+112;",     ecall};
    std::vector<AtSrvMsg> requests;
    for (size_t i = 0; i < sent.size(); ++i) {
        requests.push_back(Request(ForeignMtype(20 + i), AT_REQ_COMMAND, sent[i]));
    }
    Inject(server_->Pid(), requests);
    for (size_t i = 0; i < sent.size(); ++i) ReplyTextTo(ForeignMtype(20 + i));

    std::vector<std::string> received;  // from the slow command on
    std::istringstream log(server_->Log());
    for (std::string line; std::getline(log, line);) {
        if (!line.starts_with("atsim: \"")) continue;
        const std::string cmd = line.substr(8, line.rfind("\" -> ") - 8);
        if (cmd == sent[0] || !received.empty()) received.push_back(cmd);
    }
    const std::vector<std::string> expected{sent[0], "ATD999;", "ATD+112;", ecall,
                                            sent[1], "ATD112;", sent[3]};
    EXPECT_EQ(received, expected) << server_->Log();
}

}  // namespace
}  // namespace atapi::e2e
