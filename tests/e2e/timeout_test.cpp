// Timeouts, sequence numbers, aborts and restarts between the library and
// the real atserver.
#include <string>

#include "atapi/at_link.h"
#include "e2e_fixture.h"
#include "link/at_lib_state.h"
#include "link/ats_paths.h"
#include "trace_capture.h"

namespace atapi::e2e {
namespace {

TEST_F(E2eTest, Sequence_LateReplyOfATimedOutCommandIsDropped) {
    test::TraceCapture trace;
    EXPECT_EQ(Send("AT+SLOW=1500", 1).status, -1);
    const Exchange next = Send("AT+CGMI");
    ASSERT_EQ(next.status, 0);
    EXPECT_EQ(next.text, kManufacturer);
    EXPECT_EQ(trace.Count("Error:Msg seq error"), 1u);
}

TEST_F(E2eTest, Sequence_NewerReplyFailsTheExchange) {
    test::TraceCapture trace;
    AtSrvMsg forged{};
    forged.mtype = CurrentTid();
    forged.seq = g_atsMsgSeq + 1000;
    ASSERT_TRUE(SendRaw(AtsGetMsgQueueId(kServerSendProjId), &forged, sizeof forged));

    EXPECT_EQ(Send("AT+CGMI").status, -1);
    EXPECT_TRUE(trace.Contains("Error:tmp_msg.seq"));
    // The real reply of the failed exchange is now late and dropped in turn.
    EXPECT_EQ(Send("AT+CGMI").text, kManufacturer);
}

// The library gives up after its timeout and asks the server to abort the
// command, naming it.
TEST_F(E2eTest, Abort_TimeoutSendsAnAbortCarryingTheCommand) {
    const std::string cmd = "AT+SLOW";
    EXPECT_EQ(Send(cmd, 1).status, -1);
    const std::string tid = std::to_string(CurrentTid());
    EXPECT_TRUE(server_->WaitForLog("abort request from " + tid + " for \"" + cmd + "\""))
        << server_->Log();
    EXPECT_TRUE(server_->WaitForLog("aborted \"" + cmd + "\" of " + tid));
    EXPECT_EQ(Send("AT+CGMI").text, kManufacturer);
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
