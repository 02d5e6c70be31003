// Null-safe string and number utilities: every edge the callers rely on.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "atapi/at_text.h"

namespace {

int Sign(int v) { return (v > 0) - (v < 0); }

TEST(AtCharToHex, ValueAndInPlaceUpperCase) {
    struct Case {
        char in;
        int32_t value;
        char after;
    };
    const Case cases[] = {
        {'0', 0, '0'},
        {'9', 9, '9'},
        {'A', 10, 'A'},
        {'F', 15, 'F'},
        {'a', 10, 'A'},
        {'f', 15, 'F'},
        {'g', 16, 'G'},
        {'z', 35, 'Z'},
        // Any code above 96 is shifted down by 32, unchecked; 96 itself is left alone.
        {'{', 36, '['},
        {'`', 41, '`'},
    };
    for (const Case &c : cases) {
        char ch = c.in;
        EXPECT_EQ(AtCharToHex(&ch), c.value) << c.in;
        EXPECT_EQ(ch, c.after) << c.in;
    }
    EXPECT_EQ(AtCharToHex(nullptr), -1);
}

struct SplitCase {
    const char *in;
    uint32_t size;  // 0: the whole text and its terminator
    char ch;
    const char *out;
    size_t end;  // offset of the returned terminator position
};

class SplitSpaceTest : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitSpaceTest, TrimsRunsInPlace) {
    const SplitCase &c = GetParam();
    char buf[64];
    ASSERT_LT(std::strlen(c.in), sizeof buf);
    std::strcpy(buf, c.in);
    const uint32_t size = c.size != 0 ? c.size : static_cast<uint32_t>(std::strlen(c.in) + 1);
    char *end = SplitSpace(buf, size, c.ch);
    EXPECT_STREQ(buf, c.out);
    EXPECT_EQ(end, buf + c.end);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SplitSpaceTest,
    testing::Values(SplitCase{"  ab  ", 0, ' ', "ab", 2}, SplitCase{"\n\n", 0, '\n', "", 0},
                    SplitCase{" a b ", 0, ' ', "a b", 3}, SplitCase{"ab", 0, ' ', "ab", 2},
                    SplitCase{"xxabxx", 0, 'x', "ab", 2}, SplitCase{"\n ab \n", 0, '\n', " ab ", 4},
                    SplitCase{"", 0, ' ', "", 0},
                    // only the first size bytes are looked at
                    SplitCase{"  ab  ", 4, ' ', "ab", 2},
                    // size below 2 and the character 0 leave the text alone
                    SplitCase{" a ", 1, ' ', " a ", 1}, SplitCase{" a ", 0, '\0', " a ", 3}));

TEST(SplitSpace, NullAndUnterminatedBuffers) {
    EXPECT_EQ(SplitSpace(nullptr, 8, ' '), nullptr);

    // No terminator within size: trimming still ends inside the buffer.
    char trimmed[4] = {'x', 'a', 'b', 'x'};
    EXPECT_EQ(SplitSpace(trimmed, sizeof trimmed, 'x'), trimmed + 2);
    EXPECT_EQ(std::string(trimmed), "ab");

    // Nothing to trim: not a byte is written past the buffer (ASan checks).
    char full[3] = {'a', 'b', 'c'};
    EXPECT_EQ(SplitSpace(full, sizeof full, ' '), full + 3);
    EXPECT_EQ(std::string(full, 3), "abc");
}

TEST(AtHexStrToUnsignedInteger, WholeTextOrZero) {
    struct Case {
        const char *in;
        uint64_t value;
    };
    const Case cases[] = {
        {"0", 0},
        {"1f", 31},
        {"1F", 31},
        {"deadBEEF", 0xdeadbeefULL},
        {"FFFFFFFFFFFFFFFF", UINT64_MAX},
        {"0123456789abcdef", 0x0123456789abcdefULL},
        {"1G", 0},
        {"10000000000000000", 0},  // 17 characters
        {"00000000000000001", 0},  // 17 characters, even with a small value
        {"", 0},
        {"0x10", 0},
        {" 1", 0},
        {"12 ", 0},
    };
    for (const Case &c : cases) EXPECT_EQ(AtHexStrToUnsignedInteger(c.in), c.value) << c.in;
    EXPECT_EQ(AtHexStrToUnsignedInteger(nullptr), 0U);
}

TEST(SeparatorSearch, QuotedStretchesAreSkipped) {
    struct Case {
        const char *in;
        char sep;
        int32_t count;
        int nextOffset;  // -1: none
    };
    const Case cases[] = {
        {"a,\"b,c\",d", ',', 2, 1},
        {"\"b,c\",d", ',', 1, 5},
        {"a,b,c", ',', 2, 1},
        {",,", ',', 2, 0},
        {"", ',', 0, -1},
        {"\"a,b", ',', 0, -1},  // an unterminated quote runs to the end
        {"\"a\"\"b\",c", ',', 1, 6},
        {"a)(b),c)", ')', 3, 1},
        {"a\"b\"c", '"', 0, -1},  // a quote only toggles, it is never found
    };
    for (const Case &c : cases) {
        EXPECT_EQ(AtCountSeparator(c.in, c.sep), c.count) << c.in;
        const char *next = AtGetNextSeperator(c.in, c.sep);
        if (c.nextOffset < 0) {
            EXPECT_EQ(next, nullptr) << c.in;
        } else {
            EXPECT_EQ(next, c.in + c.nextOffset) << c.in;
        }
    }
    EXPECT_EQ(AtCountSeparator(nullptr, ','), 0);
    EXPECT_EQ(AtGetNextSeperator(nullptr, ','), nullptr);
}

TEST(AtTestStrNum, DigitsOnly) {
    const std::pair<const char *, int32_t> cases[] = {
        {"", 0}, {"0", 0}, {"0123456789", 0}, {"12a", -1}, {"-1", -1}, {" 1", -1}, {"1 ", -1},
    };
    for (const auto &[in, expected] : cases) EXPECT_EQ(AtTestStrNum(in), expected) << in;
    EXPECT_EQ(AtTestStrNum(nullptr), -1);
}

TEST(SafeStrCompare, NullOrderingAndCase) {
    struct Case {
        const char *a;
        const char *b;
        int cmpSign;
        int caseCmpSign;
    };
    const Case cases[] = {
        {nullptr, nullptr, 0, 0}, {nullptr, "a", -1, -1}, {"a", nullptr, 1, 1},
        {"a", "a", 0, 0},         {"a", "b", -1, -1},     {"b", "a", 1, 1},
        {"ABC", "abc", -1, 0},    {"abd", "ABC", 1, 1},   {"", "a", -1, -1},
    };
    for (const Case &c : cases) {
        const std::string label =
            std::string(c.a ? c.a : "(null)") + " / " + (c.b ? c.b : "(null)");
        EXPECT_EQ(Sign(SafeStrCmp(c.a, c.b)), c.cmpSign) << label;
        EXPECT_EQ(Sign(SafeStrCaseCmp(c.a, c.b)), c.caseCmpSign) << label;
    }
    // The null results are exact, not only signs.
    EXPECT_EQ(SafeStrCmp(nullptr, "a"), -1);
    EXPECT_EQ(SafeStrCaseCmp("a", nullptr), 1);
}

TEST(SafeStrNumbers, NullGivesZero) {
    const std::pair<const char *, long> cases[] = {
        {nullptr, 0}, {"42", 42}, {" -7x", -7}, {"x", 0}, {"", 0}, {"-123456", -123456},
    };
    for (const auto &[in, expected] : cases) {
        EXPECT_EQ(SafeStrAtoi(in), static_cast<int32_t>(expected)) << (in ? in : "(null)");
        EXPECT_EQ(SafeStrAtol(in), expected) << (in ? in : "(null)");
    }
}

TEST(AtStrMultiCaseCmp, ShortTextsNeverEqual) {
    struct Case {
        const char *a;
        const char *b;
        uint32_t n;
        int32_t expected;
    };
    const Case cases[] = {
        {"ab", "AB", 5, 1},  // both shorter than n: deliberately 1
        {"", "", 1, 1},
        {"ab", "AB", 2, 0},
        {"abcdef", "ABCxyz", 3, 0},
        {"abc", "ABD", 3, 'c' - 'd'},
        {"abc", "ab", 3, 'c'},  // one text shorter: compared up to its end
        {"ab", "abc", 3, -'c'},
        {"Zeta", "alpha", 4, 'z' - 'a'},
        {nullptr, "a", 1, 0},
        {"a", nullptr, 1, 0},
        {"a", "b", 0, 0},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(AtStrMultiCaseCmp(c.a, c.b, c.n), c.expected)
            << (c.a ? c.a : "(null)") << " / " << (c.b ? c.b : "(null)") << " n=" << c.n;
    }
}

TEST(AtCheckValidNum, RangeAndAnyRange) {
    struct Case {
        const char *s;
        int64_t minVal;
        int64_t maxVal;
        int32_t expected;
    };
    const Case cases[] = {
        {"5", 0, 0, 1},  // min = max = 0: any value, not even parsed
        {"abc", 0, 0, 1},
        {"5", 1, 4, 0},
        {"1", 1, 4, 1},
        {"4", 1, 4, 1},
        {"0", 1, 4, 0},
        {" -3x", -5, -3, 1},  // atoll rules: blanks, sign, digits up to the first other
        {"", -1, 1, 1},       // no digits reads as 0
        {"x", 1, 4, 0},
        {"5", 5, 4, 0},  // max below min
        {"9223372036854775807", INT64_MIN, INT64_MAX, 1},
        {"-9223372036854775808", INT64_MIN, -1, 1},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(AtCheckValidNum(c.s, c.minVal, c.maxVal), c.expected)
            << c.s << " in [" << c.minVal << ", " << c.maxVal << "]";
    }
    EXPECT_EQ(AtCheckValidNum(nullptr, 0, 0), 0);
    EXPECT_EQ(AtCheckValidNum(nullptr, 1, 4), 0);
}

}  // namespace
