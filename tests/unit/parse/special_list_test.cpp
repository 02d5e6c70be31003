// The list parsers ("index_N" rows), the SMS record parser (header and PDU
// line) and the cell-list parser without prefix handling.
#include <gtest/gtest.h>

#include <string>

#include "fixtures/trace_capture.h"
#include "parse_test_util.h"

namespace atapi::test {
namespace {

const Text kNull = std::nullopt;
const Rows kNoRows;

Rows OneRow(Row row) { return {std::move(row)}; }

constexpr char kCmgiTemplate[] = "^CMGI:index_0,...indexN";
constexpr char kHfreqTemplate[] = "^HFREQINFO:switch,sysmode,index_0,...,index_n";
constexpr char kNtxTemplate[] = "^NTXPOWER:index_0,...,index_n";
constexpr char kCmgdTemplate[] = "+CMGD:index_0,...indexN";
constexpr char kHcmgdTemplate[] = "^HCMGD:index_0,...indexN";
constexpr char kCmgrTemplate[] = "+CMGR:stat,reserved,length\r\npdu";
constexpr char kCmtTemplate[] = "+CMT:reserved,length\r\npdu";
constexpr char kCdsTemplate[] = "+CDS:length\r\npdu";
constexpr char kCgasTemplate[] = "arfcn,bsic,rxlev";

constexpr char kPdu[] = "0891683108200505F0040D91683117352446F2000842109291650323084F60597D5417";

// Rows of "index_0", "index_1", ... holding values.
Rows IndexRow(std::initializer_list<Text> values) {
    Row row;
    int i = 0;
    for (const Text &v : values) row.push_back({"index_" + std::to_string(i++), v});
    return {row};
}

std::string ListOf(int count) {
    std::string list;
    for (int i = 0; i < count; ++i) list += (i == 0 ? "" : ",") + std::to_string(i);
    return list;
}

struct ParserCase {
    const char *label;
    AtParseFn parse;
    const char *atTemplate;
    std::string reply;
    const char *prefix;
    int32_t status;
    Rows rows;
};

void PrintTo(const ParserCase &c, std::ostream *os) { *os << c.label; }

class ListParserTest : public ::testing::TestWithParam<ParserCase> {};

TEST_P(ListParserTest, ParsesReply) {
    const ParserCase &c = GetParam();
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

const ParserCase kListCases[] = {
    {"CmgiThreeIndexes", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: 0,3,7", "^CMGI", AT_PARSE_OK,
     IndexRow({"0", "3", "7"})},
    {"CmgiEmptyListGivesOneEmptyValue", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: ", "^CMGI",
     AT_PARSE_OK, IndexRow({""})},
    {"CmgiNothingAfterColon", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI:", "^CMGI", AT_PARSE_OK,
     IndexRow({""})},
    {"CmgiEmptyFieldsKept", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: 1,,4", "^CMGI", AT_PARSE_OK,
     IndexRow({"1", "", "4"})},
    {"HfreqinfoNamesIgnoreTemplate", ParseCmgiListAtStr, kHfreqTemplate,
     "^HFREQINFO: 1,6,3,1300,1850,5,19300,1750,5", "^HFREQINFO", AT_PARSE_OK,
     IndexRow({"1", "6", "3", "1300", "1850", "5", "19300", "1750", "5"})},
    {"NtxpowerQuotedCommaStays", ParseCmgiListAtStr, kNtxTemplate, "^NTXPOWER: \"a,b\",-12",
     "^NTXPOWER", AT_PARSE_OK, IndexRow({"a,b", "-12"})},
    {"CmgiUnclosedQuoteLosesLastValue", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: 1,\"2", "^CMGI",
     AT_PARSE_OK, IndexRow({"1", kNull})},
    {"Cmgi1000Values", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: " + ListOf(1000), "^CMGI",
     AT_PARSE_OK,
     [] {
         Rows rows(1);
         for (int i = 0; i < 1000; ++i) {
             rows[0].push_back({"index_" + std::to_string(i), std::to_string(i)});
         }
         return rows;
     }()},
    {"Cmgi1001ValuesRefused", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: " + ListOf(1001), "^CMGI",
     AT_PARSE_BAD_ARG, kNoRows},
    {"CmgiWithoutColon", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI 1,2", "^CMGI", AT_PARSE_NO_GROUP,
     kNoRows},
    {"CmgiWithoutTemplate", ParseCmgiListAtStr, nullptr, "^CMGI: 1", "^CMGI", AT_PARSE_NO_TEMPLATE,
     kNoRows},

    {"CmgdFirstListOnly", ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD: (1,2,5),(0-4)", "+CMGD",
     AT_PARSE_OK, IndexRow({"1", "2", "5"})},
    {"HcmgdFirstListOnly", ParseSmsIndexListAtStr, kHcmgdTemplate, "^HCMGD: (0,11),(0-4)", "^HCMGD",
     AT_PARSE_OK, IndexRow({"0", "11"})},
    {"CmgdBlanksAroundList", ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD: ( 3 ),(0-4)", "+CMGD",
     AT_PARSE_OK, IndexRow({"3"})},
    {"CmgdNoStoredMessage", ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD: (),(0-4)", "+CMGD",
     AT_PARSE_OK, IndexRow({""})},
    {"CmgdSingleListRefused", ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD: (1,2,5)", "+CMGD",
     AT_PARSE_BAD_ARG, kNoRows},
    {"CmgdWithoutColon", ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD (1),(0-4)", "+CMGD",
     AT_PARSE_BAD_ARG, kNoRows},
    {"CmgdWithoutTemplate", ParseSmsIndexListAtStr, nullptr, "+CMGD: (1),(0-4)", "+CMGD",
     AT_PARSE_NO_TEMPLATE, kNoRows},

    {"CmgrHeaderAndPdu", ParseSmsCmgrAtStr, kCmgrTemplate, std::string("+CMGR: 1,,35\r\n") + kPdu,
     "+CMGR", AT_PARSE_OK,
     OneRow({{"stat", "1"}, {"reserved", ""}, {"length", "35"}, {"pdu", kPdu}})},
    {"CmtReport", ParseSmsCmgrAtStr, kCmtTemplate, std::string("+CMT: ,35\r\n") + kPdu, "+CMT",
     AT_PARSE_OK, OneRow({{"reserved", ""}, {"length", "35"}, {"pdu", kPdu}})},
    {"CdsReport", ParseSmsCmgrAtStr, kCdsTemplate, "+CDS: 25\r\n0006D60B911326880736F4", "+CDS",
     AT_PARSE_OK, OneRow({{"length", "25"}, {"pdu", "0006D60B911326880736F4"}})},
    {"CmgrOnlyFirstLineBreakJoins", ParseSmsCmgrAtStr, kCmgrTemplate, "+CMGR: 0,,20\r\n0011\r\nFF",
     "+CMGR", AT_PARSE_OK,
     OneRow({{"stat", "0"}, {"reserved", ""}, {"length", "20"}, {"pdu", "0011\r\nFF"}})},
    {"CmgrWithoutLineBreak", ParseSmsCmgrAtStr, kCmgrTemplate, "+CMGR: 1,,35", "+CMGR",
     AT_PARSE_BAD_ARG, kNoRows},
    {"CmgrTemplateWithoutLineBreak", ParseSmsCmgrAtStr, "+CMGR:stat,reserved,length,pdu",
     std::string("+CMGR: 1,,35\r\n") + kPdu, "+CMGR", AT_PARSE_NO_ENTRY, kNoRows},
    {"CmgrOtherPrefixGivesNoRows", ParseSmsCmgrAtStr, kCmgrTemplate,
     std::string("+CMT: ,35\r\n") + kPdu, "+CMGR", AT_PARSE_OK, kNoRows},

    {"CgasValuesOnly", ParseAtCgasStr, kCgasTemplate, "62,17,-75", "^CGAS", AT_PARSE_OK,
     OneRow({{"arfcn", "62"}, {"bsic", "17"}, {"rxlev", "-75"}})},
    {"CgasPrefixStaysInFirstValue", ParseAtCgasStr, kCgasTemplate, "^CGAS: 62,17,-75", "^CGAS",
     AT_PARSE_OK, OneRow({{"arfcn", "^CGAS: 62"}, {"bsic", "17"}, {"rxlev", "-75"}})},
    {"CgasWithoutComma", ParseAtCgasStr, kCgasTemplate, "^CGAS: 62", "^CGAS", AT_PARSE_BAD_ARG,
     kNoRows},
    {"CgasWithoutTemplate", ParseAtCgasStr, nullptr, "62,17,-75", "^CGAS", AT_PARSE_BAD_ARG,
     kNoRows},
};

INSTANTIATE_TEST_SUITE_P(Special, ListParserTest, ::testing::ValuesIn(kListCases),
                         [](const auto &info) { return std::string(info.param.label); });

TEST(ParseCmgiListAtStr_Buffer, TrimsListInCallersReply) {
    std::string reply = "^CMGI:  4,5  ";
    Result result;
    ASSERT_EQ(ParseCmgiListAtStr(result.Out(), kCmgiTemplate, reply.data(), "^CMGI"), AT_PARSE_OK);
    EXPECT_STREQ(reply.c_str(), "^CMGI:4,5");
}

TEST(ParseCmgiListAtStr_Log, CountIsLoggedOnEveryCall) {
    for (const int count : {1, 3, 1001}) {
        TraceCapture trace;
        std::string reply = "^CMGI: " + ListOf(count);
        Result result;
        ParseCmgiListAtStr(result.Out(), kCmgiTemplate, reply.data(), "^CMGI");
        const std::string line =
            "the parseNumber out of range, parseNumber is " + std::to_string(count) + "\n";
        EXPECT_EQ(trace.Count(line), 1U) << count;
    }
}

TEST(ParseSmsCmgrAtStr_Log, TemplateWithoutLineBreakIsLogged) {
    TraceCapture trace;
    std::string reply = "+CMGR: 1,,35\r\n00";
    Result result;
    EXPECT_EQ(ParseSmsCmgrAtStr(result.Out(), "+CMGR:stat", reply.data(), "+CMGR"),
              AT_PARSE_NO_ENTRY);
    EXPECT_TRUE(trace.Contains("nameStr is NULL\n"));
}

TEST(SpecialListParsers_Buffer, WorkOnCopiesOfTheReply) {
    struct Case {
        AtParseFn parse;
        const char *atTemplate;
        const char *reply;
        const char *prefix;
    };
    const Case cases[] = {
        {ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD: (1,2,5),(0-4)", "+CMGD"},
        {ParseSmsCmgrAtStr, kCmgrTemplate, "+CMGR: 1,,35\r\n00", "+CMGR"},
    };
    for (const Case &c : cases) {
        std::string reply = c.reply;
        Result result;
        ASSERT_EQ(c.parse(result.Out(), c.atTemplate, reply.data(), c.prefix), AT_PARSE_OK);
        EXPECT_EQ(reply, c.reply);
    }
}

}  // namespace
}  // namespace atapi::test
