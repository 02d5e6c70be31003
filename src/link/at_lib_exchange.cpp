// The one road to atserver and back: stamp the request, put it on the
// request queue, wake the server, wait for the reply of this thread's type
// and check that it answers this request. No heap: the record and the saved
// command copy live on the caller's and this stack.
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>

#include "atapi/at_link.h"
#include "link/at_lib_state_ops.h"
#include "link/at_log.h"
#include "link/ats_paths.h"
#include "platform/bounded.h"

// Hard failures of the exchange also go to the module log.
#define AT_LOG_HARD(...)                                        \
    do {                                                        \
        AT_LOG_ERR(__VA_ARGS__);                                \
        mlog_print("atserver", TRACE_LEVEL_ERROR, __VA_ARGS__); \
    } while (0)

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_lib";

constexpr int kSendTries = 30;
constexpr int kEventTries = 5;
constexpr uint32_t kRetryPauseMs = 100;
constexpr uint32_t kServerWakeEvent = 1;
constexpr char kQuietMarker[] = "CHIPTEMP";  // periodic poll kept out of the log

bool IsQuiet(const char *text) { return std::strstr(text, kQuietMarker) != nullptr; }

bool IsControlType(uint32_t reqType) {
    return reqType >= AT_REQ_ABORT && reqType <= AT_REQ_CLEAR_ALL;
}

// Looks up a queue id that is still unknown; false when the queue is missing.
bool EnsureQueueId(int32_t &qid, int projId) {
    if (atapi::LoadLinkId(qid) == -1) atapi::StoreLinkId(qid, AtsGetMsgQueueId(projId));
    return atapi::LoadLinkId(qid) != -1;
}

int TimeoutMs(int32_t timeoutSec) {
    const int64_t ms = int64_t{timeoutSec} * 1000;
    if (ms > INT_MAX) return INT_MAX;
    return ms < INT_MIN ? INT_MIN : static_cast<int>(ms);
}

// Puts the request on the server's queue, re-resolving the server after
// every failure; false after the last try.
bool SendRequest(AtSrvMsg *msg) {
    int32_t retCode = 0;
    for (int tries = 1;; ++tries) {
        if (SendToMsgQueue(atapi::LoadLinkId(g_atsRecvMsgQueueId), msg, &retCode) == 0) {
            return true;
        }
        AtserverMsgInit();
        AtsSleep(kRetryPauseMs);
        AT_LOG_ERR("SendToMsgQueue retcode = <%d>, cnt = %d\n", retCode, tries);
        if (tries == kSendTries) {
            AT_LOG_HARD("Error: send message failed errno[%d]\n", retCode);
            AT_LOG_HARD("AtserverMsgSend failed\n");
            return false;
        }
    }
}

bool WakeServer() {
    for (int tries = 1;; ++tries) {
        if (AtsEventSend(atapi::LoadLinkId(g_atsLibTaskId), kServerWakeEvent) != 0) return true;
        const int err = errno;
        AtsSleep(kRetryPauseMs);
        AT_LOG_ERR("AtsEventSend errno = <%d>, cnt = %d\n", err, tries);
        if (tries == kEventTries) {
            AT_LOG_HARD("Error: send event failed errno[%d]\n", err);
            AT_LOG_HARD("AtserverMsgSend failed\n");
            return false;
        }
    }
}

}  // namespace

extern "C" {

int32_t GetDataFromAtServer(AtSrvMsg *msg) {
    if (msg == nullptr) return -1;
    if (CheckAtsId() != 0) AtserverMsgInit();
    return ReadDataFromAtSrvProc(msg);
}

int32_t ReadDataFromAtSrvProc(AtSrvMsg *msg) {
    if (msg == nullptr) return -1;
    const bool recvKnown = EnsureQueueId(g_atsRecvMsgQueueId, atapi::kServerRecvProjId);
    const bool sendKnown = EnsureQueueId(g_atsSendMsgQueueId, atapi::kServerSendProjId);
    if (!recvKnown || !sendKnown) return -1;

    char *cmd = msg->sndRcvMsg.sMsg.atCmdStr;
    if (!IsQuiet(cmd)) AT_LOG_INFO("send to atserver:\n");
    AtReadCmdFromMsgQueue(cmd);

    msg->seq = atapi::TakeNextSeq();
    ClearMsgFromQueue(atapi::LoadLinkId(g_atsRecvMsgQueueId), msg->mtype);
    if (!SendRequest(msg) || !WakeServer()) return -1;

    if (IsControlType(msg->reqType)) {
        AT_LOG_INFO("reqType: %d has sent to ats\n", static_cast<int>(msg->reqType));
        return 0;
    }

    char savedCmd[AT_CMD_STR_LEN];
    memcpy_s(savedCmd, sizeof savedCmd, cmd, AT_CMD_STR_LEN);
    memset_s(&msg->sndRcvMsg, sizeof msg->sndRcvMsg, 0, sizeof msg->sndRcvMsg);
    int32_t retCode = 0;
    const int32_t ret = ReadFromMsgQueue(atapi::LoadLinkId(g_atsSendMsgQueueId), msg, 1, &retCode);
    const AtSrvRcvMsg &reply = msg->sndRcvMsg.rMsg;
    if (!IsQuiet(reply.atName)) AT_LOG_INFO("ret:%d match:%s\n", reply.retVal, reply.atName);
    if (ret != 0) AtAbortAndClearAllCommand(AT_REQ_ABORT, savedCmd, sizeof savedCmd);
    memset_s(savedCmd, sizeof savedCmd, 0, sizeof savedCmd);  // may hold a secret
    return ret == 0 ? 0 : -1;
}

void AtserverMsgInit(void) {
    (void)M2mGetAtsTaskId();
    const int32_t taskId = AtsTaskNameToId(atapi::kServerTaskName);
    atapi::StoreLinkId(g_atsLibTaskId, taskId);
    if (AtsTaskExist(taskId) != 0) {
        atapi::StoreLinkId(g_atsRecvMsgQueueId, AtsGetMsgQueueId(atapi::kServerRecvProjId));
        atapi::StoreLinkId(g_atsSendMsgQueueId, AtsGetMsgQueueId(atapi::kServerSendProjId));
    }
    AT_LOG_INFO("g_atsLibTaskId = %d, g_atsRecvMsgQueueId = %d, g_atsSendMsgQueueId = %d\n", taskId,
                atapi::LoadLinkId(g_atsRecvMsgQueueId), atapi::LoadLinkId(g_atsSendMsgQueueId));
}

void AtMicResetAtsTaskId(void) { atapi::StoreLinkId(g_atsLibTaskId, -1); }

int32_t CheckAtsId(void) {
    const int32_t taskId = atapi::LoadLinkId(g_atsLibTaskId);
    if (AtsTaskExist(taskId) != 0) return 0;
    AT_LOG_ERR("CheckAtsId id = %d\n", taskId);
    return -1;
}

int32_t SendToMsgQueue(int32_t qid, AtSrvMsg *msg, int32_t *retCode) {
    if (msg == nullptr || retCode == nullptr) {
        AT_LOG_ERR("input invalid\n");
        return -1;
    }
    if (!IsQuiet(msg->sndRcvMsg.sMsg.atCmdStr)) {
        AT_LOG_INFO("Id= %ld, seq = %u\n", static_cast<long>(msg->mtype), msg->seq);
    }
    if (AtsMsgQueueExSend(qid, msg, AT_SRV_MSG_SIZE, 0) != 0) return 0;
    *retCode = errno;
    AT_LOG_ERR("Error: send msg failed, qid = %d, *retCode = %d\n", qid, *retCode);
    return -1;
}

int32_t ReadFromMsgQueue(int32_t qid, AtSrvMsg *msg, int32_t checkSeq, int32_t *retCode) {
    if (msg == nullptr || retCode == nullptr || qid == -1) return -1;
    *retCode = 0;
    const int timeoutMs = TimeoutMs(msg->timeoutSec);
    AtSrvMsg reply;
    for (;;) {
        memset_s(&reply, sizeof reply, 0, sizeof reply);
        const int got = AtsMsgQueueExRecv(qid, &reply, AT_SRV_MSG_SIZE, timeoutMs, msg->mtype);
        if (got < 0) {
            AT_LOG_ERR("There is no Message in the queue, at name =[%s]\n",
                       msg->sndRcvMsg.sMsg.atName);
            return -1;
        }
        if (got != AT_SRV_MSG_PAYLOAD) {
            AT_LOG_ERR("Message length is not enough\n");
            return -1;
        }
        if (checkSeq != 1 || reply.seq == msg->seq) break;
        if (reply.seq > msg->seq) {
            AT_LOG_ERR("Error:tmp_msg.seq = %u, pmsg->seq =%u\n", reply.seq, msg->seq);
            return -1;
        }
        AT_LOG_ERR("Error:Msg seq error\n");  // late reply to an earlier request: drop it
    }
    return memcpy_s(msg, sizeof *msg, &reply, sizeof reply) == 0 ? 0 : -1;
}

void ClearMsgFromQueue(int32_t qid, int32_t mtype) {
    if (mtype <= 0) return;  // msgrcv would read such a type as "any" or "up to"
    AtSrvMsg stale;
    while (AtsMsgQueueExRecv(qid, &stale, AT_SRV_MSG_SIZE, 0, mtype) >= 0) {
        AT_LOG_INFO("Read a mtype=%ld msg\n", static_cast<long>(stale.mtype));
    }
    memset_s(&stale, sizeof stale, 0, sizeof stale);  // may hold a secret
}

void AtReadCmdFromMsgQueue(const char *cmd) {
    if (cmd == nullptr) return;
    // Only queries are logged: a set command may carry a PIN or password.
    char line[AT_CMD_STR_LEN] = {};
    if (strncpy_s(line, sizeof line, cmd, strnlen(cmd, sizeof line)) == 0) {
        if (char *query = std::strchr(line, '?'); query != nullptr) {
            query[1] = '\0';
            if (!IsQuiet(cmd)) AT_LOG_INFO("queryCmd = %s\n", line);
        }
    }
    memset_s(line, sizeof line, 0, sizeof line);
}

}  // extern "C"
