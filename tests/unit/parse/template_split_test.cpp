// The splitting and linking primitives under the template parser.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fixtures/trace_capture.h"
#include "parse_test_util.h"

namespace atapi::test {
namespace {

const Text kNull = std::nullopt;

struct SplitCase {
    const char *label;
    const char *text;
    std::vector<std::string> pieces;
};

class AtConstParseTest : public ::testing::TestWithParam<SplitCase> {};

TEST_P(AtConstParseTest, SplitsAndTrims) {
    const SplitCase &c = GetParam();
    char *pieces[8] = {};
    uint32_t count = 99;
    ASSERT_EQ(AtConstParse(pieces, 8, c.text, &count), AT_PARSE_OK);
    std::vector<std::string> got(pieces, pieces + count);
    EXPECT_EQ(got, c.pieces);
    for (uint32_t i = count; i < 8; ++i) EXPECT_EQ(pieces[i], nullptr);
    ReleaseSubstring(pieces, static_cast<int32_t>(count));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, AtConstParseTest,
    ::testing::Values(SplitCase{"Plain", "a,b,c", {"a", "b", "c"}},
                      SplitCase{"EmptyText", "", {""}},
                      SplitCase{"EmptyFields", ",,", {"", "", ""}},
                      SplitCase{"QuotedComma", "1,\"a,b\",2", {"1", "a,b", "2"}},
                      // Line feed, carriage return, blank, quote: in that order only.
                      SplitCase{"TrimOrder", "\n\r \"x\" \r\n", {"x"}},
                      SplitCase{"BlanksInsideQuotes", " \" x \" ", {" x "}},
                      SplitCase{"CrBeforeLfIsNotTrimmedAway", "a\n\r", {"a\n"}},
                      SplitCase{"InnerQuotesKept", "\"say \"hi\"\"", {"say \"hi"}},
                      SplitCase{"UnclosedQuoteLosesLastField", "1,\"ab,c", {"1"}},
                      SplitCase{"QuoteOnly", "\"", {}}),
    [](const auto &info) { return std::string(info.param.label); });

TEST(AtConstParse, StopsAtCapacity) {
    char *pieces[2] = {};
    uint32_t count = 0;
    ASSERT_EQ(AtConstParse(pieces, 2, "a,b,c", &count), AT_PARSE_OK);
    EXPECT_EQ(count, 2u);
    EXPECT_STREQ(pieces[0], "a");
    EXPECT_STREQ(pieces[1], "b");
    ReleaseSubstring(pieces, 2);
}

TEST(AtConstParse, RefusesNullArguments) {
    char *pieces[2] = {};
    uint32_t count = 0;
    EXPECT_EQ(AtConstParse(nullptr, 2, "a", &count), AT_PARSE_NO_ENTRY);
    EXPECT_EQ(AtConstParse(pieces, 2, nullptr, &count), AT_PARSE_NO_ENTRY);
    EXPECT_EQ(AtConstParse(pieces, 2, "a", nullptr), AT_PARSE_NO_ENTRY);
}

TEST(ParseField, PairsNamesWithValues) {
    Result row;
    ASSERT_EQ(ParseField(row.Out(), "a,\"b,c\",d", "1,2"), AT_PARSE_OK);
    EXPECT_EQ(row.rows(), (Rows{{{"a", "1"}, {"b,c", "2"}, {"d", kNull}}}));
}

TEST(ParseField, RefusesNullArguments) {
    TraceCapture trace;
    AtCmdParseNode *row = nullptr;
    EXPECT_EQ(ParseField(&row, nullptr, "1"), AT_PARSE_NO_ENTRY);
    EXPECT_FALSE(trace.Contains("the atValueStr or result is NULL\n"));
    EXPECT_EQ(ParseField(&row, "a", nullptr), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseField(nullptr, "a", "1"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(trace.Count("the atValueStr or result is NULL\n"), 2u);
    EXPECT_EQ(row, nullptr);
}

TEST(GreatLinkListAt, TakesOwnershipInOrder) {
    char *names[2] = {AtParseStrDup("a"), nullptr};
    char *values[2] = {AtParseStrDup("1"), AtParseStrDup("2")};
    Result row;
    row.first = GreatLinkListAt(names, values, 2);
    EXPECT_EQ(row.rows(), (Rows{{{"a", "1"}, {kNull, "2"}}}));
    EXPECT_EQ(row.first->atFieldName, names[0]);
}

TEST(GreatLinkListAt, RefusesBadArguments) {
    TraceCapture trace;
    char *names[1] = {};
    EXPECT_EQ(GreatLinkListAt(nullptr, names, 1), nullptr);
    EXPECT_EQ(GreatLinkListAt(names, nullptr, 1), nullptr);
    EXPECT_EQ(trace.Count("the modeName or modeValue is NULL\n"), 2u);
    std::vector<char *> many(1001, nullptr);
    EXPECT_EQ(GreatLinkListAt(many.data(), many.data(), 1001), nullptr);
    EXPECT_TRUE(trace.Contains("the modeNumber out of range, modeNumber is 1001\n"));
}

AtCmdParseNode *NewRow(const char *value) {
    char *names[1] = {AtParseStrDup("v")};
    char *values[1] = {AtParseStrDup(value)};
    return GreatLinkListAt(names, values, 1);
}

TEST(AddLinkNode, AppendsBehindTheLastRow) {
    Result rows;
    for (const char *v : {"1", "2", "3"}) AddLinkNode(rows.Out(), NewRow(v));
    EXPECT_EQ(rows.rows(), (Rows{{{"v", "1"}}, {{"v", "2"}}, {{"v", "3"}}}));
}

TEST(AddLinkNode, LogsNullArguments) {
    TraceCapture trace;
    AtCmdParseNode *head = nullptr;
    AddLinkNode(&head, nullptr);
    Result row;
    row.first = NewRow("1");
    AddLinkNode(nullptr, row.first);
    EXPECT_EQ(trace.Count("para error\n"), 2u);
    EXPECT_EQ(head, nullptr);
}

TEST(FreeAtCmd, AcceptsNullAndHeaderNodes) {
    FreeAtCmd(nullptr);
    FreeAtCmdParseNode(nullptr);
    AtCmdParseNode *header = AtParseNewNode();
    ASSERT_NE(header, nullptr);
    header->atFieldName = AtParseStrDup("modes");
    header->nextField = NewRow("2");
    FreeAtCmd(header);  // leak-checked under the sanitizer build
}

TEST(ParseSoftStr, TakesTextBehindTheFirstDot) {
    char reply[] = "+CGMR: 21.110.00.00.00";
    Result node;
    ASSERT_EQ(ParseSoftStr(node.Out(), "246.subsoftversion", reply, "+CGMR"), AT_PARSE_OK);
    EXPECT_EQ(node.rows(), (Rows{{{"subsoftversion", "110.00.00.00"}}}));
}

TEST(ParseSoftStr, RefusesBadInput) {
    TraceCapture trace;
    char reply[] = "+CGMR: 21.110";
    char noDot[] = "+CGMR: 21";
    AtCmdParseNode *out = nullptr;
    EXPECT_EQ(ParseSoftStr(nullptr, "246.v", reply, "+CGMR"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseSoftStr(&out, "246.v", nullptr, "+CGMR"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseSoftStr(&out, "246.v", reply, nullptr), AT_PARSE_BAD_ARG);
    EXPECT_EQ(trace.Count("para error\n"), 3u);
    EXPECT_EQ(ParseSoftStr(&out, nullptr, reply, "+CGMR"), AT_PARSE_NO_TEMPLATE);
    EXPECT_EQ(ParseSoftStr(&out, "246.v", reply, "^CGMR"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseSoftStr(&out, "246.v", noDot, "+CGMR"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseSoftStr(&out, "246", reply, "+CGMR"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(out, nullptr);
}

TEST(ParseNdisStateQueryAtStr, HeaderThenGroupFields) {
    char reply[] = "^NDISSTATQRY: (1,2,3)";
    Result row;
    ASSERT_EQ(ParseNdisStateQueryAtStr(row.Out(), "^NDISSTATQRY:(cid)", reply, "^NDISSTATQRY"),
              AT_PARSE_OK);
    EXPECT_EQ(row.rows(), (Rows{{{"cid", kNull}, {"cid", "1"}, {kNull, "2"}, {kNull, "3"}}}));
}

TEST(ParseNdisStateQueryAtStr, RefusesBadInput) {
    const char *kTemplate = "^NDISSTATQRY:(cid)";
    AtCmdParseNode *out = nullptr;
    std::string noGroup = "^NDISSTATQRY: 1,2";
    std::string unclosed = "^NDISSTATQRY: (1,2";
    std::string groupBeforePrefix = "(1) ^NDISSTATQRY: 2";
    std::string good = "^NDISSTATQRY: (1)";
    EXPECT_EQ(ParseNdisStateQueryAtStr(&out, kTemplate, noGroup.data(), "^NDISSTATQRY"),
              AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseNdisStateQueryAtStr(&out, kTemplate, unclosed.data(), "^NDISSTATQRY"),
              AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseNdisStateQueryAtStr(&out, kTemplate, groupBeforePrefix.data(), "^NDISSTATQRY"),
              AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseNdisStateQueryAtStr(&out, "^NDISSTATQRY:cid", good.data(), "^NDISSTATQRY"),
              AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseNdisStateQueryAtStr(&out, kTemplate, good.data(), "^CGDCONT"), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseNdisStateQueryAtStr(&out, nullptr, good.data(), "^NDISSTATQRY"),
              AT_PARSE_BAD_ARG);
    EXPECT_EQ(out, nullptr);
}

}  // namespace
}  // namespace atapi::test
