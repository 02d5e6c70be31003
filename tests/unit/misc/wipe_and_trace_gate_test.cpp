// The word-wise wipe covers exactly the bytes asked for, and a hot-path trace
// line that nobody would see is not even formatted, while a sink still gets
// every line.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "link/at_log.h"
#include "platform/secure_wipe.h"
#include "trace_capture.h"

namespace {

constexpr char kTraceSrc[] = "tests/unit/misc";

TEST(SecureWipe, SetsExactlyTheGivenBytes) {
    for (size_t bytes = 0; bytes <= 40; ++bytes) {
        for (int fill : {0, 0xA5}) {
            std::array<unsigned char, 48> block;
            block.fill(0x3C);
            platform::SecureWipe(block.data() + 1, bytes, fill);
            for (size_t i = 0; i < block.size(); ++i) {
                const bool inside = i >= 1 && i <= bytes;
                ASSERT_EQ(block[i], inside ? fill : 0x3C) << bytes << " bytes, byte " << i;
            }
        }
    }
}

int Counted(int *calls) { return ++*calls; }

TEST(TraceGate, DroppedLinesAreNotFormatted) {
    int calls = 0;
    PlatformSetLogThreshold(TRACE_LEVEL_ERROR);
    AT_LOG_INFO_HOT("dropped %d\n", Counted(&calls));
    EXPECT_EQ(calls, 0);
    {
        atapi::test::TraceCapture capture;
        AT_LOG_INFO_HOT("seen %d\n", Counted(&calls));
        EXPECT_EQ(calls, 1);
        EXPECT_TRUE(capture.Contains("seen 1"));
    }
    AT_LOG_INFO_HOT("dropped again %d\n", Counted(&calls));
    EXPECT_EQ(calls, 1);
    PlatformSetLogThreshold(TRACE_LEVEL_INFO);
    testing::internal::CaptureStderr();
    AT_LOG_INFO_HOT("shown %d\n", Counted(&calls));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("shown 2"), std::string::npos);
    PlatformSetLogThreshold(TRACE_LEVEL_ERROR);
}

}  // namespace
