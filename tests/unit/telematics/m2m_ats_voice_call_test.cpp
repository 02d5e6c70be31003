// Voice path settings against the scripted modem: the line per op, the
// values read back, errorId of the PCM frequency per reply class, and the
// refusals that send nothing.
#include "atapi/m2m_ats_voice_call.h"

#include <string>

#include "command_cases.h"

namespace atapi::test {
namespace {

constexpr int32_t kCme10 = 13;  // id of "+CME ERROR: 10"

// clang-format off
TEST(M2mAtsVoiceCall, PcmFrequency) {
    using R = PcmFrqInfo;
    const auto op = [](uint32_t o) { return [o](R &r) { return AtPcmfr(o, &r); }; };
    const auto becomes = [](std::string frq, int32_t errorId) {
        return [frq, errorId](R &r) { SetText(r.pcmFrq, frq.c_str()); r.errorId = errorId; };
    };
    const auto errorId = [](int32_t id) { return [id](R &r) { r.errorId = id; }; };
    const std::string longest(232, '8');
    RunCommandCases<R>({
        {"set", op(1), {Ok("AT^PCMFR=\"16000\"").Prefix("^PCMFR:").Timeout(30)}, 0, errorId(AT_ERRID_OK)},
        {"set +CME ERROR", op(1), {Fails("AT^PCMFR=\"16000\"", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1, errorId(kCme10)},
        {"query", op(0), {Ok("AT^PCMFR?", "^PCMFR: 8000").Prefix("^PCMFR:")}, 0, becomes("8000", AT_ERRID_OK)},
        {"query of 232 characters", op(0), {Ok("AT^PCMFR?", "^PCMFR: " + longest)}, 0, becomes(longest, AT_ERRID_OK)},
        {"query of 233 characters fails the copy", op(0), {Ok("AT^PCMFR?", "^PCMFR: " + longest + "8")}, -1,
         becomes("", AT_ERRID_NOT_COMPLETED)},
        {"query without a row", op(0), {Ok("AT^PCMFR?", "")}, -1, errorId(AT_ERRID_NOT_COMPLETED)},
        {"query aborted", op(0), {Fails("AT^PCMFR?", AT_RET_ABORTED, "AT_ABORTED")}, -1, errorId(AT_ERRID_NOT_COMPLETED)},
        {"op 2 sends nothing", op(2), {}, -1, errorId(AT_ERRID_NOT_COMPLETED)},
    }, [] { R r = Filled<R>(0); SetText(r.pcmFrq, "16000"); return r; }());
    EXPECT_EQ(AtPcmfr(0, nullptr), -1);
}

TEST(M2mAtsVoiceCall, MicrophoneGain) {
    const auto op = [](int32_t o) { return [o](int32_t &level) { return AtCmic(o, &level); }; };
    const auto becomes = [](int32_t value) { return [value](int32_t &level) { level = value; }; };
    RunCommandCases<int32_t>({
        {"set", op(1), {Ok("AT+CMIC=9").Prefix("").Timeout(30)}, 0},
        {"set ERROR", op(1), {Fails("AT+CMIC=9", AT_RET_ERROR, "ERROR")}, -1},
        {"query", op(0), {Ok("AT+CMIC?", "+CMIC: 12")}, 0, becomes(12)},
        {"query that does not parse keeps the level", op(0), {Ok("AT+CMIC?", "12")}, 0},
        {"query +CME ERROR", op(0), {Fails("AT+CMIC?", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1},
        {"op 2 sends nothing", op(2), {}, -1},
    }, int32_t{9});
    EXPECT_EQ(AtCmic(0, nullptr), -1);
}

TEST(M2mAtsVoiceCall, VoiceMode) {
    struct NoRecord {
        char unused;
    };
    const auto mode = [](uint32_t type) { return [type](NoRecord &) { return AtVmSet(type); }; };
    RunCommandCases<NoRecord>({
        {"mode 0", mode(0), {Ok("AT^VMSET=0").Prefix("").Timeout(30)}, 0},
        {"mode 6", mode(6), {Ok("AT^VMSET=6")}, 0},
        {"mode 7 sends nothing", mode(7), {}, -1},
        {"exchange failed", mode(2), {ExchangeFails("AT^VMSET=2")}, -1},
    }, NoRecord{0});
}
// clang-format on

}  // namespace
}  // namespace atapi::test
