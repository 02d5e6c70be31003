// The command lines of atserver, atsim and atcli: usage errors name what is
// wrong and exit 64; --help and --version go to stdout with status 0.
#include <string>
#include <vector>

#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

struct Program {
    const char *name;
    const std::string &(*path)();
};

const Program kPrograms[] = {
    {"atserver", ServerProgram},
    {"atsim", SimProgram},
    {"atcli", CliProgram},
};

TEST(ProgramArguments, HelpAndVersionGoToStdoutWithStatusZero) {
    test::IsolatedRuntime runtime;
    for (const Program &program : kPrograms) {
        SCOPED_TRACE(program.name);
        const ProcessResult version = RunProcess({program.path(), "--version"}, runtime.Root());
        EXPECT_EQ(version.exitCode, 0);
        EXPECT_EQ(version.out, std::string(program.name) + " " + ATAPI_VERSION + "\n");
        EXPECT_EQ(version.err, "");

        const ProcessResult help = RunProcess({program.path(), "--help"}, runtime.Root());
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_EQ(help.out.rfind(std::string("usage: ") + program.name + " ", 0), 0u) << help.out;
        EXPECT_EQ(help.err, "");
    }
}

TEST(ProgramArguments, ErrorsNameTheArgument) {
    test::IsolatedRuntime runtime;
    const std::string missingScenario = runtime.Path("/no-such.scn");
    struct Case {
        const std::string &(*program)();
        std::vector<std::string> args;
        int exitCode;
        std::string message;  // the start of stderr
    };
    const Case cases[] = {
        {ServerProgram, {"--sim", "--bogus"}, 64, "atserver: unknown option: --bogus"},
        {ServerProgram,
         {"--sim", "--log-level", "loud"},
         64,
         "atserver: bad value for --log-level: loud"},
        {ServerProgram, {"--tcp", "nocolon"}, 64, "atserver: bad value for --tcp: nocolon"},
        {ServerProgram,
         {"--sim", "--ready-timeout"},
         64,
         "atserver: missing value for --ready-timeout"},
        {ServerProgram,
         {"--sim", "--emergency-numbers", "112,,911"},
         64,
         "atserver: bad value for --emergency-numbers: 112,,911"},
        {ServerProgram,
         {"--sim", "--log", "x.log", "--syslog"},
         64,
         "atserver: --log and --syslog exclude each other"},
        {ServerProgram,
         {"--sim", "--tty", "/dev/null"},
         64,
         "atserver: exactly one of --tty, --tcp and --sim is needed"},
        {SimProgram, {"--bogus"}, 64, "atsim: unknown option: --bogus"},
        {SimProgram,
         {"--urc-interval-ms", "soon"},
         64,
         "atsim: bad value for --urc-interval-ms: soon"},
        {SimProgram, {"--fail"}, 64, "atsim: missing value for --fail"},
        {SimProgram, {"a.scn", "b.scn"}, 64, "atsim: a second scenario: b.scn"},
        {SimProgram,
         {missingScenario},
         2,
         "atsim: cannot read the scenario file " + missingScenario + ": "},
        {CliProgram, {}, 64, "atcli: missing command"},
        {CliProgram, {"nosuchcommand"}, 64, "atcli: unknown command: nosuchcommand"},
        {CliProgram, {"raw", "AT", "--timeout"}, 64, "atcli: raw: missing value for --timeout"},
        {CliProgram,
         {"raw", "AT", "--timeout", "-1"},
         64,
         "atcli: raw: bad value for --timeout: -1"},
        {CliProgram, {"raw", "AT", "--quiet"}, 64, "atcli: raw: unknown option: --quiet"},
    };
    for (const Case &c : cases) {
        std::vector<std::string> argv{c.program()};
        argv.insert(argv.end(), c.args.begin(), c.args.end());
        SCOPED_TRACE(c.message);
        const ProcessResult result = RunProcess(argv, runtime.Root());
        EXPECT_EQ(result.exitCode, c.exitCode);
        EXPECT_EQ(result.err.rfind(c.message, 0), 0u) << result.err;
        EXPECT_EQ(result.out, "");
    }
    ExpectNothingLeft();
}

}  // namespace
}  // namespace atapi::e2e
