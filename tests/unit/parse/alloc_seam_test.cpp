// The allocation seam's observer and the status of each failed step of the
// template parser (ExpectParse sweeps every failed allocation of every parse
// case, and the refusals of every routine).
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "parse_test_util.h"

namespace atapi::test {
namespace {

// The observer must see a block that still holds data, or the wipe checks
// would prove nothing.
TEST(AllocTracker, SeesUnwipedBlocks) {
    AllocTracker tracker;
    char *text = AtParseStrDup("1234");
    AtParseRelease(text, 0);
    ASSERT_EQ(tracker.UnwipedFrees().size(), 1u);
    EXPECT_EQ(tracker.UnwipedFrees()[0], std::string("1234", 5));
}

// A node that cannot be allocated fails the row as linking does (-2), a
// string as splitting does (-1), in whatever order the two are allocated.
TEST(AllocationSeam, TemplateParserReportsTheFailedStep) {
    const char atTemplate[] = "^CPIN:code,times";
    const std::string original = "^CPIN: READY";
    std::vector<size_t> sizes;
    {
        std::string reply = original;
        AllocTracker tracker;
        Result result;
        ASSERT_EQ(ParseCommonAtStr(result.Out(), atTemplate, reply.data(), "^CPIN"), AT_PARSE_OK);
        sizes = tracker.Sizes();
    }
    ASSERT_NE(std::count(sizes.begin(), sizes.end(), sizeof(AtCmdParseNode)), 0);
    ASSERT_NE(std::count(sizes.begin(), sizes.end(), sizeof("READY")), 0);
    for (size_t failAt = 1; failAt <= sizes.size(); ++failAt) {
        std::string reply = original;
        AllocTracker tracker(failAt);
        Result result;
        const int32_t expected =
            sizes[failAt - 1] == sizeof(AtCmdParseNode) ? AT_PARSE_BAD_ARG : AT_PARSE_NO_ENTRY;
        EXPECT_EQ(ParseCommonAtStr(result.Out(), atTemplate, reply.data(), "^CPIN"), expected)
            << "failing allocation " << failAt;
    }
}

TEST(FreeAtCmd, NullIsAllowed) {
    FreeAtCmd(nullptr);
    FreeAtCmdParseNode(nullptr);
}

}  // namespace
}  // namespace atapi::test
