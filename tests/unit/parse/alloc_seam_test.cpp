// Every parse routine through the allocation seam: each block is wiped before
// it is freed, and whichever allocation fails, nothing leaks and nothing
// half-built is handed out. Also the arguments every routine refuses.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "parse_test_util.h"

namespace atapi::test {
namespace {

struct RoutineCase {
    const char *label;
    AtParseFn parse;
    const char *atTemplate;
    const char *reply;  // parses to at least one row
    const char *prefix;
    int32_t withoutTemplate;  // status for a null template
    int32_t withoutPrefix;    // status for the reply read with a prefix it does not carry
};

constexpr int32_t kOk = AT_PARSE_OK;
constexpr int32_t kBad = AT_PARSE_BAD_ARG;
constexpr int32_t kNoTemplate = AT_PARSE_NO_TEMPLATE;

const RoutineCase kRoutines[] = {
    {"Common", ParseCommonAtStr, "^CPIN:code,times",
     "^CPIN: SIM PUK,\"  12345678  \"\r\n^CPIN: \"PIN2\",3", "^CPIN", kNoTemplate, kOk},
    {"Soft", ParseSoftStr, "246.subsoftversion", "+CGMR: 21.110", "+CGMR", kNoTemplate, kBad},
    {"Ndis", ParseNdisStateQueryAtStr, kNdisTemplate, "^NDISSTATQRY: (1,2)", "^NDISSTATQRY", kBad,
     kBad},
    {"Cmgi", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: 0,3,\"7\"", "^CMGI", kNoTemplate, kBad},
    {"Cmgd", ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD: (1,2,5),(0-4)", "+CMGD", kNoTemplate,
     kBad},
    {"Cmgr", ParseSmsCmgrAtStr, kCmgrTemplate, "+CMGR: 1,,23\r\n0891683108200505F0040D9168",
     "+CMGR", kBad, kOk},
    {"Cgas", ParseAtCgasStr, kCgasTemplate, "62,17,-75", "^CGAS", kBad, kOk},
    {"Eons", ParseEonsAtStr, kEonsTemplate,
     "^EONS: 1,46000,\"A\",\"B\",0,\"\"\r\n^EONS: 1,46001,\"CHN-UNICOM\",\"UNICOM\",1,\"CU\"",
     "^EONS", kNoTemplate, kBad},
    {"SysCfg", ParseSysCfgAtStr, kSysCfgTemplate,
     "^SYSCFG: (2-5),(0-3),((2000000400380,\"GSM900\"),(3FFFFFFF,\"All bands\")),(0-2),(0-4)",
     "^SYSCFG", kBad, kBad},
    {"SysCfgEx", ParseSysCfgExAtStr, kSysCfgExTemplate,
     "^SYSCFGEX: (\"00\",\"01\"),((3FFFFFFF,\"All bands\")),(0-2),(0-4),((1,\"LTE BC1\"),"
     "(7FFFFFFFFFFFFFFF,\"All bands\"))",
     "^SYSCFGEX", kBad, kBad},
    {"LteProfile", ParseLteProfileAtStr, kLteProfileTemplate,
     "^LTEPROFILE: (0,1),(0-10),15,32,32,32,(0-3)", "^LTEPROFILE", kBad, kBad},
    {"Cops", ParseCopsAtStr, kCopsTemplate,
     "+COPS: (2,\"CHINA MOBILE\",\"CMCC\",\"46000\",7),(1,\"A, B\",\"AB\",\"46001\",2),,"
     "(0,1,2,3,4),(0,1,2)",
     "+COPS", kNoTemplate, kBad},
    {"Cpms", ParseSmsMediaAtStr, kCpmsTemplate, "+CPMS: (\"SM\",\"ME\"),(\"SM\",\"ME\"),(\"SM\")",
     "+CPMS", kBad, kBad},
};

// The observer must see a block that still holds data, or the wipe checks
// would prove nothing.
TEST(AllocTracker, SeesUnwipedBlocks) {
    AllocTracker tracker;
    char *text = AtParseStrDup("1234");
    AtParseRelease(text, 0);
    ASSERT_EQ(tracker.UnwipedFrees().size(), 1u);
    EXPECT_EQ(tracker.UnwipedFrees()[0], std::string("1234", 5));
}

// The rows of one successful parse and the number of its allocations.
Rows ParseCounting(const RoutineCase &c, uint64_t *allocations) {
    AllocTracker tracker;
    Rows rows;
    {
        std::string reply = c.reply;
        Result result;
        EXPECT_EQ(c.parse(result.Out(), c.atTemplate, reply.data(), c.prefix), AT_PARSE_OK);
        rows = result.rows();
    }
    tracker.ExpectAllReleasedWiped();
    *allocations = tracker.Allocations();
    return rows;
}

TEST(AllocationSeam, EveryFailedAllocationFailsCleanly) {
    for (const RoutineCase &c : kRoutines) {
        SCOPED_TRACE(c.label);
        uint64_t allocations = 0;
        const Rows all = ParseCounting(c, &allocations);
        ASSERT_FALSE(all.empty());
        // Only the template parser keeps the rows built before a later row failed.
        const bool keepsEarlierRows = c.parse == ParseCommonAtStr;
        bool keptEarlierRows = false;
        for (uint64_t failAt = 1; failAt <= allocations; ++failAt) {
            SCOPED_TRACE("failing allocation " + std::to_string(failAt));
            std::string reply = c.reply;
            AllocTracker tracker(failAt);
            {
                Result result;
                const int32_t status = c.parse(result.Out(), c.atTemplate, reply.data(), c.prefix);
                const Rows got = result.rows();
                if (keepsEarlierRows && status == AT_PARSE_OK) {
                    EXPECT_TRUE(!got.empty() && got.size() < all.size() &&
                                std::equal(got.begin(), got.end(), all.begin()));
                    keptEarlierRows = true;
                } else {
                    EXPECT_NE(status, AT_PARSE_OK);
                    EXPECT_EQ(result.Get(), nullptr);
                }
            }
            tracker.ExpectAllReleasedWiped();
        }
        EXPECT_EQ(keptEarlierRows, keepsEarlierRows);
    }
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

TEST(ParseRoutines, RefuseMissingArgumentsAndForeignReplies) {
    for (const RoutineCase &c : kRoutines) {
        SCOPED_TRACE(c.label);
        std::string reply = c.reply;
        Result result;
        EXPECT_EQ(c.parse(nullptr, c.atTemplate, reply.data(), c.prefix), AT_PARSE_BAD_ARG);
        EXPECT_EQ(c.parse(result.Out(), c.atTemplate, nullptr, c.prefix), AT_PARSE_BAD_ARG);
        EXPECT_EQ(c.parse(result.Out(), c.atTemplate, reply.data(), nullptr), AT_PARSE_BAD_ARG);
        EXPECT_EQ(c.parse(result.Out(), nullptr, reply.data(), c.prefix), c.withoutTemplate);
        EXPECT_EQ(result.Get(), nullptr);
        Result foreign;  // the cell-list parser never looks for the prefix
        EXPECT_EQ(c.parse(foreign.Out(), c.atTemplate, reply.data(), "^ABSENT"), c.withoutPrefix);
    }
    FreeAtCmd(nullptr);
    FreeAtCmdParseNode(nullptr);
}

}  // namespace
}  // namespace atapi::test
