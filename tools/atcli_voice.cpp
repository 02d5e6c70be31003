// atcli voice: the voice path's PCM sampling frequency and microphone gain,
// read or set, and the voice mode, which can only be set.
#include <string>

#include "atapi/at_send.h"
#include "atapi/m2m_ats_voice_call.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

int Frequency(const Args &args) {
    const char *value = args.Option("--set");
    PcmFrqInfo info{};
    if (value != nullptr && (!IsQuotable(value) || !CopyField(info.pcmFrq, value))) {
        return UsageError("--set takes a frequency text of at most 232 printable characters");
    }
    const uint32_t op = value != nullptr ? AT_VOICE_SET : AT_VOICE_QUERY;
    // The call presets -3 itself; only an id of a reply is passed on.
    int32_t errorId = kNoErrorId;
    const CallCheck check("voice frequency", AT_DEFAULT_TIMEOUT_SEC, &errorId);
    const int32_t ret = AtPcmfr(op, &info);
    if (info.errorId != AT_ERRID_NOT_COMPLETED) errorId = info.errorId;
    const int exitCode = check.Exit(ret);
    if (exitCode == kExitOk)
        Fields().Text("pcm_frequency", FieldText(info.pcmFrq)).Print(args.json);
    return exitCode;
}

int Mic(const Args &args) {
    const char *value = args.Option("--set");
    int32_t level = 0;
    if (value != nullptr && !ParseValue(value, &level)) return UsageError("--set takes a level");
    const CallCheck check("voice mic", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode =
        check.Exit(AtCmic(value != nullptr ? AT_VOICE_SET : AT_VOICE_QUERY, &level));
    if (exitCode == kExitOk) Fields().Number("mic_gain", level).Print(args.json);
    return exitCode;
}

int Mode(const Args &args) {
    uint32_t mode = 0;
    if (!ParseNumber(args.positional[0], AT_VOICE_MODE_MAX, &mode)) {
        return UsageError("a voice mode is 0 to 6");
    }
    const CallCheck check("voice mode", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtVmSet(mode));
    if (exitCode == kExitOk) Fields().Number("voice_mode", mode).Print(args.json);
    return exitCode;
}

constexpr Action kActions[] = {
    {"frequency", "[--set TEXT]", 0, 0, {"--set"}, {}, Frequency},
    {"mic", "[--set LEVEL]", 0, 0, {"--set"}, {}, Mic},
    {"mode", "N", 1, 1, {}, {}, Mode},
};

}  // namespace

std::span<const Action> VoiceActions() { return kActions; }

}  // namespace atcli
