// Bounded case-insensitive search, the command-class lookup and trimming.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "atapi/at_text.h"

namespace {

struct SearchCase {
    const char *buf;
    uint32_t bufLen;
    const char *needle;
    int offset;  // -1: not found
};

class AtStrcasestrTest : public testing::TestWithParam<SearchCase> {};

TEST_P(AtStrcasestrTest, FindsWithinBound) {
    const SearchCase &c = GetParam();
    const char *found = AtStrcasestr(c.buf, c.bufLen, c.needle);
    if (c.offset < 0) {
        EXPECT_EQ(found, nullptr);
    } else {
        EXPECT_EQ(found, c.buf + c.offset);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AtStrcasestrTest,
    testing::Values(SearchCase{"abcdef", 6, "DEF", 3},   // last start tried: bufLen - strlen
                    SearchCase{"abcdef", 5, "def", -1},  // the match crosses the bound
                    SearchCase{"abc", 3, "ABC", 0},      // needle as long as the bound
                    SearchCase{"abc", 2, "abc", -1},     // needle longer than the bound
                    SearchCase{"abc", 3, "abcd", -1}, SearchCase{"xxABxxab", 8, "ab", 2},
                    SearchCase{"AT+cpin?", 8, "+CPIN", 2}, SearchCase{"abc", 3, "", -1},
                    SearchCase{"abc", 0, "a", -1}, SearchCase{nullptr, 3, "a", -1},
                    SearchCase{"abc", 3, nullptr, -1}));

TEST(AtStrcasestr, ReadsOnlyTheBoundedBytes) {
    const char unterminated[4] = {'a', 'b', 'C', 'd'};
    EXPECT_EQ(AtStrcasestr(unterminated, sizeof unterminated, "cd"), unterminated + 2);
    EXPECT_EQ(AtStrcasestr(unterminated, sizeof unterminated, "de"), nullptr);
}

TEST(CmdMap, RowsCarryTheirIdsAndAreFoundByPrefix) {
    ASSERT_EQ(std::size(g_tdRightListCmdMap), static_cast<size_t>(AT_RIGHT_LIST_CMD_COUNT));
    for (int32_t i = 0; i < AT_RIGHT_LIST_CMD_COUNT; ++i) {
        const AtRightListCmd &row = g_tdRightListCmdMap[i];
        EXPECT_EQ(row.id, i);
        const std::string line = std::string("AT") + row.prefix + "=1";
        EXPECT_EQ(AtCheckAtCmd(line.c_str(), static_cast<uint32_t>(line.size())), i) << line;
    }
}

struct CheckCase {
    const char *line;
    uint32_t bufLen;  // 0: the whole line
    int32_t id;
};

class AtCheckAtCmdTest : public testing::TestWithParam<CheckCase> {};

TEST_P(AtCheckAtCmdTest, FirstRowInTableOrder) {
    const CheckCase &c = GetParam();
    const uint32_t len = c.bufLen != 0 ? c.bufLen : static_cast<uint32_t>(std::strlen(c.line));
    EXPECT_EQ(AtCheckAtCmd(c.line, len), c.id) << c.line;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AtCheckAtCmdTest,
    testing::Values(CheckCase{"AT+CPBW=1,\"0123456789\",129,\"Bob\"", 0, 8},
                    CheckCase{"AT+CGPADDR=1", 0, 11}, CheckCase{"at+cgpaddr", 0, 11},
                    // rows win by table order, not by position in the line
                    CheckCase{"AT+CPBW=1,\"0123456789\",129,\"Catdog\"", 0, 2},
                    CheckCase{"AT^IPOPEN=1,\"+CIMI\"", 0, 1}, CheckCase{"ATD0123456789;", 0, 2},
                    CheckCase{"+CMT: \"+8613912345678\",,\"24/01/01\"", 0, 13},
                    CheckCase{"AT+CGMI", 0, -1}, CheckCase{"AT+CPIN=1234", 6, -1},
                    CheckCase{"AT+CPIN=1234", 7, 7}));

TEST(AtCheckAtCmd, NullOrEmpty) {
    EXPECT_EQ(AtCheckAtCmd(nullptr, 10), -1);
    EXPECT_EQ(AtCheckAtCmd("", 0), -1);
}

struct TrimCase {
    const char *src;
    uint32_t srcLen;
    uint32_t dstSize;
    int32_t ret;
    const char *dst;  // checked only on success
};

class AtStringTrimTest : public testing::TestWithParam<TrimCase> {};

TEST_P(AtStringTrimTest, TrimsLineEndsAndBlanksOnly) {
    const TrimCase &c = GetParam();
    char dst[64];
    std::memset(dst, 'Z', sizeof dst);
    ASSERT_LE(c.dstSize, sizeof dst);
    EXPECT_EQ(AtStringTrim(c.src, c.srcLen, dst, c.dstSize), c.ret) << c.src;
    if (c.ret == 0) {
        EXPECT_STREQ(dst, c.dst);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AtStringTrimTest,
    testing::Values(TrimCase{" \r\nab c\r\n ", 10, 32, 0, "ab c"},
                    TrimCase{"\tab\t", 4, 32, 0, "\tab\t"},  // tabs are not whitespace here
                    TrimCase{"\vab\n", 4, 32, 0, "\vab"}, TrimCase{"   ", 3, 32, 0, ""},
                    TrimCase{"abc", 3, 4, 0, "abc"},
                    TrimCase{"  abc  ", 4, 32, 0, "ab"},  // only srcLen bytes count
                    TrimCase{"abc", 3, 3, 1, nullptr},    // srcLen must stay below dstSize
                    TrimCase{"ab", 0, 32, 1, nullptr}));

TEST(AtStringTrim, NullPointersFail) {
    char dst[8];
    EXPECT_EQ(AtStringTrim(nullptr, 3, dst, sizeof dst), 1);
    EXPECT_EQ(AtStringTrim("abc", 3, nullptr, 8), 1);
}

}  // namespace
