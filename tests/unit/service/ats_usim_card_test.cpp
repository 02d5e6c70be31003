// Subscriber numbers, APDUs, SIM slots and the card type against the
// scripted modem: the exact line, the records filled from realistic
// replies, error replies per class, and requests refused before sending.
#include <cstdlib>
#include <string>
#include <vector>

#include "atapi/ats_usim.h"
#include "command_cases.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;

TEST(AtsUsimCard, SubscriberNumbers) {
    struct Number {
        std::string name, num;
        uint32_t type;
        bool operator==(const Number &) const = default;
    };
    struct Case {
        const char *name;
        Step step;
        int32_t result;
        int32_t count;
        int32_t errorId;
        std::vector<Number> numbers;
    };
    const std::string longName(90, 'N');
    const std::vector<Case> cases = {
        {"two numbers",
         Ok("AT+CNUM", "+CNUM: \"Voice\",\"+491701234567\",145\r\n+CNUM: \"\",\"01701234567\",129")
             .Prefix("+CNUM")
             .Timeout(5),
         0,
         2,
         AT_ERRID_OK,
         {{"Voice", "+491701234567", 145}, {"", "01701234567", 129}}},
        {"no number stored", Ok("AT+CNUM"), 0, kFill, AT_ERRID_OK, {}},
        {"an error reply is done, with its id",
         Fails("AT+CNUM", AT_RET_CME_ERROR, "+CME ERROR: 10"),
         0,
         kFill,
         13,
         {}},
        {"ERROR", Fails("AT+CNUM", AT_RET_ERROR, "ERROR"), -1, kFill, kFill, {}},
        {"a name longer than its field",
         Ok("AT+CNUM", "+CNUM: \"" + longName + "\",\"+491701234567\",145"),
         -1,
         0,
         AT_ERRID_OK,
         {}},
        {"a reply without +CNUM", Ok("AT+CNUM", "OK"), -1, 0, AT_ERRID_OK, {}},
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
        for (int32_t i = 0; l.entries != nullptr && i < l.count; ++i) {
            numbers.push_back({l.entries[i].name, l.entries[i].num, l.entries[i].type});
        }
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
    const auto withLength = [](uint32_t length) {
        return [length](CsimInfo &c) {
            c.length = length;
            return AtCsim(&c);
        };
    };
    // clang-format off
    RunCommandCases<CsimInfo>({
        {"select MF", send,
         {Ok("AT+CSIM=14,\"00A40004023F00\"", "+CSIM: 4,\"9000\"").Prefix("+CSIM").Timeout(30)},
         0,
         [](CsimInfo &c) {
             c.rspLength = 4;
             SetText(c.response, "9000");
             c.errorId = AT_ERRID_OK;
         }},
        {"ERROR passes its class", send,
         {Fails("AT+CSIM=14,\"00A40004023F00\"", AT_RET_ERROR, "ERROR")}, AT_RET_ERROR,
         [](CsimInfo &c) { c.errorId = AT_ERRID_UNMAPPED; }},
        {"length 9 is refused", withLength(9), {}, -1, [](CsimInfo &c) { c.length = 9; }},
        {"length 521 is refused", withLength(521), {}, -1, [](CsimInfo &c) { c.length = 521; }},
    }, preset);
    // clang-format on
    CsimInfo unterminated = Filled<CsimInfo>('0');
    unterminated.length = 10;
    EXPECT_EQ(AtCsim(&unterminated), -1);
    EXPECT_EQ(AtCsim(nullptr), -1);
}

TEST(AtsUsimCard, SlotsAndCardType) {
    // clang-format off
    RunCommandCases<HvsstRequest>({
        {"slot on", [](HvsstRequest &r) { r.index = 1; r.enable = 1; return AtHvsstSet(&r); },
         {Ok("AT^HVSST=1,1").Prefix("")}, 0,
         [](HvsstRequest &r) { r = {1, 1, AT_ERRID_OK}; }},
        {"an error reply stores its class", [](HvsstRequest &r) {
             r.index = 2; r.enable = 0; return AtHvsstSet(&r); },
         {Fails("AT^HVSST=2,0", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1,
         [](HvsstRequest &r) { r = {2, 0, AT_RET_CME_ERROR}; }},
    }, Filled<HvsstRequest>(kFill));
    RunCommandCases<SimSwitchInfo>({
        {"active SIM", [](SimSwitchInfo &s) { return AtSimSwitch(AT_SIMSWITCH_QUERY, &s); },
         {Ok("AT^SIMSWITCH?", "^SIMSWITCH: 1").Prefix("^SIMSWITCH:")}, 0,
         [](SimSwitchInfo &s) { s = {1, AT_ERRID_OK}; }},
        {"select SIM 2", [](SimSwitchInfo &s) {
             s.simType = 2; return AtSimSwitch(AT_SIMSWITCH_SET, &s); },
         {Ok("AT^SIMSWITCH=2")}, 0, [](SimSwitchInfo &s) { s = {2, AT_ERRID_OK}; }},
        {"query refused", [](SimSwitchInfo &s) { return AtSimSwitch(AT_SIMSWITCH_QUERY, &s); },
         {Fails("AT^SIMSWITCH?", AT_RET_CME_ERROR, "+CME ERROR: 10")}, AT_RET_CME_ERROR,
         [](SimSwitchInfo &s) { s.errorId = 13; }},
        {"another op", [](SimSwitchInfo &s) { return AtSimSwitch(2, &s); }, {}, -1},
    }, Filled<SimSwitchInfo>(kFill));
    RunCommandCases<CardTypeInfo>({
        {"USIM with GSM", [](CardTypeInfo &c) { return AtCardType(&c); },
         {Ok("AT^CARDTYPE?", "^CARDTYPE: 2,0,1").Prefix("^CARDTYPE")}, 0,
         [](CardTypeInfo &c) { c = {2, 0, 1, AT_ERRID_OK}; }},
    }, Filled<CardTypeInfo>(kFill));
    // clang-format on
    EXPECT_EQ(AtHvsstSet(nullptr), -1);
    EXPECT_EQ(AtSimSwitch(AT_SIMSWITCH_QUERY, nullptr), -1);
    EXPECT_EQ(AtCardType(nullptr), -1);
}

}  // namespace
}  // namespace atapi::test
