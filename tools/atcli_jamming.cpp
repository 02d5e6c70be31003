// atcli jamming: the modem's jamming detection (on or off, and its
// thresholds per technology) and its RSSI reports (on or off, and the
// threshold per technology), read or set. The reports themselves come as
// unsolicited ^EMRSSIRPT lines, which atserver writes to its report sink.
#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>

#include "atapi/at_send.h"
#include "atapi/m2m_ats_network.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr std::string_view kTechNames[AT_JAMMING_RAT_COUNT] = {"gsm", "wcdma", "lte"};
constexpr int32_t kUnreported = -1;

bool ParseTech(const char *text, int32_t *rat) {
    for (int32_t i = 0; i < AT_JAMMING_RAT_COUNT; ++i) {
        if (kTechNames[i] == text) {
            *rat = i;
            return true;
        }
    }
    return false;
}

bool ParseSwitch(const char *text, uint32_t *mode) {
    const std::string_view word = text;
    if (word != "on" && word != "off") return false;
    *mode = word == "on" ? 1 : 0;
    return true;
}

// A threshold as the modem takes it: any 32-bit decimal, signed.
bool ParseSigned(const char *text, int32_t *out) {
    char *end = nullptr;
    errno = 0;
    const long value = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || errno != 0 || value < INT32_MIN || value > INT32_MAX) {
        return false;
    }
    *out = static_cast<int32_t>(value);
    return true;
}

std::string Name(int32_t rat, const char *what) {
    return std::string(kTechNames[rat]) + (*what != '\0' ? "_" : "") + what;
}

// A switch: set it when on/off is given, then read it back.
int Switch(const Args &args, const char *what, int32_t (*set)(uint32_t),
           int (*read)(const Args &)) {
    if (args.positional.empty()) return read(args);
    uint32_t mode = 0;
    if (!ParseSwitch(args.positional[0], &mode)) return UsageError("a switch is on or off");
    const CallCheck check(what, AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(set(mode));
    return exitCode == kExitOk ? read(args) : exitCode;
}

int ReadDetection(const Args &args) {
    JammingDetectSwitchInfo info{};
    for (auto &e : info.entry) e.rat = kUnreported;
    const CallCheck check("jamming switch", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtGetJammingDetectSwitch(&info));
    if (exitCode != kExitOk) return exitCode;
    Fields fields;
    for (const auto &e : info.entry) {
        if (e.rat != kUnreported) fields.Number(Name(e.rat, ""), e.mode);
    }
    fields.Print(args.json);
    return kExitOk;
}

int ReadRssiReports(const Args &args) {
    int32_t n = 0;
    const CallCheck check("jamming rssi", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtGetEmRssiRpt(&n));
    if (exitCode == kExitOk) Fields().Number("rssi_reports", n).Print(args.json);
    return exitCode;
}

int Detection(const Args &args) {
    return Switch(args, "jamming switch", AtSetJammingDetctSwitch, ReadDetection);
}

int RssiReports(const Args &args) {
    return Switch(args, "jamming rssi", AtSetEmRssiRpt, ReadRssiReports);
}

int ReadThresholds(const Args &args) {
    JammingDetectCfgInfo info{};
    for (auto &c : info.cfg) c.rat = kUnreported;
    const CallCheck check("jamming config", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtGetJammingDetectCfg(&info));
    if (exitCode != kExitOk) return exitCode;
    Fields fields;
    for (const auto &c : info.cfg) {
        if (c.rat == kUnreported) continue;
        fields.Number(Name(c.rat, "value1"), c.value1).Number(Name(c.rat, "value2"), c.value2);
        if (c.rat != AT_JAMMING_RAT_GSM) {
            fields.Number(Name(c.rat, "value3"), c.value3).Number(Name(c.rat, "value4"), c.value4);
        }
    }
    fields.Print(args.json);
    return kExitOk;
}

// TECH V1 V2 for GSM, TECH V1 V2 V3 V4 for WCDMA and LTE.
int Thresholds(const Args &args) {
    if (args.positional.empty()) return ReadThresholds(args);
    JammingDetectCfg cfg{};
    int32_t *values[] = {&cfg.value1, &cfg.value2, &cfg.value3, &cfg.value4};
    if (!ParseTech(args.positional[0], &cfg.rat))
        return UsageError("a technology is gsm, wcdma or lte");
    const size_t wanted = cfg.rat == AT_JAMMING_RAT_GSM ? 2 : 4;
    if (args.positional.size() != wanted + 1) {
        return UsageError("gsm takes two thresholds, wcdma and lte four");
    }
    for (size_t i = 0; i < wanted; ++i) {
        if (!ParseSigned(args.positional[i + 1], values[i]))
            return UsageError("a threshold is a number");
    }
    const CallCheck check("jamming config", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtSetJammingDetectCfg(&cfg));
    return exitCode == kExitOk ? ReadThresholds(args) : exitCode;
}

int ReadRssiThresholds(const Args &args) {
    EmRssiCfgInfo info{};
    for (auto &c : info.cfg) c.rat = kUnreported;
    const CallCheck check("jamming rssi-threshold", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtGetEmRssiCfg(&info));
    if (exitCode != kExitOk) return exitCode;
    Fields fields;
    for (const auto &c : info.cfg) {
        if (c.rat != kUnreported) fields.Number(Name(c.rat, "rssi_thresh"), c.rssiThresh);
    }
    fields.Print(args.json);
    return kExitOk;
}

int RssiThreshold(const Args &args) {
    if (args.positional.empty()) return ReadRssiThresholds(args);
    EmRssiCfg cfg{};
    if (args.positional.size() != 2 || !ParseTech(args.positional[0], &cfg.rat) ||
        !ParseSigned(args.positional[1], &cfg.rssiThresh)) {
        return UsageError("give a technology (gsm, wcdma or lte) and a threshold");
    }
    const CallCheck check("jamming rssi-threshold", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtSetEmRssiCfg(&cfg));
    return exitCode == kExitOk ? ReadRssiThresholds(args) : exitCode;
}

constexpr Action kActions[] = {
    {"switch", "[on|off]", 0, 1, {}, {}, Detection},
    {"config", "[TECH V1 V2 [V3 V4]]", 0, 5, {}, {}, Thresholds},
    {"rssi", "[on|off]", 0, 1, {}, {}, RssiReports},
    {"rssi-threshold", "[TECH THRESHOLD]", 0, 2, {}, {}, RssiThreshold},
};

}  // namespace

std::span<const Action> JammingActions() { return kActions; }

}  // namespace atcli
