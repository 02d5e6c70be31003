// eCall against the scripted modem: the line per command (the start line
// in command order, not record order), the mode range that only the query
// checks, the IMS configuration read back, the MSD at the line's limit, and
// errorId that only an OK reply touches.

#include "atapi/m2m_ats_call.h"
#include "atapi/m2m_ats_voice_call.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

constexpr char kMsd[] = "0123ABCD";

// clang-format off
TEST(M2mAtsEcall, Mode) {
    const auto mode = [](int32_t cmdType) { return [cmdType](int32_t &m) { return AtEclMode(cmdType, &m); }; };
    RunRows<int32_t>({
        {"query 2", mode(0), {Ok("AT^ECLMODE?", "^ECLMODE: 2").Prefix("^ECLMODE:").Timeout(30)}, 0, [](int32_t &m) { m = 2; }, kFails},
        {"query 3 is refused", mode(0), {Ok("AT^ECLMODE?", "^ECLMODE: 3")}, -1},
        {"query -1 is refused", mode(0), {Ok("AT^ECLMODE?", "^ECLMODE: -1")}, -1},
        {"query without a row", mode(0), {Ok("AT^ECLMODE?", "")}, -1},
        {"set takes any value", mode(1), {Ok("AT^ECLMODE=7").Prefix("")}, 0, {}, kFails},
        {"unknown cmdType", mode(2), {}, -1},
    }, int32_t{7});
}

TEST(M2mAtsEcall, ImsConfiguration) {
    using R = AtsEclImsCfgInfo;
    const auto ims = [](int32_t cmdType) { return [cmdType](R &r) { return AtsEclImsCfg(cmdType, &r); }; };
    R preset = Filled<R>(0x5A);
    preset.modeType = 1;
    SetText(preset.contentType, "application/emergencyCallData.eCall.MSD");
    RunRows<R>({
        {"set with the content type", ims(1), {Ok("AT^ECLIMSCFG=1,\"application/emergencyCallData.eCall.MSD\"")}, 0, {}, kFails},
        {"set mode 0 leaves the content type out", [](R &r) { r.modeType = 0; return AtsEclImsCfg(1, &r); }, {Ok("AT^ECLIMSCFG=0")}, 0, [](R &r) { r.modeType = 0; }},
        {"query", ims(0), {Ok("AT^ECLIMSCFG?", "^ECLIMSCFG: 0,\"text/plain\"").Prefix("")}, 0, [](R &r) { r.modeType = 0; SetText(r.contentType, "text/plain"); }, kFails},
        {"query without a content type", ims(0), {Ok("AT^ECLIMSCFG?", "^ECLIMSCFG: 2")}, 0, [](R &r) { r.modeType = 2; }},
        {"a content type of 64 characters fails", ims(0), {Ok("AT^ECLIMSCFG?", "^ECLIMSCFG: 0," + std::string(64, 'a'))}, -1, [](R &r) { r.modeType = 0; r.contentType[0] = '\0'; }},
        {"unknown cmdType", ims(2), {}, -1},
    }, preset);
}

TEST(M2mAtsEcall, MsdConfigurationAndStart) {
    // An MSD that fills the line to 1539 characters, and one more.
    static const std::string kLongest(AT_CMD_STR_LEN - 1 - 12, 'A');
    static const std::string kTooLong(kLongest + "A");
    const auto msd = [](const std::string *text) {
        return [text](AtsEclMsdInfo &r) { if (text != nullptr) r.msd = text->c_str(); const int32_t ret = AtsEclMsd(&r); r.msd = kMsd; return ret; };
    };
    RunRows<AtsEclMsdInfo>({
        {"MSD", msd(nullptr), {Ok("AT^ECLMSD=\"0123ABCD\"").Prefix("")}, 0, Done<AtsEclMsdInfo>, kFails},
        {"the longest MSD", msd(&kLongest), {Ok("AT^ECLMSD=\"" + kLongest + "\"")}, 0, Done<AtsEclMsdInfo>},
        {"an MSD one longer is not sent", msd(&kTooLong), {}, -1},
        {"no MSD", [](AtsEclMsdInfo &r) { r.msd = nullptr; const int32_t ret = AtsEclMsd(&r); r.msd = kMsd; return ret; }, {}, -1},
    }, AtsEclMsdInfo{kMsd, 0});
    RunRows<AtsEclCfgInfo>({{"configure", [](AtsEclCfgInfo &r) { return AtsEclCfg(&r); }, {Ok("AT^ECLCFG=1,2,3")}, 0, Done<AtsEclCfgInfo>, kFails}}, AtsEclCfgInfo{1, 2, 3, 0});
    AtsEclStartInfo start{1, 2, 3, {}, 0};
    SetText(start.number, "112");
    RunRows<AtsEclStartInfo>({
        {"start sends the number third and param4 last", [](AtsEclStartInfo &r) { return AtsEclStart(&r); }, {Ok("AT^ECLSTART=1,2,\"112\",3")}, 0, Done<AtsEclStartInfo>, kFails},
        {"an unterminated number is not sent", [](AtsEclStartInfo &r) { AtsEclStartInfo copy = r; std::memset(copy.number, '1', sizeof copy.number); return AtsEclStart(&copy); }, {}, -1},
    }, start);
}

TEST(M2mAtsEcall, PushStopAbort) {
    const auto call = [](int32_t (*fn)()) { return [fn](NoRecord &) { return fn(); }; };
    RunRows<NoRecord>({
        {"push", call(AtsEclPush), {Ok("AT^ECLPUSH").Prefix("").Timeout(30)}, 0, {}, kFails},
        {"stop", call(AtsEclStop), {Ok("AT^ECLSTOP")}, 0, {}, kFails},
        {"abort", call(AtEcalllAbort), {Ok("AT^ECLABORT")}, 0, {}, kFails},
    }, NoRecord{0});
}

// Every function of the family refuses a missing argument before sending.
TEST(M2mAtsCall, NullArguments) {
    ExpectRefused({
        {"AtsClcc", [] { return AtsClcc(nullptr, 1); }}, {"AtsClccEx", [] { return AtsClccEx(nullptr, 1); }},
        {"AtsCssn", [] { return AtsCssn(nullptr); }}, {"AtClipQuery", [] { return AtClipQuery(nullptr); }},
        {"AtsCcwa", [] { return AtsCcwa(nullptr); }}, {"AtCcwaEx", [] { return AtCcwaEx(nullptr); }},
        {"AtsSetCcwai", [] { return AtsSetCcwai(nullptr); }}, {"AtsGetCcwai", [] { return AtsGetCcwai(nullptr); }},
        {"AtsCcfc", [] { return AtsCcfc(nullptr); }}, {"AtTrustSpecialNumList", [] { return AtTrustSpecialNumList(nullptr); }},
        {"AtsS0", [] { return AtsS0(0, nullptr); }}, {"AtsCmut", [] { return AtsCmut(0, nullptr); }}, {"AtsSmut", [] { return AtsSmut(0, nullptr); }},
        {"AtsNsSwitch", [] { return AtsNsSwitch(0, nullptr); }}, {"AtEchoSwitch", [] { return AtEchoSwitch(1, nullptr); }},
        {"AtsEchoEx", [] { return AtsEchoEx(0, nullptr); }}, {"AtDtmf", [] { return AtDtmf(nullptr); }},
        {"AtCpcm", [] { return AtCpcm(0, nullptr); }}, {"AtCpcmCheck", [] { return AtCpcmCheck(nullptr); }}, {"AtCpcmExecute", [] { return AtCpcmExecute(nullptr); }},
        {"AtPcmfr", [] { return AtPcmfr(0, nullptr); }}, {"AtCmic", [] { return AtCmic(0, nullptr); }},
        {"AtEclMode", [] { return AtEclMode(0, nullptr); }}, {"AtsEclImsCfg", [] { return AtsEclImsCfg(0, nullptr); }},
        {"AtsEclMsd", [] { return AtsEclMsd(nullptr); }}, {"AtsEclCfg", [] { return AtsEclCfg(nullptr); }}, {"AtsEclStart", [] { return AtsEclStart(nullptr); }},
    });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
