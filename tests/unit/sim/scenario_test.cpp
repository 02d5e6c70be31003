// Scenario files: the errors that stop atsim at start with the file and line
// of the fault (the shipped scenarios load in modem_test).
#include "scenario.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace atsim::test {
namespace {

using Files = std::map<std::string, std::string>;

bool Load(const Files &files, Scenario *scenario, std::string *error) {
    const FileReader reader = [&files](const std::string &path, std::string *content) {
        const auto it = files.find(path);
        if (it != files.end()) *content = it->second;
        return it != files.end();
    };
    return LoadScenario("main.scn", reader, scenario, error);
}

TEST(LoadScenario, ErrorsNameFileAndLine) {
    const std::string finals =
        " (OK, ERROR, NO CARRIER, BUSY, NO ANSWER, NO DIALTONE, CONNECT, +CME ERROR: <n>, "
        "+CMS ERROR: <n>)";
    // The main file's text (null: none), the error, the other files.
    struct Case {
        const char *main;
        std::string error;
        Files others = {};
    };
    // clang-format off
    const Case cases[] = {
        {nullptr, "main.scn: cannot read the scenario file"},
        {"on AT\n  frobnicate\n", "main.scn:2: unknown statement 'frobnicate'"},
        {"on AT\nvar x = 1\nline y\n", "main.scn:3: 'line' outside a rule (start one with 'on')"},
        {"on\n", "main.scn:1: missing command pattern"},
        {"on AT\n  final MAYBE\n", "main.scn:2: bad final result 'MAYBE'" + finals},
        {"on AT\n  final OK\n  after 1 x\n  line late\n",
         "main.scn:4: nothing but 'after' or 'trigger' may follow the end of a reply"},
        {"event e\n  line x\n  final OK\n",
         "main.scn:3: 'final' in an event (an event sends unsolicited lines, never a reply)"},
        {"event 1e\n", "main.scn:1: bad event name '1e'"},
        {"on AT\n  trigger 10\n", "main.scn:2: expected 'trigger <ms> <event name>'"},
        {"event e\non AT\n  trigger 10 e\n  trigger 5 f\n",
         "main.scn:4: unknown event 'f' (declare it with 'event')"},
        {"event e\non AT\n  cancel e\n  cancel x*\n",
         "main.scn:4: unknown event 'x*' (declare it with 'event')"},
        {"on AT\n  hangup\n  after 1 x\n", "main.scn:3: nothing may follow 'hangup'"},
        {"on AT\n  line x\n  when 1 == 1\n",
         "main.scn:3: 'when' must come before the rule's actions"},
        {"on AT\n  when a = b\n",
         "main.scn:2: expected '<left> <op> <right>' with op == != < <= > >="},
        {"on AT+X=*\n  line $1 $2\n", "main.scn:2: $2 but the pattern has only 1 wildcard(s)"},
        {"on AT\n  line ok\n  line ${nope}\n  set nope = 1\n",
         "main.scn:3: unknown variable 'nope' (declare it with 'var')"},
        {"var 9x = 1\n", "main.scn:1: bad variable name '9x'"},
        {"on AT\n  line ${a b}\n", "main.scn:2: bad substitution '${a b}'"},
        {"on AT\n  line ${rand 5 1}\n",
         "main.scn:2: bad random range '${rand 5 1}' (want ${rand LO HI})"},
        {"var x = 1\non AT\n  add x\n", "main.scn:3: expected 'add <name> <number>'"},
        {"on *,*,*,*,*,*,*,*,*,*\n", "main.scn:1: more than 9 wildcards"},
        {"\ninclude missing.scn\n", "main.scn:2: cannot read 'missing.scn'"},
        {"include inc.scn\n", "inc.scn:2: bad final result 'NOPE'" + finals,
         {{"inc.scn", "on AT\n  final NOPE\n"}}},
        {"include a.scn\n", "b.scn:1: include cycle through 'a.scn'",
         {{"a.scn", "include b.scn\n"}, {"b.scn", "include a.scn\n"}}},
    };
    // clang-format on
    for (const Case &c : cases) {
        Files files = c.others;
        if (c.main != nullptr) files["main.scn"] = c.main;
        Scenario scenario;
        std::string error;
        EXPECT_FALSE(Load(files, &scenario, &error)) << c.error;
        EXPECT_EQ(error, c.error);
    }
}

}  // namespace
}  // namespace atsim::test
