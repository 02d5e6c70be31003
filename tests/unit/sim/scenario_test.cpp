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
    struct Case {
        Files files;
        std::string error;
    };
    const Case cases[] = {
        {{}, "main.scn: cannot read the scenario file"},
        {{{"main.scn", "on AT\n  frobnicate\n"}}, "main.scn:2: unknown statement 'frobnicate'"},
        {{{"main.scn", "on AT\nvar x = 1\nline y\n"}},
         "main.scn:3: 'line' outside a rule (start one with 'on')"},
        {{{"main.scn", "on\n"}}, "main.scn:1: missing command pattern"},
        {{{"main.scn", "on AT\n  final MAYBE\n"}}, "main.scn:2: bad final result 'MAYBE'" + finals},
        {{{"main.scn", "on AT\n  final OK\n  after 1 x\n  line late\n"}},
         "main.scn:4: nothing but 'after' or 'trigger' may follow the end of a reply"},
        {{{"main.scn", "event e\n  line x\n  final OK\n"}},
         "main.scn:3: 'final' in an event (an event sends unsolicited lines, never a reply)"},
        {{{"main.scn", "event e\n  delay 10\n"}},
         "main.scn:2: 'delay' in an event (an event sends unsolicited lines, never a reply)"},
        {{{"main.scn", "event 1e\n"}}, "main.scn:1: bad event name '1e'"},
        {{{"main.scn", "on AT\n  trigger 10\n"}},
         "main.scn:2: expected 'trigger <ms> <event name>'"},
        {{{"main.scn", "event e\non AT\n  trigger 10 e\n  trigger 5 f\n"}},
         "main.scn:4: unknown event 'f' (declare it with 'event')"},
        {{{"main.scn", "event e\non AT\n  cancel e\n  cancel x*\n"}},
         "main.scn:4: unknown event 'x*' (declare it with 'event')"},
        {{{"main.scn", "on AT\n  hangup\n  after 1 x\n"}},
         "main.scn:3: nothing may follow 'hangup'"},
        {{{"main.scn", "on AT\n  line x\n  when 1 == 1\n"}},
         "main.scn:3: 'when' must come before the rule's actions"},
        {{{"main.scn", "on AT\n  when a = b\n"}},
         "main.scn:2: expected '<left> <op> <right>' with op == != < <= > >="},
        {{{"main.scn", "on AT+X=*\n  line $1 $2\n"}},
         "main.scn:2: $2 but the pattern has only 1 wildcard(s)"},
        {{{"main.scn", "on AT\n  line ok\n  line ${nope}\n  set nope = 1\n"}},
         "main.scn:3: unknown variable 'nope' (declare it with 'var')"},
        {{{"main.scn", "var 9x = 1\n"}}, "main.scn:1: bad variable name '9x'"},
        {{{"main.scn", "on AT\n  line ${a b}\n"}}, "main.scn:2: bad substitution '${a b}'"},
        {{{"main.scn", "on AT\n  line ${rand 5 1}\n"}},
         "main.scn:2: bad random range '${rand 5 1}' (want ${rand LO HI})"},
        {{{"main.scn", "var x = 1\non AT\n  add x\n"}},
         "main.scn:3: expected 'add <name> <number>'"},
        {{{"main.scn", "on *,*,*,*,*,*,*,*,*,*\n"}}, "main.scn:1: more than 9 wildcards"},
        {{{"main.scn", "\ninclude missing.scn\n"}}, "main.scn:2: cannot read 'missing.scn'"},
        {{{"main.scn", "include inc.scn\n"}, {"inc.scn", "on AT\n  final NOPE\n"}},
         "inc.scn:2: bad final result 'NOPE'" + finals},
        {{{"main.scn", "include a.scn\n"},
          {"a.scn", "include b.scn\n"},
          {"b.scn", "include a.scn\n"}},
         "b.scn:1: include cycle through 'a.scn'"},
    };
    for (const Case &c : cases) {
        Scenario scenario;
        std::string error;
        EXPECT_FALSE(Load(c.files, &scenario, &error)) << c.error;
        EXPECT_EQ(error, c.error);
    }
}

}  // namespace
}  // namespace atsim::test
