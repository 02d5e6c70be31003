// The library in this process and atcli against atserver and atsim on the
// shipped default scenario: each step a call, an atcli line or a raw
// exchange, with what it must give. The steps of a test run in order on one
// server, so that what one changes the next one reads.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

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

namespace atapi::e2e {
namespace {

struct Step {
    std::string what;
    std::function<std::string()> run;
    std::string expected;
};

// The values with a blank between each two. The library's calls are made
// before their results are shown: the order of arguments is unspecified.
template <typename... T>
std::string Show(const T &...values) {
    std::ostringstream out;
    ((out << values << ' '), ...);
    const std::string text = out.str();
    return text.substr(0, text.size() - 1);
}

std::string Lines(const std::vector<std::string> &lines) {
    std::string all;
    for (const std::string &line : lines) all += line + "\n";
    return all;
}

class ShippedSessionTest : public ShippedScenarioTest {
  protected:
    // atcli with the words of args: its output without the last newline
    // when it exits 0, else "exit N: " and its error output.
    Step Atcli(const std::string &args, std::string expected, std::string input = "") const {
        const auto run = [this, args, input] {
            std::vector<std::string> words;
            std::istringstream in(args);
            for (std::string word; in >> word;) words.push_back(word);
            const ProcessResult r = Cli(words, input);
            std::string shown =
                r.exitCode == 0 ? r.out + r.err : Show("exit", r.exitCode) + ": " + r.err + r.out;
            if (shown.ends_with('\n')) shown.pop_back();
            return shown;
        };
        return {"atcli " + args, run, std::move(expected)};
    }
    // One exchange: its text, after "class N: " when the class is not OK.
    static Step Raw(const std::string &cmd, std::string expected) {
        const auto run = [cmd] {
            const Exchange r = Send(cmd);
            return r.retVal == AT_RET_OK ? r.text : Show("class", r.retVal) + ": " + r.text;
        };
        return {cmd, run, std::move(expected)};
    }
    // The report sink gets these lines in this order after those of the
    // previous such step (and nothing else, when only); a line ending in '*'
    // stands for every line that starts with the rest.
    Step Reported(std::vector<std::string> lines, bool only = false) {
        return {"reported", [this, lines, only] { return NewReports(lines, only); }, Lines(lines)};
    }
    void Play(const std::vector<Step> &steps) const {
        for (const Step &step : steps) EXPECT_EQ(step.run(), step.expected) << step.what;
    }

  private:
    std::string NewReports(const std::vector<std::string> &lines, bool only) {
        std::vector<std::string> fresh;
        const auto matches = [](const std::string &line, const std::string &pattern) {
            return pattern.ends_with('*') ? line.starts_with(pattern.substr(0, pattern.size() - 1))
                                          : line == pattern;
        };
        const auto arrived = [&] {
            std::ifstream in(server_->ReportPath());
            fresh.clear();
            size_t n = 0, matched = 0;
            for (std::string line; std::getline(in, line); ++n) {
                if (n < reportsSeen_) continue;
                fresh.push_back(line);
                if (matched < lines.size() && matches(line, lines[matched])) ++matched;
            }
            return matched == lines.size() && (!only || fresh.size() == matched);
        };
        const bool done = WaitUntil(arrived, std::chrono::seconds(5));
        reportsSeen_ += fresh.size();
        return done ? Lines(lines) : Lines(fresh);
    }

    size_t reportsSeen_ = 0;
};

constexpr char kWrongPin[] = "9876";
const std::string kOk = std::to_string(AT_ERRID_OK);

std::string EnterPin(const char *pin) {
    CpinInfo info{};
    const int32_t result = AtPinManagement(1, pin, "", &info);
    return Show(result, info.errorId);
}

std::string Refused(const std::string &what) {
    return "exit 64: atcli: " + what + " (atcli --help lists the commands)";
}

std::string ModemError(const std::string &action, int32_t errorId) {
    return "exit 1: atcli: " + action + ": the modem answered with an error (error id " +
           std::to_string(errorId) + ")";
}

TEST_F(ShippedSessionTest, Session_PinThenPdpThenDialUp) {
    // clang-format off
    Play({
        {"PIN state", [] { CpinInfo i{}; const int32_t r = AtPinManagement(0, nullptr, nullptr, &i);
                           return Show(r, i.code); }, "0 SIM PIN"},
        {"a wrong PIN costs a try", [] { return EnterPin(kWrongPin); }, "0 3"},
        Atcli("pin enter --json", ModemError("pin enter", 3), std::string(kWrongPin) + "\n"),
        Atcli("pin retries --json",
              R"({"state":"SIM PIN","pin_tries":1,"puk_tries":10,"pin2_tries":3,"puk2_tries":10})"),
        {"the scenario's PIN", [] { return EnterPin("1234"); }, "0 " + kOk},
        Atcli("pin retries --json",
              R"({"state":"READY","pin_tries":3,"puk_tries":10,"pin2_tries":3,"puk2_tries":10})"),
        // A context with an S-NSSAI: written, in the modem's list, read back.
        Atcli("pdp set 5 IPV4V6 slice.example --nssai 01.000001 --json",
              R"({"cid":5,"type":"IPV4V6","apn":"slice.example","s_nssai":"01.000001"})"),
        {"the modem's list", [] { const std::string list = Send("AT+CGDCONT?").text;
                                  const size_t at = list.find("+CGDCONT: 5,");
                                  return list.substr(at, list.find("\r\n", at) - at); },
         R"(+CGDCONT: 5,"IPV4V6","slice.example","0.0.0.0",0,0,0,0,0,0,0,0,0,0,0,0,0,)"
         R"("01.000001",0,0,0,0)"},
        {"read by cid", [] { PdpContextInfo c{}; const int32_t r = AtGetCgdContByCid(&c, 5);
                             return Show(r, c.cid, c.pdpType, c.apn); },
         "0 5 IPV4V6 slice.example"},
        Atcli("pdp list --json",
              R"({"contexts":[{"cid":1,"type":"IPV4V6","apn":"internet"},)"
              R"({"cid":2,"type":"IPV4V6","apn":"ims"},{"cid":3,"type":"IPV4V6","apn":"sos"},)"
              R"({"cid":5,"type":"IPV4V6","apn":"slice.example"}]})"),
        // Dial-up of context 1, the state read after up and after down.
        Atcli("dial up 1 --json", R"({"cid":1,"requested":"up"})"),
        Atcli("dial state 1 --json",
              R"({"cid":1,"ipv4_stat":1,"ipv6_stat":1,"err_code":0,"ipv4":"up","ipv6":"up"})"),
        Atcli("dial down 1 --json", R"({"cid":1,"requested":"down"})"),
        Atcli("dial state --json",
              R"({"cid":1,"ipv4_stat":0,"ipv6_stat":0,"err_code":0,"ipv4":"down","ipv6":"down"})"),
        Atcli("identity all --json",
              R"({"imsi":"001010123456789","imei":"865432010012341","serial":"ATS5G1000000123",)"
              R"("manufacturer":"Atsim Modems","model":"ATS-5G100","software":"12.605.02.00.00",)"
              R"("hardware":"ATS5GM01","web_ui":"WEBUI_12.605.02.00.00","product":"ATS-5G100",)"
              R"("config":"ATS_CFG_1.0.2"})"),
    });
    // clang-format on
}

// atsim camps on the technology; then the serving cell (result, rat, arfcn,
// cell id and area in hexadecimal, errorId) and the neighbours (rat:arfcn,
// the newer technologies first) read.
Step CampOn(const std::string &technology, std::string expected) {
    const auto run = [technology] {
        if (Send("AT+SIMRAT=" + technology).retVal != AT_RET_OK) return std::string("cannot camp");
        MonscInfo s{};
        const int32_t result = AtGetMonsc(&s);
        std::ostringstream all;
        all << Show(result, s.rat, s.arfcn) << std::hex << std::uppercase << ' ' << s.cellId << ' '
            << s.lac << std::dec << ' ' << s.errorId << " |";
        MonncInfo n{};
        if (AtGetMonnc(&n) != 0) return all.str() + " failed";
        for (uint32_t i = 0; i < n.count; ++i) {
            all << ' ' << n.neighbors[i].rat << ':' << n.neighbors[i].arfcn;
        }
        return all.str();
    };
    return {technology, run, std::move(expected)};
}

// The transmitted packets of a "^PTRRPT:" reply, or -1.
long TxPackets() {
    long bytes = 0, rxBytes = 0, packets = -1;
    const std::string reply = Send("AT^PTRRPT?").text;
    std::sscanf(reply.c_str(), "^PTRRPT: %ld,%ld,%ld", &bytes, &rxBytes, &packets);
    return packets;
}

TEST_F(ShippedSessionTest, Reads_DeviceNetworkSimVoiceV2x) {
    // clang-format off
    Play({
        Atcli("time network --json", R"({"universal":"2024-05-17 12:30:45",)"
              R"("local":"2024-05-17 20:30:45","zone":"GMT+08:00","zone_quarter_hours":32})"),
        Atcli("time network --zone -17 --json", R"({"universal":"2024-05-17 12:30:45",)"
              R"("local":"2024-05-17 08:15:45","zone":"GMT-04:15","zone_quarter_hours":-17})"),
        Atcli("device watchdog --set 45 --json", R"({"watchdog_time":45})"),
        Atcli("device all --json", R"({"sku":1,"simlock":0,"thermal_state":0,)"
              R"("thermal_protection":1,"watchdog_time":45,"nv_restore_state":0})"),
        Atcli("device sku --set 7", Refused("--set takes an SKU of 0 to 2")),
        // LTE band and uplink channel, NR band and uplink bandwidth.
        {"bands", [] {
             HfreqInfoResult b{};
             const int32_t r = AtHfreqHandle(AT_DEVICE_QUERY, nullptr, &b);
             const std::string text = r != 0 || !b.lteList || !b.nrList
                 ? "failed"
                 : Show(b.lteList->bandClass, b.lteList->ulFcn, b.nrList->bandClass,
                        b.nrList->ulBw);
             HfreqInfoExFree(&b);
             return text; }, "3 19300 78 1000"},
        // Reset and download mode leave the simulated module as it was.
        {"factory reset", [] { return Show(AtFactoryReset()); }, "0"},
        // The reboot reason goes to a sink instead of this machine's shell.
        {"download mode", [] {
             PlatformSetShellSink([](void *, const char *) { return 0; }, nullptr);
             const int32_t r = AtGodLoad();
             PlatformSetShellSink(nullptr, nullptr);
             return Show(r); }, "0"},
        Atcli("jamming switch on --json", R"({"gsm":1,"wcdma":1,"lte":1})"),
        Atcli("jamming switch off --json", R"({"gsm":0,"wcdma":0,"lte":0})"),
        Atcli("jamming config gsm 5 6 --json", R"({"gsm_value1":5,"gsm_value2":6,)"
              R"("wcdma_value1":65,"wcdma_value2":20,"wcdma_value3":30,"wcdma_value4":40,)"
              R"("lte_value1":70,"lte_value2":20,"lte_value3":30,"lte_value4":40})"),
        Atcli("jamming rssi-threshold lte -90 --json",
              R"({"gsm_rssi_thresh":-95,"wcdma_rssi_thresh":-95,"lte_rssi_thresh":-90})"),
        Atcli("jamming rssi on --json", R"({"rssi_reports":1})"),
        Reported({"^EMRSSIRPT: 2,-*"}),
        Atcli("jamming rssi off --json", R"({"rssi_reports":0})"),
        CampOn("GSM", "0 0 62 1B7D 25F0 " + kOk + " | 0:62 0:75 0:81"),
        CampOn("WCDMA", "0 1 10700 1A2B3C4 25F0 " + kOk + " | 1:10700 1:10725 0:62"),
        CampOn("TD_SCDMA", "0 2 10055 A1B2C 25F0 " + kOk + " | 2:10055 2:10080"),
        CampOn("LTE", "0 3 1300 A1B2C3 C3 " + kOk + " | 4:636666 3:1300 3:1850"),
        CampOn("NONE", "-1 0 0 0 0 30 |"),
        CampOn("NR", "0 4 627264 1A2B3C4D A1B2C " + kOk +
                     " | 4:627264 4:627264 4:636666 4:636666 3:1300 3:1850"),
        Atcli("cell serving --json",
              R"({"rat":"NR","arfcn":627264,"cell_id":439041101,"lac":662316})"),
        Atcli("sim all --json", R"({"iccid":"8901001234567890128","spn":"Atsim Mobile",)"
              R"("spn_file":"01417473696D204D6F62696C65FFFFFFFF","home_plmn":"00101",)"
              R"("display_plmns":["00101","310260","26201"],)"
              R"("numbers":["+15551230001","15551230002"],"apns":["internet","ims"]})"),
        // A file under another directory than the card keeps it in is not
        // found; EF AD under the USIM's directory comes with its empty data quoted.
        {"EF under the wrong directory", [] {
             CrsmRequest q{AT_CRSM_READ_BINARY, 0x6F07, 0, 0, 9, nullptr, "3F007F20"};
             CrsmResult r{};
             const int32_t result = AtCrsm(&q, &r);
             std::free(r.response);
             return Show(result, r.sw1, r.sw2); }, "0 106 130"},
        {"EF by path", [] {
             const CrsmPidReq q{176, 0x6FAD, 0, 0, 4, nullptr, "3F007FFF"};
             CrsmPidResult r{0, 0, nullptr, 0};
             const int32_t result = AtCrsmPid(&q, &r);
             const std::string text = Show(result, r.sw1, r.sw2, r.response ? r.response : "-",
                                           r.errorId);
             std::free(r.response);
             return text; }, "0 144 0 00000002 " + kOk},
        {"SIM state", [] { SimSqInfo s{-1, -1}; const int32_t r = AtSimSqQuery(&s);
                           return Show(r, s.mode, s.simStatus); }, "0 0 1"},
        {"eUICC id", [] { char eid[AT_EUICC_ID_SIZE] = {}; const int32_t r = AtEuiccIdQuery(eid);
                          return Show(r, eid); }, "0 89049032123451234512345678901235"},
        Atcli("voice mic --set 7 --json", R"({"mic_gain":7})"),
        Atcli("voice mic --json", R"({"mic_gain":7})"),
        Atcli("voice frequency --set 16000", "pcm_frequency: 16000"),
        Atcli("voice frequency", "pcm_frequency: 16000"),
        Atcli("voice mode 6", "voice_mode: 6"),
        Atcli("voice mode 7", Refused("a voice mode is 0 to 6")),
        // V2X reads get OK replies and still fail at the parse step (module
        // 31 has no handler table); the sets go through.
        {"the modem's packet counters grow",
         [] { const long first = TxPackets(); return Show(first > 0, TxPackets() > first); },
         "1 1"},
        Atcli("v2x stats --json", "exit 1: atcli: v2x stats: failed: "
                                  "an error reply, or a reply that could not be read"),
        Atcli("v2x mode 1 --json", R"({"mode":1})"),
        Raw("AT^VMODE?", "^VMODE: 0,1"),
        Atcli("v2x mode 2", Refused("a V2X mode is 0 or 1")),
        {"dual antenna", [] { const int32_t r = AtsV2xSetDualAntSwitch(1);
                              return Show(r, Send("AT^VTXANTSWITCH?").text); },
         "0 ^VTXANTSWITCH: 1"},
        {"transmit power reports", [] { AtsV2xTxPwrRptCfg c{1, -2, 3, 4000000000u};
                                        return Show(AtsV2xTxPwrRptCfgExecute(&c)); }, "0"},
    });
    // clang-format on
}

// Every progress line of the modem reaches atserver's report sink and no
// reply.
TEST_F(ShippedSessionTest, Calls_DialListDtmfHangUpAndAnIncomingCall) {
    // clang-format off
    Play({
        Atcli("call dial +15551230002 --json", R"({"number":"+15551230002","result":"dialing"})"),
        Reported({"^ORIG: 1,0", "^CONF: 1", "^CONN: 1,0"}),
        Atcli("call list --json", R"({"calls":[{"idx":1,"direction":"outgoing","stat":0,)"
              R"("state":"active","mode":0,"mpty":0,"number":"+15551230002","type":145}]})"),
        Atcli("call dtmf 12# --json", R"({"tones":"12#","result":"sent"})"),
        Atcli("call hangup --json", R"({"result":"hung up"})"),
        Reported({"^CEND: 1,0,104,16"}),
        Atcli("call list --json", R"({"calls":[]})"),
        // No call to send tones to.
        Atcli("call dtmf 1", ModemError("call dtmf", ErrorStrToErrorId("+CME ERROR: 3"))),
        Raw("AT+CLIP=1", ""),
        Raw(R"(AT+SIMRING="5551234",129)", ""),
        Reported({"RING", R"(+CLIP: "5551234",129,,,,0)"}),
        Atcli("call answer --json", R"({"result":"answered"})"),
        Reported({"^CONN: 1,0"}),
        Atcli("call list --ext --json", R"({"calls":[{"idx":1,"direction":"incoming","stat":0,)"
              R"("state":"active","mode":0,"mpty":0,"voice_domain":1,"call_type":0,"conference":0,)"
              R"("number":"5551234","type":129}]})"),
        Atcli("call hangup", "result: hung up"),
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
        Atcli("ecall mode 3",
              Refused("a mode is 0 (off), 1 (eCall only) or 2 (eCall and normal calls)")),
        Atcli(R"(ecall msd 01"02)",
              Refused(R"(an MSD is 1 to 1527 printable characters without '"')")),
        Atcli("pin enter", "exit 64: atcli: PIN expected on standard input: 4 to 8 digits", "12\n"),
        Atcli("pin enter --puk",
              "exit 64: atcli: new PIN expected on standard input: 4 to 8 digits", "12345678\n"),
        Atcli("pdp set 300 IP x", "exit 64: atcli: a cid is a number from 0 to 255"),
        Atcli("ecall start 1 x 112 0", Refused("P1, P2 and P4 are numbers")),
        Atcli("ecall mode 2 --json", R"({"mode":2})"),
        Atcli("ecall config 0 1 0 --json", R"({"param1":0,"param2":1,"param3":0})"),
        Atcli("ecall msd " + msd + " --json", R"({"length":32,"result":"stored"})"),
        Atcli("ecall start 1 1 112 0 --json", R"({"number":"112","result":"started"})"),
        // Commands while the progress is reported; nothing was reported before.
        Raw("AT^ECLMSD?", "^ECLMSD: \"" + msd + "\""),
        Atcli("ecall mode --json", R"({"mode":2})"),
        Reported({"^ECLSTAT: 1,0", "^ECLSTAT: 2,0", "^ECLSTAT: 3,0", "^ECLSTAT: 4,0",
                  "^ECLREC: 1764086401,0"}, true),
        Atcli("ecall push --json", R"({"result":"pushed"})"),
        Reported({"^ECLREC: 1764086402,0"}),
        Atcli("ecall stop --json", R"({"result":"stopped"})"),
        Reported({"^ECLSTAT: 8,0"}),
        Atcli("ecall push", ModemError("ecall push", AT_ERRID_UNMAPPED)),  // no eCall to push
        Atcli("ecall start 1 1 112 0", "number: 112\nresult: started"),
        Atcli("ecall abort", "result: aborted"),
        Reported({"^ECLSTAT: 9,0"}),
    });
    // clang-format on
}

}  // namespace
}  // namespace atapi::e2e
