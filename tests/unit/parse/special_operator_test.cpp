// The operator parsers: the "+COPS" test reply (operator groups, then the
// mode and format lists) and the "^EONS" query reply (the last line wins).
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "fixtures/trace_capture.h"
#include "parse_test_util.h"

namespace atapi::test {
namespace {

const Text kNull = std::nullopt;
const Rows kNoRows;

Rows OneRow(Row row) { return {std::move(row)}; }

constexpr char kCopsTemplate[] =
    "+COPS:(stat,long_oper,short_oper,numeric_oper,rat),,(mode_0,mode_1,mode_2,mode_3,mode_4),"
    "(format_0,format_1,format_2)";
constexpr char kEonsTemplate[] = "^EONS:type,plmn_id,plmn_long,plmn_short,spn_cond,spn";

constexpr char kModeAndFormatLists[] = ",,(0,1,2,3,4),(0,1,2)";

Row Operator(const char *stat, const char *longName, const char *shortName, const char *numeric,
             Text rat) {
    return {{"option", kNull},         {"stat", stat},
            {"long_oper", longName},   {"short_oper", shortName},
            {"numeric_oper", numeric}, {"rat", rat}};
}

const Row kModeRow = {{"mode", kNull}, {"mode_0", "0"}, {"mode_1", "1"},
                      {"mode_2", "2"}, {"mode_3", "3"}, {"mode_4", "4"}};
const Row kFormatRow = {{"format", kNull}, {"format_0", "0"}, {"format_1", "1"}, {"format_2", "2"}};

struct ReplyCase {
    const char *label;
    const char *atTemplate;
    std::string reply;
    int32_t status;
    Rows rows;
};

void PrintTo(const ReplyCase &c, std::ostream *os) { *os << c.label; }

class ParseCopsAtStrTest : public ::testing::TestWithParam<ReplyCase> {};

TEST_P(ParseCopsAtStrTest, ParsesReply) {
    const ReplyCase &c = GetParam();
    std::string reply = c.reply;
    AllocTracker tracker;
    {
        Result result;
        EXPECT_EQ(ParseCopsAtStr(result.Out(), c.atTemplate, reply.data(), "+COPS"), c.status);
        EXPECT_EQ(result.rows(), c.rows);
    }
    EXPECT_EQ(reply, c.reply) << "the caller's reply must stay untouched";
    EXPECT_EQ(tracker.Live(), 0U);
    EXPECT_TRUE(tracker.UnwipedFrees().empty());
}

const ReplyCase kCopsCases[] = {
    {"ThreeOperators", kCopsTemplate,
     std::string("+COPS: (2,\"CHINA MOBILE\",\"CMCC\",\"46000\",7),") +
         "(1,\"CHN-UNICOM\",\"UNICOM\",\"46001\",7),(3,\"Acme, (Test) Net\",\"ACME\",\"46099\",2)" +
         kModeAndFormatLists,
     AT_PARSE_OK,
     Rows{Operator("2", "CHINA MOBILE", "CMCC", "46000", "7"),
          Operator("1", "CHN-UNICOM", "UNICOM", "46001", "7"),
          Operator("3", "Acme, (Test) Net", "ACME", "46099", "2"), kModeRow, kFormatRow}},
    {"OperatorWithoutRat", kCopsTemplate,
     std::string("+COPS: (1,\"Old Net\",\"OLD\",\"26201\")") + kModeAndFormatLists, AT_PARSE_OK,
     Rows{Operator("1", "Old Net", "OLD", "26201", kNull), kModeRow, kFormatRow}},
    {"NoOperators", kCopsTemplate, std::string("+COPS: ") + kModeAndFormatLists, AT_PARSE_OK,
     Rows{kModeRow, kFormatRow}},
    {"ShortModeList", kCopsTemplate, "+COPS: ,,(0,1),(0,2)", AT_PARSE_OK,
     Rows{Row{{"mode", kNull},
              {"mode_0", "0"},
              {"mode_1", "1"},
              {"mode_2", kNull},
              {"mode_3", kNull},
              {"mode_4", kNull}},
          Row{{"format", kNull}, {"format_0", "0"}, {"format_1", "2"}, {"format_2", kNull}}}},
    {"WithoutFormatList", kCopsTemplate, "+COPS: (2,\"A\",\"B\",\"46000\",7),,(0,1,2,3,4)",
     AT_PARSE_BAD_ARG, kNoRows},
    {"WithoutModeList", kCopsTemplate, "+COPS: (2,\"A\",\"B\",\"46000\",7),,", AT_PARSE_BAD_ARG,
     kNoRows},
    {"WithoutDoubleComma", kCopsTemplate, "+COPS: (2,\"A\",\"B\",\"46000\",7),(0,1,2,3,4)",
     AT_PARSE_BAD_ARG, kNoRows},
    {"TemplateWithoutDoubleComma", "+COPS:(stat,long_oper),(mode_0)",
     std::string("+COPS: (2,\"A\")") + kModeAndFormatLists, AT_PARSE_BAD_ARG, kNoRows},
    {"WithoutColon", kCopsTemplate, std::string("+COPS (2,\"A\")") + kModeAndFormatLists,
     AT_PARSE_BAD_ARG, kNoRows},
    {"WithoutTemplate", nullptr, std::string("+COPS: ") + kModeAndFormatLists, AT_PARSE_NO_TEMPLATE,
     kNoRows},
};

INSTANTIATE_TEST_SUITE_P(Special, ParseCopsAtStrTest, ::testing::ValuesIn(kCopsCases),
                         [](const auto &info) { return std::string(info.param.label); });

TEST(ParseCopsAtStr_Log, OperatorListStatusIsLogged) {
    TraceCapture trace;
    std::string reply = std::string("+COPS: (2,\"A\",\"B\",\"46000\",7)") + kModeAndFormatLists;
    Result result;
    ASSERT_EQ(ParseCopsAtStr(result.Out(), kCopsTemplate, reply.data(), "+COPS"), AT_PARSE_OK);
    const std::string line =
        "pid = " + std::to_string(getpid()) + ", the parse operator list ret = 0\n";
    EXPECT_EQ(trace.Count(line), 1U);
}

TEST(ParseCopsAtStr_Limits, OversizedOperatorListIsSkipped) {
    std::string operators;
    for (int i = 0; i < 1001; ++i) operators += "(1,\"N\",\"N\",\"1\",7),";
    operators.pop_back();
    std::string reply = "+COPS: " + operators + kModeAndFormatLists;
    Result result;
    ASSERT_EQ(ParseCopsAtStr(result.Out(), kCopsTemplate, reply.data(), "+COPS"), AT_PARSE_OK);
    EXPECT_EQ(result.rows(), (Rows{kModeRow, kFormatRow}));
}

class ParseEonsAtStrTest : public ::testing::TestWithParam<ReplyCase> {};

TEST_P(ParseEonsAtStrTest, ParsesReply) {
    const ReplyCase &c = GetParam();
    std::string reply = c.reply;
    Result result;
    EXPECT_EQ(ParseEonsAtStr(result.Out(), c.atTemplate, reply.data(), "^EONS"), c.status);
    EXPECT_EQ(result.rows(), c.rows);
    EXPECT_EQ(reply, c.reply);
}

const Row kUnicomRow = {
    {"type", "1"},     {"plmn_id", "46001"}, {"plmn_long", "CHN-UNICOM"}, {"plmn_short", "UNICOM"},
    {"spn_cond", "1"}, {"spn", "CU"}};

const ReplyCase kEonsCases[] = {
    {"OneLine", kEonsTemplate, "^EONS: 1,46001,\"CHN-UNICOM\",\"UNICOM\",1,\"CU\"", AT_PARSE_OK,
     Rows{kUnicomRow}},
    {"LastLineWins", kEonsTemplate,
     "^EONS: 1,46000,\"CHINA MOBILE\",\"CMCC\",0,\"\"\r\n"
     "^EONS: 1,46001,\"CHN-UNICOM\",\"UNICOM\",1,\"CU\"",
     AT_PARSE_OK, Rows{kUnicomRow}},
    {"EmptySpn", kEonsTemplate, "^EONS: 2,46000,\"CHINA MOBILE\",\"CMCC\",0,\"\"", AT_PARSE_OK,
     OneRow({{"type", "2"},
             {"plmn_id", "46000"},
             {"plmn_long", "CHINA MOBILE"},
             {"plmn_short", "CMCC"},
             {"spn_cond", "0"},
             {"spn", ""}})},
    {"LastLineWithoutColon", kEonsTemplate, "^EONS: 1,46001\r\n^EONS", AT_PARSE_BAD_ARG, kNoRows},
    {"TemplateWithoutColon", "^EONS", "^EONS: 1", AT_PARSE_BAD_ARG, kNoRows},
    {"WithoutTemplate", nullptr, "^EONS: 1", AT_PARSE_NO_TEMPLATE, kNoRows},
};

INSTANTIATE_TEST_SUITE_P(Special, ParseEonsAtStrTest, ::testing::ValuesIn(kEonsCases),
                         [](const auto &info) { return std::string(info.param.label); });

TEST(ParseEonsAtStr_Log, MissingPrefixIsLoggedWithTaskId) {
    TraceCapture trace;
    char reply[] = "+COPS: 0";
    Result result;
    EXPECT_EQ(ParseEonsAtStr(result.Out(), kEonsTemplate, reply, "^EONS"), AT_PARSE_BAD_ARG);
    EXPECT_TRUE(trace.Contains("not find the at name pid = " + std::to_string(getpid()) + "\n"));
}

}  // namespace
}  // namespace atapi::test
