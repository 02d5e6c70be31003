// The template parser and its small special forms on realistic and hostile
// replies, the quote-aware splitter, and the line cutter GetSubstring.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parse_test_util.h"

namespace atapi::test {
namespace {

// "+X:" and 1001 names: a row as long as its template is refused too.
const std::string k1001Names = "+X:" + CountedList(1001);

// "+X: 0,1,...,999" against "+X:a": the first value is named, the rest not.
Rows ThousandFields() {
    Row row{{"a", "0"}};
    for (int i = 1; i < 1000; ++i) row.push_back({kNull, std::to_string(i)});
    return {row};
}

const Rows kCgdcont = R("cid=1;PDP_type=IP;APN=internet|cid=2;PDP_type=IPV6;APN=ims");
constexpr char kCpin[] = "^CPIN:code,times";
constexpr char kCgdcontNames[] = "+CGDCONT:cid,PDP_type,APN";

const ParseCase kCommonCases[] = {
    {"FewerValuesThanNames", ParseCommonAtStr, kCpin, "^CPIN: READY", "^CPIN", 0,
     R("code=READY;times=~")},
    {"MoreValuesThanNames", ParseCommonAtStr, kCpin, "^CPIN: READY,3,10", "^CPIN", 0,
     R("code=READY;times=3;~=10")},
    {"QuotedCommaKept", ParseCommonAtStr, "+COPS:mode,format,oper,rat",
     "+COPS: 0,0,\"Acme, Mobile\",7", "+COPS", 0, R("mode=0;format=0;oper=Acme, Mobile;rat=7")},
    {"TwoRows", ParseCommonAtStr, kCgdcontNames,
     "+CGDCONT: 1,\"IP\",\"internet\"\r\n+CGDCONT: 2,\"IPV6\",\"ims\"", "+CGDCONT", 0, kCgdcont},
    {"ValuesHoldColons", ParseCommonAtStr, "^NWTIME:date,time,dt",
     "^NWTIME: 24/01/01,12:30:00+32,00", "^NWTIME", 0, R("date=24/01/01;time=12:30:00+32;dt=00")},
    {"EmptyFieldsAreEmptyTexts", ParseCommonAtStr, "+CREG:n,stat,lac,ci", "+CREG: 2,,\"1A2B\",",
     "+CREG", 0, R("n=2;stat=;lac=1A2B;ci=")},
    {"TrailingLinesStayInLastValue", ParseCommonAtStr, kCpin, "^CPIN: READY,3\r\n\r\nOK", "^CPIN",
     0, R("code=READY;times=3\r\n\r\nOK")},
    // Some table rows carry the template of another prefix.
    {"TemplatePrefixIsNotCompared", ParseCommonAtStr, "CLIP:n,m", "+CLIR: 0,4", "+CLIR", 0,
     R("n=0;m=4")},
    {"UnclosedQuoteInFirstRowLosesLastField", ParseCommonAtStr, kCpin, "^CPIN: SIM PIN,\"3",
     "^CPIN", 0, R("code=SIM PIN;times=~")},
    {"UnclosedQuoteInLaterRowKeepsRow", ParseCommonAtStr, kCgdcontNames,
     "+CGDCONT: 1,\"IP\",\"internet\"\r\n+CGDCONT: 2,\"IP,ims", "+CGDCONT", 0,
     R("cid=1;PDP_type=IP;APN=internet|cid=2;PDP_type=~;APN=~")},
    {"PrefixInsideValueStartsRow", ParseCommonAtStr, "+CUSD:m,str,dcs",
     "+CUSD: 1,see +CUSD: menu,15", "+CUSD", 0, R("m=1;str=see;dcs=~|m=menu;str=15;dcs=~")},
    // The cursor starts behind the first ':' of the whole reply.
    {"FirstColonBeforePrefix", ParseCommonAtStr, "+CPIN:code", "note: x\r\n+CPIN: READY", "+CPIN",
     0, R("code=x|code=READY")},
    {"LaterPrefixWithoutColonEndsRows", ParseCommonAtStr, "+CPIN:code", "+CPIN: READY\r\n+CPIN",
     "+CPIN", 0, R("code=READY")},
    // Nothing to parse is status 0 without rows: callers test the result.
    {"ReplyWithoutColon", ParseCommonAtStr, "+CPIN:code", "+CPIN READY", "+CPIN", 0, kNoRows},
    {"TemplateWithoutColon", ParseCommonAtStr, "RING", "RING", "RING", 0, kNoRows},
    {"ThousandFields", ParseCommonAtStr, "+X:a", "+X: " + CountedList(1000), "+X", 0,
     ThousandFields()},
    {"FirstRowOf1001FieldsFails", ParseCommonAtStr, "+X:a", "+X: " + CountedList(1001), "+X",
     AT_PARSE_BAD_ARG, kNoRows},
    {"FirstRowOf1001NamesFails", ParseCommonAtStr, k1001Names.c_str(), "+X: 7", "+X",
     AT_PARSE_BAD_ARG, kNoRows},
    {"LaterRowOf1001FieldsDropped", ParseCommonAtStr, "+X:a",
     "+X: 7\r\n+X: " + CountedList(1001) + "\r\n+X: 8", "+X", 0, R("a=7")},

    {"SoftVersionBehindFirstDot", ParseSoftStr, "246.subsoftversion", "+CGMR: 21.110.00.00.00",
     "+CGMR", 0, R("subsoftversion=110.00.00.00")},
    {"SoftReplyWithoutDot", ParseSoftStr, "246.v", "+CGMR: 21", "+CGMR", AT_PARSE_BAD_ARG, kNoRows},
    {"SoftTemplateWithoutDot", ParseSoftStr, "246", "+CGMR: 21.1", "+CGMR", AT_PARSE_BAD_ARG,
     kNoRows},

    {"NdisHeaderThenGroupFields", ParseNdisStateQueryAtStr, kNdisTemplate, "^NDISSTATQRY: (1,2,3)",
     "^NDISSTATQRY", 0, R("cid=~;cid=1;~=2;~=3")},
    {"NdisWithoutGroup", ParseNdisStateQueryAtStr, kNdisTemplate, "^NDISSTATQRY: 1,2",
     "^NDISSTATQRY", AT_PARSE_BAD_ARG, kNoRows},
    {"NdisUnclosedGroup", ParseNdisStateQueryAtStr, kNdisTemplate, "^NDISSTATQRY: (1,2",
     "^NDISSTATQRY", AT_PARSE_BAD_ARG, kNoRows},
    {"NdisGroupBeforePrefix", ParseNdisStateQueryAtStr, kNdisTemplate, "(1) ^NDISSTATQRY: 2",
     "^NDISSTATQRY", AT_PARSE_BAD_ARG, kNoRows},
    {"NdisTemplateWithoutGroup", ParseNdisStateQueryAtStr, "^NDISSTATQRY:cid", "^NDISSTATQRY: (1)",
     "^NDISSTATQRY", AT_PARSE_BAD_ARG, kNoRows},
};

TEST(TemplateParsers, Replies) {
    for (const ParseCase &c : kCommonCases) {
        const std::string after = ExpectParse(c);
        if (c.parse == ParseCommonAtStr) {
            EXPECT_EQ(after, c.reply) << c.label << ": the caller's reply must stay untouched";
        }
    }
}

TEST(AtConstParse, SplitsOutsideQuotesAndTrims) {
    struct Case {
        const char *text;
        uint32_t capacity;
        std::vector<std::string> pieces;
    };
    const Case cases[] = {
        {",,", 8, {"", "", ""}},
        {"a,b,c", 2, {"a", "b"}},  // the rest is ignored
        // Line feed, carriage return, blank, quote: in that order only.
        {"\n\r \"x\" \r\n", 8, {"x"}},
        {"a\n\r", 8, {"a\n"}},
        {" \" x \" ", 8, {" x "}},
        {"\"say \"hi\"\"", 8, {"say \"hi"}},
        {"\"x\"y", 8, {"x\"y"}},  // only one end to trim
        {"\"", 8, {}},            // an unclosed quote swallows the last field
    };
    for (const Case &c : cases) {
        char *pieces[8] = {};
        uint32_t count = 99;
        ASSERT_EQ(AtConstParse(pieces, c.capacity, c.text, &count), AT_PARSE_OK) << c.text;
        EXPECT_EQ(std::vector<std::string>(pieces, pieces + count), c.pieces) << c.text;
        ReleaseSubstring(pieces, static_cast<int32_t>(count));
    }
}

// The pieces cut from buffer with room for capacity pieces.
std::vector<std::string> Cut(const std::string &buffer, int32_t capacity, const char *needle) {
    std::vector<char *> pieces(8, nullptr);
    int32_t count = capacity;
    GetSubstring(buffer.c_str(), pieces.data(), &count, needle);
    std::vector<std::string> out(pieces.begin(), pieces.begin() + count);
    ReleaseSubstring(pieces.data(), count);
    for (char *p : pieces) EXPECT_EQ(p, nullptr) << "ReleaseSubstring clears the entries";
    return out;
}

using Pieces = std::vector<std::string>;

TEST(GetSubstring, OnePiecePerOccurrenceUpToCapacity) {
    const std::string reply = "noise\r\n+CPIN: 1\r\n+CPIN: 2";
    EXPECT_EQ(Cut(reply, 8, "+CPIN"), (Pieces{"noise\r\n", "+CPIN: 1\r\n", "+CPIN: 2"}));
    EXPECT_EQ(Cut(reply, 2, "+CPIN"), (Pieces{"noise\r\n", "+CPIN: 1\r\n"}));
    EXPECT_EQ(Cut(reply, 0, "+CPIN"), Pieces{});
    EXPECT_EQ(Cut("", 8, "+CPIN"), Pieces{});
}

TEST(GetSubstring, PieceLimitIs1531Characters) {
    const std::string fits = "+X" + std::string(1529, 'a');
    EXPECT_EQ(Cut(fits + "+X: b", 8, "+X"), (Pieces{fits, "+X: b"}));
    // One character more stops the cut; the pieces before it are kept.
    EXPECT_EQ(Cut("+X: a\r\n" + fits + "a", 8, "+X"), Pieces{"+X: a\r\n"});
}

TEST(GetSubstring, OutOfMemoryKeepsEarlierPieces) {
    AllocTracker tracker(/*failAt=*/2);
    EXPECT_EQ(Cut("+X: 1\r\n+X: 2\r\n+X: 3", 4, "+X"), Pieces{"+X: 1\r\n"});
    tracker.ExpectAllReleasedWiped();
}

TEST(GetSubstring, NullArgumentsStoreNothing) {
    char *pieces[2] = {};
    int32_t counts[3] = {2, 2, 2};
    GetSubstring(nullptr, pieces, &counts[0], "+X");
    GetSubstring("+X: 1", nullptr, &counts[1], "+X");
    GetSubstring("+X: 1", pieces, &counts[2], nullptr);
    EXPECT_THAT(counts, testing::Each(0));
    GetSubstring("+X: 1", pieces, nullptr, "+X");
    EXPECT_EQ(pieces[0], nullptr);
}

}  // namespace
}  // namespace atapi::test
