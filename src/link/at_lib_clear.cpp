// Clearing atserver's request queue: every waiting request is answered
// with an error, then the running command is aborted.
#include <cstdint>

#include "atapi/at_link.h"
#include "link/at_lib_state_ops.h"
#include "link/at_log.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_lib";

constexpr char kClearedReply[] = "ERROR";
constexpr int32_t kClearedReplyLen = sizeof kClearedReply - 1;

// The platform notification that asks the server to abort the running command.
constexpr uint32_t kAbortNotifyModule = 31;
constexpr uint32_t kAbortNotifyId = 55023;

// Turns a drained request into the error reply its requester is waiting for.
void MakeErrorReply(AtSrvMsg *msg) {
    AtSrvRcvMsg &reply = msg->sndRcvMsg.rMsg;
    memset_s(reply.atReportStr, sizeof reply.atReportStr, 0, sizeof reply.atReportStr);
    strcpy_s(reply.atReportStr, sizeof reply.atReportStr, kClearedReply);
    reply.atReportLen = kClearedReplyLen;
    reply.retVal = AT_RET_ERROR;
}

}  // namespace

extern "C" {

int32_t ClearAllAtCommandsInQueue(void) {
    const int32_t idState = CheckAtsId();
    AT_LOG_INFO("ATs id <%d>\n", idState);
    if (idState != 0) AtserverMsgInit();
    const int32_t recvQid = atapi::LoadLinkId(g_atsRecvMsgQueueId);
    AT_LOG_INFO("ATs rcv id <%d>\n", recvQid);

    AtSrvMsg msg;
    while (AtsMsgQueueExRecv(recvQid, &msg, AT_SRV_MSG_SIZE, 0, 0) >= 0) {
        AT_LOG_INFO("Clear all AT\n");
        MakeErrorReply(&msg);
        int32_t retCode = 0;
        if (SendToMsgQueue(atapi::LoadLinkId(g_atsSendMsgQueueId), &msg, &retCode) != 0) {
            AT_LOG_ERR("SendToMsgQueue the cmd rsp error,retcode = <%d>\n", retCode);
            memset_s(&msg, sizeof msg, 0, sizeof msg);
            return -1;
        }
    }
    memset_s(&msg, sizeof msg, 0, sizeof msg);  // drained commands may hold secrets

    AT_LOG_INFO("In case that at command is running, send abort at request\n");
    AtsPostNotify(kAbortNotifyModule, kAbortNotifyId, 0, 0);
    return 0;
}

}  // extern "C"
