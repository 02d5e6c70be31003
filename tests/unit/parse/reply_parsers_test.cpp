// The special response parsers on realistic replies, their deliberate quirks
// and the replies they refuse.
#include <gtest/gtest.h>

#include <string>

#include "parse_test_util.h"

namespace atapi::test {
namespace {

constexpr char kPdu[] = "0891683108200505F0040D91683117352446F2000842109291650323084F60597D5417";
constexpr char kBands[] = "((2000000400380,\"GSM900/GSM1800\"),(3FFFFFFF,\"All bands\"))";
constexpr char kModeAndFormatLists[] = ",,(0,1,2,3,4),(0,1,2)";

const Row kBandRow1 =
    Group("bandlist", {{"band", "2000000400380"}, {"band_name", "GSM900/GSM1800"}});
const Row kBandRow2 = Group("bandlist", {{"band", "3FFFFFFF"}, {"band_name", "All bands"}});
const Row kModeRow = Group(
    "mode", {{"mode_0", "0"}, {"mode_1", "1"}, {"mode_2", "2"}, {"mode_3", "3"}, {"mode_4", "4"}});
const Row kFormatRow = Group("format", {{"format_0", "0"}, {"format_1", "1"}, {"format_2", "2"}});

Row Operator(const char *stat, const char *longName, const char *shortName, const char *numeric,
             const char *rat) {
    return Group("option", {{"stat", stat},
                            {"long_oper", longName},
                            {"short_oper", shortName},
                            {"numeric_oper", numeric},
                            {"rat", rat}});
}

std::string Operators(int count) {
    std::string list;
    for (int i = 0; i < count; ++i)
        list += (i == 0 ? "(" : ",(") + std::string("1,\"N\",\"N\",\"1\",7)");
    return list;
}

const ParseCase kCases[] = {
    {"CmgiIndexes", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: 0,3,7", "^CMGI", 0,
     IndexRow({"0", "3", "7"})},
    {"CmgiNothingAfterColonIsOneEmptyIndex", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: ", "^CMGI",
     0, IndexRow({""})},
    {"HfreqinfoNamesIgnoreTemplate", ParseCmgiListAtStr,
     "^HFREQINFO:switch,sysmode,index_0,...,index_n", "^HFREQINFO: 1,6,3", "^HFREQINFO", 0,
     IndexRow({"1", "6", "3"})},
    {"Cmgi1001Values", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI: " + CountedList(1001), "^CMGI",
     AT_PARSE_BAD_ARG, kNoRows},
    {"CmgiWithoutColon", ParseCmgiListAtStr, kCmgiTemplate, "^CMGI 1,2", "^CMGI", AT_PARSE_NO_GROUP,
     kNoRows},

    {"CmgdFirstListOnly", ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD: (1,2,5),(0-4)", "+CMGD", 0,
     IndexRow({"1", "2", "5"})},
    {"CmgdNoStoredMessage", ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD: (),(0-4)", "+CMGD", 0,
     IndexRow({""})},
    {"CmgdSingleList", ParseSmsIndexListAtStr, kCmgdTemplate, "+CMGD: (1,2,5)", "+CMGD",
     AT_PARSE_BAD_ARG, kNoRows},

    {"CmgrHeaderAndPdu", ParseSmsCmgrAtStr, kCmgrTemplate, std::string("+CMGR: 1,,35\r\n") + kPdu,
     "+CMGR", 0, OneRow({{"stat", "1"}, {"reserved", ""}, {"length", "35"}, {"pdu", kPdu}})},
    {"CmgrOnlyFirstLineBreakJoins", ParseSmsCmgrAtStr, kCmgrTemplate, "+CMGR: 0,,20\r\n0011\r\nFF",
     "+CMGR", 0,
     OneRow({{"stat", "0"}, {"reserved", ""}, {"length", "20"}, {"pdu", "0011\r\nFF"}})},
    {"CmgrReplyWithoutLineBreak", ParseSmsCmgrAtStr, kCmgrTemplate, "+CMGR: 1,,35", "+CMGR",
     AT_PARSE_BAD_ARG, kNoRows},
    {"CmgrTemplateWithoutLineBreak", ParseSmsCmgrAtStr, "+CMGR:stat,reserved,length,pdu",
     "+CMGR: 1,,35\r\n00", "+CMGR", AT_PARSE_NO_ENTRY, kNoRows},
    {"CmgrOtherPrefixGivesNoRows", ParseSmsCmgrAtStr, kCmgrTemplate, "+CMT: ,35\r\n00", "+CMGR", 0,
     kNoRows},

    {"CgasValuesOnly", ParseAtCgasStr, kCgasTemplate, "62,17,-75", "^CGAS", 0,
     OneRow({{"arfcn", "62"}, {"bsic", "17"}, {"rxlev", "-75"}})},
    {"CgasPrefixStaysInFirstValue", ParseAtCgasStr, kCgasTemplate, "^CGAS: 62,17,-75", "^CGAS", 0,
     OneRow({{"arfcn", "^CGAS: 62"}, {"bsic", "17"}, {"rxlev", "-75"}})},
    {"CgasWithoutComma", ParseAtCgasStr, kCgasTemplate, "^CGAS: 62", "^CGAS", AT_PARSE_BAD_ARG,
     kNoRows},

    {"EonsLastLineWins", ParseEonsAtStr, kEonsTemplate,
     "^EONS: 1,46000,\"CHINA MOBILE\",\"CMCC\",0,\"\"\r\n"
     "^EONS: 1,46001,\"CHN-UNICOM\",\"UNICOM\",1,\"CU\"",
     "^EONS", 0,
     OneRow({{"type", "1"},
             {"plmn_id", "46001"},
             {"plmn_long", "CHN-UNICOM"},
             {"plmn_short", "UNICOM"},
             {"spn_cond", "1"},
             {"spn", "CU"}})},
    {"EonsLastLineWithoutColon", ParseEonsAtStr, kEonsTemplate, "^EONS: 1,46001\r\n^EONS", "^EONS",
     AT_PARSE_BAD_ARG, kNoRows},

    {"CopsOperatorsThenModesAndFormats", ParseCopsAtStr, kCopsTemplate,
     std::string("+COPS: (2,\"CHINA MOBILE\",\"CMCC\",\"46000\",7),") +
         "(1,\"CHN-UNICOM\",\"UNICOM\",\"46001\",7),(3,\"Acme, (Test) "
         "Net\",\"ACME\",\"46099\",2)" +
         kModeAndFormatLists,
     "+COPS", 0,
     Rows{Operator("2", "CHINA MOBILE", "CMCC", "46000", "7"),
          Operator("1", "CHN-UNICOM", "UNICOM", "46001", "7"),
          Operator("3", "Acme, (Test) Net", "ACME", "46099", "2"), kModeRow, kFormatRow}},
    {"CopsNoOperators", ParseCopsAtStr, kCopsTemplate, std::string("+COPS: ") + kModeAndFormatLists,
     "+COPS", 0, Rows{kModeRow, kFormatRow}},
    // An oversized operator list is skipped, not refused.
    {"Cops1001OperatorsSkipped", ParseCopsAtStr, kCopsTemplate,
     "+COPS: " + Operators(1001) + kModeAndFormatLists, "+COPS", 0, Rows{kModeRow, kFormatRow}},
    {"CopsWithoutFormatList", ParseCopsAtStr, kCopsTemplate, "+COPS: " + Operators(1) + ",,(0,1)",
     "+COPS", AT_PARSE_BAD_ARG, kNoRows},
    {"CopsWithoutDoubleComma", ParseCopsAtStr, kCopsTemplate, "+COPS: " + Operators(1) + ",(0,1)",
     "+COPS", AT_PARSE_BAD_ARG, kNoRows},

    // The acquisition orders repeat the modes: the reply's first group is read twice.
    {"SysCfgRangeRepeatedAsAcqorders", ParseSysCfgAtStr, kSysCfgTemplate,
     std::string("^SYSCFG: (2-5),(0-3),") + kBands + ",(0-2),(0-4)", "^SYSCFG", 0,
     Rows{Numbers("modes", 2, 5), Numbers("acqorders", 2, 5), kBandRow1, kBandRow2}},
    {"SysCfgModeList", ParseSysCfgAtStr, kSysCfgTemplate,
     std::string("^SYSCFG: (2,13),(0-3),") + kBands, "^SYSCFG", 0,
     Rows{Group("modes", {{"modes", "2"}, {kNull, "13"}}),
          Group("acqorders", {{"acqorders", "2"}, {kNull, "13"}}), kBandRow1, kBandRow2}},
    {"SysCfgRangeUpTo128", ParseSysCfgAtStr, kSysCfgTemplate,
     std::string("^SYSCFG: (0-128),(0-3),") + kBands, "^SYSCFG", 0,
     Rows{Numbers("modes", 0, 128), Numbers("acqorders", 0, 128), kBandRow1, kBandRow2}},
    {"SysCfgRangeBeyond128", ParseSysCfgAtStr, kSysCfgTemplate,
     std::string("^SYSCFG: (0-129),(0-3),") + kBands, "^SYSCFG", AT_PARSE_BAD_ARG, kNoRows},
    {"SysCfgDescendingRangeGivesHeadersOnly", ParseSysCfgAtStr, kSysCfgTemplate,
     std::string("^SYSCFG: (5-2),(0-3),") + kBands, "^SYSCFG", 0,
     Rows{Group("modes"), Group("acqorders"), kBandRow1, kBandRow2}},
    {"SysCfgWithoutBandGroup", ParseSysCfgAtStr, kSysCfgTemplate, "^SYSCFG: (2-5),(0-3),(0-2)",
     "^SYSCFG", AT_PARSE_BAD_ARG, kNoRows},

    {"SysCfgExWithLteGroup", ParseSysCfgExAtStr, kSysCfgExTemplate,
     std::string("^SYSCFGEX: (\"00\",\"03\"),") + kBands + ",(0-2),(0-4),((1,\"LTE BC1\"))",
     "^SYSCFGEX", 0,
     Rows{Group("acqorders", {{"acqorders", "00"}, {kNull, "03"}}), kBandRow1, kBandRow2,
          Group("LTElist", {{"lteband", "1"}, {"lteband_name", "LTE BC1"}})}},
    {"SysCfgExWithoutLteGroup", ParseSysCfgExAtStr, kSysCfgExTemplate,
     std::string("^SYSCFGEX: (\"00\"),") + kBands + ",(0-2),(0-4)", "^SYSCFGEX", 0,
     Rows{Group("acqorders", {{"acqorders", "00"}}), kBandRow1, kBandRow2}},
    {"SysCfgExLteGroupWithoutTemplateGroup", ParseSysCfgExAtStr,
     "^SYSCFGEX:(acqorders),((band,band_name)),(roams),(srvdomains)",
     std::string("^SYSCFGEX: (\"00\"),") + kBands + ",(0-2),(0-4),((1,\"LTE BC1\"))", "^SYSCFGEX",
     AT_PARSE_BAD_ARG, kNoRows},

    {"LteProfileTwoGroups", ParseLteProfileAtStr, kLteProfileTemplate,
     "^LTEPROFILE: (0,1),(0-10),15,32,32,32,(0-3)", "^LTEPROFILE", 0,
     Rows{Group(nullptr, {{"mode1", "0"}, {"mode2", "1"}}), Group(nullptr, {{"indexs", "0-10"}})}},
    {"LteProfileWithoutIndexGroup", ParseLteProfileAtStr, kLteProfileTemplate, "^LTEPROFILE: (0,1)",
     "^LTEPROFILE", AT_PARSE_BAD_ARG, kNoRows},

    {"CpmsOneRowPerList", ParseSmsMediaAtStr, kCpmsTemplate,
     "+CPMS: (\"SM\",\"ME\",\"SR\"),( \"SM\" )", "+CPMS", 0,
     Rows{Group("SmsMediaList", {{"mem1", "SM"}, {"mem2", "ME"}, {kNull, "SR"}}),
          Group("SmsMediaList", {{"mem1", "SM"}, {"mem2", kNull}})}},
    {"CpmsUnclosedListIgnored", ParseSmsMediaAtStr, kCpmsTemplate, "+CPMS: (\"SM\"),(\"ME\"",
     "+CPMS", 0, Rows{Group("SmsMediaList", {{"mem1", "SM"}, {"mem2", kNull}})}},
    {"CpmsList1001Fields", ParseSmsMediaAtStr, kCpmsTemplate,
     "+CPMS: (" + std::string(1000, ',') + ")", "+CPMS", AT_PARSE_BAD_ARG, kNoRows},
    {"CpmsWithoutLists", ParseSmsMediaAtStr, kCpmsTemplate, "+CPMS: \"SM\",\"ME\"", "+CPMS",
     AT_PARSE_BAD_ARG, kNoRows},
};

TEST(SpecialParsers, Replies) {
    for (const ParseCase &c : kCases) ExpectParse(c);
}

}  // namespace
}  // namespace atapi::test
