// Replies on their way to the reply queue. A caller looks for its reply
// once right after sending its request and then every 30 ms, so a reply is
// wanted in the queue only by its caller's next look. Where the queue holds
// few records (the kernel's default byte limit gives 10) and many callers
// wait, a reply that lies there for a whole poll period keeps the room from
// replies wanted sooner. So once such a queue is half full, a reply that is
// ready before its caller's first poll waits here until shortly before that
// poll (or until the queue has room again), and the room goes to the
// replies wanted first. A reply that finds the queue full waits here too;
// when nobody has taken a reply for a long time, the queue holds only
// replies of callers that are gone and its oldest is dropped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <unordered_map>

#include "atapi/at_types.h"

namespace atserver {

class ReplyOutbox {
  public:
    enum class SendResult { kSent, kFull, kFailed };

    // The reply queue.
    class Queue {
      public:
        virtual SendResult Send(const AtSrvMsg &reply) = 0;
        // The replies in the queue.
        virtual size_t Count() = 0;
        // Drops the oldest unread reply; false when there was none.
        virtual bool DropOldest() = 0;

      protected:
        ~Queue() = default;
    };

    // The caller's receive poll, and how long before a poll a held reply is
    // sent: room for atserver noticing a request late and waking up late on
    // a busy machine (4 ms missed a poll for one reply in ten at 16 callers).
    static constexpr int64_t kPollUs = 30000;
    static constexpr int64_t kLeadUs = 8000;
    // Below this many records the queue is small and replies are paced.
    static constexpr size_t kPacedBelow = 64;
    // Held replies due this soon go out with the ones due now: one wake-up
    // of atserver instead of several.
    static constexpr int64_t kBatchUs = 1000;
    static constexpr int64_t kRetryUs = 1000;  // a full queue is tried again
    static constexpr int64_t kStaleUs = 2000000;

    ReplyOutbox(Queue &queue, size_t queueRecords)
        : queue_(queue), paced_(queueRecords < kPacedBelow), halfRoom_(queueRecords / 2) {}

    // A request of this caller was taken.
    void OnRequest(int32_t mtype, int64_t nowUs);
    void Add(const AtSrvMsg &reply, int64_t nowUs);
    // Sends what is due, and what is not yet due while the queue has room.
    void Flush(int64_t nowUs);
    // When Flush has work next; -1 when nothing waits.
    int64_t NextFlushUs(int64_t nowUs) const;
    size_t Waiting() const { return held_.size(); }

  private:
    Queue &queue_;
    const bool paced_;
    const size_t halfRoom_;
    std::unordered_map<int32_t, int64_t> arrivedUs_;  // by caller, until its reply
    std::multimap<int64_t, AtSrvMsg> held_;           // by the time each may be sent
    int64_t progressUs_ = 0;                          // last time the queue took a reply
    bool full_ = false;                               // the last send found it full
};

}  // namespace atserver
