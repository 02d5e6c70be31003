// The default scenario's replies against the library's own handler tables:
// every reply line must lay its values out as the template of its prefix
// names them, so that each field gets a value and no value goes unnamed.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "atapi/at_parse.h"
#include "sim_test_util.h"

namespace atsim::test {
namespace {

enum ParseMode : uint32_t { kQuery = 0, kSet = 1, kTest = 2 };

// Long enough for every delayed reply of the scenario (the operator scan).
constexpr Millis kSlowestReplyMs = 1000;

struct ReplyCase {
    const char *command;
    const char *prefix;
    int32_t module;
    ParseMode mode;
    std::size_t rows;
    const char *setup = nullptr;  // a command sent first, its reply ignored
};

// The reply text as atserver hands it to the library: the information lines
// joined by CR LF, up to the final result and without it.
std::string ReplyText(const std::string &wire) {
    std::string text;
    std::size_t start = 0;
    while (start < wire.size()) {
        std::size_t end = wire.find("\r\n", start);
        if (end == std::string::npos) end = wire.size();
        const std::string line = wire.substr(start, end - start);
        start = end + 2;
        if (line.empty()) continue;
        if (line == "OK") return text;
        text += (text.empty() ? "" : "\r\n") + line;
    }
    ADD_FAILURE() << "no OK in " << wire;
    return text;
}

struct ParseResult {
    AtCmdParseNode *first = nullptr;
    ~ParseResult() { FreeAtCmd(first); }
};

std::string Describe(const AtCmdParseNode *first) {
    std::ostringstream out;
    for (const AtCmdParseNode *row = first; row != nullptr; row = row->nextRow) {
        for (const AtCmdParseNode *n = row; n != nullptr; n = n->nextField) {
            out << (n->atFieldName ? n->atFieldName : "(null)") << "="
                << (n->atFieldValue ? n->atFieldValue : "(null)") << " ";
        }
        out << "| ";
    }
    return out.str();
}

class ReplyLayoutTest : public ::testing::TestWithParam<ReplyCase> {
  protected:
    // Parses the default scenario's reply to the case's command.
    void Parse(ParseResult *result) {
        ModemHarness harness(ShippedScenario("default.scn"), ModemHarness::QuietOptions());
        if (GetParam().setup) harness.Send(GetParam().setup);
        std::string wire = harness.Send(GetParam().command);
        wire += harness.Wait(kSlowestReplyMs);
        std::string text = ReplyText(wire);
        ASSERT_EQ(ParseAtCmdFunc(&result->first, GetParam().prefix, text.data(), GetParam().module,
                                 GetParam().mode),
                  AT_PARSE_OK)
            << text;
        ASSERT_NE(result->first, nullptr) << text;
        std::size_t rows = 0;
        for (const AtCmdParseNode *row = result->first; row; row = row->nextRow) ++rows;
        EXPECT_EQ(rows, GetParam().rows) << Describe(result->first);
    }
};

class FlatReplyTest : public ReplyLayoutTest {};

TEST_P(FlatReplyTest, EveryFieldNamedAndFilled) {
    ParseResult result;
    ASSERT_NO_FATAL_FAILURE(Parse(&result));
    for (const AtCmdParseNode *row = result.first; row; row = row->nextRow) {
        for (const AtCmdParseNode *n = row; n; n = n->nextField) {
            EXPECT_TRUE(n->atFieldName && *n->atFieldName && n->atFieldValue)
                << Describe(result.first);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    DefaultScenario, FlatReplyTest,
    ::testing::Values(
        // PIN and card
        ReplyCase{"AT+CPIN?", "+CPIN", 2, kQuery, 1}, ReplyCase{"AT^CPIN?", "^CPIN", 2, kQuery, 1},
        ReplyCase{"AT^CPIN?", "^CPIN", 2, kQuery, 1, "AT+CPIN=\"1234\""},
        ReplyCase{"AT+CLCK=\"SC\",2", "+CLCK", 2, kSet, 1},
        ReplyCase{"AT^CARDLOCK?", "^CARDLOCK", 2, kQuery, 1},
        ReplyCase{"AT^CARDMODE", "^CARDMODE", 2, kQuery, 1},
        ReplyCase{"AT^CARDTYPE?", "^CARDTYPE", 2, kQuery, 1},
        ReplyCase{"AT^SIMSQ?", "^SIMSQ", 14, kQuery, 1},
        ReplyCase{"AT^ESIMEID?", "^ESIMEID", 14, kQuery, 1},
        ReplyCase{"AT^ICCID?", "^ICCID", 14, kQuery, 1},
        ReplyCase{"AT+CRSM=176,12258,0,0,10,,\"3F00\"", "+CRSM", 14, kQuery, 1},
        ReplyCase{"AT+CSIM=10,\"00A4000400\"", "+CSIM", 14, kQuery, 1},
        ReplyCase{"AT+CNUM", "+CNUM", 14, kQuery, 1},
        // Data connection
        ReplyCase{"AT+CGDCONT?", "+CGDCONT", 25, kQuery, 3},
        ReplyCase{"AT^AUTHDATA?", "^AUTHDATA", 24, kQuery, 3},
        ReplyCase{"AT^DHCP?", "^DHCP", 21, kQuery, 1},
        ReplyCase{"AT^DHCPV6?", "^DHCPV6", 21, kQuery, 1},
        ReplyCase{"AT^APRAINFO=1", "^APRAINFO", 23, kQuery, 1},
        ReplyCase{"AT^APCONNST?", "^APCONNST", 17, kQuery, 1},
        ReplyCase{"AT^NDISSTATQRY?", "^NDISSTATQRY", 17, kQuery, 1},
        ReplyCase{"AT^NDISSTATQRY=2", "^NDISSTATQRY", 17, kQuery, 1},
        ReplyCase{"AT^IPV6CAP?", "^IPV6CAP", 17, kQuery, 1},
        ReplyCase{"AT^HFEATURESTAT=3", "^HFEATURESTAT", 28, kQuery, 1},
        ReplyCase{"AT^DCONNSTAT?", "^DCONNSTAT", 27, kQuery, 2},
        ReplyCase{"AT+CGACT?", "+CGACT", 1, kQuery, 3},
        ReplyCase{"AT+CGATT?", "+CGATT", 1, kQuery, 1},
        // Identity and device
        ReplyCase{"AT+CGMR", "+CGMR", 4, kQuery, 1}, ReplyCase{"AT^HWVER?", "^HWVER", 4, kQuery, 1},
        ReplyCase{"AT^VERSION?", "^VERSION", 14, kQuery, 13},
        ReplyCase{"AT+CFUN?", "+CFUN", 4, kQuery, 1}, ReplyCase{"AT^HS=0,0", "^HS", 4, kQuery, 1},
        ReplyCase{"AT^SKU?", "^SKU", 1, kQuery, 1},
        ReplyCase{"AT^CHIPTEMP?", "^CHIPTEMP", 30, kQuery, 1},
        ReplyCase{"AT^ANTMODE?", "^ANTMODE", 14, kQuery, 1},
        ReplyCase{"AT^ANTSELCFG?", "^ANTSELCFG", 14, kQuery, 1},
        ReplyCase{"AT^XOTEMP?", "^XOTEMP", 14, kQuery, 1},
        ReplyCase{"AT^ADCREADEX=1", "^ADCREADEX", 14, kQuery, 1},
        ReplyCase{"AT^SETMODE?", "^SETMODE", 14, kQuery, 1},
        ReplyCase{"AT^SHLOCK?", "^SHLOCK", 14, kQuery, 1},
        ReplyCase{"AT^LOPCNL?", "^LOPCNL", 14, kQuery, 1},
        ReplyCase{"AT^SIMSWITCH?", "^SIMSWITCH", 14, kQuery, 1},
        ReplyCase{"AT^APBATLVL", "^APBATLVL", 14, kQuery, 1},
        ReplyCase{"AT+CBC", "+CBC", 14, kQuery, 1},
        ReplyCase{"AT^ANQUERY?", "^ANQUERY", 14, kQuery, 1},
        ReplyCase{"AT^RRCVer?", "^RRCVer", 14, kQuery, 1},
        ReplyCase{"AT^WAKEUPCFG?", "^WAKEUPCFG", 14, kTest, 1},
        ReplyCase{"AT^CURC?", "^CURC", 14, kTest, 1},
        ReplyCase{"AT^THERMFUN?", "^THERMFUN", 14, kTest, 1},
        ReplyCase{"AT^SETWDTIME?", "^SETWDTIME", 14, kTest, 1},
        ReplyCase{"AT^THERMSTATE?", "^THERMSTATE", 14, kTest, 1},
        ReplyCase{"AT^TNUMCTL?", "^TNUMCTL", 14, kQuery, 1},
        ReplyCase{"AT^TRUSTNUM?", "^TRUSTNUM", 14, kQuery, 2},
        ReplyCase{"AT^TRUSTNUM=?", "^TRUSTNUM", 14, kTest, 1},
        ReplyCase{"AT^TRUSTCNUM?", "^TRUSTCNUM", 14, kQuery, 2},
        ReplyCase{"AT^TRUSTCNUM=?", "^TRUSTCNUM", 14, kTest, 1},
        ReplyCase{"AT^UICCAUTH=0,00112233,44556677", "^UICCAUTH", 1, kQuery, 1},
        ReplyCase{"AT+CIREG?", "+CIREG", 1, kQuery, 1},
        // Network and signal
        ReplyCase{"AT+CREG?", "+CREG", 1, kQuery, 1},
        ReplyCase{"AT+CGREG?", "+CGREG", 1, kQuery, 1},
        ReplyCase{"AT+CEREG?", "+CEREG", 1, kQuery, 1},
        ReplyCase{"AT+C5GREG?", "+C5GREG", 1, kQuery, 1},
        ReplyCase{"AT+COPS?", "+COPS", 1, kQuery, 1}, ReplyCase{"AT+CSQ", "+CSQ", 1, kQuery, 1},
        ReplyCase{"AT^HCSQ?", "^HCSQ", 14, kQuery, 1},
        ReplyCase{"AT^CERSSI?", "^CERSSI", 1, kQuery, 1},
        ReplyCase{"AT^CSERSSI?", "^CSERSSI", 1, kQuery, 1},
        ReplyCase{"AT^NWTIME?", "^NWTIME", 14, kQuery, 1},
        ReplyCase{"AT+CCLK?", "+CCLK", 14, kQuery, 1},
        ReplyCase{"AT^SYSCFG?", "^SYSCFG", 1, kQuery, 1},
        ReplyCase{"AT^SYSCFGEX?", "^SYSCFGEX", 1, kQuery, 1},
        ReplyCase{"AT^SYSINFOEX", "^SYSINFOEX", 14, kQuery, 1},
        ReplyCase{"AT^SYSINFO", "^SYSINFO", 14, kQuery, 1},
        ReplyCase{"AT^EONS?", "^EONS", 1, kQuery, 1}, ReplyCase{"AT^EONS=?", "^EONS", 1, kTest, 1},
        ReplyCase{"AT^CGAS?", "^CGAS", 1, kQuery, 1}, ReplyCase{"AT^MCS?", "^MCS", 1, kQuery, 1},
        ReplyCase{"AT^NTXPOWER?", "^NTXPOWER", 1, kQuery, 1},
        ReplyCase{"AT^MONSC", "^MONSC", 1, kQuery, 1},
        ReplyCase{"AT^MONNC", "^MONNC", 1, kQuery, 3},
        ReplyCase{"AT^JDSWITCH?", "^JDSWITCH", 1, kQuery, 3},
        ReplyCase{"AT^JDCFG?", "^JDCFG", 1, kQuery, 3},
        ReplyCase{"AT^EMRSSIRPT?", "^EMRSSIRPT", 1, kQuery, 1},
        ReplyCase{"AT^EMRSSICFG?", "^EMRSSICFG", 1, kQuery, 3},
        // SMS
        ReplyCase{"AT+CMGR=1", "+CMGR", 3, kQuery, 1},
        ReplyCase{"AT+CMGR=2", "+CMGR", 3, kQuery, 1}, ReplyCase{"AT+CPMS?", "+CPMS", 3, kQuery, 1},
        ReplyCase{"AT+CPMS=\"SM\",\"SM\",\"SM\"", "+CPMS", 3, kSet, 1},
        ReplyCase{"AT^CMGI=4", "^CMGI", 3, kSet, 1}, ReplyCase{"AT+CSCA?", "+CSCA", 3, kQuery, 1},
        ReplyCase{"AT+CMGF?", "+CMGF", 3, kQuery, 1}, ReplyCase{"AT+CNMI?", "+CNMI", 3, kQuery, 1},
        ReplyCase{"AT+CSCB?", "+CSCB", 3, kQuery, 1},
        // Calls and supplementary services
        ReplyCase{"AT+CLCC", "+CLCC", 5, kQuery, 1, "ATD10086;"},
        ReplyCase{"AT^CLCC?", "^CLCC", 5, kQuery, 1, "ATD10086;"},
        ReplyCase{"AT+CMUT?", "+CMUT", 5, kQuery, 1}, ReplyCase{"AT^SMUT?", "^SMUT", 5, kQuery, 1},
        ReplyCase{"AT^NSSWITCH?", "^NSSWITCH", 5, kQuery, 1},
        ReplyCase{"AT^ECHOSWITCH?", "^ECHOSWITCH", 5, kQuery, 1},
        ReplyCase{"AT^ECHOEX?", "^ECHOEX", 5, kQuery, 1},
        ReplyCase{"AT^CPCM?", "^CPCM", 5, kQuery, 1},
        ReplyCase{"AT^PCMFR?", "^PCMFR", 5, kQuery, 1},
        ReplyCase{"AT+CMIC?", "+CMIC", 5, kQuery, 1}, ReplyCase{"AT+CLVL?", "+CLVL", 5, kQuery, 1},
        ReplyCase{"AT+CLIP?", "+CLIP", 5, kQuery, 1}, ReplyCase{"AT+CLIR?", "+CLIR", 5, kQuery, 1},
        ReplyCase{"AT^CLIP?", "^CLIP", 5, kQuery, 1}, ReplyCase{"AT^CLIR?", "^CLIR", 5, kQuery, 1},
        ReplyCase{"AT+CCWA=1,2,", "+CCWA", 5, kQuery, 1},
        ReplyCase{"AT^CCWA=1,2,", "^CCWA", 5, kQuery, 1},
        ReplyCase{"AT^CCWA?", "^CCWA", 6, kQuery, 1},
        ReplyCase{"AT^CCWAI?", "^CCWAI", 5, kQuery, 1},
        ReplyCase{"AT+CCFC=0,2", "+CCFC", 5, kQuery, 1},
        ReplyCase{"AT^ECLMODE?", "^ECLMODE", 5, kQuery, 1},
        ReplyCase{"AT^ECLIMSCFG?", "^ECLIMSCFG", 5, kQuery, 1}));

// Replies that the special parsers cut into groups: each must parse, into the
// number of rows its groups make.
class GroupedReplyTest : public ReplyLayoutTest {};

TEST_P(GroupedReplyTest, ParsesIntoItsGroups) {
    ParseResult result;
    ASSERT_NO_FATAL_FAILURE(Parse(&result));
}

INSTANTIATE_TEST_SUITE_P(DefaultScenario, GroupedReplyTest,
                         ::testing::Values(
                             // modes, acqorders, three band pairs
                             ReplyCase{"AT^SYSCFG=?", "^SYSCFG", 1, kTest, 5},
                             // acqorders, two band pairs, two LTE band pairs
                             ReplyCase{"AT^SYSCFGEX=?", "^SYSCFGEX", 1, kTest, 5},
                             // three operators, the modes, the formats
                             ReplyCase{"AT+COPS=?", "+COPS", 1, kTest, 5},
                             ReplyCase{"AT^LTEPROFILE=?", "^LTEPROFILE", 1, kTest, 2},
                             ReplyCase{"AT+CPMS=?", "+CPMS", 3, kTest, 3},
                             ReplyCase{"AT+CMGD=?", "+CMGD", 3, kQuery, 1},
                             ReplyCase{"AT^HCMGD=?", "^HCMGD", 3, kQuery, 1},
                             ReplyCase{"AT^NDISSTATQRY=?", "^NDISSTATQRY", 17, kTest, 1}));

// The operator list keeps a quoted comma inside its name.
TEST(DefaultScenarioReply, OperatorNameWithComma) {
    ModemHarness harness(ShippedScenario("default.scn"), ModemHarness::QuietOptions());
    harness.Send("AT+COPS=?");
    std::string text = ReplyText(harness.Wait(kSlowestReplyMs));
    ParseResult result;
    ASSERT_EQ(ParseAtCmdFunc(&result.first, "+COPS", text.data(), 1, kTest), AT_PARSE_OK);
    EXPECT_NE(Describe(result.first).find("long_oper=Demo Mobile, Inc."), std::string::npos)
        << Describe(result.first);
}

}  // namespace
}  // namespace atsim::test
