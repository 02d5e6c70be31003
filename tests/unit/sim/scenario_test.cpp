// Scenario files: what they compile into, includes, and the errors that stop
// atsim at start with the file and line of the fault.
#include <gtest/gtest.h>

#include <string>

#include "sim_test_util.h"

namespace atsim::test {
namespace {

std::vector<StepKind> KindsOf(const Rule &rule) {
    std::vector<StepKind> kinds;
    for (const Step &step : rule.steps) kinds.push_back(step.kind);
    return kinds;
}

TEST(LoadScenario, CompilesEveryStatement) {
    const Files files{{"main.scn",
                       "# a comment\n"
                       "var sim = SIM PIN\n"
                       "var empty =\n"
                       "periodic 3 ^RSSI: ${rand 1 2}\n"
                       "\n"
                       "on AT+CPIN=\"*\"\n"
                       "  when $1 == ${sim}\n"
                       "  when ${sim} != READY\n"
                       "  line first\n"
                       "  urc ^RSSI: 17\n"
                       "  delay 10\n"
                       "  set sim = READY\n"
                       "  add empty -1\n"
                       "  garbage\n"
                       "  final +CME ERROR: 16\n"
                       "  after 5 ^LATER\n"
                       "on AT+SILENT\n"
                       "  silent\n"
                       "on AT+HANGUP\r\n"
                       "  hangup\r\n"
                       "on AT\n"}};
    Scenario scenario;
    std::string error;
    ASSERT_TRUE(LoadScenario("main.scn", ReaderOf(files), &scenario, &error)) << error;

    EXPECT_EQ(scenario.variableNames, (std::vector<std::string>{"sim", "empty"}));
    EXPECT_EQ(scenario.initialValues, (std::vector<std::string>{"SIM PIN", ""}));
    ASSERT_EQ(scenario.periodics.size(), 1u);
    EXPECT_EQ(scenario.periodics[0].every, 3u);
    ASSERT_EQ(scenario.rules.size(), 4u);

    const Rule &pin = scenario.rules[0];
    EXPECT_EQ(pin.pattern, "AT+CPIN=\"*\"");
    EXPECT_EQ(pin.where.line, 6u);
    ASSERT_EQ(pin.conditions.size(), 2u);
    EXPECT_EQ(pin.conditions[0].op, CompareOp::kEqual);
    EXPECT_EQ(pin.conditions[1].op, CompareOp::kNotEqual);
    EXPECT_EQ(KindsOf(pin),
              (std::vector<StepKind>{StepKind::kLine, StepKind::kUrc, StepKind::kDelay,
                                     StepKind::kSet, StepKind::kAdd, StepKind::kGarbage,
                                     StepKind::kFinal, StepKind::kAfter}));
    EXPECT_EQ(pin.steps[3].slot, 0u);
    EXPECT_EQ(pin.steps[4].slot, 1u);
    EXPECT_EQ(pin.steps[6].where.line, 15u);
    EXPECT_EQ(KindsOf(scenario.rules[1]), std::vector<StepKind>{StepKind::kSilent});
    EXPECT_EQ(scenario.rules[2].pattern, "AT+HANGUP") << "CR of CRLF files is not part of a line";
    EXPECT_EQ(KindsOf(scenario.rules[2]), std::vector<StepKind>{StepKind::kHangup});
    EXPECT_TRUE(scenario.rules[3].steps.empty());
}

TEST(LoadScenario, ComparisonOperators) {
    const Files files{{"main.scn",
                       "on X\n when 1 == 1\n when 1 != 2\n when 1 < 2\n when 1 <= 2\n"
                       " when 2 > 1\n when 2 >= 1\n"}};
    Scenario scenario;
    std::string error;
    ASSERT_TRUE(LoadScenario("main.scn", ReaderOf(files), &scenario, &error)) << error;
    std::vector<CompareOp> ops;
    for (const Condition &c : scenario.rules.at(0).conditions) ops.push_back(c.op);
    EXPECT_EQ(ops, (std::vector<CompareOp>{CompareOp::kEqual, CompareOp::kNotEqual,
                                           CompareOp::kLess, CompareOp::kLessEqual,
                                           CompareOp::kGreater, CompareOp::kGreaterEqual}));
}

// Included rules stand where the include stands; paths are relative to the
// including file; a variable may be declared in a file read later; a later
// 'var' replaces the starting value.
TEST(LoadScenario, IncludesInPlace) {
    const Files files{{"dir/main.scn",
                       "on FIRST\n  line ${late}\n"
                       "include \"sub/middle.scn\"\n"
                       "on LAST\n"
                       "var late = replaced\n"},
                      {"dir/sub/middle.scn", "on MIDDLE\ninclude ../vars.scn\n"},
                      {"dir/vars.scn", "var late = declared\n"}};
    Scenario scenario;
    std::string error;
    ASSERT_TRUE(LoadScenario("dir/main.scn", ReaderOf(files), &scenario, &error)) << error;
    std::vector<std::string> patterns;
    for (const Rule &rule : scenario.rules) patterns.push_back(rule.pattern);
    EXPECT_EQ(patterns, (std::vector<std::string>{"FIRST", "MIDDLE", "LAST"}));
    EXPECT_EQ(scenario.rules[1].where.file, "dir/sub/middle.scn");
    EXPECT_EQ(scenario.initialValues, std::vector<std::string>{"replaced"});
}

struct ErrorCase {
    const char *name;
    Files files;
    const char *error;
};

class LoadScenarioErrorTest : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(LoadScenarioErrorTest, ReportsFileAndLine) {
    Scenario scenario;
    std::string error;
    EXPECT_FALSE(LoadScenario("main.scn", ReaderOf(GetParam().files), &scenario, &error));
    EXPECT_EQ(error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, LoadScenarioErrorTest,
    ::testing::Values(
        ErrorCase{"MissingTopFile", {}, "main.scn: cannot read the scenario file"},
        ErrorCase{"UnknownStatement",
                  {{"main.scn", "on AT\n  frobnicate\n"}},
                  "main.scn:2: unknown statement 'frobnicate'"},
        ErrorCase{"LineOutsideRule",
                  {{"main.scn", "# header\nline OK\n"}},
                  "main.scn:2: 'line' outside a rule (start one with 'on')"},
        ErrorCase{"RuleEndsAtTopLevelStatement",
                  {{"main.scn", "on AT\nvar x = 1\nline y\n"}},
                  "main.scn:3: 'line' outside a rule (start one with 'on')"},
        ErrorCase{"EmptyPattern", {{"main.scn", "on\n"}}, "main.scn:1: missing command pattern"},
        ErrorCase{"EmptyLine", {{"main.scn", "on AT\n line\n"}}, "main.scn:2: missing line text"},
        ErrorCase{"BadFinal",
                  {{"main.scn", "on AT\n  final MAYBE\n"}},
                  "main.scn:2: bad final result 'MAYBE' (OK, ERROR, NO CARRIER, BUSY, NO "
                  "ANSWER, NO DIALTONE, CONNECT, +CME ERROR: <n>, +CMS ERROR: <n>)"},
        ErrorCase{"CodedFinalWithoutCode",
                  {{"main.scn", "on AT\n  final +CME ERROR: \n"}},
                  "main.scn:2: bad final result '+CME ERROR:' (OK, ERROR, NO CARRIER, BUSY, NO "
                  "ANSWER, NO DIALTONE, CONNECT, +CME ERROR: <n>, +CMS ERROR: <n>)"},
        ErrorCase{"StatementAfterFinal",
                  {{"main.scn", "on AT\n  final OK\n  after 1 x\n  line late\n"}},
                  "main.scn:4: nothing but 'after' may follow the end of a reply"},
        ErrorCase{"StatementAfterHangup",
                  {{"main.scn", "on AT\n  hangup\n  after 1 x\n"}},
                  "main.scn:3: nothing may follow 'hangup'"},
        ErrorCase{"WhenAfterAction",
                  {{"main.scn", "on AT\n  line x\n  when 1 == 1\n"}},
                  "main.scn:3: 'when' must come before the rule's actions"},
        ErrorCase{"WhenWithoutOperator",
                  {{"main.scn", "on AT\n  when a = b\n"}},
                  "main.scn:2: expected '<left> <op> <right>' with op == != < <= > >="},
        ErrorCase{"CaptureBeyondWildcards",
                  {{"main.scn", "on AT+X=*\n  line $1 $2\n"}},
                  "main.scn:2: $2 but the pattern has only 1 wildcard(s)"},
        ErrorCase{"CaptureInPeriodic",
                  {{"main.scn", "periodic 1 $1\n"}},
                  "main.scn:1: $1 but the pattern has only 0 wildcard(s)"},
        ErrorCase{"UndeclaredVariableAtFirstUse",
                  {{"main.scn", "on AT\n  line ok\n  line ${nope}\n  set nope = 1\n"}},
                  "main.scn:3: unknown variable 'nope' (declare it with 'var')"},
        ErrorCase{"BadVariableName",
                  {{"main.scn", "var 9x = 1\n"}},
                  "main.scn:1: bad variable name '9x'"},
        ErrorCase{
            "VarWithoutEquals", {{"main.scn", "var x 1\n"}}, "main.scn:1: expected 'name = value'"},
        ErrorCase{"BadSubstitution",
                  {{"main.scn", "on AT\n  line ${a b}\n"}},
                  "main.scn:2: bad substitution '${a b}'"},
        ErrorCase{"ZeroPeriod",
                  {{"main.scn", "periodic 0 ^RSSI: 1\n"}},
                  "main.scn:1: expected 'periodic <every n-th tick> <line>'"},
        ErrorCase{"PeriodWithoutLine", {{"main.scn", "periodic 2\n"}}, "main.scn:1: missing line"},
        ErrorCase{"AddWithoutAmount",
                  {{"main.scn", "var x = 1\non AT\n  add x\n"}},
                  "main.scn:3: expected 'add <name> <number>'"},
        ErrorCase{"AfterWithoutLine",
                  {{"main.scn", "on AT\n  after 100\n"}},
                  "main.scn:2: missing 'after <ms> <line>'"},
        ErrorCase{"BareStatementWithText",
                  {{"main.scn", "on AT\n  garbage now\n"}},
                  "main.scn:2: unexpected text 'now'"},
        ErrorCase{"TooManyWildcards",
                  {{"main.scn", "on *,*,*,*,*,*,*,*,*,*\n"}},
                  "main.scn:1: more than 9 wildcards"},
        ErrorCase{"MissingInclude",
                  {{"main.scn", "\ninclude missing.scn\n"}},
                  "main.scn:2: cannot read 'missing.scn'"},
        ErrorCase{"ErrorInsideInclude",
                  {{"main.scn", "include inc.scn\n"}, {"inc.scn", "on AT\n  final NOPE\n"}},
                  "inc.scn:2: bad final result 'NOPE' (OK, ERROR, NO CARRIER, BUSY, NO "
                  "ANSWER, NO DIALTONE, CONNECT, +CME ERROR: <n>, +CMS ERROR: <n>)"},
        ErrorCase{"IncludeCycle",
                  {{"main.scn", "include a.scn\n"},
                   {"a.scn", "include b.scn\n"},
                   {"b.scn", "on AT\ninclude a.scn\n"}},
                  "b.scn:2: include cycle through 'a.scn'"},
        ErrorCase{"SelfInclude",
                  {{"main.scn", "include ./main.scn\n"}},
                  "main.scn:1: include cycle through 'main.scn'"}),
    [](const ::testing::TestParamInfo<ErrorCase> &info) { return info.param.name; });

// The scenarios that ship with atsim load as they stand.
TEST(LoadScenario, ShippedScenariosLoad) {
    for (const char *name : {"default.scn", "faults.scn"}) {
        Scenario scenario;
        std::string error;
        EXPECT_TRUE(LoadScenario(ShippedScenario(name), ReadWholeFile, &scenario, &error))
            << name << ": " << error;
        EXPECT_GT(scenario.rules.size(), 100u) << name;
    }
}

}  // namespace
}  // namespace atsim::test
