// atcli pin: the SIM's PIN state and retry counters, PIN entry (or the PUK
// with a new PIN) and PIN change. PINs come from standard input, one per line.
#include <cstring>

#include "atapi/at_send.h"
#include "atapi/ats_security.h"
#include "atcli_actions.h"
#include "atcli_secret.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr uint32_t kQuery = 0;
constexpr uint32_t kSet = 1;
constexpr uint32_t kRetriesTimeoutSec = 5;  // every ^CPIN exchange
constexpr std::size_t kPinCapacity = 8;
constexpr char kDefaultFacility[] = "SC";

using Pin = Secret<kPinCapacity>;

// Reads a PIN or PUK; false, with the reason (never the text) on stderr.
bool ReadPin(const char *name, Pin *pin) {
    return (ReadSecretLine(name, pin) && IsPinText(pin->Get())) ||
           Refuse(std::string(name) + " expected on standard input: 4 to 8 digits");
}

int State(const Args &args) {
    CpinInfo info{};
    const CallCheck check("pin state", AT_DEFAULT_TIMEOUT_SEC, &info.errorId);
    const int exitCode = check.Exit(AtPinManagement(kQuery, nullptr, nullptr, &info));
    if (exitCode != kExitOk) return exitCode;
    Fields().Text("state", FieldText(info.code)).Print(args.json);
    return kExitOk;
}

// A counter as the module reports it: a number, or nothing when the
// module leaves it empty.
void AddCounter(Fields *fields, const char *name, const std::string &text) {
    uint32_t value = 0;
    if (ParseNumber(text.c_str(), UINT32_MAX, &value)) fields->Number(name, value);
}

int Retries(const Args &args) {
    CpinExInfo info{};
    const CallCheck check("pin retries", kRetriesTimeoutSec, &info.errorId);
    const int exitCode = check.Exit(AtPinManagementEx(kQuery, nullptr, nullptr, &info));
    if (exitCode != kExitOk) return exitCode;
    Fields fields;
    fields.Text("state", FieldText(info.code));
    AddCounter(&fields, "pin_tries", FieldText(info.pinTimes));
    AddCounter(&fields, "puk_tries", FieldText(info.pukTimes));
    AddCounter(&fields, "pin2_tries", FieldText(info.pin2Times));
    AddCounter(&fields, "puk2_tries", FieldText(info.puk2Times));
    fields.Print(args.json);
    return kExitOk;
}

void PrintDone(const Args &args, const char *what) {
    Fields().Text("result", what).Print(args.json);
}

// The PIN, or with --puk the PUK and then a new PIN.
int Enter(const Args &args) {
    const bool puk = args.Flag("--puk");
    Pin code;
    Pin newPin;
    if (!ReadPin(puk ? "PUK" : "PIN", &code) || (puk && !ReadPin("new PIN", &newPin))) {
        return kExitUsage;
    }
    CpinInfo info{};
    const CallCheck check(puk ? "pin enter --puk" : "pin enter", AT_DEFAULT_TIMEOUT_SEC,
                          &info.errorId);
    const int exitCode = check.Exit(AtPinManagement(kSet, code.Get(), newPin.Get(), &info));
    if (exitCode == kExitOk) PrintDone(args, puk ? "unblocked" : "accepted");
    return exitCode;
}

int Change(const Args &args) {
    const char *facility = args.Option("--facility");
    if (facility == nullptr) facility = kDefaultFacility;
    if (std::strlen(facility) != 2) return UsageError("--facility takes a two-letter facility");
    Pin oldPin;
    Pin newPin;
    if (!ReadPin("old PIN", &oldPin) || !ReadPin("new PIN", &newPin)) return kExitUsage;
    int32_t errorId = kNoErrorId;
    const CallCheck check("pin change", AT_DEFAULT_TIMEOUT_SEC, &errorId);
    const int exitCode = check.Exit(AtPinModify(facility, oldPin.Get(), newPin.Get(), &errorId));
    if (exitCode == kExitOk) PrintDone(args, "changed");
    return exitCode;
}

constexpr Action kActions[] = {
    {"state", "", 0, 0, {}, {}, State},
    {"retries", "", 0, 0, {}, {}, Retries},
    {"enter", "[--puk]  (stdin: the PIN, or the PUK and a new PIN)", 0, 0, {}, {"--puk"}, Enter},
    {"change",
     "[--facility SC]  (stdin: the old and the new PIN)",
     0,
     0,
     {"--facility"},
     {},
     Change},
};

}  // namespace

std::span<const Action> PinActions() { return kActions; }

}  // namespace atcli
