// ParseCommonAtStr on realistic and hostile replies.
#include <gtest/gtest.h>

#include <string>

#include "parse_test_util.h"

namespace atapi::test {
namespace {

const Text kNull = std::nullopt;

struct CommonCase {
    const char *label;
    const char *atTemplate;
    std::string reply;
    const char *prefix;
    Rows rows;
};

void PrintTo(const CommonCase &c, std::ostream *os) { *os << c.label; }

class ParseCommonAtStrTest : public ::testing::TestWithParam<CommonCase> {};

TEST_P(ParseCommonAtStrTest, BuildsRows) {
    const CommonCase &c = GetParam();
    std::string reply = c.reply;
    Result result;
    EXPECT_EQ(ParseCommonAtStr(result.Out(), c.atTemplate, reply.data(), c.prefix), AT_PARSE_OK);
    EXPECT_EQ(result.rows(), c.rows);
    EXPECT_EQ(reply, c.reply) << "the caller's reply must stay untouched";
}

const CommonCase kCommonCases[] = {
    {"ExactFields",
     "^CPIN:code,times",
     "^CPIN: READY,3",
     "^CPIN",
     {{{"code", "READY"}, {"times", "3"}}}},
    {"FewerValuesThanNames",
     "^CPIN:code,times",
     "^CPIN: READY",
     "^CPIN",
     {{{"code", "READY"}, {"times", kNull}}}},
    {"MoreValuesThanNames",
     "^CPIN:code,times",
     "^CPIN: READY,3,10",
     "^CPIN",
     {{{"code", "READY"}, {"times", "3"}, {kNull, "10"}}}},
    {"QuotedCommaKept",
     "+COPS:mode,format,oper,rat",
     "+COPS: 0,0,\"Acme, Mobile\",7",
     "+COPS",
     {{{"mode", "0"}, {"format", "0"}, {"oper", "Acme, Mobile"}, {"rat", "7"}}}},
    {"TwoCgdcontRows",
     "+CGDCONT:cid,PDP_type,APN",
     "+CGDCONT: 1,\"IP\",\"internet\"\r\n+CGDCONT: 2,\"IPV6\",\"ims\"",
     "+CGDCONT",
     {{{"cid", "1"}, {"PDP_type", "IP"}, {"APN", "internet"}},
      {{"cid", "2"}, {"PDP_type", "IPV6"}, {"APN", "ims"}}}},
    {"ValuesHoldColons",
     "^NWTIME:date,time,dt",
     "^NWTIME: 24/01/01,12:30:00+32,00",
     "^NWTIME",
     {{{"date", "24/01/01"}, {"time", "12:30:00+32"}, {"dt", "00"}}}},
    {"EmptyFieldIsEmptyText",
     "+CREG:n,stat,lac,ci",
     "+CREG: 2,,\"1A2B\",",
     "+CREG",
     {{{"n", "2"}, {"stat", ""}, {"lac", "1A2B"}, {"ci", ""}}}},
    {"BlanksInsideQuotesSurvive", "+X:a", "+X: \" x \" ", "+X", {{{"a", " x "}}}},
    {"TrailingLinesStayInLastValue",
     "^CPIN:code,times",
     "^CPIN: READY,3\r\n\r\nOK",
     "^CPIN",
     {{{"code", "READY"}, {"times", "3\r\n\r\nOK"}}}},
    {"TemplatePrefixIsNotCompared", "CLIP:n,m", "+CLIR: 0,4", "+CLIR", {{{"n", "0"}, {"m", "4"}}}},
    {"UnclosedQuoteInFirstRowLosesLastField",
     "^CPIN:code,times",
     "^CPIN: SIM PIN,\"3",
     "^CPIN",
     {{{"code", "SIM PIN"}, {"times", kNull}}}},
    {"UnclosedQuoteInLaterRowKeepsRow",
     "+CGDCONT:cid,PDP_type,APN",
     "+CGDCONT: 1,\"IP\",\"internet\"\r\n+CGDCONT: 2,\"IP,ims",
     "+CGDCONT",
     {{{"cid", "1"}, {"PDP_type", "IP"}, {"APN", "internet"}},
      {{"cid", "2"}, {"PDP_type", kNull}, {"APN", kNull}}}},
    {"PrefixInsideValueStartsRow",
     "+CUSD:m,str,dcs",
     "+CUSD: 1,see +CUSD: menu,15",
     "+CUSD",
     {{{"m", "1"}, {"str", "see"}, {"dcs", kNull}},
      {{"m", "menu"}, {"str", "15"}, {"dcs", kNull}}}},
    // The cursor starts behind the first ':' of the whole reply.
    {"FirstColonBeforePrefix",
     "+CPIN:code",
     "note: x\r\n+CPIN: READY",
     "+CPIN",
     {{{"code", "x"}}, {{"code", "READY"}}}},
    {"LaterOccurrenceWithoutColonEndsRows",
     "+CPIN:code",
     "+CPIN: READY\r\n+CPIN",
     "+CPIN",
     {{{"code", "READY"}}}},
};

INSTANTIATE_TEST_SUITE_P(Replies, ParseCommonAtStrTest, ::testing::ValuesIn(kCommonCases),
                         [](const auto &info) { return std::string(info.param.label); });

TEST(ParseCommonAtStr, EightRowsOfCgdcont) {
    std::string reply;
    for (int cid = 1; cid <= 8; ++cid) {
        if (cid > 1) reply += "\r\n";
        reply += "+CGDCONT: " + std::to_string(cid) + ",\"IP\",\"apn" + std::to_string(cid) +
                 "\",\"10.0.0." + std::to_string(cid) + "\",0,0";
    }
    Result result;
    ASSERT_EQ(ParseCommonAtStr(result.Out(), "+CGDCONT:cid,pdp_type,apn,ip_address,d_comp,h_comp",
                               reply.data(), "+CGDCONT"),
              AT_PARSE_OK);
    const Rows rows = result.rows();
    ASSERT_EQ(rows.size(), 8u);
    for (size_t i = 0; i < rows.size(); ++i) {
        const std::string n = std::to_string(i + 1);
        EXPECT_EQ(rows[i], (Row{{"cid", n},
                                {"pdp_type", "IP"},
                                {"apn", "apn" + n},
                                {"ip_address", "10.0.0." + n},
                                {"d_comp", "0"},
                                {"h_comp", "0"}}));
    }
}

struct NoRowsCase {
    const char *label;
    const char *atTemplate;
    const char *reply;
    const char *prefix;
};

class ParseCommonAtStrNoRowsTest : public ::testing::TestWithParam<NoRowsCase> {};

// Status 0 and *out as it was: callers must test the pointer, not only the status.
TEST_P(ParseCommonAtStrNoRowsTest, LeavesOutUntouched) {
    const NoRowsCase &c = GetParam();
    std::string reply = c.reply;
    AtCmdParseNode sentinel{};
    AtCmdParseNode *out = &sentinel;
    EXPECT_EQ(ParseCommonAtStr(&out, c.atTemplate, reply.data(), c.prefix), AT_PARSE_OK);
    EXPECT_EQ(out, &sentinel);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, ParseCommonAtStrNoRowsTest,
    ::testing::Values(NoRowsCase{"OtherPrefix", "^CPIN:code,times", "+CPIN: READY", "^CPIN"},
                      NoRowsCase{"ReplyWithoutColon", "+CPIN:code", "+CPIN READY", "+CPIN"},
                      NoRowsCase{"TemplateWithoutColon", "RING", "RING", "RING"},
                      NoRowsCase{"EmptyReply", "+CPIN:code", "", "+CPIN"}),
    [](const auto &info) { return std::string(info.param.label); });

TEST(ParseCommonAtStr, RefusesMissingArguments) {
    char reply[] = "+CPIN: READY";
    AtCmdParseNode *out = nullptr;
    EXPECT_EQ(ParseCommonAtStr(nullptr, "+CPIN:code", reply, "+CPIN"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseCommonAtStr(&out, "+CPIN:code", nullptr, "+CPIN"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseCommonAtStr(&out, "+CPIN:code", reply, nullptr), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseCommonAtStr(&out, nullptr, reply, "+CPIN"), AT_PARSE_NO_TEMPLATE);
    EXPECT_EQ(out, nullptr);
}

std::string Values(int count) {
    std::string values;
    for (int i = 0; i < count; ++i) values += (i == 0 ? "" : ",") + std::to_string(i);
    return values;
}

TEST(ParseCommonAtStr, RowOfThousandFieldsIsTheLimit) {
    std::string reply = "+X: " + Values(1000);
    Result result;
    ASSERT_EQ(ParseCommonAtStr(result.Out(), "+X:a", reply.data(), "+X"), AT_PARSE_OK);
    const Rows rows = result.rows();
    ASSERT_EQ(rows.size(), 1u);
    ASSERT_EQ(rows[0].size(), 1000u);
    EXPECT_EQ(rows[0].front(), (Field{"a", "0"}));
    EXPECT_EQ(rows[0].back(), (Field{kNull, "999"}));
}

TEST(ParseCommonAtStr, FirstRowOverTheLimitFails) {
    std::string reply = "+X: " + Values(1001);
    AtCmdParseNode *out = nullptr;
    EXPECT_EQ(ParseCommonAtStr(&out, "+X:a", reply.data(), "+X"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(out, nullptr);
}

TEST(ParseCommonAtStr, LaterRowOverTheLimitIsDropped) {
    std::string reply = "+X: 7\r\n+X: " + Values(1001) + "\r\n+X: 8";
    Result result;
    ASSERT_EQ(ParseCommonAtStr(result.Out(), "+X:a", reply.data(), "+X"), AT_PARSE_OK);
    EXPECT_EQ(result.rows(), (Rows{{{"a", "7"}}}));
}

}  // namespace
}  // namespace atapi::test
