// A session on the shipped default scenario through atserver and atsim: PIN
// state and entry with its retry counter, a PDP context with its S-NSSAI,
// dial-up up and down with the state read between, from the library in this
// process and from atcli; and atcli's exit codes for each kind of failure.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "atapi/ats_ndis.h"
#include "atapi/ats_security.h"
#include "e2e_fixture.h"
#include "trace_capture.h"

namespace atapi::e2e {
namespace {

constexpr char kWrongPin[] = "9876";
constexpr char kPin[] = "1234";  // the default scenario's PIN

// atserver on the default scenario, without periodic lines; stops cleanly
// and leaves nothing behind.
using SessionTest = ShippedScenarioTest;

std::string PinTries() {
    CpinExInfo info{};
    EXPECT_EQ(AtPinManagementEx(0, nullptr, nullptr, &info), 0);
    EXPECT_EQ(info.errorId, AT_ERRID_OK);
    return info.pinTimes;
}

TEST_F(SessionTest, Session_PinThenPdpThenDialUp) {
    // PIN state, a wrong PIN from the library and one from atcli, each
    // costing a try, then the right one. Neither PIN reaches the library's
    // trace or atserver's log (which logs at debug level here).
    test::TraceCapture trace;
    CpinInfo pin{};
    ASSERT_EQ(AtPinManagement(0, nullptr, nullptr, &pin), 0);
    EXPECT_STREQ(pin.code, "SIM PIN");
    EXPECT_EQ(PinTries(), "3");
    const ProcessResult state = Cli({"pin", "state", "--json"});
    EXPECT_EQ(state.exitCode, 0) << state.err;
    EXPECT_EQ(state.out, "{\"state\":\"SIM PIN\"}\n");

    ASSERT_EQ(AtPinManagement(1, kWrongPin, "", &pin), 0);
    EXPECT_EQ(pin.errorId, AT_RET_CME_ERROR);
    EXPECT_EQ(PinTries(), "2");
    const ProcessResult wrong = Cli({"pin", "enter", "--json"}, std::string(kWrongPin) + "\n");
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_EQ(wrong.out, "");
    EXPECT_EQ(wrong.err, "atcli: pin enter: the modem answered with an error (error id 3)\n");
    EXPECT_EQ(wrong.err.find(kWrongPin), std::string::npos);
    const ProcessResult tries = Cli({"pin", "retries", "--json"});
    EXPECT_EQ(tries.exitCode, 0) << tries.err;
    EXPECT_EQ(tries.out,
              "{\"state\":\"SIM PIN\",\"pin_tries\":1,\"puk_tries\":10,\"pin2_tries\":3,"
              "\"puk2_tries\":10}\n");

    ASSERT_EQ(AtPinManagement(1, kPin, "", &pin), 0);
    EXPECT_EQ(pin.errorId, AT_ERRID_OK);
    ASSERT_EQ(AtPinManagement(0, nullptr, nullptr, &pin), 0);
    EXPECT_STREQ(pin.code, "READY");
    EXPECT_EQ(PinTries(), "3");
    for (const std::string &secret : {std::string(kWrongPin), "\"" + std::string(kPin) + "\""}) {
        EXPECT_EQ(trace.All().find(secret), std::string::npos) << secret;
        EXPECT_EQ(server_->Log().find(secret), std::string::npos) << secret;
    }
    // Both logs did see the PIN commands, masked or as queries.
    EXPECT_NE(trace.All().find("queryCmd = AT+CPIN?"), std::string::npos) << trace.All();
    EXPECT_NE(server_->Log().find("AT+CPIN=..."), std::string::npos) << server_->Log();

    // A context with an S-NSSAI: written, read back by cid and in the reply.
    PdpContextInfo context{};
    context.cid = 5;
    std::strcpy(context.pdpType, "IPV4V6");
    std::strcpy(context.apn, "slice.example");
    std::strcpy(context.sNssai, "01.000001");
    ASSERT_EQ(AtCgdContHandler(&context), 0);
    EXPECT_EQ(context.errorId, AT_ERRID_OK);
    PdpContextInfo read{};
    ASSERT_EQ(AtGetCgdContByCid(&read, 5), 0);
    EXPECT_EQ(read.cid, 5u);
    EXPECT_STREQ(read.pdpType, "IPV4V6");
    EXPECT_STREQ(read.apn, "slice.example");
    EXPECT_NE(Send("AT+CGDCONT?")
                  .text.find("+CGDCONT: 5,\"IPV4V6\",\"slice.example\",\"0.0.0.0\","
                             "0,0,0,0,0,0,0,0,0,0,0,0,0,\"01.000001\",0,0,0,0"),
              std::string::npos);
    const ProcessResult list = Cli({"pdp", "list", "--json"});
    EXPECT_EQ(list.exitCode, 0) << list.err;
    EXPECT_EQ(list.out,
              "{\"contexts\":[{\"cid\":1,\"type\":\"IPV4V6\",\"apn\":\"internet\"},"
              "{\"cid\":2,\"type\":\"IPV4V6\",\"apn\":\"ims\"},"
              "{\"cid\":3,\"type\":\"IPV4V6\",\"apn\":\"sos\"},"
              "{\"cid\":5,\"type\":\"IPV4V6\",\"apn\":\"slice.example\"}]}\n");

    // Dial-up of context 1, the state read after up and after down.
    struct DialStep {
        int32_t connect;
        uint32_t ipv4Stat;
        uint32_t ipv6Stat;
    };
    for (const DialStep step : {DialStep{1, 1, 1}, DialStep{0, 0, 0}}) {
        SCOPED_TRACE(step.connect);
        NdisDupProfile profile{};
        profile.authType = '0';
        ASSERT_EQ(AtNdisDup(1, step.connect, &profile), 0);
        EXPECT_EQ(profile.errorId, AT_ERRID_OK);
        NdisStatInfo stat{};
        ASSERT_EQ(AtNdisStatQryState(1, &stat), 0);
        EXPECT_EQ(stat.errorId, AT_ERRID_OK);
        EXPECT_EQ(stat.ipv4Stat, step.ipv4Stat);
        EXPECT_EQ(stat.ipv6Stat, step.ipv6Stat);
    }
    const ProcessResult dial = Cli({"dial", "state", "--json"});
    EXPECT_EQ(dial.exitCode, 0) << dial.err;
    EXPECT_EQ(dial.out,
              "{\"cid\":1,\"ipv4_stat\":0,\"ipv6_stat\":0,\"err_code\":0,\"ipv4\":\"down\","
              "\"ipv6\":\"down\"}\n");
}

TEST_F(SessionTest, Session_IdentityAndVersions) {
    const ProcessResult identity = Cli({"identity", "all", "--json"});
    EXPECT_EQ(identity.exitCode, 0) << identity.err;
    EXPECT_EQ(identity.out,
              "{\"imsi\":\"001010123456789\",\"imei\":\"865432010012341\","
              "\"serial\":\"ATS5G1000000123\",\"manufacturer\":\"Atsim Modems\","
              "\"model\":\"ATS-5G100\",\"software\":\"12.605.02.00.00\","
              "\"hardware\":\"ATS5GM01\",\"web_ui\":\"WEBUI_12.605.02.00.00\","
              "\"product\":\"ATS-5G100\",\"config\":\"ATS_CFG_1.0.2\"}\n");
}

// Error replies of each class, and lines atcli refuses before sending.
class SessionFailTest : public SessionTest {
  protected:
    std::vector<std::string> FailRules() const override {
        return {"AT+CPIN?=+CME ERROR: 10", "AT+CGDCONT?=+CMS ERROR: 310", "AT^NDISDUP=*=ERROR"};
    }
};

TEST_F(SessionFailTest, Atcli_ExitCodesSayWhoFailed) {
    struct Case {
        std::vector<std::string> args;
        std::string input;
        int exitCode;
        std::string err;
    };
    const Case cases[] = {
        {{"pin", "state"},
         "",
         1,
         "atcli: pin state: the modem answered with an error (error id 13)\n"},
        {{"pdp", "list", "--json"},
         "",
         1,
         "atcli: pdp list: the modem answered with an error (error id 13)\n"},
        {{"dial", "up", "2"},
         "",
         1,
         "atcli: dial up: the modem answered with an error (error id 65535)\n"},
        {{"pin", "enter"}, "12\n", 64, "atcli: PIN expected on standard input: 4 to 8 digits\n"},
        {{"pin", "enter", "--puk"},
         "12345678\n",
         64,
         "atcli: new PIN expected on standard input: 4 to 8 digits\n"},
        {{"pdp", "set", "300", "IP", "x"}, "", 64, "atcli: a cid is a number from 0 to 255\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.args.front() + " " + c.args[1]);
        const ProcessResult result = Cli(c.args, c.input);
        EXPECT_EQ(result.exitCode, c.exitCode);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, c.err);
    }
}

TEST(AtcliSubCommandWithoutServer, Atcli_ExitsTwo) {
    test::IsolatedRuntime runtime;
    const ProcessResult result = RunProcess({CliProgram(), "pin", "state"}, runtime.Root());
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
}

}  // namespace
}  // namespace atapi::e2e
