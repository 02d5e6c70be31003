// The lines of a multi-line reply, each a heap string that starts at the
// reply prefix; released (wiped and freed) when they go out of scope.
#pragma once

#include <array>
#include <cstdint>

#include "atapi/at_parse.h"

namespace atapi::api {

template <int32_t Capacity>
class ReplyLines {
    static_assert(Capacity > 0);

  public:
    ReplyLines() = default;
    ~ReplyLines() { ReleaseSubstring(lines_.data(), count_); }
    ReplyLines(const ReplyLines &) = delete;
    ReplyLines &operator=(const ReplyLines &) = delete;

    static constexpr int32_t kCapacity = Capacity;
    int32_t Count() const { return count_; }
    char *operator[](int32_t i) const { return lines_[static_cast<size_t>(i)]; }

    // For the multi-line primitive: the slots and the count, which goes in
    // as the capacity and comes back as the number of lines stored.
    char **Slots() { return lines_.data(); }
    void SetCount(int32_t count) { count_ = count; }

  private:
    std::array<char *, Capacity> lines_{};
    int32_t count_ = 0;
};

}  // namespace atapi::api
