// The library in this process and atcli against atserver and atsim on the
// shipped default scenario: each step a call, an atcli line or a raw
// exchange, with what it must give. The steps of a test run in order on one
// server, so that what one changes the next one reads.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "atapi/at_text.h"
#include "atapi/ats_device.h"
#include "atapi/ats_ndis.h"
#include "atapi/ats_security.h"
#include "atapi/ats_usim.h"
#include "atapi/m2m_ats_network.h"
#include "atapi/m2m_ats_usim.h"
#include "atapi/m2m_ats_v2x.h"
#include "e2e_fixture.h"
#include "platform/shell.h"
#include "trace_capture.h"

namespace atapi::e2e {
namespace {

struct Step {
    std::string what;
    std::function<std::string()> run;
    std::string expected;
};

std::string Join(const std::vector<std::string> &lines) {
    std::string all;
    for (const std::string &line : lines) all += line + "\n";
    return all;
}

bool Matches(const std::string &line, const std::string &pattern) {
    return pattern.ends_with('*') ? line.starts_with(pattern.substr(0, pattern.size() - 1))
                                  : line == pattern;
}

class ShippedSessionTest : public ShippedScenarioTest {
  protected:
    // atcli with the words of args: its output when it exits 0, else
    // "exit N: " and its error output.
    Step Atcli(const std::string &args, std::string expected, std::string input = "") const {
        return {"atcli " + args,
                [this, args, input] {
                    std::vector<std::string> words;
                    std::istringstream in(args);
                    for (std::string word; in >> word;) words.push_back(word);
                    const ProcessResult r = Cli(words, input);
                    return r.exitCode == 0
                               ? r.out + r.err
                               : "exit " + std::to_string(r.exitCode) + ": " + r.err + r.out;
                },
                std::move(expected)};
    }
    // One exchange: its text, after "ERROR <class>: " when the class is not OK.
    static Step Raw(const std::string &cmd, std::string expected) {
        return {cmd,
                [cmd] {
                    const Exchange r = Send(cmd);
                    return r.retVal == AT_RET_OK
                               ? r.text
                               : "ERROR " + std::to_string(r.retVal) + ": " + r.text;
                },
                std::move(expected)};
    }
    // Waits until the report sink got lines in this order since the last
    // such step (and nothing else, when only); a line ending in '*' stands
    // for every line that starts with the rest.
    Step Reported(std::vector<std::string> lines, bool only = false) {
        return {"reported",
                [this, lines, only] {
                    std::vector<std::string> fresh;
                    size_t matched = 0;
                    const bool done = WaitUntil(
                        [&] {
                            std::ifstream in(server_->ReportPath());
                            fresh.clear();
                            size_t n = 0;
                            for (std::string line; std::getline(in, line); ++n) {
                                if (n >= reportSeen_) fresh.push_back(line);
                            }
                            matched = 0;
                            for (const std::string &line : fresh) {
                                if (matched < lines.size() && Matches(line, lines[matched])) {
                                    ++matched;
                                }
                            }
                            return matched == lines.size() && (!only || fresh.size() == matched);
                        },
                        std::chrono::seconds(5));
                    reportSeen_ += fresh.size();
                    return done ? Join(lines) : Join(fresh);
                },
                Join(lines)};
    }
    void Play(const std::vector<Step> &steps) const {
        for (const Step &step : steps) EXPECT_EQ(step.run(), step.expected) << step.what;
    }

    size_t reportSeen_ = 0;
};

constexpr char kWrongPin[] = "9876";
constexpr char kPin[] = "1234";  // the default scenario's PIN
const std::string kOk = " " + std::to_string(AT_ERRID_OK);

// Each of these calls the library and shows the result and what it read.
std::string PinState() {
    CpinInfo info{};
    const int32_t result = AtPinManagement(0, nullptr, nullptr, &info);
    return std::to_string(result) + " " + info.code;
}

std::string EnterPin(const char *pin) {
    CpinInfo info{};
    const int32_t result = AtPinManagement(1, pin, "", &info);
    return std::to_string(result) + " " + std::to_string(info.errorId);
}

// The line of a context in the modem's list.
std::string ModemContext(uint32_t cid) {
    const std::string list = Send("AT+CGDCONT?").text, head = "+CGDCONT: " + std::to_string(cid);
    const size_t at = list.find(head + ",");
    return at == std::string::npos ? "" : list.substr(at, list.find("\r\n", at) - at);
}

std::string ContextByCid(uint32_t cid) {
    PdpContextInfo c{};
    const int32_t result = AtGetCgdContByCid(&c, cid);
    return std::to_string(result) + " " + std::to_string(c.cid) + " " + c.pdpType + " " + c.apn;
}

// Serving cell and neighbours (rat:arfcn, the newer technologies first) on
// the technology atsim camps on.
std::string CampOn(const std::string &technology) {
    if (Send("AT+SIMRAT=" + technology).retVal != AT_RET_OK) return "cannot camp";
    MonscInfo s{};
    const int32_t result = AtGetMonsc(&s);
    char text[96];
    std::snprintf(text, sizeof text, "%d %d %d %X %X %d |", result, s.rat, s.arfcn, s.cellId, s.lac,
                  s.errorId);
    MonncInfo n{};
    std::string all = text + std::string(AtGetMonnc(&n) == 0 ? "" : " failed");
    for (uint32_t i = 0; i < n.count; ++i) {
        all +=
            " " + std::to_string(n.neighbors[i].rat) + ":" + std::to_string(n.neighbors[i].arfcn);
    }
    return all;
}

std::string Bands() {
    HfreqInfoResult b{};
    if (AtHfreqHandle(AT_DEVICE_QUERY, nullptr, &b) != 0 || !b.lteList || !b.nrList)
        return "failed";
    const std::string text =
        std::to_string(b.lteList->bandClass) + " " + std::to_string(b.lteList->ulFcn) + " " +
        std::to_string(b.nrList->bandClass) + " " + std::to_string(b.nrList->ulBw);
    HfreqInfoExFree(&b);
    return text;
}

// Download mode; the reboot reason goes to a sink instead of this machine's shell.
std::string GodLoad() {
    PlatformSetShellSink([](void *, const char *) { return 0; }, nullptr);
    const int32_t result = AtGodLoad();
    PlatformSetShellSink(nullptr, nullptr);
    return std::to_string(result);
}

std::string Crsm(int32_t fileId, const char *path) {
    CrsmRequest q{AT_CRSM_READ_BINARY, fileId, 0, 0, 9, nullptr, path};
    CrsmResult r{};
    const int32_t result = AtCrsm(&q, &r);
    std::free(r.response);
    return std::to_string(result) + " " + std::to_string(r.sw1) + " " + std::to_string(r.sw2);
}

std::string CrsmPid(int32_t fileId, const char *path) {
    const CrsmPidReq q{176, fileId, 0, 0, 4, nullptr, path};
    CrsmPidResult r{0, 0, nullptr, 0};
    const int32_t result = AtCrsmPid(&q, &r);
    const std::string text = std::to_string(result) + " " + std::to_string(r.sw1) + " " +
                             std::to_string(r.sw2) + " " + (r.response ? r.response : "(none)") +
                             " " + std::to_string(r.errorId);
    std::free(r.response);
    return text;
}

std::string SimState() {
    SimSqInfo s{-1, -1};
    const int32_t result = AtSimSqQuery(&s);
    return std::to_string(result) + " " + std::to_string(s.mode) + " " +
           std::to_string(s.simStatus);
}

std::string EuiccId() {
    char eid[AT_EUICC_ID_SIZE] = {};
    const int32_t result = AtEuiccIdQuery(eid);
    return std::to_string(result) + " " + eid;
}

// The transmitted packets of a "^PTRRPT:" reply, or -1.
long TxPackets() {
    long bytes = 0, rxBytes = 0, packets = -1;
    const std::string reply = Send("AT^PTRRPT?").text;
    return std::sscanf(reply.c_str(), "^PTRRPT: %ld,%ld,%ld", &bytes, &rxBytes, &packets) == 3
               ? packets
               : -1;
}

std::string V2xCountersGrow() {
    const long first = TxPackets();
    const long second = TxPackets();
    return first > 0 && second > first ? "grow"
                                       : std::to_string(first) + " " + std::to_string(second);
}

std::string DualAntenna(uint32_t on) {
    const int32_t result = AtsV2xSetDualAntSwitch(on);
    return std::to_string(result) + " " + Send("AT^VTXANTSWITCH?").text;
}

std::string TxPowerReports() {
    AtsV2xTxPwrRptCfg cfg{1, -2, 3, 4000000000u};
    return std::to_string(AtsV2xTxPwrRptCfgExecute(&cfg));
}

std::string ModemError(const char *action, int32_t errorId) {
    return std::string("exit 1: atcli: ") + action +
           ": the modem answered with an error (error id " + std::to_string(errorId) + ")\n";
}

std::string Refused(const char *what) {
    return "exit 64: atcli: " + std::string(what) + " (atcli --help lists the commands)\n";
}

const int32_t kCme3 = ErrorStrToErrorId("+CME ERROR: 3");

TEST_F(ShippedSessionTest, Session_PinThenPdpThenDialUp) {
    test::TraceCapture trace;
    // clang-format off
    Play({
        {"PIN state", PinState, "0 SIM PIN"},
        {"a wrong PIN costs a try", [] { return EnterPin(kWrongPin); }, "0 3"},
        Atcli("pin enter --json", ModemError("pin enter", 3), std::string(kWrongPin) + "\n"),
        Atcli("pin retries --json", "{\"state\":\"SIM PIN\",\"pin_tries\":1,\"puk_tries\":10,\"pin2_tries\":3,\"puk2_tries\":10}\n"),
        {"the right PIN", [] { return EnterPin(kPin); }, "0" + kOk},
        Atcli("pin retries --json", "{\"state\":\"READY\",\"pin_tries\":3,\"puk_tries\":10,\"pin2_tries\":3,\"puk2_tries\":10}\n"),
        // A context with an S-NSSAI: written, in the modem's list, read back.
        Atcli("pdp set 5 IPV4V6 slice.example --nssai 01.000001 --json",
              "{\"cid\":5,\"type\":\"IPV4V6\",\"apn\":\"slice.example\",\"s_nssai\":\"01.000001\"}\n"),
        {"the modem's list", [] { return ModemContext(5); },
         "+CGDCONT: 5,\"IPV4V6\",\"slice.example\",\"0.0.0.0\",0,0,0,0,0,0,0,0,0,0,0,0,0,\"01.000001\",0,0,0,0"},
        {"read by cid", [] { return ContextByCid(5); }, "0 5 IPV4V6 slice.example"},
        Atcli("pdp list --json", "{\"contexts\":[{\"cid\":1,\"type\":\"IPV4V6\",\"apn\":\"internet\"},"
              "{\"cid\":2,\"type\":\"IPV4V6\",\"apn\":\"ims\"},{\"cid\":3,\"type\":\"IPV4V6\",\"apn\":\"sos\"},"
              "{\"cid\":5,\"type\":\"IPV4V6\",\"apn\":\"slice.example\"}]}\n"),
        // Dial-up of context 1, the state read after up and after down.
        Atcli("dial up 1 --json", "{\"cid\":1,\"requested\":\"up\"}\n"),
        Atcli("dial state 1 --json", "{\"cid\":1,\"ipv4_stat\":1,\"ipv6_stat\":1,\"err_code\":0,\"ipv4\":\"up\",\"ipv6\":\"up\"}\n"),
        Atcli("dial down 1 --json", "{\"cid\":1,\"requested\":\"down\"}\n"),
        Atcli("dial state --json", "{\"cid\":1,\"ipv4_stat\":0,\"ipv6_stat\":0,\"err_code\":0,\"ipv4\":\"down\",\"ipv6\":\"down\"}\n"),
        Atcli("identity all --json", "{\"imsi\":\"001010123456789\",\"imei\":\"865432010012341\","
              "\"serial\":\"ATS5G1000000123\",\"manufacturer\":\"Atsim Modems\",\"model\":\"ATS-5G100\","
              "\"software\":\"12.605.02.00.00\",\"hardware\":\"ATS5GM01\",\"web_ui\":\"WEBUI_12.605.02.00.00\","
              "\"product\":\"ATS-5G100\",\"config\":\"ATS_CFG_1.0.2\"}\n"),
    });
    // clang-format on
    // Neither PIN reaches the library's trace or atserver's log (which logs
    // at debug level here), though both saw the PIN commands.
    for (const std::string &secret : {std::string(kWrongPin), "\"" + std::string(kPin) + "\""}) {
        EXPECT_EQ(trace.All().find(secret), std::string::npos) << secret;
        EXPECT_EQ(server_->Log().find(secret), std::string::npos) << secret;
    }
    EXPECT_NE(trace.All().find("queryCmd = AT+CPIN?"), std::string::npos) << trace.All();
    EXPECT_NE(server_->Log().find("AT+CPIN=..."), std::string::npos) << server_->Log();
}

TEST_F(ShippedSessionTest, Reads_DeviceNetworkSimVoiceV2x) {
    // clang-format off
    Play({
        Atcli("time network --json", "{\"universal\":\"2024-05-17 12:30:45\",\"local\":\"2024-05-17 20:30:45\","
              "\"zone\":\"GMT+08:00\",\"zone_quarter_hours\":32}\n"),
        Atcli("time network --zone -17 --json", "{\"universal\":\"2024-05-17 12:30:45\",\"local\":\"2024-05-17 08:15:45\","
              "\"zone\":\"GMT-04:15\",\"zone_quarter_hours\":-17}\n"),
        Atcli("device watchdog --set 45 --json", "{\"watchdog_time\":45}\n"),
        Atcli("device all --json", "{\"sku\":1,\"simlock\":0,\"thermal_state\":0,\"thermal_protection\":1,"
              "\"watchdog_time\":45,\"nv_restore_state\":0}\n"),
        Atcli("device sku --set 7", Refused("--set takes an SKU of 0 to 2")),
        {"bands: LTE band and uplink channel, NR band and uplink bandwidth", Bands, "3 19300 78 1000"},
        // Reset and download mode leave the simulated module as it was.
        {"factory reset", [] { return std::to_string(AtFactoryReset()); }, "0"},
        {"download mode", GodLoad, "0"},
        Atcli("jamming switch on --json", "{\"gsm\":1,\"wcdma\":1,\"lte\":1}\n"),
        Atcli("jamming switch off --json", "{\"gsm\":0,\"wcdma\":0,\"lte\":0}\n"),
        Atcli("jamming config gsm 5 6 --json", "{\"gsm_value1\":5,\"gsm_value2\":6,\"wcdma_value1\":65,\"wcdma_value2\":20,"
              "\"wcdma_value3\":30,\"wcdma_value4\":40,\"lte_value1\":70,\"lte_value2\":20,\"lte_value3\":30,\"lte_value4\":40}\n"),
        Atcli("jamming rssi-threshold lte -90 --json", "{\"gsm_rssi_thresh\":-95,\"wcdma_rssi_thresh\":-95,\"lte_rssi_thresh\":-90}\n"),
        Atcli("jamming rssi on --json", "{\"rssi_reports\":1}\n"),
        Reported({"^EMRSSIRPT: 2,-*"}),
        Atcli("jamming rssi off --json", "{\"rssi_reports\":0}\n"),
        {"GSM", [] { return CampOn("GSM"); }, "0 0 62 1B7D 25F0" + kOk + " | 0:62 0:75 0:81"},
        {"WCDMA", [] { return CampOn("WCDMA"); }, "0 1 10700 1A2B3C4 25F0" + kOk + " | 1:10700 1:10725 0:62"},
        {"TD_SCDMA", [] { return CampOn("TD_SCDMA"); }, "0 2 10055 A1B2C 25F0" + kOk + " | 2:10055 2:10080"},
        {"LTE", [] { return CampOn("LTE"); }, "0 3 1300 A1B2C3 C3" + kOk + " | 4:636666 3:1300 3:1850"},
        {"no service", [] { return CampOn("NONE"); }, "-1 0 0 0 0 30 |"},
        {"NR", [] { return CampOn("NR"); }, "0 4 627264 1A2B3C4D A1B2C" + kOk + " | 4:627264 4:627264 4:636666 4:636666 3:1300 3:1850"},
        Atcli("cell serving --json", "{\"rat\":\"NR\",\"arfcn\":627264,\"cell_id\":439041101,\"lac\":662316}\n"),
        Atcli("sim all --json", "{\"iccid\":\"8901001234567890128\",\"spn\":\"Atsim Mobile\","
              "\"spn_file\":\"01417473696D204D6F62696C65FFFFFFFF\",\"home_plmn\":\"00101\","
              "\"display_plmns\":[\"00101\",\"310260\",\"26201\"],"
              "\"numbers\":[\"+15551230001\",\"15551230002\"],\"apns\":[\"internet\",\"ims\"]}\n"),
        // A file under another directory than the card keeps it in is not
        // found; EF AD under the USIM's directory comes with its empty data quoted.
        {"EF under the wrong directory", [] { return Crsm(0x6F07, "3F007F20"); }, "0 106 130"},
        {"EF by path", [] { return CrsmPid(0x6FAD, "3F007FFF"); }, "0 144 0 00000002" + kOk},
        {"SIM state", SimState, "0 0 1"},
        {"eUICC id", EuiccId, "0 89049032123451234512345678901235"},
        Atcli("voice mic --set 7 --json", "{\"mic_gain\":7}\n"),
        Atcli("voice mic --json", "{\"mic_gain\":7}\n"),
        Atcli("voice frequency --set 16000", "pcm_frequency: 16000\n"),
        Atcli("voice frequency", "pcm_frequency: 16000\n"),
        Atcli("voice mode 6", "voice_mode: 6\n"),
        Atcli("voice mode 7", Refused("a voice mode is 0 to 6")),
        // V2X reads get OK replies and still fail at the parse step (module
        // 31 has no handler table); the sets go through.
        {"the modem's packet counters", V2xCountersGrow, "grow"},
        Atcli("v2x stats --json", "exit 1: atcli: v2x stats: failed: an error reply, or a reply that could not be read\n"),
        Atcli("v2x mode 1 --json", "{\"mode\":1}\n"),
        Raw("AT^VMODE?", "^VMODE: 0,1"),
        Atcli("v2x mode 2", Refused("a V2X mode is 0 or 1")),
        {"dual antenna", [] { return DualAntenna(1); }, "0 ^VTXANTSWITCH: 1"},
        {"transmit power reports", TxPowerReports, "0"},
    });
    // clang-format on
}

// Every progress line of the modem reaches atserver's report sink and no
// reply.
TEST_F(ShippedSessionTest, Calls_DialListDtmfHangUpAndAnIncomingCall) {
    // clang-format off
    Play({
        Atcli("call dial +15551230002 --json", "{\"number\":\"+15551230002\",\"result\":\"dialing\"}\n"),
        Reported({"^ORIG: 1,0", "^CONF: 1", "^CONN: 1,0"}),
        Raw("AT+CLCC", "+CLCC: 1,0,0,0,0,\"+15551230002\",145"),
        Atcli("call list --json", "{\"calls\":[{\"idx\":1,\"direction\":\"outgoing\",\"stat\":0,\"state\":\"active\","
              "\"mode\":0,\"mpty\":0,\"number\":\"+15551230002\",\"type\":145}]}\n"),
        Atcli("call dtmf 12# --json", "{\"tones\":\"12#\",\"result\":\"sent\"}\n"),
        Atcli("call hangup --json", "{\"result\":\"hung up\"}\n"),
        Reported({"^CEND: 1,0,104,16"}),
        Raw("AT+CLCC", ""),
        Atcli("call list --json", "{\"calls\":[]}\n"),
        Atcli("call dtmf 1", ModemError("call dtmf", kCme3)),  // no call to send tones to
        Raw("AT+CLIP=1", ""),
        Raw("AT+SIMRING=\"5551234\",129", ""),
        Reported({"RING", "+CLIP: \"5551234\",129,,,,0"}),
        Raw("AT+CLCC", "+CLCC: 1,1,4,0,0,\"5551234\",129"),
        Atcli("call answer --json", "{\"result\":\"answered\"}\n"),
        Reported({"^CONN: 1,0"}),
        Atcli("call list --ext --json", "{\"calls\":[{\"idx\":1,\"direction\":\"incoming\",\"stat\":0,\"state\":\"active\","
              "\"mode\":0,\"mpty\":0,\"voice_domain\":1,\"call_type\":0,\"conference\":0,\"number\":\"5551234\",\"type\":129}]}\n"),
        Atcli("call hangup", "result: hung up\n"),
        Reported({"^CEND: 1,0,104,16"}),
        // Nothing rings any more: NO CARRIER, which has no error id.
        Atcli("call answer", ModemError("call answer", AT_ERRID_UNMAPPED)),
    });
    // clang-format on
}

TEST_F(ShippedSessionTest, ECall_ProgressGoesToTheReportsOnly) {
    const std::string msd = "0123456789ABCDEF0123456789ABCDEF";
    // clang-format off
    Play({
        // Lines that atcli refuses before sending anything.
        Atcli("call dial 12;3", Refused("a number is 1 to 40 of 0-9 + * # A-D P W ,")),
        Atcli("call dtmf 1x", Refused("tones are 0-9 * # A-D")),
        Atcli("call dtmf 1 --duration -1", Refused("--duration takes a number")),
        Atcli("ecall mode 3", Refused("a mode is 0 (off), 1 (eCall only) or 2 (eCall and normal calls)")),
        Atcli("ecall msd 01\"02", Refused("an MSD is 1 to 1527 printable characters without '\"'")),
        Atcli("ecall start 1 x 112 0", Refused("P1, P2 and P4 are numbers")),
        Atcli("ecall mode 2 --json", "{\"mode\":2}\n"),
        Atcli("ecall config 0 1 0 --json", "{\"param1\":0,\"param2\":1,\"param3\":0}\n"),
        Atcli("ecall msd " + msd + " --json", "{\"length\":32,\"result\":\"stored\"}\n"),
        Atcli("ecall start 1 1 112 0 --json", "{\"number\":\"112\",\"result\":\"started\"}\n"),
        // Commands while the progress is reported; nothing else was reported before.
        Raw("AT^ECLMSD?", "^ECLMSD: \"" + msd + "\""),
        Atcli("ecall mode --json", "{\"mode\":2}\n"),
        Reported({"^ECLSTAT: 1,0", "^ECLSTAT: 2,0", "^ECLSTAT: 3,0", "^ECLSTAT: 4,0", "^ECLREC: 1764086401,0"}, true),
        Atcli("ecall push --json", "{\"result\":\"pushed\"}\n"),
        Reported({"^ECLREC: 1764086402,0"}),
        Atcli("ecall stop --json", "{\"result\":\"stopped\"}\n"),
        Reported({"^ECLSTAT: 8,0"}),
        Atcli("ecall push", ModemError("ecall push", AT_ERRID_UNMAPPED)),  // no eCall to push
        Atcli("ecall start 1 1 112 0", "number: 112\nresult: started\n"),
        Atcli("ecall abort", "result: aborted\n"),
        Reported({"^ECLSTAT: 9,0"}),
    });
    // clang-format on
}

// Error replies of each class, and lines atcli refuses before sending.
class ShippedFailTest : public ShippedSessionTest {
  protected:
    std::vector<std::string> FailRules() const override {
        return {"AT+CPIN?=+CME ERROR: 10", "AT+CGDCONT?=+CMS ERROR: 310", "AT^NDISDUP=*=ERROR"};
    }
};

TEST_F(ShippedFailTest, Atcli_ExitCodesSayWhoFailed) {
    // clang-format off
    Play({
        Atcli("pin state", ModemError("pin state", 13)),
        Atcli("pdp list --json", ModemError("pdp list", 13)),
        Atcli("dial up 2", ModemError("dial up", AT_ERRID_UNMAPPED)),
        Atcli("pin enter", "exit 64: atcli: PIN expected on standard input: 4 to 8 digits\n", "12\n"),
        Atcli("pin enter --puk", "exit 64: atcli: new PIN expected on standard input: 4 to 8 digits\n", "12345678\n"),
        Atcli("pdp set 300 IP x", "exit 64: atcli: a cid is a number from 0 to 255\n"),
    });
    // clang-format on
}

}  // namespace
}  // namespace atapi::e2e
