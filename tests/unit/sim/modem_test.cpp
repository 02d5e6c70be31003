// The modem on the shipped scenarios: framing, built-ins, state, delays,
// unsolicited lines, hostile input and the faults that the end-to-end tests
// provoke; and the default scenario's replies against the library's own
// handler tables, so that each template field gets a value.
#include "modem.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "atapi/at_parse.h"
#include "modem_harness.h"
#include "parse/at_parse_rows.h"
#include "scenario.h"

namespace atsim::test {
namespace {

TEST(FaultScenario, ConversationInOrder) {
    const std::string binary("AT+ECHOCMD\0\xff\x01", 13);
    const std::string overlong = "AT+ECHOCMD" + std::string(Modem::kMaxLineLength, 'x');
    ModemHarness harness("faults.scn");
    // clang-format off
    Play(harness, {
        // Framing: CR ends a command, LF is ignored, case does not matter,
        // a command may arrive in pieces and several in one write.
        {"AT\r", 0, {"OK"}},
        {"at+cgmi\r\n", 0, {"Atsim Modems", "OK"}},
        {"\nAT+C", 0, {}}, {"GMI\rAT\r", 0, {"Atsim Modems", "OK", "OK"}},
        {"AT+NOSUCHCOMMAND\r", 0, {"ERROR"}},
        {"ATE1\r", 0, {"OK"}}, {"AT\r", 0, {"OK"}, "AT\r"}, {"ATE0\r", 0, {"OK"}, "ATE0\r"},
        {"AT+CPIN=\"1234\"\r", 0, {"OK"}},  // dial-up below needs the PIN
        // A delay holds the commands behind it; unsolicited lines wait for
        // the end of a reply or come where a rule puts them.
        {"AT+SLOW\r", 1499, {}}, {"", 1, {"OK"}},
        {"AT+SLOW=40\rAT\r", 39, {}}, {"", 1, {"OK", "OK"}},
        {"AT^NDISDUP=1,1,\"internet\"\r", 199, {"OK"}},
        {"", 1, {"^NDISSTAT: 1,1,0,0,\"IPV4\""}},
        {"AT^NDISDUP=1,0\rAT+SLOW=300\r", 250, {"OK"}},
        {"", 50, {"OK", "^NDISSTAT: 1,0,0,0,\"IPV4\""}},
        {"AT+URCMID\r", 0, {"+URCMID: 1", "^RSSI: 17", "+URCMID: 2", "OK"}},
        // Hostile input: bytes are just text; an over-long line is dropped.
        {binary + "\r", 0, {"+ECHOCMD: " + binary, "OK"}},
        {overlong + "\r", 0, {}}, {"AT\r", 0, {"OK"}},
        // Faults: no answer at all, then a closed port.
        {"AT+SILENT\r", 60000, {}}, {"AT\r", 0, {"OK"}},
        {"AT+HANGUP\r", 0, {"+HANGUP: cut short"}}, {"AT\r", 1000, {}},
    });
    // clang-format on
    EXPECT_TRUE(harness.modem->HungUp());
    EXPECT_EQ(harness.logs,
              std::vector<std::string>{"atsim: dropped an input line of 4106 bytes (limit 4096)"});
}

// A fail rule answers ahead of the scenario and of the fail rules added
// before it; a result that is no final result is refused.
TEST(FailRules, AnswerAheadOfTheScenario) {
    Scenario scenario;
    std::string error;
    for (const char *rule : {"AT+CGMI=FINE", "=ERROR", "AT+CGMI", "AT=SILENT"}) {
        EXPECT_FALSE(AddFailRule(rule, &scenario, &error)) << rule;
    }
    ModemHarness harness("default.scn", {"AT+CGDCONT?=+CME ERROR: 10", "AT+C*=+CMS ERROR: 310",
                                         "AT^NDISDUP=*=silent", "AT+CGMI=ERROR"});
    Play(harness, {{"AT+CGDCONT?\r", 0, {"+CMS ERROR: 310"}},
                   {"AT+CGMI\r", 0, {"ERROR"}},
                   {"AT^NDISDUP=1,1\r", 0, {}},
                   {"AT\r", 0, {"OK"}}});
}

constexpr uint32_t kSet = AT_PARSE_SET;
constexpr uint32_t kTest = AT_PARSE_TEST;

struct ReplyCase {
    const char *command;  // its prefix is the text between "AT" and '?', '=' or the end
    int32_t module;
    uint32_t mode = AT_PARSE_QUERY;
    std::size_t rows = 1;
    bool groups = false;          // cut into groups by a special parser: group rows have no value
    const char *setup = nullptr;  // a command sent first, its reply ignored
};

// The reply text as atserver hands it to the library: the information lines
// joined by CR LF, without the final OK.
std::string ReplyText(const std::string &wire) {
    const std::size_t end = wire.find(Framed({"OK"}));
    EXPECT_NE(end, std::string::npos) << wire;
    std::string text = wire.substr(0, end);  // "\r\nA\r\n\r\nB\r\n"
    for (std::size_t at; (at = text.find("\r\n\r\n")) != std::string::npos;) {
        text.replace(at, 4, "\r\n");
    }
    return text.size() < 4 ? "" : text.substr(2, text.size() - 4);
}

TEST(DefaultScenario, RepliesFillEveryTemplateField) {
    // clang-format off
    const ReplyCase cases[] = {
        {"AT+CPIN?", 2}, {"AT^CPIN?", 2}, {"AT^CPIN?", 2, 0, 1, false, "AT+CPIN=\"1234\""},
        {"AT+CLCK=\"SC\",2", 2, kSet}, {"AT^CARDLOCK?", 2}, {"AT^CARDMODE", 2}, {"AT^CARDTYPE?", 2},
        {"AT^SIMSQ?", 14}, {"AT^ESIMEID?", 14}, {"AT^ICCID?", 14},
        {"AT+CRSM=176,12258,0,0,10,,\"3F00\"", 14}, {"AT+CRSM=176,12258,0,0,10,\"\",\"3F00\"", 14},
        {"AT+CSIM=10,\"00A4000400\"", 14},
        {"AT+CNUM", 14, 0, 2}, {"AT+CGDCONT?", 25, 0, 3}, {"AT^AUTHDATA?", 24, 0, 3}, {"AT^DHCP?", 21},
        {"AT^DHCPV6?", 21}, {"AT^APRAINFO=1", 23}, {"AT^APCONNST?", 17}, {"AT^NDISSTATQRY?", 17},
        {"AT^NDISSTATQRY=2", 17}, {"AT^NDISSTATQRY=?", 17, kTest, 1, true}, {"AT^IPV6CAP?", 17},
        {"AT^HFEATURESTAT=3", 28}, {"AT^DCONNSTAT?", 27, 0, 2}, {"AT+CGACT?", 1, 0, 3},
        {"AT+CGATT?", 1}, {"AT+CGMR", 4}, {"AT^HWVER?", 4}, {"AT^VERSION?", 14, 0, 13},
        {"AT+CFUN?", 4}, {"AT^HS=0,0", 4}, {"AT^SKU?", 1}, {"AT^CHIPTEMP?", 30},
        {"AT^ANTMODE?", 14}, {"AT^ANTSELCFG?", 14}, {"AT^XOTEMP?", 14}, {"AT^ADCREADEX=1", 14},
        {"AT^SETMODE?", 14}, {"AT^SHLOCK?", 14}, {"AT^LOPCNL?", 14}, {"AT^SIMSWITCH?", 14},
        {"AT^APBATLVL", 14}, {"AT+CBC", 14}, {"AT^ANQUERY?", 14}, {"AT^RRCVer?", 14},
        {"AT^WAKEUPCFG?", 14, kTest}, {"AT^CURC?", 14, kTest}, {"AT^THERMFUN?", 14, kTest},
        {"AT^SETWDTIME?", 14, kTest}, {"AT^THERMSTATE?", 14, kTest}, {"AT^TNUMCTL?", 14},
        {"AT^TRUSTNUM?", 14, 0, 2}, {"AT^TRUSTNUM=?", 14, kTest}, {"AT^TRUSTCNUM?", 14, 0, 2},
        {"AT^TRUSTCNUM=?", 14, kTest}, {"AT^UICCAUTH=0,00112233,44556677", 1}, {"AT+CIREG?", 1},
        {"AT+CREG?", 1}, {"AT+CGREG?", 1}, {"AT+CEREG?", 1}, {"AT+C5GREG?", 1}, {"AT+COPS?", 1},
        {"AT+COPS=?", 1, kTest, 5, true}, {"AT+CSQ", 1}, {"AT^HCSQ?", 14}, {"AT^CERSSI?", 1},
        {"AT^CSERSSI?", 1}, {"AT^NWTIME?", 14}, {"AT+CCLK?", 14}, {"AT^SYSCFG?", 1},
        {"AT^SYSCFG=?", 1, kTest, 5, true}, {"AT^SYSCFGEX?", 1},
        {"AT^SYSCFGEX=?", 1, kTest, 5, true}, {"AT^SYSINFOEX", 14}, {"AT^SYSINFO", 14},
        {"AT^EONS?", 1}, {"AT^EONS=?", 1, kTest}, {"AT^CGAS?", 1}, {"AT^MCS?", 1},
        {"AT^NTXPOWER?", 1}, {"AT^MONSC", 1}, {"AT^MONNC", 1, 0, 3}, {"AT^JDSWITCH?", 1, 0, 3},
        {"AT^JDCFG?", 1, 0, 3}, {"AT^EMRSSIRPT?", 1}, {"AT^EMRSSICFG?", 1, 0, 3},
        {"AT^LTEPROFILE=?", 1, kTest, 2, true}, {"AT+CMGR=1", 3}, {"AT+CMGR=2", 3}, {"AT+CPMS?", 3},
        {"AT+CPMS=\"SM\",\"SM\",\"SM\"", 3, kSet}, {"AT+CPMS=?", 3, kTest, 3, true},
        {"AT^CMGI=4", 3, kSet}, {"AT+CSCA?", 3}, {"AT+CMGF?", 3}, {"AT+CNMI?", 3}, {"AT+CSCB?", 3},
        {"AT+CMGD=?", 3}, {"AT^HCMGD=?", 3}, {"AT+CLCC", 5, 0, 1, false, "ATD10086;"},
        {"AT^CLCC?", 5, 0, 1, false, "ATD10086;"}, {"AT+CMUT?", 5}, {"AT^SMUT?", 5},
        {"AT^NSSWITCH?", 5}, {"AT^ECHOSWITCH?", 5}, {"AT^ECHOEX?", 5}, {"AT^CPCM?", 5},
        {"AT^PCMFR?", 5}, {"AT+CMIC?", 5}, {"AT+CLVL?", 5}, {"AT+CLIP?", 5}, {"AT+CLIR?", 5},
        {"AT^CLIP?", 5}, {"AT^CLIR?", 5}, {"AT+CCWA=1,2,", 5}, {"AT^CCWA=1,2,", 5}, {"AT^CCWA?", 6},
        {"AT^CCWAI?", 5}, {"AT+CCFC=0,2", 5}, {"AT^ECLMODE?", 5}, {"AT^ECLIMSCFG?", 5}};
    // clang-format on
    for (const ReplyCase &c : cases) {
        SCOPED_TRACE(c.command);
        const std::string command = c.command;
        const std::string prefix = command.substr(2, command.find_first_of("?=") - 2);
        ModemHarness harness("default.scn");
        if (c.setup != nullptr) harness.Exchange(std::string(c.setup) + "\r");
        std::string text = ReplyText(harness.Exchange(command + "\r", 1000));
        atapi::ParseRows owner;
        ASSERT_EQ(ParseAtCmdFunc(owner.Out(), prefix.c_str(), text.data(), c.module, c.mode), 0)
            << text;
        const AtCmdParseNode *first = owner.Get();
        std::size_t rows = 0;
        bool filled = true;
        for (const AtCmdParseNode *row = first; row != nullptr; row = row->nextRow, ++rows) {
            // Values past the template's last field (a reply form with more
            // parameters, as +CGDCONT's) come as nodes without a name.
            for (const AtCmdParseNode *n = row; n != nullptr; n = n->nextField) {
                filled =
                    filled && (n->atFieldName == nullptr || (*n->atFieldName && n->atFieldValue));
            }
        }
        EXPECT_EQ(rows, c.rows) << text;
        EXPECT_TRUE(filled || c.groups) << text;
    }
}

}  // namespace
}  // namespace atsim::test
