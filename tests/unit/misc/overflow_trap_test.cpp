// Signed counter and length arithmetic ends the process on overflow. The
// library and the suites are compiled with the same flags (atapi_overflow_trap
// or the full undefined-behaviour sanitizer), so an overflow here proves the
// flags the library is built with.

#include <climits>

#include "gtest/gtest.h"

namespace {

int32_t AddCounters(volatile int32_t a, volatile int32_t b) { return a + b; }
int32_t ScaleLength(volatile int32_t a, volatile int32_t b) { return a * b; }

TEST(OverflowTrap, SignedArithmeticEndsTheProcess) {
    EXPECT_EQ(AddCounters(INT32_MAX - 1, 1), INT32_MAX);
    EXPECT_DEATH(AddCounters(INT32_MAX, 1), "");
    EXPECT_DEATH(AddCounters(INT32_MIN, -1), "");
    EXPECT_DEATH(ScaleLength(INT32_MAX / 2 + 1, 2), "");
}

}  // namespace
