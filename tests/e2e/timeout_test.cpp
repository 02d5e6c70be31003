// Timeouts, sequence numbers, aborts and clears between the library and the
// real atserver.
#include <signal.h>

#include <cstring>
#include <string>

#include "atapi/at_link.h"
#include "e2e_fixture.h"
#include "link/at_lib_state.h"
#include "link/ats_paths.h"
#include "trace_capture.h"

namespace atapi::e2e {
namespace {

AtSrvMsg Request(int32_t mtype, uint32_t reqType, const std::string &cmd, int32_t timeoutSec) {
    AtSrvMsg msg{};
    msg.mtype = mtype;
    msg.reqType = reqType;
    msg.seq = 7;
    msg.timeoutSec = timeoutSec;
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

// The reply addressed to mtype, waited for up to timeoutMs.
AtSrvMsg ReplyTo(int32_t mtype, int timeoutMs = 8000) {
    AtSrvMsg reply{};
    const int got = AtsMsgQueueExRecv(AtsGetMsgQueueId(kServerSendProjId), &reply, sizeof reply,
                                      timeoutMs, mtype);
    EXPECT_EQ(got, AT_SRV_MSG_PAYLOAD) << "no reply to " << mtype;
    return reply;
}

std::string Text(const AtSrvMsg &reply) { return reply.sndRcvMsg.rMsg.atReportStr; }

TEST_F(E2eTest, Sequence_LateReplyOfATimedOutCommandIsDropped) {
    test::TraceCapture trace;
    EXPECT_EQ(Send("AT+SLOW=1500", 1).status, -1);
    const Exchange next = Send("AT+CGMI");
    ASSERT_EQ(next.status, 0);
    EXPECT_EQ(next.retVal, AT_RET_OK);
    EXPECT_EQ(next.text, kManufacturer);
    EXPECT_EQ(trace.Count("Error:Msg seq error"), 1u);
}

TEST_F(E2eTest, Sequence_NewerReplyFailsTheExchange) {
    test::TraceCapture trace;
    AtSrvMsg forged = Request(CurrentTid(), AT_REQ_COMMAND, "", 0);
    forged.seq = g_atsMsgSeq + 1000;
    forged.sndRcvMsg.rMsg.retVal = AT_RET_OK;
    ASSERT_TRUE(SendRaw(AtsGetMsgQueueId(kServerSendProjId), &forged, sizeof forged));

    EXPECT_EQ(Send("AT+CGMI").status, -1);
    EXPECT_TRUE(trace.Contains("Error:tmp_msg.seq"));
    // The real reply of the failed exchange is now late and dropped in turn.
    const Exchange next = Send("AT+CGMI");
    ASSERT_EQ(next.status, 0);
    EXPECT_EQ(next.text, kManufacturer);
}

TEST_F(E2eTest, Abort_TimeoutSendsAnAbortCarryingTheCommand) {
    EXPECT_EQ(Send("AT+SLOW", 1).status, -1);
    const std::string tid = std::to_string(CurrentTid());
    EXPECT_TRUE(server_->WaitForLog("abort request from " + tid + " for \"AT+SLOW\""))
        << server_->Log();
    EXPECT_TRUE(server_->WaitForLog("aborted \"AT+SLOW\" of " + tid + " on request"));
    EXPECT_EQ(Send("AT+CGMI").text, kManufacturer);
}

TEST_F(E2eTest, Abort_SilentModemEndsInTheTimeoutPath) {
    EXPECT_EQ(Send("AT+SILENT", 2).status, -1);
    const Exchange next = Send("AT+CGMI");
    ASSERT_EQ(next.status, 0);
    EXPECT_EQ(next.text, kManufacturer);
}

TEST_F(E2eTest, Abort_GuardTimerAnswersWhenNoAbortComes) {
    const int32_t requester = ForeignMtype(1);
    Inject(server_->Pid(), {Request(requester, AT_REQ_COMMAND, "AT+SILENT", 0)});
    const AtSrvMsg reply = ReplyTo(requester);
    EXPECT_EQ(reply.sndRcvMsg.rMsg.retVal, AT_RET_ABORTED);
    EXPECT_EQ(Text(reply), "AT_ABORTED");
    EXPECT_EQ(reply.sndRcvMsg.rMsg.atReportLen, 10);
    EXPECT_EQ(reply.seq, 7u);
    EXPECT_STREQ(reply.sndRcvMsg.rMsg.atName, "+E2E");
    EXPECT_EQ(Send("AT+CGMI").text, kManufacturer);
}

TEST_F(E2eTest, Clear_QueuedRequestsOfOneRequesterOrAllAreAnsweredError) {
    const int32_t busy = ForeignMtype(10);
    const int32_t cleared = ForeignMtype(11);
    const int32_t kept = ForeignMtype(12);
    // The slow command runs while the others wait in the server's queue.
    Inject(server_->Pid(), {Request(busy, AT_REQ_COMMAND, "AT+SLOW=600", 30),
                            Request(cleared, AT_REQ_COMMAND, "AT+ECHOCMD=11,1", 30),
                            Request(kept, AT_REQ_COMMAND, "AT+ECHOCMD=12,1", 30),
                            Request(cleared, AT_REQ_COMMAND, "AT+ECHOCMD=11,2", 30),
                            Request(cleared, AT_REQ_CLEAR, "AT", 30)});
    for (int n = 0; n < 2; ++n) {
        const AtSrvMsg reply = ReplyTo(cleared);
        EXPECT_EQ(reply.sndRcvMsg.rMsg.retVal, AT_RET_ERROR);
        EXPECT_EQ(Text(reply), "ERROR");
    }
    EXPECT_EQ(ReplyTo(busy).sndRcvMsg.rMsg.retVal, AT_RET_OK);
    EXPECT_EQ(Text(ReplyTo(kept)), "+ECHOCMD: AT+ECHOCMD=12,1");

    Inject(server_->Pid(), {Request(busy, AT_REQ_COMMAND, "AT+SLOW=600", 30),
                            Request(cleared, AT_REQ_COMMAND, "AT+ECHOCMD=11,3", 30),
                            Request(kept, AT_REQ_COMMAND, "AT+ECHOCMD=12,2", 30),
                            Request(busy, AT_REQ_CLEAR_ALL, "AT", 30)});
    EXPECT_EQ(Text(ReplyTo(cleared)), "ERROR");
    EXPECT_EQ(Text(ReplyTo(kept)), "ERROR");
    EXPECT_EQ(ReplyTo(busy).sndRcvMsg.rMsg.retVal, AT_RET_OK);
}

TEST_F(E2eTest, Restart_NewServerIsPickedUpAfterReset) {
    ASSERT_EQ(Send("AT+CGMI").retVal, AT_RET_OK);
    const pid_t first = server_->Pid();
    ASSERT_EQ(server_->Stop(), 0) << server_->Log();
    ExpectNothingLeft();

    server_->Start(scenario_, ServerArgs());
    ASSERT_NE(server_->Pid(), first);
    AtMicResetAtsTaskId();
    const Exchange reply = Send("AT+CGMI");
    ASSERT_EQ(reply.status, 0);
    EXPECT_EQ(reply.text, kManufacturer);
    EXPECT_EQ(g_atsLibTaskId, server_->Pid());
}

}  // namespace
}  // namespace atapi::e2e
