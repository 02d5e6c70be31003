// The one clock-and-sleep seam of the server link. Every wait (queue polls,
// send and event retries, the ready-flag wait, the event alarm) goes through
// here, so that tests can run the long paths on a fake clock and count them.
#pragma once

#include <cstdint>
#include <ctime>

namespace atapi {

struct ClockOps {
    void (*sleepUs)(uint32_t us);         // usleep
    unsigned (*alarm)(unsigned seconds);  // alarm
    int (*monotonic)(timespec *now);      // clock_gettime(CLOCK_MONOTONIC)
};

// Installs replacement operations; null restores the real ones.
void InstallClock(const ClockOps *ops);

void SleepUs(uint32_t us);
unsigned Alarm(unsigned seconds);
int Monotonic(timespec *now);

}  // namespace atapi
