#include "parse/at_parse_alloc.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "platform/bounded.h"
#include "platform/secure_wipe.h"

namespace atapi {
namespace {

AtParseAllocHooks g_hooks;
std::atomic<bool> g_hooksInstalled{false};
uint64_t g_requestCount = 0;

// True when the installed hooks ask this request to fail.
bool HookFailsRequest() {
    ++g_requestCount;
    return g_hooks.failAt != 0 && g_requestCount == g_hooks.failAt;
}

// A block of bytes (not 0) that the caller fills entirely; null when the
// allocation failed. malloc serves small blocks from its per-thread cache,
// where calloc takes the slower general path.
void *AllocateBlock(size_t bytes) {
    const bool hooked = g_hooksInstalled.load(std::memory_order_acquire);
    if (hooked && HookFailsRequest()) return nullptr;
    void *block = std::malloc(bytes);
    if (block != nullptr && hooked && g_hooks.onAlloc != nullptr) {
        g_hooks.onAlloc(g_hooks.ctx, block, bytes);
    }
    return block;
}

}  // namespace

void AtParseSetAllocHooks(const AtParseAllocHooks *hooks) {
    g_hooksInstalled.store(false, std::memory_order_release);
    g_hooks = hooks != nullptr ? *hooks : AtParseAllocHooks{};
    g_requestCount = 0;
    g_hooksInstalled.store(hooks != nullptr, std::memory_order_release);
}

void *AtParseAlloc(size_t bytes) {
    if (bytes == 0) return nullptr;
    void *block = AllocateBlock(bytes);
    if (block != nullptr) std::memset(block, 0, bytes);
    return block;
}

void AtParseRelease(void *block, size_t bytes) {
    if (block == nullptr) return;
    if (bytes != 0) platform::SecureWipe(block, bytes);
    if (g_hooksInstalled.load(std::memory_order_acquire) && g_hooks.onFree != nullptr) {
        g_hooks.onFree(g_hooks.ctx, block);
    }
    std::free(block);
}

void AtParseFreeString(char *text) {
    if (text == nullptr) return;
    AtParseRelease(text, std::strlen(text));
}

char *AtParseStrDup(std::string_view text) {
    auto *copy = static_cast<char *>(AllocateBlock(text.size() + 1));
    if (copy == nullptr) return nullptr;
    // The block is exactly the text and its terminator: nothing is left
    // behind the terminator for the wipe over its length to miss.
    if (!text.empty()) std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

AtCmdParseNode *AtParseNewNode() {
    auto *node = static_cast<AtCmdParseNode *>(AllocateBlock(sizeof(AtCmdParseNode)));
    if (node != nullptr) *node = AtCmdParseNode{};
    return node;
}

ParseText ParseText::Copy(std::string_view text) {
    ParseText buffer(text.size() + 1);
    if (buffer.Get() != nullptr && !text.empty()) {
        memcpy_s(buffer.Get(), buffer.Size(), text.data(), text.size());
    }
    return buffer;
}

ParseStringArray::ParseStringArray(uint32_t count)
    : strings_(static_cast<char **>(AtParseAlloc(count * sizeof(char *)))), count_(count) {}

ParseStringArray::~ParseStringArray() {
    if (strings_ == nullptr) return;
    for (uint32_t i = 0; i < count_ && ownsStrings_; ++i) AtParseFreeString(strings_[i]);
    AtParseRelease(strings_, count_ * sizeof(char *));
}

}  // namespace atapi
