// Failure paths shared by every special parser: refused arguments, and a
// failing allocator (whichever allocation fails, the call fails, hands out
// nothing, and leaves no block behind unwiped).
#include <gtest/gtest.h>

#include <string>

#include "parse_test_util.h"

namespace atapi::test {
namespace {

struct FailureCase {
    const char *label;
    AtParseFn parse;
    const char *atTemplate;
    const char *reply;
    const char *prefix;
    // Status for the same reply read with a prefix it does not carry: the
    // SMS record parser finds no row, the cell parser never looks.
    int32_t withoutPrefix = AT_PARSE_BAD_ARG;
};

void PrintTo(const FailureCase &c, std::ostream *os) { *os << c.label; }

const FailureCase kFailureCases[] = {
    {"Cmgi", ParseCmgiListAtStr, "^CMGI:index_0,...indexN", "^CMGI: 0,3,\"7\"", "^CMGI"},
    {"Cmgd", ParseSmsIndexListAtStr, "+CMGD:index_0,...indexN", "+CMGD: (1,2,5),(0-4)", "+CMGD"},
    {"Cmgr", ParseSmsCmgrAtStr, "+CMGR:stat,reserved,length\r\npdu",
     "+CMGR: 1,,23\r\n0891683108200505F0040D9168", "+CMGR", AT_PARSE_OK},
    {"Cgas", ParseAtCgasStr, "arfcn,bsic,rxlev", "62,17,-75", "^CGAS", AT_PARSE_OK},
    {"Eons", ParseEonsAtStr, "^EONS:type,plmn_id,plmn_long,plmn_short,spn_cond,spn",
     "^EONS: 1,46000,\"A\",\"B\",0,\"\"\r\n^EONS: 1,46001,\"CHN-UNICOM\",\"UNICOM\",1,\"CU\"",
     "^EONS"},
    {"SysCfg", ParseSysCfgAtStr,
     "^SYSCFG:(modes),(acqorders),((band,band_name)),(roman),(srvdomain)",
     "^SYSCFG: (2-5),(0-3),((2000000400380,\"GSM900/GSM1800\"),(3FFFFFFF,\"All bands\")),(0-2),"
     "(0-4)",
     "^SYSCFG"},
    {"SysCfgList", ParseSysCfgAtStr,
     "^SYSCFG:(modes),(acqorders),((band,band_name)),(roman),(srvdomain)",
     "^SYSCFG: (2,13),(0-3),((3FFFFFFF,\"All bands\")),(0-2),(0-4)", "^SYSCFG"},
    {"SysCfgEx", ParseSysCfgExAtStr,
     "^SYSCFGEX:(acqorders),((band,band_name)),(roams),(srvdomains),((lteband,lteband_name))",
     "^SYSCFGEX: (\"00\",\"01\"),((3FFFFFFF,\"All bands\")),(0-2),(0-4),((1,\"LTE BC1\"),"
     "(7FFFFFFFFFFFFFFF,\"All bands\"))",
     "^SYSCFGEX"},
    {"LteProfile", ParseLteProfileAtStr,
     "^LTEPROFILE:(mode1,mode2),(indexs),maximsiprefixlen,maxapnlen,maxusernamelen,"
     "maxuserpwdlen,(authtypes)",
     "^LTEPROFILE: (0,1),(0-10),15,32,32,32,(0-3)", "^LTEPROFILE"},
    {"Cops", ParseCopsAtStr,
     "+COPS:(stat,long_oper,short_oper,numeric_oper,rat),,(mode_0,mode_1,mode_2,mode_3,mode_4),"
     "(format_0,format_1,format_2)",
     "+COPS: (2,\"CHINA MOBILE\",\"CMCC\",\"46000\",7),(1,\"A, B\",\"AB\",\"46001\",2),,"
     "(0,1,2,3,4),(0,1,2)",
     "+COPS"},
    {"Cpms", ParseSmsMediaAtStr, "+CPMS:(mem1,mem2),...",
     "+CPMS: (\"SM\",\"ME\"),(\"SM\",\"ME\"),(\"SM\")", "+CPMS"},
};

class SpecialParserFailureTest : public ::testing::TestWithParam<FailureCase> {};

// Allocations of one successful parse; the result is checked to be wiped.
uint64_t CountAllocations(const FailureCase &c) {
    std::string reply = c.reply;
    AllocTracker tracker;
    {
        Result result;
        EXPECT_EQ(c.parse(result.Out(), c.atTemplate, reply.data(), c.prefix), AT_PARSE_OK);
        EXPECT_NE(result.first, nullptr);
    }
    EXPECT_EQ(tracker.Live(), 0U);
    EXPECT_TRUE(tracker.UnwipedFrees().empty());
    return tracker.Allocations();
}

TEST_P(SpecialParserFailureTest, EveryFailedAllocationFailsCleanly) {
    const FailureCase &c = GetParam();
    const uint64_t allocations = CountAllocations(c);
    ASSERT_GT(allocations, 0U);
    for (uint64_t failAt = 1; failAt <= allocations; ++failAt) {
        std::string reply = c.reply;
        AllocTracker tracker(failAt);
        AtCmdParseNode *out = nullptr;
        EXPECT_NE(c.parse(&out, c.atTemplate, reply.data(), c.prefix), AT_PARSE_OK)
            << "allocation " << failAt;
        EXPECT_EQ(out, nullptr) << "allocation " << failAt;
        FreeAtCmd(out);
        EXPECT_EQ(tracker.Live(), 0U) << "allocation " << failAt;
        EXPECT_TRUE(tracker.UnwipedFrees().empty()) << "allocation " << failAt;
    }
}

TEST_P(SpecialParserFailureTest, NullArgumentsAreRefused) {
    const FailureCase &c = GetParam();
    std::string reply = c.reply;
    AtCmdParseNode *out = nullptr;
    EXPECT_EQ(c.parse(nullptr, c.atTemplate, reply.data(), c.prefix), AT_PARSE_BAD_ARG);
    EXPECT_EQ(c.parse(&out, c.atTemplate, nullptr, c.prefix), AT_PARSE_BAD_ARG);
    EXPECT_EQ(c.parse(&out, c.atTemplate, reply.data(), nullptr), AT_PARSE_BAD_ARG);
    EXPECT_EQ(out, nullptr);
}

TEST_P(SpecialParserFailureTest, ReplyWithoutThePrefix) {
    const FailureCase &c = GetParam();
    std::string reply = c.reply;
    Result result;
    EXPECT_EQ(c.parse(result.Out(), c.atTemplate, reply.data(), "^ABSENT"), c.withoutPrefix);
    if (c.withoutPrefix != AT_PARSE_OK) {
        EXPECT_EQ(result.first, nullptr);
    }
}

INSTANTIATE_TEST_SUITE_P(Special, SpecialParserFailureTest, ::testing::ValuesIn(kFailureCases),
                         [](const auto &info) { return std::string(info.param.label); });

}  // namespace
}  // namespace atapi::test
