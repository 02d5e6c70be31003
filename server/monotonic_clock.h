// The server's one time base: milliseconds of CLOCK_MONOTONIC.
#pragma once

#include <time.h>

#include <cstdint>

namespace atserver {

inline int64_t MonotonicMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

}  // namespace atserver
