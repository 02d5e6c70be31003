// atserver and atcli run as processes: atcli against the running server and
// without one, a start that gets no answer from the modem, a second server.
#include <string>
#include <vector>

#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

TEST_F(E2eTest, Atcli_RawPrintsClassAndText) {
    const struct {
        std::vector<std::string> args;
        int exitCode;
        std::string out;
    } cases[] = {
        {{"raw", "AT+CGMI"}, 0, std::string("OK (2)\n") + kManufacturer + "\n"},
        {{"raw", "AT+CPIN=\"0000\""}, 1, "CME ERROR (3)\n+CME ERROR: 16\n"},
        {{"raw", "AT+NOSUCHCOMMAND", "--timeout", "5"}, 1, "ERROR (5)\nERROR\n"},
        {{"raw", "AT+CGMI", "--json"},
         0,
         std::string(R"({"command":"AT+CGMI","class":"OK","retVal":2,"text":")") + kManufacturer +
             "\"}\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args.back());
        const ProcessResult result = Cli(c.args);
        EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
        EXPECT_EQ(result.out, c.out);
    }
}

TEST(AtcliWithoutServer, Atcli_SaysSoAndExitsTwo) {
    test::IsolatedRuntime runtime;
    for (const auto &[command, argument] : {std::pair{"raw", "AT+CGMI"}, {"pin", "state"}}) {
        SCOPED_TRACE(command);
        const ProcessResult result = RunProcess({CliProgram(), command, argument}, runtime.Root());
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "atcli: atserver is not running (no ready flag at " +
                                  runtime.Path(kReadyFlagPath) + ")\n");
    }
}

TEST(AtserverStart, ModemThatNeverAnswersEndsTheStartWithAClearError) {
    test::IsolatedRuntime runtime;
    const ProcessResult result = RunProcess({ServerProgram(), "--sim", runtime.Path("/no-such.scn"),
                                             "--atsim", SimProgram(), "--ready-timeout", "1"},
                                            runtime.Root());
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("the modem did not answer AT within 1 s; giving up"),
              std::string::npos)
        << result.err;
    ExpectNothingLeft();
}

TEST_F(E2eTest, Start_SecondServerLeavesTheRunningOneAlone) {
    const ProcessResult second = RunProcess(
        {ServerProgram(), "--sim", scenario_, "--atsim", SimProgram()}, runtime_->Root());
    EXPECT_EQ(second.exitCode, 1);
    EXPECT_NE(second.err.find("atserver is already running (pid " + std::to_string(server_->Pid())),
              std::string::npos)
        << second.err;
    EXPECT_EQ(Send("AT+CGMI").text, kManufacturer);
}

}  // namespace
}  // namespace atapi::e2e
