// Voice path settings against the scripted modem: the line per cmdType, the
// value or record read back, errorId per reply class (-3 when nothing
// completed) and the refusals that send nothing.

#include "atapi/m2m_ats_call.h"
#include "atapi/m2m_ats_voice_call.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

constexpr int32_t kPending = AT_ERRID_NOT_COMPLETED;
// As kMarked, but only +CME ERROR has its id mapped.
constexpr Convention kCmeMapped{
    {-1, kPending}, {-1, kCme10}, {-1, kPending}, {-1, kPending}, {-1, kPending}};
// A tone: +CME ERROR, its id stored, still returns 0.
constexpr Convention kToneDone{
    {-1, kPending}, {0, kCme10}, {-1, kPending}, {-1, kPending}, {-1, kPending}};

template <typename R>
auto ErrorId(int32_t id) {
    return [id](R &r) { r.errorId = id; };
}

// clang-format off
TEST(M2mAtsCallVoice, AutoAnswerAndMute) {
    const auto with = [](int32_t (*fn)(int32_t, int32_t *), int32_t cmdType) { return [fn, cmdType](int32_t &v) { return fn(cmdType, &v); }; };
    const auto becomes = [](int32_t value) { return [value](int32_t &v) { v = value; }; };
    RunRows<int32_t>({
        {"S0 query reads the whole reply", with(AtsS0, 0), {Ok("ATS0?", "003")}, 0, becomes(3), kFails},
        {"S0 query without text", with(AtsS0, 0), {Ok("ATS0?", "")}, -1},
        {"S0 set", with(AtsS0, 1), {Ok("ATS0=7").Prefix("")}, 0, {}, kFails},
        {"S0 unknown cmdType", with(AtsS0, 2), {}, -1},
        {"CMUT query", with(AtsCmut, 0), {Ok("AT+CMUT?", "+CMUT: 1").Prefix("")}, 0, becomes(1), kFails},
        {"CMUT query without the prefix keeps the value", with(AtsCmut, 0), {Ok("AT+CMUT?", "")}, 0},
        {"CMUT set", with(AtsCmut, 1), {Ok("AT+CMUT=7")}, 0, {}, kFails},
        {"SMUT query", with(AtsSmut, 0), {Ok("AT^SMUT?", "^SMUT: 0")}, 0, becomes(0), kFails},
        {"SMUT set", with(AtsSmut, 1), {Ok("AT^SMUT=7")}, 0, {}, kFails},
    }, int32_t{7});
}

TEST(M2mAtsCallVoice, Switches) {
    using R = AtSwitchModeInfo;
    const auto ns = [](int32_t cmdType) { return [cmdType](R &r) { return AtsNsSwitch(cmdType, &r); }; };
    const auto echo = [](int32_t cmdType) { return [cmdType](R &r) { return AtEchoSwitch(cmdType, &r); }; };
    const auto read = [](int32_t mode) { return [mode](R &r) { r = {mode, AT_ERRID_OK}; }; };
    RunRows<R>({
        {"NS query", ns(0), {Ok("AT^NSSWITCH?", "^NSSWITCH: 0").Prefix("^NSSWITCH:").Timeout(30)}, 0, read(0), kMarked},
        {"NS query without a row", ns(0), {Ok("AT^NSSWITCH?", "")}, -1, ErrorId<R>(kPending)},
        {"NS set", ns(1), {Ok("AT^NSSWITCH=1").Prefix("^NSSWITCH:")}, 0, read(1), kMarked},
        {"NS unknown cmdType", ns(3), {}, -1, ErrorId<R>(kPending)},
        {"echo query", echo(0), {Ok("AT^ECHOSWITCH?", "^ECHOSWITCH: 0").Prefix("")}, 0, read(0), kMarked},
        {"echo set", echo(1), {Ok("AT^ECHOSWITCH=1")}, 0, read(1), kMarked},
    }, R{1, 0});
    const auto echoEx = [](int32_t cmdType) { return [cmdType](AtEchoExParam &r) { return AtsEchoEx(cmdType, &r); }; };
    RunRows<AtEchoExParam>({
        {"echo parameters", echoEx(0), {Ok("AT^ECHOEX?", "^ECHOEX: 1,20,30,4,5").Prefix("^ECHOEX:")}, 0, [](AtEchoExParam &r) { r = {1, 20, 30, 4, 5, AT_ERRID_OK}; }, kMarked},
        {"echo parameters set in record order", echoEx(1), {Ok("AT^ECHOEX=1,2,3,4,5").Prefix("^ECHOEX:")}, 0, Done<AtEchoExParam>, kMarked},
    }, AtEchoExParam{1, 2, 3, 4, 5, 0});
}

TEST(M2mAtsCallVoice, DtmfAndDeltaTable) {
    RunRows<AtDtmfParam>({{"tone", [](AtDtmfParam &r) { return AtDtmf(&r); }, {Ok("AT+VTS=#,300")}, 0, Done<AtDtmfParam>, kToneDone}}, AtDtmfParam{'#', 300, 0});
    RunRows<NoRecord>({
        {"delta table", [](NoRecord &) { return AtDeltaSet("1,2,3"); }, {Ok("AT^DELTASET=\"1,2,3\"")}, 0, {}, kFails},
        {"no delta table", [](NoRecord &) { return AtDeltaSet(nullptr); }, {}, -1},
    }, NoRecord{0});
}

TEST(M2mAtsCallVoice, PcmInterface) {
    using R = AtCpcmParam;
    const auto cpcm = [](int32_t cmdType) { return [cmdType](R &r) { return AtCpcm(cmdType, &r); }; };
    RunRows<R>({
        {"check", cpcm(0), {Ok("AT^CPCM?", "^CPCM: 0,1,2,3,4").Prefix("^CPCM:")}, 0, [](R &r) { r = {0, 1, 2, 3, 4, AT_ERRID_OK}; }, kCmeMapped},
        {"execute", cpcm(1), {Ok("AT^CPCM=5,6,7,8,9").Prefix("^CPCM:")}, 0, Done<R>, kCmeMapped},
        {"unknown cmdType", cpcm(2), {}, -1},
    }, R{5, 6, 7, 8, 9, 0});
}

TEST(M2mAtsVoiceCall, PcmFrequency) {
    using R = PcmFrqInfo;
    const auto op = [](uint32_t o) { return [o](R &r) { return AtPcmfr(o, &r); }; };
    const auto becomes = [](std::string frq, int32_t errorId) { return [frq, errorId](R &r) { SetText(r.pcmFrq, frq.c_str()); r.errorId = errorId; }; };
    const std::string longest(232, '8');
    R preset = Filled<R>(0);
    SetText(preset.pcmFrq, "16000");
    RunRows<R>({
        {"set", op(1), {Ok("AT^PCMFR=\"16000\"").Prefix("^PCMFR:").Timeout(30)}, 0, Done<R>, kMarked},
        {"query", op(0), {Ok("AT^PCMFR?", "^PCMFR: 8000").Prefix("^PCMFR:")}, 0, becomes("8000", AT_ERRID_OK), kMarked},
        {"query of 232 characters", op(0), {Ok("AT^PCMFR?", "^PCMFR: " + longest)}, 0, becomes(longest, AT_ERRID_OK)},
        {"query of 233 characters fails the copy", op(0), {Ok("AT^PCMFR?", "^PCMFR: " + longest + "8")}, -1, becomes("", kPending)},
        {"query without a row", op(0), {Ok("AT^PCMFR?", "")}, -1, ErrorId<R>(kPending)},
        {"op 2 sends nothing", op(2), {}, -1, ErrorId<R>(kPending)},
    }, preset);
}

TEST(M2mAtsVoiceCall, MicrophoneGainAndVoiceMode) {
    const auto op = [](int32_t o) { return [o](int32_t &level) { return AtCmic(o, &level); }; };
    RunRows<int32_t>({
        {"set", op(1), {Ok("AT+CMIC=9").Prefix("").Timeout(30)}, 0, {}, kFails},
        {"query", op(0), {Ok("AT+CMIC?", "+CMIC: 12")}, 0, [](int32_t &level) { level = 12; }, kFails},
        {"query that does not parse keeps the level", op(0), {Ok("AT+CMIC?", "12")}, 0},
        {"op 2 sends nothing", op(2), {}, -1},
    }, int32_t{9});
    const auto mode = [](uint32_t type) { return [type](int32_t &) { return AtVmSet(type); }; };
    RunRows<int32_t>({
        {"mode 0", mode(0), {Ok("AT^VMSET=0").Prefix("").Timeout(30)}, 0},
        {"mode 6", mode(6), {Ok("AT^VMSET=6")}, 0, {}, kFails},
        {"mode 7 sends nothing", mode(7), {}, -1},
    }, 0);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
