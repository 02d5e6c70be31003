// Bounded case-insensitive search, the command-class lookup and trimming.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <utility>

#include "atapi/at_text.h"

namespace {

// Only the first bufLen bytes are searched; the last start tried is
// bufLen - strlen(needle). Cases: buffer, bufLen, needle, offset found (-1: none).
TEST(AtStrcasestr, FindsWithinTheBound) {
    const std::tuple<const char *, uint32_t, const char *, int> cases[] = {
        {"abcdef", 6, "DEF", 3}, {"abcdef", 5, "def", -1}, {"abc", 3, "ABC", 0},
        {"abc", 2, "abc", -1},   {"xxABxxab", 8, "ab", 2}, {"abc", 3, "", -1},
        {nullptr, 3, "a", -1},   {"abc", 3, nullptr, -1}};
    for (const auto &[buf, bufLen, needle, offset] : cases) {
        EXPECT_EQ(AtStrcasestr(buf, bufLen, needle), offset < 0 ? nullptr : buf + offset) << bufLen;
    }
    const char unterminated[4] = {'a', 'b', 'C', 'd'};
    EXPECT_EQ(AtStrcasestr(unterminated, sizeof unterminated, "cd"), unterminated + 2);
}

// Rows win by table order, not by position in the line; only bufLen bytes count.
TEST(AtCheckAtCmd, FirstRowInTableOrder) {
    const std::pair<const char *, int32_t> cases[] = {
        {"at+cgpaddr", 11},
        {"AT+CPBW=1,\"0123456789\",129,\"Catdog\"", 2},
        {"AT^IPOPEN=1,\"+CIMI\"", 1},
        {"+CMT: \"+8613912345678\",,\"24/01/01\"", 13},
        {"AT+CGMI", -1},
        {"", -1}};
    for (const auto &[line, id] : cases) {
        EXPECT_EQ(AtCheckAtCmd(line, static_cast<uint32_t>(std::strlen(line))), id) << line;
    }
    EXPECT_EQ(AtCheckAtCmd("AT+CPIN=1234", 6), -1);
    EXPECT_EQ(AtCheckAtCmd("AT+CPIN=1234", 7), 7);
    EXPECT_EQ(AtCheckAtCmd(nullptr, 10), -1);
}

// Only line feed, carriage return and blank are whitespace here; srcLen must
// stay below dstSize. Cases: source, srcLen, dstSize, result (null: fails).
TEST(AtStringTrim, TrimsLineEndsAndBlanksOnly) {
    const std::tuple<const char *, uint32_t, uint32_t, const char *> cases[] = {
        {" \r\nab c\r\n ", 10, 32, "ab c"},
        {"\tab\t", 4, 32, "\tab\t"},
        {"\vab\n", 4, 32, "\vab"},
        {"   ", 3, 32, ""},
        {"abc", 3, 4, "abc"},
        {"  abc  ", 4, 32, "ab"},
        {"abc", 3, 3, nullptr},
        {"ab", 0, 32, nullptr},
        {nullptr, 3, 32, nullptr}};
    for (const auto &[src, srcLen, dstSize, trimmed] : cases) {
        char dst[32];
        EXPECT_EQ(AtStringTrim(src, srcLen, dst, dstSize), trimmed != nullptr ? 0 : 1) << srcLen;
        if (trimmed != nullptr) {
            EXPECT_STREQ(dst, trimmed);
        }
    }
    EXPECT_EQ(AtStringTrim("abc", 3, nullptr, 8), 1);
}

}  // namespace
