#include "reply_outbox.h"

#include <algorithm>

namespace atserver {

void ReplyOutbox::OnRequest(int32_t mtype, int64_t nowUs) {
    if (paced_) arrivedUs_[mtype] = nowUs;
}

void ReplyOutbox::Add(const AtSrvMsg &reply, int64_t nowUs) {
    int64_t sendUs = nowUs;
    if (const auto arrived = arrivedUs_.find(reply.mtype); arrived != arrivedUs_.end()) {
        // Ready before the caller's first poll: wanted shortly before it.
        const int64_t firstPollUs = arrived->second + kPollUs;
        if (nowUs < firstPollUs) sendUs = std::max(nowUs, firstPollUs - kLeadUs);
        arrivedUs_.erase(arrived);
    }
    held_.emplace(sendUs, reply);
    Flush(nowUs);
}

void ReplyOutbox::Flush(int64_t nowUs) {
    while (!held_.empty() &&
           (held_.begin()->first <= nowUs + kBatchUs || queue_.Count() < halfRoom_)) {
        switch (queue_.Send(held_.begin()->second)) {
            case SendResult::kFull:
                if (!full_) progressUs_ = nowUs;
                full_ = true;
                if (nowUs - progressUs_ < kStaleUs || !queue_.DropOldest()) return;
                continue;
            case SendResult::kSent:
                progressUs_ = nowUs;
                full_ = false;
                break;
            case SendResult::kFailed:
                break;
        }
        held_.erase(held_.begin());
    }
}

int64_t ReplyOutbox::NextFlushUs(int64_t nowUs) const {
    if (held_.empty()) return -1;
    const int64_t first = held_.begin()->first;
    return first <= nowUs + kBatchUs ? nowUs + kRetryUs : first;
}

}  // namespace atserver
