// Exchanges through the whole road: library (or atcli) -> queues -> atserver
// -> pty -> atsim and back, checking the reply texts atserver builds, the sequence
// check and the abort of a timed-out command (routing under load: soak_test.cpp,
// restarts: faults_test.cpp).
#include <tuple>

#include "atapi/at_link.h"
#include "e2e_fixture.h"
#include "link/at_lib_state.h"
#include "trace_capture.h"

namespace atapi::e2e {
namespace {

// With the modem's echo on, the replies must stay the same. An unsolicited
// line inside a reply stays out of it; a line of the response prefix the
// request names is the reply. The widest line a reply holds comes whole; a
// wider one, or one beyond atserver's line reader (after binary noise),
// fails its command and the next one is served as usual.
TEST_F(E2eTest, Exchange_ResultClassesAndReplyTexts) {
    const std::tuple<const char *, const char *, int32_t, std::string> cases[] = {
        {"AT+CGMI", nullptr, AT_RET_OK, kManufacturer},
        {"ATE1", nullptr, AT_RET_OK, ""},
        {"AT+CGDCONT?", nullptr, AT_RET_OK, kPdpContexts},
        {"AT+URCMID", nullptr, AT_RET_OK, "+URCMID: 1\r\n+URCMID: 2"},
        {"AT+E2ERSSI", "^RSSI", AT_RET_OK, "^RSSI: 20"},
        {"AT+E2ERSSI", nullptr, AT_RET_OK, ""},
        {"AT+CPIN=\"0000\"", nullptr, AT_RET_CME_ERROR, "+CME ERROR: 16"},
        {"AT+CMGR=9", nullptr, AT_RET_CMS_ERROR, "+CMS ERROR: 321"},
        {"AT+NOSUCHCOMMAND", nullptr, AT_RET_ERROR, "ERROR"},
        {"ATD*99#", nullptr, AT_RET_ERROR, "NO CARRIER"},
        {"AT+E2EWIDE", nullptr, AT_RET_OK, WidestLine()},
        {"AT+E2ETOOWIDE", nullptr, AT_RET_ERROR, "ERROR: reply line too long"},
        {"AT+CGMI", nullptr, AT_RET_OK, kManufacturer},
        {"AT+GARBAGE", nullptr, AT_RET_ERROR, "ERROR: reply line too long"},
        {"ATE0", nullptr, AT_RET_OK, ""},
    };
    for (const auto &[cmd, prefix, retVal, text] : cases) {
        const Exchange reply = Send(cmd, 10, prefix);
        ASSERT_EQ(reply.status, 0) << cmd;
        EXPECT_EQ(reply.retVal, retVal) << cmd;
        EXPECT_EQ(reply.text, text) << cmd;
    }
}

// The library gives up after its timeout and asks the server to abort the
// command, naming it; the answer to the aborted command comes late and is
// dropped by its sequence number.
TEST_F(E2eTest, Abort_TimedOutCommandIsAbortedAndItsLateReplyDropped) {
    test::TraceCapture trace;
    const std::string cmd = "AT+SLOW";
    EXPECT_EQ(Send(cmd, 1).status, -1);
    const std::string tid = std::to_string(CurrentTid());
    EXPECT_TRUE(server_->WaitForLog("abort request from " + tid + " for \"" + cmd + "\""))
        << server_->Log();
    EXPECT_TRUE(server_->WaitForLog("aborted \"" + cmd + "\" of " + tid));
    const Exchange next = Send("AT+CGMI");
    ASSERT_EQ(next.status, 0);
    EXPECT_EQ(next.text, kManufacturer);
    EXPECT_EQ(trace.Count("Error:Msg seq error"), 1u);
}

// atcli raw shows the class and the text.
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

}  // namespace
}  // namespace atapi::e2e
