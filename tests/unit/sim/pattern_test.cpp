// Command patterns: wildcards, case, and what each wildcard captures.
#include "pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace atsim::test {
namespace {

TEST(MatchPattern, MatchesAndCaptures) {
    struct Case {
        const char *pattern;
        const char *line;
        bool matches;
        std::vector<std::string> captures;  // after the whole line
    };
    const Case cases[] = {
        {"AT+CGMI", "at+cgmi", true, {}},
        {"AT+CGMI", "AT+CGMIX", false, {}},
        {"AT+SLOW=*", "AT+SLOW=", true, {""}},
        {"AT+SLOW=*", "AT+SLOW", false, {}},
        // Case is ignored for matching but kept in what is captured.
        {"at+echocmd*", "AT+ECHOCMD Hello", true, {" Hello"}},
        {"AT*CPIN=\"*\",\"*\"", "AT+CPIN=\"12345678\",\"4321\"", true, {"+", "12345678", "4321"}},
        {"AT*CPIN=\"*\",\"*\"", "AT+CPIN=\"1234\"", false, {}},
        // The trailing literal must end the line.
        {"AT+CGDCONT=1,\"*\",\"*\"", "AT+CGDCONT=1,\"IP\",\"a\",\"\",,,", false, {}},
        // Earlier wildcards take the shortest text.
        {"a*b*c", "abcbc", true, {"", "cb"}},
        // Head and tail may not overlap.
        {"ab*ba", "aba", false, {}},
        {"*ab", "ab", true, {""}},
        {"a**b", "axyb", true, {"", "xy"}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.pattern) + " ~ " + c.line);
        std::vector<std::string> captures{"untouched"};
        ASSERT_EQ(MatchPattern(c.pattern, c.line, &captures), c.matches);
        std::vector<std::string> expected{c.matches ? c.line : "untouched"};
        expected.insert(expected.end(), c.captures.begin(), c.captures.end());
        EXPECT_EQ(captures, expected);
    }
}

}  // namespace
}  // namespace atsim::test
