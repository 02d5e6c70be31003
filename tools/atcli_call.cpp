// atcli call: voice calls: dial, answer, hang up, the list of calls (the
// standard one or, with --ext, the extended one) and DTMF tones.
#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

#include "atapi/at_send.h"
#include "atapi/m2m_ats_call.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr std::size_t kMaxCalls = 7;  // what the extended list reads at most
constexpr int32_t kUnfilled = -1;     // an index that no call has
constexpr std::size_t kMaxDialLength = 40;
constexpr std::string_view kDialChars = "0123456789+*#ABCDabcdPpWw,";
constexpr std::string_view kToneChars = "0123456789*#ABCDabcd";
constexpr int32_t kDefaultToneLength = 1;

// Call states as the lists report them.
constexpr const char *kStateNames[] = {"active",   "held",     "dialing",
                                       "alerting", "incoming", "waiting"};

const char *StateName(int32_t stat) {
    return stat >= 0 && static_cast<std::size_t>(stat) < std::size(kStateNames) ? kStateNames[stat]
                                                                                : "unknown";
}

const char *Direction(int32_t dir) { return dir == 0 ? "outgoing" : "incoming"; }

int32_t StateOf(const AtsClccInfo &call) { return call.stat; }
int32_t StateOf(const AtsClccExInfo &call) { return call.state; }

Fields CallFields(const AtsClccInfo &call) {
    Fields fields;
    fields.Number("idx", call.idx)
        .Text("direction", Direction(call.dir))
        .Number("stat", call.stat)
        .Text("state", StateName(call.stat))
        .Number("mode", call.mode)
        .Number("mpty", call.mpty)
        .Text("number", FieldText(call.number))
        .Number("type", call.type);
    return fields;
}

Fields CallFields(const AtsClccExInfo &call) {
    Fields fields;
    fields.Number("idx", call.idx)
        .Text("direction", Direction(call.dir))
        .Number("stat", call.state)
        .Text("state", StateName(call.state))
        .Number("mode", call.mode)
        .Number("mpty", call.mpty)
        .Number("voice_domain", call.voiceDomain)
        .Number("call_type", call.callType)
        .Number("conference", call.isEconference)
        .Text("number", FieldText(call.number))
        .Number("type", call.type);
    return fields;
}

template <typename Call>
void PrintCalls(std::span<const Call> calls, bool json) {
    if (json) {
        std::string out = "{\"calls\":[";
        for (const Call &call : calls) {
            if (&call != &calls.front()) out += ",";
            out += CallFields(call).Json();
        }
        std::printf("%s]}\n", out.c_str());
        return;
    }
    for (const Call &call : calls) {
        std::printf("%d %s %s %s\n", call.idx, Direction(call.dir), StateName(StateOf(call)),
                    FieldText(call.number).c_str());
    }
}

// bound is what the reader takes: the last index for the standard list,
// the count for the extended one. Entries are marked so that the ones the
// reply filled can be told apart.
template <typename Call>
int ListCalls(const Args &args, const char *what, int32_t (*read)(Call *, int32_t), int32_t bound) {
    std::array<Call, kMaxCalls> calls{};
    for (Call &call : calls) call.idx = kUnfilled;
    const CallCheck check(what, AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(read(calls.data(), bound));
    if (exitCode != kExitOk) return exitCode;
    const auto end = std::find_if(calls.begin(), calls.end(),
                                  [](const Call &call) { return call.idx == kUnfilled; });
    PrintCalls(std::span<const Call>(calls.begin(), end), args.json);
    return kExitOk;
}

int List(const Args &args) {
    if (args.Flag("--ext")) {
        return ListCalls(args, "call list --ext", AtsClccEx, static_cast<int32_t>(kMaxCalls));
    }
    return ListCalls(args, "call list", AtsClcc, static_cast<int32_t>(kMaxCalls) - 1);
}

bool MadeOf(std::string_view text, std::string_view allowed) {
    return text.find_first_not_of(allowed) == std::string_view::npos;
}

int Dial(const Args &args) {
    const std::string_view number = args.positional[0];
    if (number.empty() || number.size() > kMaxDialLength || !MadeOf(number, kDialChars)) {
        return UsageError("a number is 1 to 40 of 0-9 + * # A-D P W ,");
    }
    const CallCheck check("call dial", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtsD(args.positional[0]));
    if (exitCode == kExitOk) {
        Fields().Text("number", std::string(number)).Text("result", "dialing").Print(args.json);
    }
    return exitCode;
}

int Answer(const Args &args) { return RunBareCall(args, "call answer", AtsA, "answered"); }
int HangUp(const Args &args) { return RunBareCall(args, "call hangup", AtsChup, "hung up"); }

// One AtDtmf per tone, in order; the first that fails ends the run.
int Dtmf(const Args &args) {
    const std::string_view tones = args.positional[0];
    if (tones.empty() || !MadeOf(tones, kToneChars)) {
        return UsageError("tones are 0-9 * # A-D");
    }
    int32_t length = kDefaultToneLength;
    if (const char *value = args.Option("--duration");
        value != nullptr && !ParseValue(value, &length)) {
        return UsageError("--duration takes a number");
    }
    for (const char tone : tones) {
        AtDtmfParam param{tone, length, 0};
        const CallCheck check("call dtmf", AT_DEFAULT_TIMEOUT_SEC, &param.errorId);
        const int exitCode = check.Exit(AtDtmf(&param));
        if (exitCode != kExitOk) return exitCode;
    }
    Fields().Text("tones", std::string(tones)).Text("result", "sent").Print(args.json);
    return kExitOk;
}

constexpr Action kActions[] = {
    {"dial", "NUMBER", 1, 1, {}, {}, Dial},
    {"answer", "", 0, 0, {}, {}, Answer},
    {"hangup", "", 0, 0, {}, {}, HangUp},
    {"list", "[--ext]", 0, 0, {}, {"--ext"}, List},
    {"dtmf", "TONES [--duration N]", 1, 1, {"--duration"}, {}, Dtmf},
};

}  // namespace

std::span<const Action> CallActions() { return kActions; }

}  // namespace atcli
