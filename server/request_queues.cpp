#include "request_queues.h"

#include <sys/ipc.h>
#include <sys/msg.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "atapi/at_link.h"
#include "link/ats_paths.h"
#include "platform/bounded.h"
#include "queue_room.h"
#include "runtime_files.h"
#include "server_log.h"

namespace atserver {
namespace {

constexpr uint32_t kQueueMsgs = 10;
constexpr size_t kTypeWordSize = 4;

// Receive buffer: larger than any valid record, so that an oversized record
// is taken (cut short by MSG_NOERROR) and recognised, instead of staying at
// the head of the queue for ever. Its requests and replies may carry PINs
// and passwords: it is wiped when it goes.
struct WireRecord {
    long mtype;
    char payload[2 * AT_SRV_MSG_PAYLOAD];

    ~WireRecord() { memset_s(this, sizeof *this, 0, sizeof *this); }
};

bool Terminated(const char *text, size_t capacity) {
    return std::memchr(text, '\0', capacity) != nullptr;
}

void RemoveStaleQueue(int projId) {
    const key_t key = ftok(atapi::QueueKeyDir(), projId);
    if (key == -1) return;
    const int qid = msgget(key, 0);
    if (qid == -1) return;
    LogWarn("removing queue %d (project id %d) left by an earlier run", qid, projId);
    msgctl(qid, IPC_RMID, nullptr);
}

// Receives one record without waiting: its payload length, or -1.
ssize_t ReceiveRaw(int qid, WireRecord *wire) {
    for (;;) {
        const ssize_t got = msgrcv(qid, wire, sizeof wire->payload, 0, IPC_NOWAIT | MSG_NOERROR);
        if (got >= 0 || errno != EINTR) return got;
    }
}

}  // namespace

RecordKind ClassifyRecord(const AtSrvMsg &msg, size_t payloadLen) {
    if (payloadLen != AT_SRV_MSG_PAYLOAD) return RecordKind::kMalformed;
    switch (msg.reqType) {
        case AT_REQ_ABORT:
        case AT_REQ_CLEAR:
        case AT_REQ_CLEAR_ALL:
            return RecordKind::kControl;
        case AT_REQ_COMMAND:
            break;
        default:
            return RecordKind::kMalformed;
    }
    const AtSrvSndMsg &sMsg = msg.sndRcvMsg.sMsg;
    if (!Terminated(sMsg.atName, sizeof sMsg.atName) ||
        !Terminated(sMsg.atCmdStr, sizeof sMsg.atCmdStr) || sMsg.atCmdStr[0] == '\0' ||
        std::strpbrk(sMsg.atCmdStr, "\r\n") != nullptr) {
        return RecordKind::kBadCommand;
    }
    return RecordKind::kCommand;
}

bool ReceiveRequest(int qid, IncomingRecord *record) {
    WireRecord wire;
    ssize_t got = -1;
    do {
        got = msgrcv(qid, &wire, sizeof wire.payload, 0, MSG_NOERROR);
    } while (got < 0 && errno == EINTR);
    if (got < 0) return false;
    AtSrvMsg &msg = record->msg;
    msg.mtype = static_cast<int32_t>(wire.mtype);
    const size_t payloadLen = static_cast<size_t>(got);
    memcpy_s(reinterpret_cast<char *>(&msg) + kTypeWordSize, AT_SRV_MSG_PAYLOAD, wire.payload,
             payloadLen < AT_SRV_MSG_PAYLOAD ? payloadLen : AT_SRV_MSG_PAYLOAD);
    record->kind = ClassifyRecord(msg, payloadLen);
    if (record->kind == RecordKind::kMalformed) {
        LogWarn("dropped a malformed record from %d: %zu bytes, reqType %u", msg.mtype, payloadLen,
                msg.reqType);
        memset_s(&msg, sizeof msg, 0, sizeof msg);
    }
    return true;
}

RequestQueues::~RequestQueues() { Destroy(); }

bool RequestQueues::Create() {
    if (!MakeDirectories(atapi::QueueKeyDir())) {
        LogError("cannot create the queue key directory %s: %s", atapi::QueueKeyDir(),
                 std::strerror(errno));
        return false;
    }
    RemoveStaleQueue(atapi::kServerRecvProjId);
    RemoveStaleQueue(atapi::kServerSendProjId);
    requestQid_ = AtsMsgQueueCreate(atapi::kServerRecvProjId, kQueueMsgs, AT_SRV_MSG_SIZE);
    replyQid_ = AtsMsgQueueCreate(atapi::kServerSendProjId, kQueueMsgs, AT_SRV_MSG_SIZE);
    if (requestQid_ == -1 || replyQid_ == -1) {
        LogError("cannot create the queues (request %d, reply %d)", requestQid_, replyQid_);
        Destroy();
        return false;
    }
    Logf("queues created: requests %d, replies %d", requestQid_, replyQid_);
    RaiseQueueRoom(requestQid_, "request");
    replyRoom_ = RaiseQueueRoom(replyQid_, "reply");
    return true;
}

void RequestQueues::Recover() {
    RecoverQueue(&requestQid_, atapi::kServerRecvProjId, "request");
    RecoverQueue(&replyQid_, atapi::kServerSendProjId, "reply");
}

void RequestQueues::RecoverQueue(int *qid, int projId, const char *name) {
    msqid_ds attrs{};
    if (*qid != -1 &&
        (msgctl(*qid, IPC_STAT, &attrs) == 0 || (errno != EIDRM && errno != EINVAL))) {
        return;
    }
    // Callers look the queue up by its key: the queue that now has the key
    // (made again by whoever removed it) or a new one is served from here on.
    const int remade = AtsGetMsgQueueId(projId);
    const int gone = std::exchange(
        *qid, remade != -1 ? remade : AtsMsgQueueCreate(projId, kQueueMsgs, AT_SRV_MSG_SIZE));
    if (*qid == -1) {
        if (gone != -1) LogError("the %s queue %d was removed; no queue to serve on", name, gone);
        return;
    }
    LogWarn("the %s queue %d was removed: serving on queue %d", name, gone, *qid);
    const size_t room = RaiseQueueRoom(*qid, name);
    if (qid == &replyQid_) replyRoom_ = room;
}

void RequestQueues::Destroy() {
    if (requestQid_ != -1) AtsMsgQueueDelete(requestQid_);
    if (replyQid_ != -1) AtsMsgQueueDelete(replyQid_);
    requestQid_ = -1;
    replyQid_ = -1;
}

RequestQueues::SendResult RequestQueues::SendReply(const AtSrvMsg &reply) {
    // Sent here rather than through the library's queue layer: a full queue is
    // an expected, retried condition for atserver, not an error to log.
    WireRecord wire;
    wire.mtype = reply.mtype;
    memcpy_s(wire.payload, sizeof wire.payload,
             reinterpret_cast<const char *>(&reply) + kTypeWordSize, AT_SRV_MSG_PAYLOAD);
    for (;;) {
        if (msgsnd(replyQid_, &wire, AT_SRV_MSG_PAYLOAD, IPC_NOWAIT) == 0) return SendResult::kSent;
        if (errno == EAGAIN) return SendResult::kFull;
        if (errno != EINTR) break;
    }
    LogWarn("reply to %d failed: %s", reply.mtype, std::strerror(errno));
    return SendResult::kFailed;
}

size_t RequestQueues::RepliesWaiting() const {
    msqid_ds attrs{};
    return msgctl(replyQid_, IPC_STAT, &attrs) == 0 ? attrs.msg_qnum : 0;
}

bool RequestQueues::DropOldestReply() {
    WireRecord wire;
    if (ReceiveRaw(replyQid_, &wire) < 0) return false;
    LogWarn("reply queue full: dropped an unread reply to %ld", wire.mtype);
    return true;
}

}  // namespace atserver
