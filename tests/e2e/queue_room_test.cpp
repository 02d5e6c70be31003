// 64 callers waiting at once never find atserver's queues full, where the
// kernel lets atserver size them; where it does not, atserver's log says
// how much room each queue has.
#include <signal.h>
#include <sys/msg.h>

#include <string>

#include "atapi/at_link.h"
#include "atapi/at_send.h"
#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

constexpr int kCallers = 64;

size_t RecordsHeld(int qid) {
    msqid_ds attrs{};
    if (msgctl(qid, IPC_STAT, &attrs) != 0) return 0;
    return attrs.msg_qbytes / AT_SRV_MSG_PAYLOAD;
}

TEST_F(E2eTest, QueueRoom_SixtyFourWaitingRequestsAllFit) {
    const int requestQid = AtsGetMsgQueueId(kServerRecvProjId);
    const int replyQid = AtsGetMsgQueueId(kServerSendProjId);
    ASSERT_NE(requestQid, -1);
    ASSERT_NE(replyQid, -1);
    if (RecordsHeld(requestQid) < kCallers || RecordsHeld(replyQid) < kCallers) {
        EXPECT_TRUE(server_->WaitForLog("the request queue holds only")) << server_->Log();
        EXPECT_TRUE(server_->WaitForLog("the reply queue holds only")) << server_->Log();
        GTEST_SKIP() << "the kernel keeps atserver's queues below " << kCallers << " records";
    }
    // atserver stopped: every request waits in the queue at once.
    ASSERT_EQ(kill(server_->Pid(), SIGSTOP), 0);
    int sent = 0;
    for (int i = 0; i < kCallers; ++i) {
        AtSrvMsg msg;
        ASSERT_EQ(AtInitCommonMsgHandler(&msg, "AT+CGMI", nullptr, 0, 10), 0);
        msg.mtype = ForeignMtype(i);
        msg.seq = static_cast<uint32_t>(1000 + i);
        sent += AtsMsgQueueExSend(requestQid, &msg, sizeof msg, 0);
    }
    ASSERT_EQ(kill(server_->Pid(), SIGCONT), 0);
    EXPECT_EQ(sent, kCallers);
    ASSERT_EQ(AtsEventSend(server_->Pid(), 1), 1);
    for (int i = 0; i < sent; ++i) {
        AtSrvMsg reply{};
        ASSERT_EQ(AtsMsgQueueExRecv(replyQid, &reply, sizeof reply, 10000, ForeignMtype(i)),
                  AT_SRV_MSG_PAYLOAD)
            << i;
        EXPECT_EQ(reply.seq, static_cast<uint32_t>(1000 + i));
        EXPECT_EQ(reply.sndRcvMsg.rMsg.retVal, AT_RET_OK);
        EXPECT_STREQ(reply.sndRcvMsg.rMsg.atReportStr, kManufacturer);
    }
}

}  // namespace
}  // namespace atapi::e2e
