// Heap blocks of the parse layer: node strings, nodes, split arrays and work
// copies all come from this seam (AtParseAlloc, AtParseStrDup, AtParseNewNode)
// and go back through AtParseRelease, so that one seam sees every block (tests use it to prove that
// blocks are wiped before they are freed, to count allocations and to fail them).
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "atapi/at_types.h"
#include "platform/secure_wipe.h"
#include "platform/wiped_text.h"

namespace atapi {

namespace detail {
// Set while test hooks are installed: only then does a block take the slow
// path through them.
extern std::atomic<bool> g_allocHooked;
// AllocateBlock and FreeBlock under installed hooks.
void *HookedAllocate(size_t bytes);
void HookedFree(void *block);
}  // namespace detail

// A block of bytes (not 0) that the caller fills whole; null when the
// allocation failed. malloc serves small blocks from its per-thread cache.
inline void *AllocateBlock(size_t bytes) {
    if (__builtin_expect(detail::g_allocHooked.load(std::memory_order_acquire), false)) {
        return detail::HookedAllocate(bytes);
    }
    return std::malloc(bytes);
}

// Frees a wiped block of the seam; null is allowed.
inline void FreeBlock(void *block) {
    if (__builtin_expect(detail::g_allocHooked.load(std::memory_order_acquire), false)) {
        detail::HookedFree(block);
    }
    std::free(block);
}

// A zero-filled block of the given size; 0 bytes gives null without calling
// the allocator. Null means the allocation failed.
void *AtParseAlloc(size_t bytes);

// Overwrites the first bytes of block with zeros (a write the compiler
// keeps), then frees it; null is allowed. Every block of the parse layer is
// released this way: nodes and their strings may carry PINs and keys.
inline void AtParseRelease(void *block, size_t bytes) {
    if (block == nullptr) return;
    platform::SecureWipe(block, bytes);
    FreeBlock(block);
}

// Wipes a string over its length and frees it; null is allowed. A node string
// must hold nothing behind its terminator (the parse layer zeroes that tail
// when it trims in place), so this clears the whole block.
inline void AtParseFreeString(char *text) {
    if (text != nullptr) AtParseRelease(text, std::strlen(text));
}

// Copies text to dest: a short text (most fields) as two overlapping loads
// and stores, without a call.
inline void CopyText(char *dest, std::string_view text) {
    const char *src = text.data();
    const size_t n = text.size();
    if (n >= 8 && n <= 16) {
        uint64_t head, tail;
        std::memcpy(&head, src, 8);
        std::memcpy(&tail, src + n - 8, 8);
        std::memcpy(dest, &head, 8);
        std::memcpy(dest + n - 8, &tail, 8);
    } else if (n >= 4 && n < 8) {
        uint32_t head, tail;
        std::memcpy(&head, src, 4);
        std::memcpy(&tail, src + n - 4, 4);
        std::memcpy(dest, &head, 4);
        std::memcpy(dest + n - 4, &tail, 4);
    } else if (n > 0 && n < 4) {
        dest[0] = src[0];
        dest[n / 2] = src[n / 2];
        dest[n - 1] = src[n - 1];
    } else if (n > 16) {
        std::memcpy(dest, src, n);
    }
}

// A NUL-terminated heap copy of text in a block of exactly its size (not
// zero-filled first: the copy fills it, and nothing is left behind the
// terminator for the wipe over its length to miss); null when the allocation
// failed.
inline char *AtParseStrDup(std::string_view text) {
    auto *copy = static_cast<char *>(AllocateBlock(text.size() + 1));
    if (copy == nullptr) return nullptr;
    CopyText(copy, text);
    copy[text.size()] = '\0';
    return copy;
}

// A zeroed node; null when the allocation failed.
inline AtCmdParseNode *AtParseNewNode() {
    auto *node = static_cast<AtCmdParseNode *>(AllocateBlock(sizeof(AtCmdParseNode)));
    if (node != nullptr) *node = AtCmdParseNode{};
    return node;
}

// Owns a heap text buffer of this seam and releases it (wiped).
class ParseText : public platform::WipedText<AtParseRelease> {
  public:
    ParseText() = default;
    // Allocates a zeroed buffer of bytes; Get() is null when that failed.
    explicit ParseText(size_t bytes) : WipedText(static_cast<char *>(AtParseAlloc(bytes)), bytes) {}
    // Copies text with a terminator; Get() is null when that failed.
    static ParseText Copy(std::string_view text);
};

// Owns an array of count heap strings of this seam (null entries allowed):
// releases the strings it still owns, each wiped, then the array.
class ParseStringArray {
  public:
    // Get() is null when the array could not be allocated.
    explicit ParseStringArray(uint32_t count);
    ParseStringArray(const ParseStringArray &) = delete;
    ParseStringArray &operator=(const ParseStringArray &) = delete;
    ~ParseStringArray();

    char **Get() const { return strings_; }
    // The strings now belong to someone else (the nodes of a row).
    void DisownStrings() { ownsStrings_ = false; }

  private:
    char **strings_;
    uint32_t count_;
    bool ownsStrings_ = true;
};

// ---- Test seam -------------------------------------------------------------

struct AtParseAllocHooks {
    void *ctx = nullptr;
    // Called after every successful allocation with the block and its size.
    void (*onAlloc)(void *ctx, void *block, size_t bytes) = nullptr;
    // Called with every non-null block just before it is freed: the bytes are
    // still readable there.
    void (*onFree)(void *ctx, void *block) = nullptr;
    // The n-th allocation request (1-based, counted from installation) fails;
    // 0: none fails.
    uint64_t failAt = 0;
};

// Installs hooks (copied); null removes them. Not for concurrent use: install
// before the parsing under test starts and remove after it ends.
void AtParseSetAllocHooks(const AtParseAllocHooks *hooks);

}  // namespace atapi
