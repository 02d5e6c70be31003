// Signed counter and length arithmetic ends the process on overflow. The
// library and the suites are compiled with the same flags (atapi_overflow_trap
// or the full undefined-behaviour sanitizer), so an overflow here proves the
// flags the library is built with.

#include <climits>
#include <cstdint>

#include "gtest/gtest.h"

namespace {

// Kept out of the optimiser's sight (noipa) and their results kept (volatile)
// so that the compiler can neither fold nor drop the overflowing operation.
[[gnu::noipa]] int32_t AddCounters(int32_t a, int32_t b) { return a + b; }
[[gnu::noipa]] int32_t ScaleLength(int32_t a, int32_t b) { return a * b; }
volatile int32_t g_result;

TEST(OverflowTrap, SignedArithmeticEndsTheProcess) {
    EXPECT_EQ(AddCounters(INT32_MAX - 1, 1), INT32_MAX);
    EXPECT_DEATH(g_result = AddCounters(INT32_MAX, 1), "");
    EXPECT_DEATH(g_result = AddCounters(INT32_MIN, -1), "");
    EXPECT_DEATH(g_result = ScaleLength(INT32_MAX / 2 + 1, 2), "");
}

}  // namespace
