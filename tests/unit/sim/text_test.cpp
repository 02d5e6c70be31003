// Substitutions in scenario texts: compile errors and expansion.
#include "text.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace atsim::test {
namespace {

struct ExpandCase {
    const char *raw;
    const char *expanded;
};

// Variables: "sim" = READY, "n" = 7; captures: $0 = "AT+X=1,2", $1 = "1", $2 = "2".
class ExpandTextTest : public ::testing::TestWithParam<ExpandCase> {};

TEST_P(ExpandTextTest, Expands) {
    const std::map<std::string, std::size_t> slots{{"sim", 0}, {"n", 1}};
    const std::vector<std::string> variables{"READY", "7"};
    const std::vector<std::string> captures{"AT+X=1,2", "1", "2"};
    Text text;
    std::string error;
    ASSERT_TRUE(CompileText(
        GetParam().raw, 2, [&](const std::string &n) { return slots.at(n); }, &text, &error))
        << error;
    std::mt19937 random(1);
    EXPECT_EQ(ExpandText(text, ExpandContext{variables, captures, random}), GetParam().expanded);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ExpandTextTest,
    ::testing::Values(ExpandCase{"plain text", "plain text"}, ExpandCase{"", ""},
                      ExpandCase{"+CPIN: ${sim}", "+CPIN: READY"},
                      ExpandCase{"$1-$2 of $0", "1-2 of AT+X=1,2"}, ExpandCase{"${n}${n}", "77"},
                      ExpandCase{"cost $$5", "cost $5"}, ExpandCase{"$x and $", "$x and $"},
                      ExpandCase{"${rand 4 4}", "4"}, ExpandCase{"${rand -2 -2},", "-2,"}));

struct CompileErrorCase {
    const char *raw;
    const char *error;
};

class CompileTextErrorTest : public ::testing::TestWithParam<CompileErrorCase> {};

TEST_P(CompileTextErrorTest, Refuses) {
    Text text;
    std::string error;
    EXPECT_FALSE(CompileText(
        GetParam().raw, 1, [](const std::string &) { return 0u; }, &text, &error));
    EXPECT_EQ(error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CompileTextErrorTest,
    ::testing::Values(
        CompileErrorCase{"$2", "$2 but the pattern has only 1 wildcard(s)"},
        CompileErrorCase{"${sim", "unclosed '${'"},
        CompileErrorCase{"${}", "bad substitution '${}'"},
        CompileErrorCase{"${9lives}", "bad substitution '${9lives}'"},
        CompileErrorCase{"${rand 5 1}", "bad random range '${rand 5 1}' (want ${rand LO HI})"},
        CompileErrorCase{"${rand 5}", "bad random range '${rand 5}' (want ${rand LO HI})"}));

TEST(ExpandText, RandomStaysInRange) {
    Text text;
    std::string error;
    ASSERT_TRUE(CompileText(
        "${rand 10 12}", 0, [](const std::string &) { return 0u; }, &text, &error));
    std::mt19937 random(42);
    const std::vector<std::string> none;
    std::map<std::string, int> seen;
    for (int i = 0; i < 200; ++i) ++seen[ExpandText(text, ExpandContext{none, none, random})];
    EXPECT_EQ(seen.size(), 3u);
    EXPECT_TRUE(seen.count("10") && seen.count("11") && seen.count("12"));
}

}  // namespace
}  // namespace atsim::test
