// Voice path settings against the scripted modem: the line per cmdType, the
// value or record read back, errorId per reply class (-3 when nothing
// completed) and the refusals that send nothing.

#include <string>

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
    Cases<int32_t> cases{
        {"S0 query reads the whole reply", with(AtsS0, 0), {Ok("ATS0?", "003")}, 0, becomes(3)},
        {"S0 query without text", with(AtsS0, 0), {Ok("ATS0?", "")}, -1},
        {"S0 set", with(AtsS0, 1), {Ok("ATS0=7").Prefix("")}, 0},
        {"S0 unknown cmdType", with(AtsS0, 2), {}, -1},
        {"CMUT query", with(AtsCmut, 0), {Ok("AT+CMUT?", "+CMUT: 1").Prefix("")}, 0, becomes(1)},
        {"CMUT query without the prefix keeps the value", with(AtsCmut, 0), {Ok("AT+CMUT?", "")}, 0},
        {"CMUT set", with(AtsCmut, 1), {Ok("AT+CMUT=7")}, 0},
        {"SMUT query", with(AtsSmut, 0), {Ok("AT^SMUT?", "^SMUT: 0")}, 0, becomes(0)},
        {"SMUT set", with(AtsSmut, 1), {Ok("AT^SMUT=7")}, 0},
    };
    const std::tuple<int32_t (*)(int32_t, int32_t *), std::string, std::string> forms[] = {
        {AtsS0, "ATS0?", "ATS0=7"}, {AtsCmut, "AT+CMUT?", "AT+CMUT=7"}, {AtsSmut, "AT^SMUT?", "AT^SMUT=7"}};
    for (const auto &[fn, query, set] : forms) {
        cases = cases + ErrorCases<int32_t>(query, with(fn, 0), query, kFails) + ErrorCases<int32_t>(set, with(fn, 1), set, kFails);
        EXPECT_EQ(fn(0, nullptr), -1) << query;
    }
    RunCommandCases<int32_t>(cases, int32_t{7});
}

TEST(M2mAtsCallVoice, Switches) {
    using R = AtSwitchModeInfo;
    const auto ns = [](int32_t cmdType) { return [cmdType](R &r) { return AtsNsSwitch(cmdType, &r); }; };
    const auto echo = [](int32_t cmdType) { return [cmdType](R &r) { return AtEchoSwitch(cmdType, &r); }; };
    const auto read = [](int32_t mode) { return [mode](R &r) { r = {mode, AT_ERRID_OK}; }; };
    RunCommandCases<R>(Cases<R>{
        {"NS query", ns(0), {Ok("AT^NSSWITCH?", "^NSSWITCH: 0").Prefix("^NSSWITCH:").Timeout(30)}, 0, read(0)},
        {"NS query without a row", ns(0), {Ok("AT^NSSWITCH?", "")}, -1, ErrorId<R>(kPending)},
        {"NS set", ns(1), {Ok("AT^NSSWITCH=1").Prefix("^NSSWITCH:")}, 0, read(1)},
        {"NS unknown cmdType", ns(3), {}, -1, ErrorId<R>(kPending)},
        {"echo query", echo(0), {Ok("AT^ECHOSWITCH?", "^ECHOSWITCH: 0").Prefix("")}, 0, read(0)},
        {"echo set", echo(1), {Ok("AT^ECHOSWITCH=1")}, 0, read(1)},
    } + ErrorCases<R>("NS query", ns(0), "AT^NSSWITCH?", kMarked, &R::errorId) + ErrorCases<R>("NS set", ns(1), "AT^NSSWITCH=1", kMarked, &R::errorId)
      + ErrorCases<R>("echo query", echo(0), "AT^ECHOSWITCH?", kMarked, &R::errorId)
      + ErrorCases<R>("echo set", echo(1), "AT^ECHOSWITCH=1", kMarked, &R::errorId), R{1, 0});
    EXPECT_EQ(AtsNsSwitch(0, nullptr), -1);
    EXPECT_EQ(AtEchoSwitch(1, nullptr), -1);
}

TEST(M2mAtsCallVoice, EchoParameters) {
    using R = AtEchoExParam;
    const auto echo = [](int32_t cmdType) { return [cmdType](R &r) { return AtsEchoEx(cmdType, &r); }; };
    RunCommandCases<R>(Cases<R>{
        {"query", echo(0), {Ok("AT^ECHOEX?", "^ECHOEX: 1,20,30,4,5").Prefix("^ECHOEX:")}, 0, [](R &r) { r = {1, 20, 30, 4, 5, AT_ERRID_OK}; }},
        {"set in record order", echo(1), {Ok("AT^ECHOEX=1,2,3,4,5").Prefix("^ECHOEX:")}, 0, ErrorId<R>(AT_ERRID_OK)},
    } + ErrorCases<R>("query", echo(0), "AT^ECHOEX?", kMarked, &R::errorId) + ErrorCases<R>("set", echo(1), "AT^ECHOEX=1,2,3,4,5", kMarked, &R::errorId),
      R{1, 2, 3, 4, 5, 0});
    EXPECT_EQ(AtsEchoEx(0, nullptr), -1);
}

TEST(M2mAtsCallVoice, DtmfAndDeltaTable) {
    using R = AtDtmfParam;
    const auto dtmf = [](R &r) { return AtDtmf(&r); };
    RunCommandCases<R>(Cases<R>{{"tone", dtmf, {Ok("AT+VTS=#,300")}, 0, ErrorId<R>(AT_ERRID_OK)}}
                       + ErrorCases<R>("tone", dtmf, "AT+VTS=#,300", kToneDone, &R::errorId), R{'#', 300, 0});
    EXPECT_EQ(AtDtmf(nullptr), -1);

    struct NoRecord {
        char unused;
    };
    const auto delta = [](NoRecord &) { return AtDeltaSet("1,2,3"); };
    RunCommandCases<NoRecord>(Cases<NoRecord>{
        {"delta table", delta, {Ok("AT^DELTASET=\"1,2,3\"")}, 0},
        {"no delta table", [](NoRecord &) { return AtDeltaSet(nullptr); }, {}, -1},
    } + ErrorCases<NoRecord>("delta table", delta, "AT^DELTASET=\"1,2,3\"", kFails), NoRecord{0});
}

TEST(M2mAtsCallVoice, PcmInterface) {
    using R = AtCpcmParam;
    const auto cpcm = [](int32_t cmdType) { return [cmdType](R &r) { return AtCpcm(cmdType, &r); }; };
    RunCommandCases<R>(Cases<R>{
        {"check", cpcm(0), {Ok("AT^CPCM?", "^CPCM: 0,1,2,3,4").Prefix("^CPCM:")}, 0, [](R &r) { r = {0, 1, 2, 3, 4, AT_ERRID_OK}; }},
        {"execute", cpcm(1), {Ok("AT^CPCM=5,6,7,8,9").Prefix("^CPCM:")}, 0, ErrorId<R>(AT_ERRID_OK)},
        {"unknown cmdType", cpcm(2), {}, -1},
    } + ErrorCases<R>("check", cpcm(0), "AT^CPCM?", kCmeMapped, &R::errorId)
      + ErrorCases<R>("execute", cpcm(1), "AT^CPCM=5,6,7,8,9", kCmeMapped, &R::errorId), R{5, 6, 7, 8, 9, 0});
    EXPECT_EQ(AtCpcm(0, nullptr), -1);
    EXPECT_EQ(AtCpcmCheck(nullptr), -1);
    EXPECT_EQ(AtCpcmExecute(nullptr), -1);
}

TEST(M2mAtsVoiceCall, PcmFrequency) {
    using R = PcmFrqInfo;
    const auto op = [](uint32_t o) { return [o](R &r) { return AtPcmfr(o, &r); }; };
    const auto becomes = [](std::string frq, int32_t errorId) {
        return [frq, errorId](R &r) { SetText(r.pcmFrq, frq.c_str()); r.errorId = errorId; };
    };
    const auto errorId = [](int32_t id) { return [id](R &r) { r.errorId = id; }; };
    const std::string longest(232, '8');
    RunCommandCases<R>(Cases<R>{
        {"set", op(1), {Ok("AT^PCMFR=\"16000\"").Prefix("^PCMFR:").Timeout(30)}, 0, errorId(AT_ERRID_OK)},
        {"query", op(0), {Ok("AT^PCMFR?", "^PCMFR: 8000").Prefix("^PCMFR:")}, 0, becomes("8000", AT_ERRID_OK)},
        {"query of 232 characters", op(0), {Ok("AT^PCMFR?", "^PCMFR: " + longest)}, 0, becomes(longest, AT_ERRID_OK)},
        {"query of 233 characters fails the copy", op(0), {Ok("AT^PCMFR?", "^PCMFR: " + longest + "8")}, -1,
         becomes("", AT_ERRID_NOT_COMPLETED)},
        {"query without a row", op(0), {Ok("AT^PCMFR?", "")}, -1, errorId(AT_ERRID_NOT_COMPLETED)},
        {"op 2 sends nothing", op(2), {}, -1, errorId(AT_ERRID_NOT_COMPLETED)},
    } + ErrorCases<R>("set", op(1), "AT^PCMFR=\"16000\"", kMarked, &R::errorId) + ErrorCases<R>("query", op(0), "AT^PCMFR?", kMarked, &R::errorId), [] { R r = Filled<R>(0); SetText(r.pcmFrq, "16000"); return r; }());
    EXPECT_EQ(AtPcmfr(0, nullptr), -1);
}

TEST(M2mAtsVoiceCall, MicrophoneGain) {
    const auto op = [](int32_t o) { return [o](int32_t &level) { return AtCmic(o, &level); }; };
    const auto becomes = [](int32_t value) { return [value](int32_t &level) { level = value; }; };
    RunCommandCases<int32_t>(Cases<int32_t>{
        {"set", op(1), {Ok("AT+CMIC=9").Prefix("").Timeout(30)}, 0},
        {"query", op(0), {Ok("AT+CMIC?", "+CMIC: 12")}, 0, becomes(12)},
        {"query that does not parse keeps the level", op(0), {Ok("AT+CMIC?", "12")}, 0},
        {"op 2 sends nothing", op(2), {}, -1},
    } + ErrorCases<int32_t>("set", op(1), "AT+CMIC=9", kFails) + ErrorCases<int32_t>("query", op(0), "AT+CMIC?", kFails), int32_t{9});
    EXPECT_EQ(AtCmic(0, nullptr), -1);
}

TEST(M2mAtsVoiceCall, VoiceMode) {
    struct NoRecord {
        char unused;
    };
    const auto mode = [](uint32_t type) { return [type](NoRecord &) { return AtVmSet(type); }; };
    RunCommandCases<NoRecord>(Cases<NoRecord>{
        {"mode 0", mode(0), {Ok("AT^VMSET=0").Prefix("").Timeout(30)}, 0},
        {"mode 6", mode(6), {Ok("AT^VMSET=6")}, 0},
        {"mode 7 sends nothing", mode(7), {}, -1},
    } + ErrorCases<NoRecord>("mode 2", mode(2), "AT^VMSET=2", kFails), NoRecord{0});
}
// clang-format on

}  // namespace
}  // namespace atapi::test
