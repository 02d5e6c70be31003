// Null-safe string and number utilities, bounded case-insensitive search and
// trimming: the edges and null rules callers rely on.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <utility>

#include "atapi/at_text.h"

namespace {

constexpr const char *kNullText = nullptr;

int Sign(int v) { return (v > 0) - (v < 0); }
std::string Show(const char *s) { return s != nullptr ? '"' + std::string(s) + '"' : "(null)"; }

// Upper-cases in place, then subtracts unchecked: codes above 96 move down by 32.
TEST(AtCharToHex, ValueAndInPlaceUpperCase) {
    const std::tuple<char, int32_t, char> cases[] = {
        {'9', 9, '9'}, {'f', 15, 'F'}, {'z', 35, 'Z'}, {'{', 36, '['}, {'`', 41, '`'}};
    for (const auto &[in, value, after] : cases) {
        char ch = in;
        EXPECT_EQ(AtCharToHex(&ch), value) << in;
        EXPECT_EQ(ch, after) << in;
    }
    EXPECT_EQ(AtCharToHex(nullptr), -1);
}

// Size 0 below stands for the text and its terminator; the offset is that of
// the returned terminator.
TEST(SplitSpace, TrimsRunsInPlaceWithinSize) {
    const std::tuple<const char *, uint32_t, char, const char *, size_t> cases[] = {
        {"  ab  ", 0, ' ', "ab", 2}, {"\n\n", 0, '\n', "", 0},         {" a b ", 0, ' ', "a b", 3},
        {"xxabxx", 0, 'x', "ab", 2}, {"\n ab \n", 0, '\n', " ab ", 4}, {"  ab  ", 4, ' ', "ab", 2},
        {" a ", 1, ' ', " a ", 1},   {" a ", 0, '\0', " a ", 3}};
    for (const auto &[in, size, ch, out, end] : cases) {
        char buf[16];
        std::strcpy(buf, in);
        const uint32_t bytes = size != 0 ? size : static_cast<uint32_t>(std::strlen(in) + 1);
        EXPECT_EQ(SplitSpace(buf, bytes, ch), buf + end) << Show(in);
        EXPECT_STREQ(buf, out) << Show(in);
    }
    EXPECT_EQ(SplitSpace(nullptr, 8, ' '), nullptr);
    // No terminator within size: the result still ends inside the buffer (ASan checks).
    char trimmed[4] = {'x', 'a', 'b', 'x'};
    EXPECT_EQ(SplitSpace(trimmed, sizeof trimmed, 'x'), trimmed + 2);
    EXPECT_EQ(std::string(trimmed), "ab");
    char full[3] = {'a', 'b', 'c'};
    EXPECT_EQ(SplitSpace(full, sizeof full, ' '), full + 3);
}

TEST(AtHexStrToUnsignedInteger, WholeTextOrZero) {
    EXPECT_EQ(AtHexStrToUnsignedInteger("deadBEEF"), 0xdeadbeefULL);
    EXPECT_EQ(AtHexStrToUnsignedInteger("FFFFFFFFFFFFFFFF"), UINT64_MAX);
    // Seventeen characters are too many even for a small value.
    for (const char *in : {"1G", "00000000000000001", "", "0x10", " 1", kNullText}) {
        EXPECT_EQ(AtHexStrToUnsignedInteger(in), 0u) << Show(in);
    }
}

// Separators between double quotes do not count; a quote is never found.
// Cases: text, separator, count, offset of the first (-1: none).
TEST(SeparatorSearch, QuotedStretchesAreSkipped) {
    const std::tuple<const char *, char, int32_t, int> cases[] = {
        {"a,\"b,c\",d", ',', 2, 1}, {"\"b,c\",d", ',', 1, 5}, {",,", ',', 2, 0},
        {"\"a,b", ',', 0, -1},      {"a)(b),c)", ')', 3, 1},  {"a\"b\"c", '"', 0, -1},
        {nullptr, ',', 0, -1}};
    for (const auto &[in, sep, count, next] : cases) {
        EXPECT_EQ(AtCountSeparator(in, sep), count) << Show(in);
        EXPECT_EQ(AtGetNextSeperator(in, sep), next < 0 ? nullptr : in + next) << Show(in);
    }
}

TEST(AtTestStrNum, DigitsOnly) {
    const std::pair<const char *, int32_t> cases[] = {
        {"", 0}, {"0123456789", 0}, {"12a", -1}, {"-1", -1}, {nullptr, -1}};
    for (const auto &[in, expected] : cases) EXPECT_EQ(AtTestStrNum(in), expected) << Show(in);
}

// Cases: a, b, and the signs of the plain and case-blind comparisons.
TEST(SafeStrCompare, NullOrderingAndCase) {
    const std::tuple<const char *, const char *, int, int> cases[] = {
        {nullptr, nullptr, 0, 0}, {nullptr, "a", -1, -1}, {"a", nullptr, 1, 1},
        {"a", "b", -1, -1},       {"ABC", "abc", -1, 0},  {"abd", "ABC", 1, 1}};
    for (const auto &[a, b, cmp, caseCmp] : cases) {
        EXPECT_EQ(Sign(SafeStrCmp(a, b)), cmp) << Show(a) << Show(b);
        EXPECT_EQ(Sign(SafeStrCaseCmp(a, b)), caseCmp) << Show(a) << Show(b);
    }
    EXPECT_EQ(SafeStrCmp(nullptr, "a"), -1);
    EXPECT_EQ(SafeStrCaseCmp("a", nullptr), 1);
    for (const auto &[in, value] : {std::pair(kNullText, 0L), {" -7x", -7L}, {"x", 0L}}) {
        EXPECT_EQ(SafeStrAtoi(in), value) << Show(in);
        EXPECT_EQ(SafeStrAtol(in), value) << Show(in);
    }
}

// Two texts both shorter than n never compare equal: 1.
TEST(AtStrMultiCaseCmp, TwoShortTextsNeverEqual) {
    const std::tuple<const char *, const char *, uint32_t, int32_t> cases[] = {
        {"ab", "AB", 5, 1},     {"", "", 1, 1},        {"ab", "AB", 2, 0},
        {"abcx", "ABCy", 3, 0}, {"abc", "ABD", 3, -1}, {"abc", "ab", 3, 'c'},
        {nullptr, "a", 1, 0},   {"a", nullptr, 1, 0},  {"a", "b", 0, 0}};
    for (const auto &[a, b, n, expected] : cases) {
        EXPECT_EQ(AtStrMultiCaseCmp(a, b, n), expected) << Show(a) << Show(b) << n;
    }
}

// Minimum and maximum 0 accept anything unparsed; otherwise atoll rules.
TEST(AtCheckValidNum, RangeAndAnyRange) {
    const std::tuple<const char *, int64_t, int64_t, int32_t> cases[] = {
        {"abc", 0, 0, 1}, {"5", 1, 4, 0},      {"1", 1, 4, 1},
        {"4", 1, 4, 1},   {" -3x", -5, -3, 1}, {"", -1, 1, 1},
        {"5", 5, 4, 0},   {nullptr, 0, 0, 0},  {"-9223372036854775808", INT64_MIN, -1, 1}};
    for (const auto &[s, minVal, maxVal, expected] : cases) {
        EXPECT_EQ(AtCheckValidNum(s, minVal, maxVal), expected)
            << Show(s) << " in [" << minVal << ", " << maxVal << "]";
    }
}

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
