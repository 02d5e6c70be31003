// The reply outbox against a reply queue of a few records, on a made-up
// clock: when each reply goes out, in which order, and what a full queue
// does. Times are microseconds; callers poll 30 ms after their request.
#include "reply_outbox.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

namespace atserver::test {
namespace {

constexpr int64_t kPoll = ReplyOutbox::kPollUs;
constexpr int64_t kLead = ReplyOutbox::kLeadUs;
constexpr int64_t kBatch = ReplyOutbox::kBatchUs;
constexpr size_t kSmall = 10;  // what the kernel's default byte limit gives
constexpr size_t kRoomy = 128;

// A reply queue of `room` records; "send N" and "drop N" record what
// happened to the reply of caller N.
class FakeQueue final : public ReplyOutbox::Queue {
  public:
    explicit FakeQueue(size_t room) : room_(room) {}

    ReplyOutbox::SendResult Send(const AtSrvMsg &reply) override {
        if (failing_) return ReplyOutbox::SendResult::kFailed;
        if (held_.size() == room_) return ReplyOutbox::SendResult::kFull;
        held_.push_back(reply.mtype);
        log_.push_back("send " + std::to_string(reply.mtype));
        return ReplyOutbox::SendResult::kSent;
    }
    size_t Count() override { return held_.size(); }
    bool DropOldest() override {
        if (held_.empty()) return false;
        log_.push_back("drop " + std::to_string(held_.front()));
        held_.pop_front();
        return true;
    }

    // The caller of mtype takes its reply.
    void Take(int32_t mtype) {
        const auto it = std::find(held_.begin(), held_.end(), mtype);
        ASSERT_NE(it, held_.end()) << "no reply for " << mtype;
        held_.erase(it);
    }
    std::vector<std::string> Log() { return std::exchange(log_, {}); }
    void SetFailing(bool failing) { failing_ = failing; }

  private:
    size_t room_;
    bool failing_ = false;
    std::deque<int32_t> held_;
    std::vector<std::string> log_;
};

AtSrvMsg Reply(int32_t mtype) {
    AtSrvMsg msg{};
    msg.mtype = mtype;
    return msg;
}

using Log = std::vector<std::string>;

// Puts n replies of callers 100, 101 ... into the queue.
void Fill(ReplyOutbox &outbox, FakeQueue &queue, int n) {
    for (int i = 0; i < n; ++i) outbox.Add(Reply(100 + i), 0);
    ASSERT_EQ(queue.Log().size(), static_cast<size_t>(n));
}

TEST(ReplyOutbox, AHalfFullSmallQueueGetsEachReplyShortlyBeforeItsCallersPoll) {
    FakeQueue queue(kSmall);
    ReplyOutbox outbox(queue, kSmall);
    ASSERT_NO_FATAL_FAILURE(Fill(outbox, queue, kSmall / 2));
    outbox.OnRequest(1, 0);
    outbox.OnRequest(2, 1000);
    outbox.Add(Reply(2), 1500);
    outbox.Add(Reply(1), 2000);
    EXPECT_EQ(queue.Log(), Log{});
    EXPECT_EQ(outbox.NextFlushUs(2000), kPoll - kLead);
    outbox.Flush(kPoll - kLead - kBatch - 1);
    EXPECT_EQ(queue.Log(), Log{});
    // What is due within the batch window goes along.
    outbox.Flush(kPoll - kLead - kBatch);
    EXPECT_EQ(queue.Log(), Log{"send 1"});
    EXPECT_EQ(outbox.NextFlushUs(kPoll - kLead), 1000 + kPoll - kLead);
    // Once the queue has room again, the next reply need not wait.
    queue.Take(100);
    queue.Take(101);
    outbox.Flush(kPoll - kLead - kBatch);
    EXPECT_EQ(queue.Log(), Log{"send 2"});
    EXPECT_EQ(outbox.NextFlushUs(kPoll), -1);
}

TEST(ReplyOutbox, RepliesGoOutAtOnceWhenNothingIsGainedByWaiting) {
    const struct {
        const char *name;
        size_t room;
        int queued;    // replies already in the queue
        bool request;  // the caller's request was seen
        int64_t readyUs;
    } cases[] = {
        {"a queue with room for every caller", kRoomy, kRoomy / 2, true, 1000},
        {"a small queue less than half full", kSmall, kSmall / 2 - 1, true, 1000},
        {"ready within the lead of the first poll", kSmall, kSmall / 2, true, kPoll - kLead},
        {"ready after the first poll", kSmall, kSmall / 2, true, kPoll + 1},
        {"a caller whose request was not seen", kSmall, kSmall / 2, false, 1000},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        FakeQueue queue(c.room);
        ReplyOutbox outbox(queue, c.room);
        ASSERT_NO_FATAL_FAILURE(Fill(outbox, queue, c.queued));
        if (c.request) outbox.OnRequest(7, 0);
        outbox.Add(Reply(7), c.readyUs);
        EXPECT_EQ(queue.Log(), Log{"send 7"});
        EXPECT_EQ(outbox.Waiting(), 0u);
    }
}

TEST(ReplyOutbox, AFullQueueKeepsRepliesInOrderUntilRoomOrStaleness) {
    FakeQueue queue(1);
    ReplyOutbox outbox(queue, 1);
    outbox.Add(Reply(1), 0);
    outbox.Add(Reply(2), 10);
    outbox.Add(Reply(3), 20);
    EXPECT_EQ(queue.Log(), Log{"send 1"});
    EXPECT_EQ(outbox.NextFlushUs(20), 20 + ReplyOutbox::kRetryUs);
    queue.Take(1);
    outbox.Flush(1000);
    EXPECT_EQ(queue.Log(), Log{"send 2"});
    // Nobody takes reply 2: after a long time without progress it is dropped.
    outbox.Flush(1000 + ReplyOutbox::kStaleUs - 1);
    EXPECT_EQ(queue.Log(), Log{});
    outbox.Flush(1000 + ReplyOutbox::kStaleUs);
    EXPECT_EQ(queue.Log(), (Log{"drop 2", "send 3"}));
    // A reply the queue refuses for good is not kept.
    queue.Take(3);
    queue.SetFailing(true);
    outbox.Add(Reply(4), 3000000);
    EXPECT_EQ(outbox.Waiting(), 0u);
}

}  // namespace
}  // namespace atserver::test
