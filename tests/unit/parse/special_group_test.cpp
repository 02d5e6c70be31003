// The test-reply parsers built from parenthesised groups (system
// configuration, LTE profile, message storage) and their building blocks.
#include <gtest/gtest.h>

#include <string>

#include "fixtures/trace_capture.h"
#include "parse/at_parse_groups.h"
#include "parse_test_util.h"

namespace atapi::test {
namespace {

const Text kNull = std::nullopt;
const Rows kNoRows;

constexpr char kSysCfgTemplate[] =
    "^SYSCFG:(modes),(acqorders),((band,band_name)),(roman),(srvdomain)";
constexpr char kSysCfgExTemplate[] =
    "^SYSCFGEX:(acqorders),((band,band_name)),(roams),(srvdomains),((lteband,lteband_name))";
constexpr char kLteProfileTemplate[] =
    "^LTEPROFILE:(mode1,mode2),(indexs),maximsiprefixlen,maxapnlen,maxusernamelen,"
    "maxuserpwdlen,(authtypes)";
constexpr char kCpmsTemplate[] = "+CPMS:(mem1,mem2),...";
constexpr char kHcpmsTemplate[] = "^HCPMS:(mem1,mem2),...";

constexpr char kBands[] = "((2000000400380,\"GSM900/GSM1800/WCDMA2100\"),(3FFFFFFF,\"All bands\"))";

Row Header(const char *name) { return {{TextOf(name), kNull}}; }

// A header followed by anonymous numbered nodes.
Row Numbers(const char *name, int first, int last) {
    Row row = Header(name);
    for (int n = first; n <= last; ++n) row.push_back({kNull, std::to_string(n)});
    return row;
}

Row Group(const char *name, std::initializer_list<Field> fields) {
    Row row = Header(name);
    row.insert(row.end(), fields);
    return row;
}

Rows BandRows(const char *name, const char *bandField, const char *nameField) {
    return {Group(name, {{bandField, "2000000400380"}, {nameField, "GSM900/GSM1800/WCDMA2100"}}),
            Group(name, {{bandField, "3FFFFFFF"}, {nameField, "All bands"}})};
}

Rows Concat(std::initializer_list<Rows> parts) {
    Rows all;
    for (const Rows &p : parts) all.insert(all.end(), p.begin(), p.end());
    return all;
}

struct GroupCase {
    const char *label;
    AtParseFn parse;
    const char *atTemplate;
    std::string reply;
    const char *prefix;
    int32_t status;
    Rows rows;
};

void PrintTo(const GroupCase &c, std::ostream *os) { *os << c.label; }

class GroupParserTest : public ::testing::TestWithParam<GroupCase> {};

TEST_P(GroupParserTest, ParsesReply) {
    const GroupCase &c = GetParam();
    std::string reply = c.reply;
    AllocTracker tracker;
    {
        Result result;
        EXPECT_EQ(c.parse(result.Out(), c.atTemplate, reply.data(), c.prefix), c.status);
        EXPECT_EQ(result.rows(), c.rows);
    }
    EXPECT_EQ(tracker.Live(), 0U);
    EXPECT_TRUE(tracker.UnwipedFrees().empty());
}

const GroupCase kGroupCases[] = {
    {"SysCfgModeRangeRepeatedAsAcqorders", ParseSysCfgAtStr, kSysCfgTemplate,
     std::string("^SYSCFG: (2-5),(0-3),") + kBands + ",(0-2),(0-4)", "^SYSCFG", AT_PARSE_OK,
     Concat({{Numbers("modes", 2, 5), Numbers("acqorders", 2, 5)},
             BandRows("bandlist", "band", "band_name")})},
    {"SysCfgModeList", ParseSysCfgAtStr, kSysCfgTemplate,
     std::string("^SYSCFG: (2,13,14,16),(0-3),") + kBands + ",(0-2),(0-4)", "^SYSCFG", AT_PARSE_OK,
     Concat(
         {{Group("modes", {{"modes", "2"}, {kNull, "13"}, {kNull, "14"}, {kNull, "16"}}),
           Group("acqorders", {{"acqorders", "2"}, {kNull, "13"}, {kNull, "14"}, {kNull, "16"}})},
          BandRows("bandlist", "band", "band_name")})},
    {"SysCfgRangeWithBlanks", ParseSysCfgAtStr, kSysCfgTemplate,
     "^SYSCFG: ( 0 - 2 ),(0-3),((3FFFFFFF,\"All bands\")),(0-2),(0-4)", "^SYSCFG", AT_PARSE_OK,
     Rows{Numbers("modes", 0, 2), Numbers("acqorders", 0, 2),
          Group("bandlist", {{"band", "3FFFFFFF"}, {"band_name", "All bands"}})}},
    {"SysCfgDescendingRangeGivesHeaderOnly", ParseSysCfgAtStr, kSysCfgTemplate,
     "^SYSCFG: (5-2),(0-3),((3FFFFFFF,\"All bands\")),(0-2),(0-4)", "^SYSCFG", AT_PARSE_OK,
     Rows{Header("modes"), Header("acqorders"),
          Group("bandlist", {{"band", "3FFFFFFF"}, {"band_name", "All bands"}})}},
    {"SysCfgRangeUpTo128", ParseSysCfgAtStr, kSysCfgTemplate,
     "^SYSCFG: (0-128),(0-3),((1,\"x\")),(0-2),(0-4)", "^SYSCFG", AT_PARSE_OK,
     Rows{Numbers("modes", 0, 128), Numbers("acqorders", 0, 128),
          Group("bandlist", {{"band", "1"}, {"band_name", "x"}})}},
    {"SysCfgRangeBeyond128", ParseSysCfgAtStr, kSysCfgTemplate,
     std::string("^SYSCFG: (0-200),(0-3),") + kBands + ",(0-2),(0-4)", "^SYSCFG", AT_PARSE_BAD_ARG,
     kNoRows},
    {"SysCfgWithoutBandGroup", ParseSysCfgAtStr, kSysCfgTemplate, "^SYSCFG: (2-5),(0-3),(0-2)",
     "^SYSCFG", AT_PARSE_BAD_ARG, kNoRows},
    {"SysCfgWithoutGroups", ParseSysCfgAtStr, kSysCfgTemplate, "^SYSCFG: 2,0,3FFFFFFF,1,2",
     "^SYSCFG", AT_PARSE_BAD_ARG, kNoRows},

    {"SysCfgExWithLteGroup", ParseSysCfgExAtStr, kSysCfgExTemplate,
     std::string("^SYSCFGEX: (\"00\",\"01\",\"02\",\"03\"),") + kBands +
         ",(0-2),(0-4),((1,\"LTE BC1\"),(7FFFFFFFFFFFFFFF,\"All bands\"))",
     "^SYSCFGEX", AT_PARSE_OK,
     Concat(
         {{Group("acqorders", {{"acqorders", "00"}, {kNull, "01"}, {kNull, "02"}, {kNull, "03"}})},
          BandRows("bandlist", "band", "band_name"),
          {Group("LTElist", {{"lteband", "1"}, {"lteband_name", "LTE BC1"}}),
           Group("LTElist", {{"lteband", "7FFFFFFFFFFFFFFF"}, {"lteband_name", "All bands"}})}})},
    {"SysCfgExWithoutLteGroup", ParseSysCfgExAtStr, kSysCfgExTemplate,
     std::string("^SYSCFGEX: (\"00\",\"03\"),") + kBands + ",(0-2),(0-4)", "^SYSCFGEX", AT_PARSE_OK,
     Concat({{Group("acqorders", {{"acqorders", "00"}, {kNull, "03"}})},
             BandRows("bandlist", "band", "band_name")})},
    {"SysCfgExLteGroupWithoutTemplateGroup", ParseSysCfgExAtStr,
     "^SYSCFGEX:(acqorders),((band,band_name)),(roams),(srvdomains)",
     std::string("^SYSCFGEX: (\"00\"),") + kBands + ",(0-2),(0-4),((1,\"LTE BC1\"))", "^SYSCFGEX",
     AT_PARSE_BAD_ARG, kNoRows},
    {"SysCfgExWithoutBandGroup", ParseSysCfgExAtStr, kSysCfgExTemplate,
     "^SYSCFGEX: (\"00\"),(0-2),(0-4)", "^SYSCFGEX", AT_PARSE_BAD_ARG, kNoRows},

    {"LteProfile", ParseLteProfileAtStr, kLteProfileTemplate,
     "^LTEPROFILE: (0,1),(0-10),15,32,32,32,(0-3)", "^LTEPROFILE", AT_PARSE_OK,
     Rows{Group(nullptr, {{"mode1", "0"}, {"mode2", "1"}}), Group(nullptr, {{"indexs", "0-10"}})}},
    {"LteProfileWithoutIndexGroup", ParseLteProfileAtStr, kLteProfileTemplate, "^LTEPROFILE: (0,1)",
     "^LTEPROFILE", AT_PARSE_BAD_ARG, kNoRows},

    {"CpmsThreeMediaLists", ParseSmsMediaAtStr, kCpmsTemplate,
     "+CPMS: (\"SM\",\"ME\",\"SR\"),(\"SM\",\"ME\"),(\"SM\",\"ME\")", "+CPMS", AT_PARSE_OK,
     Rows{Group("SmsMediaList", {{"mem1", "SM"}, {"mem2", "ME"}, {kNull, "SR"}}),
          Group("SmsMediaList", {{"mem1", "SM"}, {"mem2", "ME"}}),
          Group("SmsMediaList", {{"mem1", "SM"}, {"mem2", "ME"}})}},
    {"HcpmsOneList", ParseSmsMediaAtStr, kHcpmsTemplate, "^HCPMS: ( \"SM\" )", "^HCPMS",
     AT_PARSE_OK, Rows{Group("SmsMediaList", {{"mem1", "SM"}, {"mem2", kNull}})}},
    {"CpmsUnclosedGroupIgnored", ParseSmsMediaAtStr, kCpmsTemplate, "+CPMS: (\"SM\"),(\"ME\"",
     "+CPMS", AT_PARSE_OK, Rows{Group("SmsMediaList", {{"mem1", "SM"}, {"mem2", kNull}})}},
    {"CpmsWithoutGroups", ParseSmsMediaAtStr, kCpmsTemplate, "+CPMS: \"SM\",\"ME\"", "+CPMS",
     AT_PARSE_BAD_ARG, kNoRows},
    {"CpmsTemplateWithoutGroup", ParseSmsMediaAtStr, "+CPMS:mem1,mem2", "+CPMS: (\"SM\")", "+CPMS",
     AT_PARSE_BAD_ARG, kNoRows},
};

INSTANTIATE_TEST_SUITE_P(Special, GroupParserTest, ::testing::ValuesIn(kGroupCases),
                         [](const auto &info) { return std::string(info.param.label); });

TEST(ParseSysCfgAtStr_Log, RangeBeyond128IsLogged) {
    TraceCapture trace;
    std::string reply = std::string("^SYSCFG: (0-200),(0-3),") + kBands;
    Result result;
    EXPECT_EQ(ParseSysCfgAtStr(result.Out(), kSysCfgTemplate, reply.data(), "^SYSCFG"),
              AT_PARSE_BAD_ARG);
    EXPECT_TRUE(trace.Contains("num error, beginNum is 0, endNum is 200\n"));
}

TEST(ParseSmsMediaAtStr_Buffer, CutsCallersReplyAtGroupEnds) {
    std::string reply = "+CPMS: (\"SM\",\"ME\"),(\"SM\")";
    Result result;
    ASSERT_EQ(ParseSmsMediaAtStr(result.Out(), kCpmsTemplate, reply.data(), "+CPMS"), AT_PARSE_OK);
    EXPECT_STREQ(reply.c_str(), "+CPMS: (\"SM\",\"ME\"");
}

// ---- Building blocks --------------------------------------------------------

TEST(AtTrimGroupText, TrimsBlanksCommasAndBracketsInOrder) {
    struct Case {
        const char *text;
        const char *trimmed;
    };
    const Case cases[] = {
        {",(1,\"A\",7", "1,\"A\",7"},
        {"(0,1,2,3,4)", "0,1,2,3,4"},
        {" ,(x) ", "x"},
        {", (x", " (x"},  // the blank is trimmed before the comma has gone
        {"()", ""},
    };
    for (const Case &c : cases) {
        std::string text = c.text;
        AtTrimGroupText(text.data(), text.size());
        EXPECT_STREQ(text.c_str(), c.trimmed) << c.text;
    }
}

TEST(AtTrimGroupText, EmptyOrNullTextIsLogged) {
    TraceCapture trace;
    char empty[] = "";
    AtTrimGroupText(empty, 0);
    AtTrimGroupText(nullptr, 3);
    EXPECT_EQ(trace.Count("para error\n"), 2U);
}

TEST(SetAtFieldName, NamesOrRefuses) {
    TraceCapture trace;
    AtCmdParseNode *node = AtParseNewNode();
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(SetAtFieldName(node, "option"), 0);
    EXPECT_EQ(SetAtFieldName(node, "mode"), 0);  // a second name replaces the first
    EXPECT_STREQ(node->atFieldName, "mode");
    EXPECT_EQ(SetAtFieldName(node, ""), 1);
    EXPECT_FALSE(trace.Contains("para error\n")) << "an empty name fails silently";
    EXPECT_EQ(SetAtFieldName(node, nullptr), 1);
    EXPECT_EQ(SetAtFieldName(nullptr, "x"), 1);
    EXPECT_EQ(trace.Count("para error\n"), 2U);
    EXPECT_STREQ(node->atFieldName, "mode");
    FreeAtCmd(node);
}

TEST(ParseRangeNodeFromAtStr, RangesAndLists) {
    struct Case {
        const char *reply;
        int32_t status;
        Rows rows;
    };
    const Case cases[] = {
        {"(1-3)", 0, {Numbers("g", 1, 3)}},
        {"(7-7)", 0, {Numbers("g", 7, 7)}},
        {"(128-128)", 0, {Numbers("g", 128, 128)}},
        {"(129-130)", 1, kNoRows},
        {"(1-129)", 1, kNoRows},
        {"(99999999999-1)", 1, kNoRows},
        {"(1,2)", 0, {Group("g", {{"a", "1"}, {kNull, "2"}})}},
        {"1-3", 1, kNoRows},
        {"(1-3", 1, kNoRows},
    };
    for (const Case &c : cases) {
        AllocTracker tracker;
        {
            Result result;
            EXPECT_EQ(ParseRangeNodeFromAtStr(result.Out(), "(a)", c.reply, "g"), c.status)
                << c.reply;
            EXPECT_EQ(result.rows(), c.rows) << c.reply;
        }
        EXPECT_EQ(tracker.Live(), 0U) << c.reply;
    }
}

TEST(ParseBandAtStr, OneRowPerGroup) {
    std::string reply = " (1, \"A\") ,( 2,\"B\"),(3";
    Result result;
    ASSERT_EQ(ParseBandAtStr(result.Out(), " (band,band_name) ", reply.data(), "bandlist"),
              AT_PARSE_OK);
    EXPECT_EQ(result.rows(), (Rows{Group("bandlist", {{"band", "1"}, {"band_name", "A"}}),
                                   Group("bandlist", {{"band", "2"}, {"band_name", "B"}})}));
}

TEST(ParseBandAtStr, FailuresReleaseEverything) {
    struct Case {
        const char *names;
        const char *reply;
        const char *groupName;
        int32_t status;
    };
    const Case cases[] = {
        {"(a,b)", "(1,2),(3,4)", "", AT_PARSE_NO_GROUP},
        {nullptr, "(1,2)", "g", AT_PARSE_BAD_ARG},
        {"(a,b)", "(1,2)", nullptr, AT_PARSE_BAD_ARG},
        // A group of more than 1000 fields cannot be split.
        {"(a)", nullptr, "g", AT_PARSE_NO_MEMORY},
    };
    const std::string hugeGroup = "(" + std::string(1000, ',') + ")";
    for (const Case &c : cases) {
        std::string reply = c.reply != nullptr ? c.reply : hugeGroup;
        AllocTracker tracker;
        AtCmdParseNode *rows = nullptr;
        EXPECT_EQ(ParseBandAtStr(&rows, c.names, reply.data(), c.groupName), c.status);
        EXPECT_EQ(rows, nullptr);
        EXPECT_EQ(tracker.Live(), 0U);
    }
}

TEST(ParseBandAtStr, NoGroupGivesNoRows) {
    char reply[] = "no groups here";
    AtCmdParseNode *rows = nullptr;
    EXPECT_EQ(ParseBandAtStr(&rows, "(a)", reply, "g"), AT_PARSE_OK);
    EXPECT_EQ(rows, nullptr);
}

}  // namespace
}  // namespace atapi::test
