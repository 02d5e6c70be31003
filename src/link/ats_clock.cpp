#include "link/ats_clock.h"

#include <unistd.h>

#include <atomic>

namespace atapi {
namespace {

void RealSleepUs(uint32_t us) { usleep(us); }
unsigned RealAlarm(unsigned seconds) { return alarm(seconds); }
int RealMonotonic(timespec *now) { return clock_gettime(CLOCK_MONOTONIC, now); }

constexpr ClockOps kRealClock{RealSleepUs, RealAlarm, RealMonotonic};

std::atomic<const ClockOps *> g_clock{&kRealClock};

}  // namespace

void InstallClock(const ClockOps *ops) { g_clock.store(ops != nullptr ? ops : &kRealClock); }

void SleepUs(uint32_t us) { g_clock.load()->sleepUs(us); }
unsigned Alarm(unsigned seconds) { return g_clock.load()->alarm(seconds); }
int Monotonic(timespec *now) { return g_clock.load()->monotonic(now); }

}  // namespace atapi
