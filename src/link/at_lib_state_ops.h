// Race-free access to the process-wide link state. The globals stay plain C
// objects (their layout is shared with C callers), but every thread of the
// library touches them only through these relaxed atomic views: concurrent
// writers all store the same values, so no ordering is needed.
#pragma once

#include <atomic>
#include <cstdint>

#include "link/at_lib_state.h"

namespace atapi {

inline int32_t LoadLinkId(int32_t &id) {
    return std::atomic_ref<int32_t>(id).load(std::memory_order_relaxed);
}

inline void StoreLinkId(int32_t &id, int32_t value) {
    std::atomic_ref<int32_t>(id).store(value, std::memory_order_relaxed);
}

// Returns the sequence number to stamp and advances the counter (wrapping).
inline uint32_t TakeNextSeq() {
    return std::atomic_ref<uint32_t>(g_atsMsgSeq).fetch_add(1, std::memory_order_relaxed);
}

}  // namespace atapi
