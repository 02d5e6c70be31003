// Command patterns: wildcards, case, and what each wildcard captures.
#include "pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace atsim::test {
namespace {

struct PatternCase {
    const char *pattern;
    const char *line;
    bool matches;
    std::vector<std::string> captures;  // after the whole line
};

class MatchPatternTest : public ::testing::TestWithParam<PatternCase> {};

TEST_P(MatchPatternTest, MatchesAndCaptures) {
    const PatternCase &c = GetParam();
    std::vector<std::string> captures{"untouched"};
    ASSERT_EQ(MatchPattern(c.pattern, c.line, &captures), c.matches);
    if (!c.matches) {
        EXPECT_EQ(captures, std::vector<std::string>{"untouched"});
        return;
    }
    std::vector<std::string> expected{c.line};
    expected.insert(expected.end(), c.captures.begin(), c.captures.end());
    EXPECT_EQ(captures, expected);
    EXPECT_EQ(WildcardCount(c.pattern), c.captures.size());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MatchPatternTest,
    ::testing::Values(
        PatternCase{"AT+CGMI", "AT+CGMI", true, {}}, PatternCase{"AT+CGMI", "at+cgmi", true, {}},
        PatternCase{"AT+CGMI", "AT+CGMIX", false, {}}, PatternCase{"AT+CGMI", "AT+CGM", false, {}},
        PatternCase{"AT+SLOW=*", "AT+SLOW=250", true, {"250"}},
        PatternCase{"AT+SLOW=*", "AT+SLOW=", true, {""}},
        PatternCase{"AT+SLOW=*", "AT+SLOW", false, {}},
        // Case is ignored for matching but kept in what is captured.
        PatternCase{"at+echocmd*", "AT+ECHOCMD Hello", true, {" Hello"}},
        PatternCase{"*", "anything at all", true, {"anything at all"}},
        PatternCase{"AT*CPIN=\"*\"*", "AT^CPIN=\"1234\",\"\"", true, {"^", "1234", ",\"\""}},
        PatternCase{"AT*CPIN=\"*\",\"*\"",
                    "AT+CPIN=\"12345678\",\"4321\"",
                    true,
                    {"+", "12345678", "4321"}},
        PatternCase{"AT*CPIN=\"*\",\"*\"", "AT+CPIN=\"1234\"", false, {}},
        // The trailing literal must end the line.
        PatternCase{"AT+CGDCONT=1,\"*\",\"*\"", "AT+CGDCONT=1,\"IP\",\"a\",\"\",,,", false, {}},
        // Earlier wildcards take the shortest text.
        PatternCase{"a*b*c", "abcbc", true, {"", "cb"}},
        PatternCase{"AT^NDISDUP=*,1*", "AT^NDISDUP=2,1,\"x\"", true, {"2", ",\"x\""}},
        // Head and tail may not overlap.
        PatternCase{"ab*ba", "aba", false, {}}, PatternCase{"*ab", "ab", true, {""}},
        PatternCase{"a**b", "axyb", true, {"", "xy"}}));

}  // namespace
}  // namespace atsim::test
