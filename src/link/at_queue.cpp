// System V message queues carrying AtSrvMsg records between the library and
// atserver. Buffers handed in start with a 4-byte type word; the kernel wants
// a native long in front of the payload, so every message is copied through a
// wire buffer of that shape (the two coincide only on 32-bit hosts).
#include <sys/ipc.h>
#include <sys/msg.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include "atapi/at_link.h"
#include "link/at_log.h"
#include "link/ats_clock.h"
#include "link/ats_paths.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_queue";

constexpr uint32_t kTypeWordSize = 4;
constexpr uint32_t kMaxQueueMsgs = 1000;
constexpr uint32_t kMaxMsgSize = 8192;
constexpr uint32_t kMaxQueueBytes = 16384;
constexpr int kCreateFlags = IPC_CREAT | IPC_EXCL | 0660;
constexpr int kPollStepMs = 30;
constexpr uint32_t kPollStepUs = kPollStepMs * 1000;
constexpr int kBlocking = -1;

// The kernel's view of one message. Payloads larger than the biggest message
// a queue of ours can hold are refused on send; on receive they cannot fit.
struct WireMsg {
    long mtype;
    char payload[kMaxMsgSize];
};

bool BadBuffer(int qid, const void *msg, uint32_t length) {
    return msg == nullptr || qid == -1 || length < kTypeWordSize;
}

key_t QueueKey(int projId) { return ftok(atapi::QueueKeyDir(), projId); }

int Send(int qid, const void *msg, uint32_t length, int flags) {
    if (BadBuffer(qid, msg, length)) return 0;
    const uint32_t payloadLen = length - kTypeWordSize;
    WireMsg wire;
    int32_t type = 0;
    std::memcpy(&type, msg, kTypeWordSize);
    wire.mtype = type;
    const char *payload = static_cast<const char *>(msg) + kTypeWordSize;
    if (memcpy_s(wire.payload, sizeof wire.payload, payload, payloadLen) != 0) return 0;
    if (msgsnd(qid, &wire, payloadLen, flags) != 0) {
        const int err = errno;  // callers report it
        AT_LOG_ERR("Error! errno = %d\n", err);
        errno = err;
        return 0;
    }
    return 1;
}

// One msgrcv into the caller's buffer; the payload length or -1 (errno kept).
int ReceiveOnce(int qid, void *msg, uint32_t length, long msgType, int flags) {
    uint32_t capacity = length - kTypeWordSize;
    if (capacity > kMaxMsgSize) capacity = kMaxMsgSize;
    WireMsg wire;
    const ssize_t got = msgrcv(qid, &wire, capacity, msgType, flags);
    if (got < 0) return -1;
    const auto type = static_cast<int32_t>(wire.mtype);
    std::memcpy(msg, &type, kTypeWordSize);
    char *payload = static_cast<char *>(msg) + kTypeWordSize;
    if (memcpy_s(payload, length - kTypeWordSize, wire.payload, static_cast<size_t>(got)) != 0) {
        return -1;
    }
    return static_cast<int>(got);
}

enum class PollEnd { kLastTry, kFailure };

// Non-blocking tries in 30 ms steps until timeoutMs is used up. A timeout of
// 1..30 ms gives exactly one try; the wait may overshoot by one step.
int PollReceive(int qid, void *msg, uint32_t length, int timeoutMs, long msgType, PollEnd end) {
    int remainingMs = timeoutMs;
    int result = 0;
    while (remainingMs >= 1) {
        result = ReceiveOnce(qid, msg, length, msgType, IPC_NOWAIT);
        if (result > 0) return result;
        if (result == -1 && errno == EINTR) continue;
        if (result == -1 && qid < 0) {
            AT_LOG_ERR("Error! msgQueueId < 0. errno = %d\n", errno);
            return result;
        }
        atapi::SleepUs(kPollStepUs);
        remainingMs -= kPollStepMs;
    }
    return end == PollEnd::kFailure ? -1 : result;
}

int Receive(int qid, void *msg, uint32_t length, int timeoutMs, long msgType, PollEnd end) {
    if (BadBuffer(qid, msg, length)) return -1;
    if (timeoutMs == kBlocking) return ReceiveOnce(qid, msg, length, msgType, 0);
    if (timeoutMs == 0) return ReceiveOnce(qid, msg, length, msgType, IPC_NOWAIT);
    return PollReceive(qid, msg, length, timeoutMs, msgType, end);
}

}  // namespace

extern "C" {

int AtsMsgQueueCreate(int projId, uint32_t maxMsgs, uint32_t msgSize) {
    if (maxMsgs > kMaxQueueMsgs || msgSize > kMaxMsgSize || maxMsgs * msgSize > kMaxQueueBytes) {
        AT_LOG_ERR("Error! para error\n");
        return -1;
    }
    const key_t key = QueueKey(projId);
    const int qid = key == -1 ? -1 : msgget(key, kCreateFlags);
    if (qid == -1) {
        AT_LOG_ERR("Error! msgQueueId = %d. errno = %d\n", qid, errno);
        return -1;
    }
    msqid_ds attrs{};
    if (msgctl(qid, IPC_STAT, &attrs) != 0) {
        AT_LOG_ERR("Error! errno = %d\n", errno);
        return -1;
    }
    attrs.msg_qbytes = maxMsgs * msgSize;
    if (msgctl(qid, IPC_SET, &attrs) != 0) {
        AT_LOG_ERR("Error! errno = %d\n", errno);
        return -1;
    }
    return qid;
}

int AtsMsgQueueDelete(int qid) {
    if (qid == -1) return 1;
    if (msgctl(qid, IPC_RMID, nullptr) != 0) {
        AT_LOG_ERR("Error! errno = %d\n", errno);
        return 0;
    }
    return 1;
}

int AtsMsgQueueSend(int qid, void *msg, uint32_t length) { return Send(qid, msg, length, 0); }

int AtsMsgQueueRecv(int qid, void *msg, uint32_t length, int timeoutMs) {
    return Receive(qid, msg, length, timeoutMs, 0, PollEnd::kLastTry);
}

int AtsMsgQueueNum(int qid) {
    if (qid == -1) return 0;
    msqid_ds attrs{};
    if (msgctl(qid, IPC_STAT, &attrs) != 0) {
        AT_LOG_ERR("Error! errno = %d\n", errno);
        return -1;
    }
    return static_cast<int>(attrs.msg_qnum);
}

int AtsMsgQueueExCreate(int projId, uint32_t maxMsgs, uint32_t msgSize) {
    return AtsMsgQueueCreate(projId, maxMsgs, msgSize);
}

int AtsMsgQueueExDelete(int qid) { return AtsMsgQueueDelete(qid); }

int AtsMsgQueueExNum(int qid) { return AtsMsgQueueNum(qid); }

int AtsMsgQueueExSend(int qid, void *msg, uint32_t length, int block) {
    return Send(qid, msg, length, block != 0 ? 0 : IPC_NOWAIT);
}

int AtsMsgQueueExRecv(int qid, void *msg, uint32_t length, int timeoutMs, long msgType) {
    return Receive(qid, msg, length, timeoutMs, msgType, PollEnd::kFailure);
}

int AtsGetMsgQueueId(int projId) {
    const key_t key = QueueKey(projId);
    return key == -1 ? -1 : msgget(key, 0);
}

}  // extern "C"
