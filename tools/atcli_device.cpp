// atcli device: the module's SKU, thermal function and state, watchdog time,
// NV restore state and the bands in use; the SKU and the watchdog time can
// be set. Factory reset and download mode are left out on purpose: neither
// belongs on a command line that scripts run.
#include <string>

#include "atapi/at_send.h"
#include "atapi/ats_device.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr uint32_t kMaxSku = 2;
constexpr uint32_t kMaxWatchdogTime = 0x7FFFFFFF;

int ReadSku(Fields *fields) {
    SkuInfo sku{};
    const CallCheck check("device sku", AT_DEFAULT_TIMEOUT_SEC, &sku.errorId);
    const int exitCode = check.Exit(AtSkuHandle(AT_DEVICE_QUERY, nullptr, &sku));
    if (exitCode == kExitOk) fields->Number("sku", sku.n).Number("simlock", sku.simlock);
    return exitCode;
}

int ReadThermal(Fields *fields) {
    ThermStateInfo state{};
    const CallCheck stateCheck("device thermal", AT_DEFAULT_TIMEOUT_SEC, &state.errorId);
    if (const int exitCode = stateCheck.Exit(AtThermState(&state)); exitCode != kExitOk) {
        return exitCode;
    }
    ThermFunInfo function{};
    const CallCheck functionCheck("device thermal", AT_DEFAULT_TIMEOUT_SEC, &function.errorId);
    const int exitCode = functionCheck.Exit(AtThermFun(AT_DEVICE_QUERY, &function));
    if (exitCode == kExitOk) {
        fields->Number("thermal_state", state.state)
            .Number("thermal_protection", function.thermSwitch);
    }
    return exitCode;
}

int ReadWatchdog(Fields *fields) {
    WatchdogInfo watchdog{};
    const CallCheck check("device watchdog", AT_DEFAULT_TIMEOUT_SEC, &watchdog.errorId);
    const int exitCode = check.Exit(AtSetWatchDogTime(AT_DEVICE_QUERY, &watchdog));
    if (exitCode == kExitOk) fields->Number("watchdog_time", watchdog.watchdogTime);
    return exitCode;
}

int ReadNvRestore(Fields *fields) {
    NvRestoreState nv{};
    const CallCheck check("device nv", AT_DEFAULT_TIMEOUT_SEC, &nv.errorId);
    const int exitCode = check.Exit(AtNvRstStts(&nv));
    if (exitCode == kExitOk) fields->Number("nv_restore_state", nv.state);
    return exitCode;
}

constexpr FieldsReader kAllReads[] = {ReadSku, ReadThermal, ReadWatchdog, ReadNvRestore};

int All(const Args &args) { return PrintReads(kAllReads, args); }

int Sku(const Args &args) {
    const char *value = args.Option("--set");
    if (value == nullptr) return PrintRead<ReadSku>(args);
    uint32_t sku = 0;
    if (!ParseNumber(value, kMaxSku, &sku)) return UsageError("--set takes an SKU of 0 to 2");
    // The SKU set form stores no error id: success is its result alone.
    int32_t errorId = kNoErrorId;
    const CallCheck check("device sku --set", AT_DEFAULT_TIMEOUT_SEC, &errorId);
    const int exitCode = check.Exit(AtSkuHandle(AT_DEVICE_SET, &sku, nullptr), kNoErrorId);
    if (exitCode == kExitOk) Fields().Number("sku", sku).Print(args.json);
    return exitCode;
}

int Watchdog(const Args &args) {
    const char *value = args.Option("--set");
    if (value == nullptr) return PrintRead<ReadWatchdog>(args);
    WatchdogInfo watchdog{};
    if (!ParseNumber(value, kMaxWatchdogTime, &watchdog.watchdogTime)) {
        return UsageError("--set takes a watchdog time");
    }
    const CallCheck check("device watchdog --set", AT_DEFAULT_TIMEOUT_SEC, &watchdog.errorId);
    const int exitCode = check.Exit(AtSetWatchDogTime(AT_DEVICE_SET, &watchdog));
    if (exitCode == kExitOk)
        Fields().Number("watchdog_time", watchdog.watchdogTime).Print(args.json);
    return exitCode;
}

// Each band as "class dl_fcn/ul_fcn", per technology, comma-separated.
std::string BandText(const HfreqBandInfo *list) {
    std::string text;
    for (; list != nullptr; list = list->next) {
        if (!text.empty()) text += ", ";
        text += std::to_string(list->bandClass) + " " + std::to_string(list->dlFcn) + "/" +
                std::to_string(list->ulFcn);
    }
    return text;
}

int Bands(const Args &args) {
    HfreqInfoResult bands{};
    // The band reader keeps no error id: the outcome is its result.
    int32_t errorId = kNoErrorId;
    const CallCheck check("device bands", AT_DEFAULT_TIMEOUT_SEC, &errorId);
    const int exitCode = check.Exit(AtHfreqHandle(AT_DEVICE_QUERY, nullptr, &bands), kNoErrorId);
    if (exitCode == kExitOk) {
        Fields()
            .Text("lte", BandText(bands.lteList))
            .Text("nr", BandText(bands.nrList))
            .Print(args.json);
    }
    HfreqInfoExFree(&bands);
    return exitCode;
}

constexpr Action kActions[] = {
    {"all", "", 0, 0, {}, {}, All},
    {"sku", "[--set N]", 0, 0, {"--set"}, {}, Sku},
    {"thermal", "", 0, 0, {}, {}, PrintRead<ReadThermal>},
    {"watchdog", "[--set TIME]", 0, 0, {"--set"}, {}, Watchdog},
    {"nv", "", 0, 0, {}, {}, PrintRead<ReadNvRestore>},
    {"bands", "", 0, 0, {}, {}, Bands},
};

}  // namespace

std::span<const Action> DeviceActions() { return kActions; }

}  // namespace atcli
