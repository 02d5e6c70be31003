#include "parse/at_parse_alloc.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "platform/bounded.h"

namespace atapi {
namespace detail {

std::atomic<bool> g_allocHooked{false};

}  // namespace detail

namespace {

AtParseAllocHooks g_hooks;
uint64_t g_requestCount = 0;

}  // namespace

void *detail::HookedAllocate(size_t bytes) {
    ++g_requestCount;
    if (g_hooks.failAt != 0 && g_requestCount == g_hooks.failAt) return nullptr;
    void *block = std::malloc(bytes);
    if (block != nullptr && g_hooks.onAlloc != nullptr) g_hooks.onAlloc(g_hooks.ctx, block, bytes);
    return block;
}

void detail::HookedFree(void *block) {
    if (block != nullptr && g_hooks.onFree != nullptr) g_hooks.onFree(g_hooks.ctx, block);
}

void AtParseSetAllocHooks(const AtParseAllocHooks *hooks) {
    detail::g_allocHooked.store(false, std::memory_order_release);
    g_hooks = hooks != nullptr ? *hooks : AtParseAllocHooks{};
    g_requestCount = 0;
    detail::g_allocHooked.store(hooks != nullptr, std::memory_order_release);
}

void *AtParseAlloc(size_t bytes) {
    if (bytes == 0) return nullptr;
    void *block = AllocateBlock(bytes);
    if (block != nullptr) std::memset(block, 0, bytes);
    return block;
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
