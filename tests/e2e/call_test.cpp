// Calls on the shipped default scenario through atserver and atsim: a voice
// call dialled, listed, given DTMF tones and hung up; an incoming call
// answered; an eCall configured, started, pushed and stopped. Every progress
// line of the modem must reach atserver's report sink and no reply, also
// while commands keep coming.
#include <algorithm>
#include <chrono>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "atapi/at_text.h"
#include "atapi/m2m_ats_call.h"
#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

constexpr auto kProgressLimit = std::chrono::seconds(5);
constexpr char kCalled[] = "+15551230002";

class CallTest : public ShippedScenarioTest {
  protected:
    std::vector<std::string> Reported() const {
        std::ifstream in(server_->ReportPath());
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }
    bool WasReported(const std::string &line) const {
        const std::vector<std::string> lines = Reported();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
    // Waits (bounded) until every line has been reported.
    void ExpectReported(const std::vector<std::string> &lines) const {
        for (const std::string &line : lines) {
            EXPECT_TRUE(WaitUntil([&] { return WasReported(line); }, kProgressLimit))
                << line << " never reported; the report holds:\n"
                << ReadFile(server_->ReportPath());
        }
    }
};

// One OK exchange and its reply text.
std::string Reply(const std::string &cmd) {
    const Exchange reply = Send(cmd);
    EXPECT_EQ(reply.status, 0) << cmd;
    EXPECT_EQ(reply.retVal, AT_RET_OK) << cmd << ": " << reply.text;
    return reply.text;
}

TEST_F(CallTest, VoiceCall_DialListDtmfHangUp) {
    ASSERT_EQ(AtsD(kCalled), 0);
    ExpectReported({"^ORIG: 1,0", "^CONF: 1", "^CONN: 1,0"});
    EXPECT_EQ(Reply("AT+CLCC"), "+CLCC: 1,0,0,0,0,\"+15551230002\",145");
    AtsClccInfo calls[2] = {};
    ASSERT_EQ(AtsClcc(calls, 1), 0);
    EXPECT_EQ(calls[0].idx, 1);
    EXPECT_EQ(calls[0].dir, 0);
    EXPECT_EQ(calls[0].stat, 0);
    EXPECT_EQ(calls[0].type, 145);
    EXPECT_STREQ(calls[0].number, kCalled);
    EXPECT_EQ(calls[1].idx, 0);  // one call: the second entry stays as it was

    const ProcessResult list = Cli({"call", "list", "--json"});
    EXPECT_EQ(list.exitCode, 0) << list.err;
    EXPECT_EQ(list.out,
              "{\"calls\":[{\"idx\":1,\"direction\":\"outgoing\",\"stat\":0,\"state\":\"active\","
              "\"mode\":0,\"mpty\":0,\"number\":\"+15551230002\",\"type\":145}]}\n");

    AtDtmfParam tone{'5', 1, 0};
    ASSERT_EQ(AtDtmf(&tone), 0);
    EXPECT_EQ(tone.errorId, AT_ERRID_OK);
    const ProcessResult tones = Cli({"call", "dtmf", "12#", "--json"});
    EXPECT_EQ(tones.exitCode, 0) << tones.err;
    EXPECT_EQ(tones.out, "{\"tones\":\"12#\",\"result\":\"sent\"}\n");
    ASSERT_EQ(AtsChup(), 0);
    ExpectReported({"^CEND: 1,0,104,16"});
    EXPECT_EQ(Reply("AT+CLCC"), "");
    const ProcessResult none = Cli({"call", "list", "--json"});
    EXPECT_EQ(none.exitCode, 0) << none.err;
    EXPECT_EQ(none.out, "{\"calls\":[]}\n");
    // No call to send tones to: the modem's error with its id, exit status 1.
    const ProcessResult refused = Cli({"call", "dtmf", "1"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.err, "atcli: call dtmf: the modem answered with an error (error id " +
                               std::to_string(ErrorStrToErrorId("+CME ERROR: 3")) + ")\n");
}

TEST_F(CallTest, IncomingCall_RingsAndIsAnswered) {
    Reply("AT+CLIP=1");
    Reply("AT+SIMRING=\"5551234\",129");
    ExpectReported({"RING", "+CLIP: \"5551234\",129,,,,0"});
    EXPECT_EQ(Reply("AT+CLCC"), "+CLCC: 1,1,4,0,0,\"5551234\",129");
    ASSERT_EQ(AtsA(), 0);
    ExpectReported({"^CONN: 1,0"});
    AtsClccExInfo calls[1] = {};
    ASSERT_EQ(AtsClccEx(calls, 1), 0);
    EXPECT_EQ(calls[0].dir, 1);
    EXPECT_EQ(calls[0].state, 0);
    EXPECT_EQ(calls[0].voiceDomain, 1);
    EXPECT_STREQ(calls[0].number, "5551234");
    ASSERT_EQ(AtsChup(), 0);
    ExpectReported({"^CEND: 1,0,104,16"});
    EXPECT_NE(AtsA(), 0);  // nothing rings any more: NO CARRIER
}

// Lines that atcli refuses before sending anything.
TEST_F(CallTest, Atcli_RefusesBadArguments) {
    const struct {
        std::vector<std::string> args;
        std::string err;
    } cases[] = {
        {{"call", "dial", "12;3"}, "a number is 1 to 40 of 0-9 + * # A-D P W ,"},
        {{"call", "dtmf", "1x"}, "tones are 0-9 * # A-D"},
        {{"call", "dtmf", "1", "--duration", "-1"}, "--duration takes a number"},
        {{"ecall", "mode", "3"}, "a mode is 0 (off), 1 (eCall only) or 2 (eCall and normal calls)"},
        {{"ecall", "msd", "01\"02"}, "an MSD is 1 to 1527 printable characters without '\"'"},
        {{"ecall", "start", "1", "x", "112", "0"}, "P1, P2 and P4 are numbers"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args[1] + " " + c.args[2]);
        const ProcessResult result = Cli(c.args);
        EXPECT_EQ(result.exitCode, 64);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "atcli: " + c.err + " (atcli --help lists the commands)\n");
    }
    EXPECT_EQ(Reported(), std::vector<std::string>{});
}

// The eCall progress as the default scenario reports it, in order.
const std::vector<std::string> kProgress = {"^ECLSTAT: 1,0", "^ECLSTAT: 2,0", "^ECLSTAT: 3,0",
                                            "^ECLSTAT: 4,0", "^ECLREC: 1764086401,0"};
constexpr char kMsd[] = "0123456789ABCDEF0123456789ABCDEF";

TEST_F(CallTest, ECall_ProgressGoesToTheReportsOnly) {
    int32_t mode = 2;
    ASSERT_EQ(AtEclMode(1, &mode), 0);
    mode = -1;
    ASSERT_EQ(AtEclMode(0, &mode), 0);
    EXPECT_EQ(mode, 2);
    AtsEclCfgInfo config{0, 1, 0, 0};
    ASSERT_EQ(AtsEclCfg(&config), 0);
    EXPECT_EQ(config.errorId, AT_ERRID_OK);
    AtsEclMsdInfo msd{kMsd, 0};
    ASSERT_EQ(AtsEclMsd(&msd), 0);
    EXPECT_EQ(msd.errorId, AT_ERRID_OK);

    const ProcessResult start = Cli({"ecall", "start", "1", "1", "112", "0", "--json"});
    ASSERT_EQ(start.exitCode, 0) << start.err;
    EXPECT_EQ(start.out, "{\"number\":\"112\",\"result\":\"started\"}\n");
    // Commands keep coming while the progress is reported; no reply holds
    // a progress line.
    int queries = 0;
    EXPECT_TRUE(WaitUntil(
        [&] {
            ++queries;
            int32_t read = -1;
            EXPECT_EQ(AtEclMode(0, &read), 0);
            EXPECT_EQ(read, 2);
            EXPECT_EQ(Reply("AT^ECLMSD?"), std::string("^ECLMSD: \"") + kMsd + "\"");
            return WasReported(kProgress.back());
        },
        kProgressLimit));
    EXPECT_GT(queries, 1);
    EXPECT_EQ(Reported(), kProgress);

    ASSERT_EQ(AtsEclPush(), 0);
    ExpectReported({"^ECLREC: 1764086402,0"});
    ASSERT_EQ(AtsEclStop(), 0);
    ExpectReported({"^ECLSTAT: 8,0"});
    EXPECT_NE(AtsEclPush(), 0);  // no eCall to push

    AtsEclStartInfo again{1, 1, 0, "112", 0};
    ASSERT_EQ(AtsEclStart(&again), 0);
    EXPECT_EQ(again.errorId, AT_ERRID_OK);
    ASSERT_EQ(AtEcalllAbort(), 0);
    ExpectReported({"^ECLSTAT: 9,0"});
}

}  // namespace
}  // namespace atapi::e2e
