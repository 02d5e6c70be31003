// Subscriber numbers, APDUs, SIM slots and the card type against the
// scripted modem: the exact line, the records filled from realistic
// replies, error replies per class, and requests refused before sending.
#include <cstdlib>
#include <string>
#include <vector>

#include "atapi/ats_usim.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;

// clang-format off
TEST(AtsUsimCard, SubscriberNumbers) {
    struct Number {
        std::string name, num;
        uint32_t type;
        bool operator==(const Number &) const = default;
    };
    struct Case {
        const char *name;
        Step step;
        int32_t result, count, errorId;
        std::vector<Number> numbers;
    };
    const Case cases[] = {
        {"two numbers", Ok("AT+CNUM", "+CNUM: \"Voice\",\"+491701234567\",145\r\n+CNUM: \"\",\"01701234567\",129").Prefix("+CNUM").Timeout(5),
         0, 2, AT_ERRID_OK, {{"Voice", "+491701234567", 145}, {"", "01701234567", 129}}},
        {"no number stored", Ok("AT+CNUM"), 0, kFill, AT_ERRID_OK, {}},
        {"a name longer than its field", Ok("AT+CNUM", "+CNUM: \"" + std::string(90, 'N') + "\",\"+491701234567\",145"), -1, 0, AT_ERRID_OK, {}},
        {"a reply without +CNUM", Ok("AT+CNUM", "OK"), -1, 0, AT_ERRID_OK, {}},
        // An exchange of its own: +CME/+CMS are done with their id, the others fail.
        {"+CME ERROR", Fails("AT+CNUM", AT_RET_CME_ERROR, "+CME ERROR: 10"), 0, kFill, kCme10, {}},
        {"+CMS ERROR", Fails("AT+CNUM", AT_RET_CMS_ERROR, "+CMS ERROR: 316"), 0, kFill, kCms316, {}},
        {"ERROR", Fails("AT+CNUM", AT_RET_ERROR, "ERROR"), -1, kFill, kFill, {}},
        {"AT_ABORTED", Fails("AT+CNUM", AT_RET_ABORTED, "AT_ABORTED"), -1, kFill, kFill, {}},
        {"a lost exchange", ExchangeFails("AT+CNUM"), -1, kFill, kFill, {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        ScriptedModem modem(runtime, {c.step});
        CnumList l{nullptr, kFill, kFill};
        EXPECT_EQ(AtCnumQuery(&l), c.result);
        modem.Verify();
        EXPECT_EQ(l.count, c.count);
        EXPECT_EQ(l.errorId, c.errorId);
        std::vector<Number> numbers;
        for (int32_t i = 0; l.entries != nullptr && i < l.count; ++i) numbers.push_back({l.entries[i].name, l.entries[i].num, l.entries[i].type});
        EXPECT_EQ(numbers, c.numbers);
        std::free(l.entries);
    }
    EXPECT_EQ(AtCnumQuery(nullptr), -1);
}

TEST(AtsUsimCard, Apdu) {
    CsimInfo preset = Filled<CsimInfo>(kFill);
    preset.length = 14;
    SetText(preset.command, "00A40004023F00");
    const auto send = [](CsimInfo &c) { return AtCsim(&c); };
    const auto withLength = [](uint32_t length) { return [length](CsimInfo &c) { c.length = length; return AtCsim(&c); }; };
    const char *line = "AT+CSIM=14,\"00A40004023F00\"";
    RunCommandCases<CsimInfo>(Cases<CsimInfo>{
        {"select MF", send, {Ok(line, "+CSIM: 4,\"9000\"").Prefix("+CSIM").Timeout(30)}, 0,
         [](CsimInfo &c) { c.rspLength = 4; SetText(c.response, "9000"); c.errorId = AT_ERRID_OK; }},
        {"length 9 is refused", withLength(9), {}, -1, [](CsimInfo &c) { c.length = 9; }},
        {"length 521 is refused", withLength(521), {}, -1, [](CsimInfo &c) { c.length = 521; }},
    } + ErrorCases<CsimInfo>("APDU", send, line, kListClass, &CsimInfo::errorId), preset);
    CsimInfo unterminated = Filled<CsimInfo>('0');
    unterminated.length = 10;
    EXPECT_EQ(AtCsim(&unterminated), -1);
    EXPECT_EQ(AtCsim(nullptr), -1);
}

TEST(AtsUsimCard, SlotsAndCardType) {
    const auto slot = [](HvsstRequest &r) { return AtHvsstSet(&r); };
    RunCommandCases<HvsstRequest>(Cases<HvsstRequest>{
        {"slot on", slot, {Ok("AT^HVSST=1,1").Prefix("")}, 0, [](HvsstRequest &r) { r.errorId = AT_ERRID_OK; }},
    } + ErrorCases<HvsstRequest>("slot", slot, "AT^HVSST=1,1", kSimple, &HvsstRequest::errorId), HvsstRequest{1, 1, kFill});
    const auto query = [](SimSwitchInfo &s) { return AtSimSwitch(AT_SIMSWITCH_QUERY, &s); };
    RunCommandCases<SimSwitchInfo>(Cases<SimSwitchInfo>{
        {"active SIM", query, {Ok("AT^SIMSWITCH?", "^SIMSWITCH: 1").Prefix("^SIMSWITCH:")}, 0, [](SimSwitchInfo &s) { s = {1, AT_ERRID_OK}; }},
        {"select SIM 2", [](SimSwitchInfo &s) { s.simType = 2; return AtSimSwitch(AT_SIMSWITCH_SET, &s); }, {Ok("AT^SIMSWITCH=2")}, 0,
         [](SimSwitchInfo &s) { s = {2, AT_ERRID_OK}; }},
        {"another op", [](SimSwitchInfo &s) { return AtSimSwitch(2, &s); }, {}, -1},
    } + ErrorCases<SimSwitchInfo>("active SIM", query, "AT^SIMSWITCH?", kListClass, &SimSwitchInfo::errorId), Filled<SimSwitchInfo>(kFill));
    const auto type = [](CardTypeInfo &c) { return AtCardType(&c); };
    RunCommandCases<CardTypeInfo>(Cases<CardTypeInfo>{
        {"USIM with GSM", type, {Ok("AT^CARDTYPE?", "^CARDTYPE: 2,0,1").Prefix("^CARDTYPE")}, 0, [](CardTypeInfo &c) { c = {2, 0, 1, AT_ERRID_OK}; }},
    } + ErrorCases<CardTypeInfo>("card type", type, "AT^CARDTYPE?", kListClass, &CardTypeInfo::errorId), Filled<CardTypeInfo>(kFill));
    EXPECT_EQ(AtHvsstSet(nullptr), -1);
    EXPECT_EQ(AtSimSwitch(AT_SIMSWITCH_QUERY, nullptr), -1);
    EXPECT_EQ(AtCardType(nullptr), -1);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
