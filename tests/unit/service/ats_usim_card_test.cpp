// Subscriber numbers, APDUs, SIM slots and the card type against the
// scripted modem: the exact line, the records filled from realistic
// replies, error replies per class, and requests refused before sending.
#include <cstdlib>

#include "atapi/ats_usim.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

// clang-format off
TEST(AtsUsimCard, SubscriberNumbers) {
    // The list as the call leaves it: count, errorId and the entries as text.
    struct Numbers {
        int32_t count, errorId;
        char text[128];
    };
    const auto query = [](Numbers &n) {
        CnumList l{nullptr, n.count, n.errorId};
        const int32_t ret = AtCnumQuery(&l);
        std::string text;
        for (int32_t i = 0; l.entries != nullptr && i < l.count; ++i) text += std::string(l.entries[i].name) + "," + l.entries[i].num + "," + std::to_string(l.entries[i].type) + ";";
        std::free(l.entries);
        n.count = l.count; n.errorId = l.errorId; SetText(n.text, text.c_str());
        return ret;
    };
    const auto listed = [](int32_t count, const char *text) { return [=](Numbers &n) { n.count = count; SetText(n.text, text); Done(n); }; };
    RunRows<Numbers>({
        {"two numbers", query, {Ok("AT+CNUM", "+CNUM: \"Voice\",\"+491701234567\",145\r\n+CNUM: \"\",\"01701234567\",129").Prefix("+CNUM").Timeout(5)}, 0,
         listed(2, "Voice,+491701234567,145;,01701234567,129;"), kOwnDone},
        {"no number stored", query, {Ok("AT+CNUM")}, 0, Done<Numbers>},
        {"a name longer than its field", query, {Ok("AT+CNUM", "+CNUM: \"" + std::string(90, 'N') + "\",\"+491701234567\",145")}, -1, listed(0, "")},
        {"a reply without +CNUM", query, {Ok("AT+CNUM", "OK")}, -1, listed(0, "")},
    }, Numbers{0x5A, 0x5A, ""});
}

TEST(AtsUsimCard, Apdu) {
    CsimInfo preset = Filled<CsimInfo>(0x5A);
    preset.length = 14;
    SetText(preset.command, "00A40004023F00");
    const auto withLength = [](uint32_t length) { return [length](CsimInfo &c) { c.length = length; return AtCsim(&c); }; };
    RunRows<CsimInfo>({
        {"select MF", [](CsimInfo &c) { return AtCsim(&c); }, {Ok("AT+CSIM=14,\"00A40004023F00\"", "+CSIM: 4,\"9000\"").Prefix("+CSIM").Timeout(30)}, 0,
         [](CsimInfo &c) { c.rspLength = 4; SetText(c.response, "9000"); Done(c); }, kListClass},
        {"length 9 is refused", withLength(9), {}, -1, [](CsimInfo &c) { c.length = 9; }},
        {"length 521 is refused", withLength(521), {}, -1, [](CsimInfo &c) { c.length = 521; }},
    }, preset);
    RunRows<CsimInfo>({{"a command without a terminator is refused", [](CsimInfo &c) { return AtCsim(&c); }, {}, -1}}, [] {
        CsimInfo c = Filled<CsimInfo>('0');
        c.length = 10;
        return c;
    }());
}

TEST(AtsUsimCard, SlotsAndCardType) {
    RunRows<HvsstRequest>({{"slot on", [](HvsstRequest &r) { return AtHvsstSet(&r); }, {Ok("AT^HVSST=1,1").Prefix("")}, 0, Done<HvsstRequest>, kSimple}}, HvsstRequest{1, 1, 0x5A});
    RunRows<SimSwitchInfo>({
        {"active SIM", [](SimSwitchInfo &s) { return AtSimSwitch(AT_SIMSWITCH_QUERY, &s); }, {Ok("AT^SIMSWITCH?", "^SIMSWITCH: 1").Prefix("^SIMSWITCH:")}, 0, [](SimSwitchInfo &s) { s = {1, AT_ERRID_OK}; }, kListClass},
        {"select SIM 2", [](SimSwitchInfo &s) { s.simType = 2; return AtSimSwitch(AT_SIMSWITCH_SET, &s); }, {Ok("AT^SIMSWITCH=2")}, 0, [](SimSwitchInfo &s) { s = {2, AT_ERRID_OK}; }},
        {"another op", [](SimSwitchInfo &s) { return AtSimSwitch(2, &s); }, {}, -1},
    });
    RunRows<CardTypeInfo>({{"USIM with GSM", [](CardTypeInfo &c) { return AtCardType(&c); }, {Ok("AT^CARDTYPE?", "^CARDTYPE: 2,0,1").Prefix("^CARDTYPE")}, 0,
                            [](CardTypeInfo &c) { c = {2, 0, 1, AT_ERRID_OK}; }, kListClass}});
}

// Every function of the family refuses a missing argument before sending.
TEST(AtsUsim, NullArguments) {
    static CrsmRequest request{};
    static CrsmResult result{};
    ExpectRefused({
        {"AtCrsm without a request", [] { return AtCrsm(nullptr, &result); }}, {"AtCrsm without a result", [] { return AtCrsm(&request, nullptr); }},
        {"AtGetIccidByCrsm", [] { return AtGetIccidByCrsm(nullptr); }}, {"AtAphPlmnByCrsm", [] { return AtAphPlmnByCrsm(nullptr); }},
        {"AtGetSpnByCrsm", [] { return AtGetSpnByCrsm(nullptr, 8); }}, {"AtGetSimGid", [] { return AtGetSimGid(nullptr, 8); }},
        {"AtGetSimApn", [] { return AtGetSimApn(nullptr); }}, {"AtCnumQuery", [] { return AtCnumQuery(nullptr); }},
        {"AtCsim", [] { return AtCsim(nullptr); }}, {"AtHvsstSet", [] { return AtHvsstSet(nullptr); }},
        {"AtSimSwitch", [] { return AtSimSwitch(AT_SIMSWITCH_QUERY, nullptr); }}, {"AtCardType", [] { return AtCardType(nullptr); }},
        // Returns nothing: it must neither write nor send.
        {"AtGetEfspdiPlmn", [] { AtGetEfspdiPlmn(nullptr, 8); return -1; }},
    });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
