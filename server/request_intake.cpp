#include "request_intake.h"

#include <sys/eventfd.h>
#include <sys/msg.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <utility>

#include "platform/bounded.h"
#include "server_log.h"

namespace atserver {
namespace {

// Wakes the thread out of msgrcv when atserver stops (the flag alone cannot:
// it may be set just after the thread looked at it). Its type is above every
// thread id, so no caller clearing its own records takes it. Without payload
// it always fits, since the kernel counts records against the byte limit
// too; from anyone else it is a malformed record.
struct StopRecord {
    long mtype;
};
constexpr long kStopType = 0x7fffffff;

// The record on its way from the queue to the event loop: it may carry a
// PIN or a password.
struct RecordBuffer {
    IncomingRecord record;

    ~RecordBuffer() { Wipe(); }
    void Wipe() { memset_s(&record, sizeof record, 0, sizeof record); }
};

bool QueueGone(int error) { return error == EIDRM || error == EINVAL; }

}  // namespace

bool RequestIntake::Start(int qid) {
    wakeFd_ = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (wakeFd_ == -1) {
        LogError("cannot create the request wake-up descriptor: %s", std::strerror(errno));
        return false;
    }
    qid_ = qid;
    try {
        thread_ = std::thread(&RequestIntake::Run, this);
    } catch (const std::system_error &error) {
        LogError("cannot start the request intake: %s", error.what());
        return false;
    }
    return true;
}

void RequestIntake::Serve(int qid) {
    {
        std::lock_guard lock(mutex_);
        if (qid == qid_ && !failed_) return;
        qid_ = qid;
        failed_ = false;
    }
    changed_.notify_one();
}

std::vector<IncomingRecord> RequestIntake::Take() {
    uint64_t count = 0;
    while (read(wakeFd_, &count, sizeof count) < 0 && errno == EINTR) {
    }
    std::vector<IncomingRecord> records;
    std::lock_guard lock(mutex_);
    records.swap(taken_);
    return records;
}

void RequestIntake::Stop() {
    if (thread_.joinable()) {
        int qid = -1;
        {
            std::lock_guard lock(mutex_);
            stopping_ = true;
            qid = qid_;
        }
        changed_.notify_one();
        StopRecord stop{kStopType};
        if (qid != -1 && msgsnd(qid, &stop, 0, IPC_NOWAIT) != 0 && !QueueGone(errno)) {
            LogWarn("cannot wake the request intake: %s", std::strerror(errno));
        }
        thread_.join();
    }
    // Freed, and so wiped, at once rather than with the loop.
    std::vector<IncomingRecord>().swap(taken_);
    if (wakeFd_ != -1) close(wakeFd_);
    wakeFd_ = -1;
}

bool RequestIntake::NextQueue(int *qid) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return stopping_ || (qid_ != -1 && !failed_); });
    *qid = qid_;
    return !stopping_;
}

void RequestIntake::Run() {
    RecordBuffer buffer;
    int lastError = 0;
    int qid = -1;
    while (NextQueue(&qid)) {
        const bool received = ReceiveRequest(qid, &buffer.record);
        const int error = received ? 0 : errno;
        const bool serving = Publish(qid, received, buffer.record);
        buffer.Wipe();
        if (!serving) return;
        // A queue removed is taken again by the event loop's recovery, which
        // says so; other failures are logged once.
        if (error != 0 && error != lastError && !QueueGone(error)) {
            LogError("request queue %d read failed: %s", qid, std::strerror(error));
        }
        lastError = error;
    }
}

bool RequestIntake::Publish(int qid, bool received, const IncomingRecord &record) {
    bool wake = false;
    {
        std::lock_guard lock(mutex_);
        if (stopping_) return false;
        if (!received) {
            if (qid == qid_) failed_ = true;
        } else if (record.kind != RecordKind::kMalformed) {
            // The loop takes all there is when woken: one wake-up per batch.
            wake = taken_.empty();
            taken_.push_back(record);
        }
    }
    const uint64_t one = 1;
    if (wake && write(wakeFd_, &one, sizeof one) < 0 && errno != EAGAIN) {
        LogError("cannot wake the event loop: %s", std::strerror(errno));
    }
    return true;
}

}  // namespace atserver
