// The allocation seam of the parse layer: every block is wiped before it is
// freed, nothing leaks, and every out-of-memory path returns its code.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parse_test_util.h"

namespace atapi::test {
namespace {

const char kSecretTemplate[] = "^CPIN:code,times";
const char kSecretReply[] = "^CPIN: SIM PUK,\"  12345678  \"\r\n^CPIN: \"PIN2\",3";

TEST(AtParseAlloc, ZeroBytesNeverReachTheAllocator) {
    AllocTracker tracker(/*failAt=*/1);
    EXPECT_EQ(AtParseAlloc(0), nullptr);
    // The zero-byte request was not counted: the first real one fails.
    EXPECT_EQ(AtParseAlloc(8), nullptr);
    auto *block = static_cast<unsigned char *>(AtParseAlloc(8));
    ASSERT_NE(block, nullptr);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(block[i], 0);
    AtParseRelease(block, 8);
    EXPECT_EQ(tracker.Allocations(), 1u);
    EXPECT_EQ(tracker.Live(), 0u);
}

// The observer itself must see a block that still holds data, or the wipe
// checks below would prove nothing.
TEST(AtParseAlloc, TrackerSeesUnwipedBlocks) {
    AllocTracker tracker;
    char *text = AtParseStrDup("1234");
    AtParseRelease(text, 0);
    ASSERT_EQ(tracker.UnwipedFrees().size(), 1u);
    EXPECT_EQ(tracker.UnwipedFrees()[0], std::string("1234", 5));
}

TEST(FreeAtCmd, WipesEveryBlockOfAResult) {
    AllocTracker tracker;
    std::string reply = kSecretReply;
    AtCmdParseNode *out = nullptr;
    ASSERT_EQ(ParseCommonAtStr(&out, kSecretTemplate, reply.data(), "^CPIN"), AT_PARSE_OK);
    ASSERT_EQ(RowsOf(out), (Rows{{{"code", "SIM PUK"}, {"times", "  12345678  "}},
                                 {{"code", "PIN2"}, {"times", "3"}}}));
    const size_t resultBlocks = tracker.Live();
    EXPECT_EQ(resultBlocks, 12u) << "two rows of two nodes, each with two strings";
    FreeAtCmd(out);
    EXPECT_EQ(tracker.Live(), 0u);
    EXPECT_EQ(tracker.Frees(), tracker.Allocations());
    EXPECT_TRUE(tracker.UnwipedFrees().empty()) << tracker.UnwipedFrees().front();
}

TEST(FreeAtCmdParseNode, WipesNodeAndStrings) {
    AllocTracker tracker;
    AtCmdParseNode *node = AtParseNewNode();
    ASSERT_NE(node, nullptr);
    node->atFieldName = AtParseStrDup("pin");
    node->atFieldValue = AtParseStrDup("0000");
    FreeAtCmdParseNode(node);
    EXPECT_EQ(tracker.Frees(), 3u);
    EXPECT_EQ(tracker.Live(), 0u);
    EXPECT_TRUE(tracker.UnwipedFrees().empty());
}

// Every allocation of a call fails once in turn; the expected status is the
// one of the step that allocates. Nothing may leak and every freed block
// must have been wiped.
struct OomCase {
    const char *label;
    int32_t (*run)(AtCmdParseNode **out);
    std::vector<int32_t> statusByFailingAllocation;  // then 0 for later ones
};

void PrintTo(const OomCase &c, std::ostream *os) { *os << c.label; }

int32_t ParseTwoRows(AtCmdParseNode **out) {
    std::string reply = "+X: 1,2\r\n+X: 3,4";
    return ParseCommonAtStr(out, "+X:a,b", reply.data(), "+X");
}

int32_t ParseSoft(AtCmdParseNode **out) {
    std::string reply = "+CGMR: 21.110";
    return ParseSoftStr(out, "246.subsoftversion", reply.data(), "+CGMR");
}

int32_t ParseNdis(AtCmdParseNode **out) {
    std::string reply = "^NDISSTATQRY: (1,2)";
    return ParseNdisStateQueryAtStr(out, "^NDISSTATQRY:(cid)", reply.data(), "^NDISSTATQRY");
}

// Order of the allocations of one row of ParseField over "a,b" and "1,2":
// the two arrays, the names' work copy and pieces, the values' work copy and
// pieces, the two nodes.
const std::vector<int32_t> kFirstRowCodes = {-5, -5, -5, -1, -1, -5, -1, -1, -2, -2};

std::vector<int32_t> Concat(std::vector<int32_t> a, const std::vector<int32_t> &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

class OutOfMemoryTest : public ::testing::TestWithParam<OomCase> {};

TEST_P(OutOfMemoryTest, ReturnsTheStepsCodeWithoutLeaks) {
    const OomCase &c = GetParam();
    uint64_t total = 0;
    {
        AllocTracker counter;
        AtCmdParseNode *out = nullptr;
        ASSERT_EQ(c.run(&out), AT_PARSE_OK);
        FreeAtCmd(out);
        total = counter.Allocations();
    }
    ASSERT_GE(total, c.statusByFailingAllocation.size());
    for (uint64_t n = 1; n <= total; ++n) {
        SCOPED_TRACE("failing allocation " + std::to_string(n));
        AllocTracker tracker(n);
        AtCmdParseNode *out = nullptr;
        const int32_t status = c.run(&out);
        const int32_t expected = n <= c.statusByFailingAllocation.size()
                                     ? c.statusByFailingAllocation[n - 1]
                                     : AT_PARSE_OK;
        EXPECT_EQ(status, expected);
        if (status != AT_PARSE_OK) {
            EXPECT_EQ(out, nullptr);
        }
        FreeAtCmd(out);
        EXPECT_EQ(tracker.Live(), 0u);
        EXPECT_TRUE(tracker.UnwipedFrees().empty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Routines, OutOfMemoryTest,
    ::testing::Values(
        // Two copies (-2), the first row; a failure in the second row keeps the first.
        OomCase{"ParseCommonAtStr", ParseTwoRows, Concat({-2, -2}, kFirstRowCodes)},
        OomCase{"ParseSoftStr", ParseSoft, {-5, -5, -5}},
        // Template copy, header, its name, then the group's row: all -2.
        OomCase{"ParseNdisStateQueryAtStr", ParseNdis, std::vector<int32_t>(12, -2)}),
    [](const auto &info) { return std::string(info.param.label); });

TEST(OutOfMemory, LaterRowFailureKeepsEarlierRows) {
    // Allocation 13 is the second row's first array.
    AllocTracker tracker(13);
    Result result;
    std::string reply = "+X: 1,2\r\n+X: 3,4";
    ASSERT_EQ(ParseCommonAtStr(result.Out(), "+X:a,b", reply.data(), "+X"), AT_PARSE_OK);
    EXPECT_EQ(result.rows(), (Rows{{{"a", "1"}, {"b", "2"}}}));
}

TEST(OutOfMemory, GetSubstringKeepsPiecesMadeBefore) {
    AllocTracker tracker(2);
    char *pieces[4] = {};
    int32_t count = 4;
    GetSubstring("+X: 1\r\n+X: 2\r\n+X: 3", pieces, &count, "+X");
    ASSERT_EQ(count, 1);
    EXPECT_STREQ(pieces[0], "+X: 1\r\n");
    ReleaseSubstring(pieces, count);
    EXPECT_EQ(tracker.Live(), 0u);
}

}  // namespace
}  // namespace atapi::test
