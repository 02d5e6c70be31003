// What the reply decoder targets assert, and the reply copies they decode:
// a failed check traps, so that libFuzzer keeps the input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

namespace atapi::fuzz {

inline void Check(bool condition) {
    if (!condition) __builtin_trap();
}

// Whether the array holds its terminator.
template <size_t N>
bool Terminated(const char (&text)[N]) {
    return std::memchr(text, '\0', N) != nullptr;
}

// Whether all of the n bytes at p are still b.
inline bool Holds(const void *p, size_t n, uint8_t b) {
    const auto *bytes = static_cast<const uint8_t *>(p);
    for (size_t i = 0; i < n; ++i) {
        if (bytes[i] != b) return false;
    }
    return true;
}
template <typename T>
bool Holds(const T &field, uint8_t b) {
    return Holds(&field, sizeof field, b);
}

// The reply as the decoders get it: a heap copy of exactly its C string and
// terminator, which they may write into, so that a read or write past the
// end meets the sanitizer.
class ReplyCopy {
  public:
    explicit ReplyCopy(const std::string &text)
        : size_(std::strlen(text.c_str()) + 1), text_(new char[size_]) {
        std::memcpy(text_.get(), text.c_str(), size_);
    }
    char *Get() { return text_.get(); }
    size_t Size() const { return size_; }

  private:
    size_t size_;
    std::unique_ptr<char[]> text_;
};

// A caller's list of count entries on the heap, every byte b, so that a
// write past its end meets the sanitizer.
template <typename Entry>
std::unique_ptr<Entry[]> HeapEntries(int32_t count, uint8_t b) {
    auto entries = std::make_unique<Entry[]>(static_cast<size_t>(count));
    std::memset(entries.get(), b, sizeof(Entry) * static_cast<size_t>(count));
    return entries;
}

// A record with guard bytes behind it, which no decoder may touch: a write
// past a record's end inside a larger object escapes the sanitizer.
template <typename Record>
struct Guarded {
    static constexpr uint8_t kGuard = 0xA5;
    Record record{};
    uint8_t guard[32];

    Guarded() { std::memset(guard, kGuard, sizeof guard); }
    bool Intact() const { return Holds(guard, kGuard); }
};

}  // namespace atapi::fuzz
