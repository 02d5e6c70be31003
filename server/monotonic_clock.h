// The server's one time base: CLOCK_MONOTONIC in milliseconds, and in
// microseconds where replies are paced.
#pragma once

#include <time.h>

#include <cstdint>

namespace atserver {

inline int64_t MonotonicMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

inline int64_t MonotonicUs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

}  // namespace atserver
