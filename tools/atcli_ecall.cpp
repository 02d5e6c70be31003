// atcli ecall: the emergency call: its mode, the in-band modem settings, the
// minimum set of data (MSD), then start, push (send the MSD again), stop or
// abort. The module reports the progress as unsolicited lines, which
// atserver's report sink receives.
#include <cstring>
#include <string>

#include "atapi/at_send.h"
#include "atapi/m2m_ats_call.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr int32_t kQuery = 0;
constexpr int32_t kSet = 1;
constexpr uint32_t kMaxMode = 2;
constexpr std::size_t kMaxCommandLength = 1539;
// What is left of a command line for the MSD besides "AT^ECLMSD=" and its
// quotes.
constexpr std::size_t kMaxMsdLength = kMaxCommandLength - (sizeof("AT^ECLMSD=\"\"") - 1);

int Mode(const Args &args) {
    const bool set = !args.positional.empty();
    uint32_t value = 0;
    if (set && !ParseNumber(args.positional[0], kMaxMode, &value)) {
        return UsageError("a mode is 0 (off), 1 (eCall only) or 2 (eCall and normal calls)");
    }
    int32_t mode = static_cast<int32_t>(value);
    const CallCheck check("ecall mode", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtEclMode(set ? kSet : kQuery, &mode));
    if (exitCode == kExitOk) Fields().Number("mode", mode).Print(args.json);
    return exitCode;
}

int Config(const Args &args) {
    AtsEclCfgInfo info{};
    if (!ParseValue(args.positional[0], &info.param1) ||
        !ParseValue(args.positional[1], &info.param2) ||
        !ParseValue(args.positional[2], &info.param3)) {
        return UsageError("the settings are three numbers");
    }
    const CallCheck check("ecall config", AT_DEFAULT_TIMEOUT_SEC, &info.errorId);
    const int exitCode = check.Exit(AtsEclCfg(&info));
    if (exitCode == kExitOk) {
        Fields()
            .Number("param1", info.param1)
            .Number("param2", info.param2)
            .Number("param3", info.param3)
            .Print(args.json);
    }
    return exitCode;
}

int Msd(const Args &args) {
    const char *msd = args.positional[0];
    const std::size_t length = std::strlen(msd);
    if (length == 0 || length > kMaxMsdLength || !IsQuotable(msd)) {
        return UsageError("an MSD is 1 to " + std::to_string(kMaxMsdLength) +
                          " printable characters without '\"'");
    }
    AtsEclMsdInfo info{msd, 0};
    const CallCheck check("ecall msd", AT_DEFAULT_TIMEOUT_SEC, &info.errorId);
    const int exitCode = check.Exit(AtsEclMsd(&info));
    if (exitCode == kExitOk) {
        Fields()
            .Number("length", static_cast<int64_t>(length))
            .Text("result", "stored")
            .Print(args.json);
    }
    return exitCode;
}

// Arguments in the order of the command line: two values, the number, the
// last value.
int Start(const Args &args) {
    AtsEclStartInfo info{};
    if (!ParseValue(args.positional[0], &info.param1) ||
        !ParseValue(args.positional[1], &info.param2) ||
        !ParseValue(args.positional[3], &info.param4)) {
        return UsageError("P1, P2 and P4 are numbers");
    }
    if (!IsQuotable(args.positional[2]) || !CopyField(info.number, args.positional[2])) {
        return UsageError("a number is at most 83 characters, no '\"'");
    }
    const CallCheck check("ecall start", AT_DEFAULT_TIMEOUT_SEC, &info.errorId);
    const int exitCode = check.Exit(AtsEclStart(&info));
    if (exitCode == kExitOk) {
        Fields().Text("number", FieldText(info.number)).Text("result", "started").Print(args.json);
    }
    return exitCode;
}

int Push(const Args &args) { return RunBareCall(args, "ecall push", AtsEclPush, "pushed"); }
int Stop(const Args &args) { return RunBareCall(args, "ecall stop", AtsEclStop, "stopped"); }
int Abort(const Args &args) { return RunBareCall(args, "ecall abort", AtEcalllAbort, "aborted"); }

constexpr Action kActions[] = {
    {"mode", "[0|1|2]", 0, 1, {}, {}, Mode}, {"config", "P1 P2 P3", 3, 3, {}, {}, Config},
    {"msd", "MSD", 1, 1, {}, {}, Msd},       {"start", "P1 P2 NUMBER P4", 4, 4, {}, {}, Start},
    {"push", "", 0, 0, {}, {}, Push},        {"stop", "", 0, 0, {}, {}, Stop},
    {"abort", "", 0, 0, {}, {}, Abort},
};

}  // namespace

std::span<const Action> ECallActions() { return kActions; }

}  // namespace atcli
