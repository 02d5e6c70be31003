// The command lines of atserver, atsim and atcli: usage errors name what is
// wrong and exit 64; --help and --version go to stdout with status 0. Without
// a running server: atcli says so, and a start whose modem never answers
// gives up.

#include "e2e_fixture.h"
#include "link/ats_paths.h"

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

TEST(ProgramArguments, ErrorsNameWhatIsWrong) {
    test::IsolatedRuntime runtime;
    const std::string missingScenario = runtime.Path("/no-such.scn");
    struct Case {
        const Program &program;
        std::vector<std::string> args;
        int exitCode;
        std::string message;  // in stderr, after the program's name (a log line's level)
    };
    const Program &server = kPrograms[0], &sim = kPrograms[1], &cli = kPrograms[2];
    // clang-format off
    const Case cases[] = {
        {server, {"--sim", "--bogus"}, 64, "unknown option: --bogus"},
        {server, {"--sim", "--log-level", "loud"}, 64, "bad value for --log-level: loud"},
        {server, {"--tcp", "nocolon"}, 64, "bad value for --tcp: nocolon"},
        {server, {"--sim", "--ready-timeout"}, 64, "missing value for --ready-timeout"},
        {server, {"--sim", "--emergency-numbers", "112,,911"}, 64,
         "bad value for --emergency-numbers: 112,,911"},
        {server, {"--sim", "--log", "x.log", "--syslog"}, 64,
         "--log and --syslog exclude each other"},
        {server, {"--sim", "--tty", "/dev/null"}, 64,
         "exactly one of --tty, --tcp and --sim is needed"},
        {sim, {"--bogus"}, 64, "unknown option: --bogus"},
        {sim, {"--urc-interval-ms", "soon"}, 64, "bad value for --urc-interval-ms: soon"},
        {sim, {"--fail"}, 64, "missing value for --fail"},
        {sim, {"a.scn", "b.scn"}, 64, "a second scenario: b.scn"},
        {sim, {missingScenario}, 2, "cannot read the scenario file " + missingScenario + ": "},
        {cli, {}, 64, "missing command"},
        {cli, {"nosuchcommand"}, 64, "unknown command: nosuchcommand"},
        {cli, {"raw", "AT", "--timeout"}, 64, "raw: missing value for --timeout"},
        {cli, {"raw", "AT", "--timeout", "-1"}, 64, "raw: bad value for --timeout: -1"},
        {cli, {"raw", "AT", "--quiet"}, 64, "raw: unknown option: --quiet"},
        {cli, {"raw", "AT+CGMI"}, 2, "atserver is not running (no ready flag at " +
                                         runtime.Path(kReadyFlagPath) + ")\n"},
        {cli, {"pin", "state"}, 2, "atserver is not running"},
        {server, {"--sim", missingScenario, "--atsim", SimProgram(), "--ready-timeout", "1"}, 1,
         "error: the modem did not answer AT within 1 s; giving up"},
    };
    // clang-format on
    for (const Case &c : cases) {
        std::vector<std::string> argv{c.program.path()};
        argv.insert(argv.end(), c.args.begin(), c.args.end());
        const std::string message =
            (c.exitCode == 1 ? "] " : std::string(c.program.name) + ": ") + c.message;
        SCOPED_TRACE(message);
        const ProcessResult result = RunProcess(argv, runtime.Root());
        EXPECT_EQ(result.exitCode, c.exitCode);
        EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
        EXPECT_EQ(result.out, "");
    }
    ExpectNothingLeft();
}

}  // namespace
}  // namespace atapi::e2e
