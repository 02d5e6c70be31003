// Owner of a heap text buffer of a known size that may hold a secret (a PIN,
// a number, a reply field): the whole buffer is wiped with memset_s, which
// the compiler keeps, before the block goes back, on every path.
//
// Release says how a block goes back: WipeAndFree for blocks from malloc;
// the parse layer passes its own seam so that its tests see every block.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <utility>

#include "platform/bounded.h"

namespace platform {

// Wipes the first bytes of block, then frees it; null is allowed.
inline void WipeAndFree(void *block, size_t bytes) {
    if (block == nullptr) return;
    if (bytes != 0) memset_s(block, bytes, 0, bytes);
    std::free(block);
}

template <void (*Release)(void *block, size_t bytes) = WipeAndFree>
class WipedText {
  public:
    WipedText() = default;
    // Takes over text, a block of size bytes (null when its allocation failed).
    WipedText(char *text, size_t size) : text_(text), size_(size) {}
    WipedText(WipedText &&other) noexcept
        : text_(std::exchange(other.text_, nullptr)), size_(std::exchange(other.size_, 0)) {}
    WipedText &operator=(WipedText &&other) noexcept {
        if (this != &other) {
            Reset();
            text_ = std::exchange(other.text_, nullptr);
            size_ = std::exchange(other.size_, 0);
        }
        return *this;
    }
    WipedText(const WipedText &) = delete;
    WipedText &operator=(const WipedText &) = delete;
    ~WipedText() { Reset(); }

    char *Get() const { return text_; }
    size_t Size() const { return size_; }

    // Wipes and releases the buffer now; Get() is null afterwards.
    void Reset() {
        Release(text_, size_);
        text_ = nullptr;
        size_ = 0;
    }

  private:
    char *text_ = nullptr;
    size_t size_ = 0;
};

}  // namespace platform
