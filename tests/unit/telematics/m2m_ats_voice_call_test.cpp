// Voice path settings against the scripted modem: the line per op, the
// values read back, errorId of the PCM frequency per reply class, and the
// refusals that send nothing.
#include "atapi/m2m_ats_voice_call.h"

#include <string>

#include "error_classes.h"

namespace atapi::test {
namespace {

// clang-format off
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
