// atserver's start: a modem that never answers, and a second server.
#include <string>

#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

TEST(AtserverStart, ModemThatNeverAnswersEndsTheStartWithAClearError) {
    test::IsolatedRuntime runtime;
    const ProcessResult result = RunProcess({ATSERVER_PATH, "--sim", runtime.Path("/no-such.scn"),
                                             "--atsim", ATSIM_PATH, "--ready-timeout", "1"},
                                            runtime.Root());
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("the modem did not answer AT within 1 s; giving up"),
              std::string::npos)
        << result.err;
    ExpectNothingLeft();
}

TEST_F(E2eTest, Start_SecondServerLeavesTheRunningOneAlone) {
    const ProcessResult second =
        RunProcess({ATSERVER_PATH, "--sim", scenario_, "--atsim", ATSIM_PATH}, runtime_->Root());
    EXPECT_EQ(second.exitCode, 1);
    EXPECT_NE(second.err.find("atserver is already running (pid " + std::to_string(server_->Pid())),
              std::string::npos)
        << second.err;
    const Exchange reply = Send("AT+CGMI");
    ASSERT_EQ(reply.status, 0);
    EXPECT_EQ(reply.text, kManufacturer);
}

}  // namespace
}  // namespace atapi::e2e
