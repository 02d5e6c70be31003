// atcli time: the network's time (^NWTIME), as universal time and shifted
// into local time by the network's zone or by --zone.
#include <cstdio>
#include <string>

#include "adapt/at_network_time.h"
#include "atapi/at_send.h"
#include "atapi/at_time_translate.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr int32_t kMaxZone = 96;  // quarter hours
constexpr std::size_t kZoneTextSize = 16;

std::string DateTime(const AtsTimeInfo &t) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", t.tm_year, t.tm_mon,
                  t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
    return text;
}

// A zone in quarter hours, -96..96.
bool ParseZone(const char *text, int32_t *zone) {
    uint32_t magnitude = 0;
    const bool negative = text[0] == '-';
    if (!ParseNumber(text + (negative || text[0] == '+' ? 1 : 0), kMaxZone, &magnitude)) {
        return false;
    }
    *zone = negative ? -static_cast<int32_t>(magnitude) : static_cast<int32_t>(magnitude);
    return true;
}

int Network(const Args &args) {
    int32_t zone = 0;
    const char *zoneText = args.Option("--zone");
    if (zoneText != nullptr && !ParseZone(zoneText, &zone)) {
        return UsageError("--zone takes quarter hours from -96 to 96");
    }
    char answer[AT_REPORT_STR_LEN];
    int32_t errorId = kNoErrorId;
    const CallCheck check("time network", AT_DEFAULT_TIMEOUT_SEC, &errorId);
    const int exitCode = check.Exit(
        AtSendAndGetSingleStrRsp("AT^NWTIME?", "^NWTIME", answer, sizeof answer, &errorId));
    if (exitCode != kExitOk) return exitCode;
    AtsTimeInfo utc{};
    if (!atapi::adapt::DecodeNetworkTime(answer, &utc)) {
        std::fprintf(stderr, "atcli: time network: the modem's time could not be read: %s\n",
                     answer);
        return kExitErrorReply;
    }
    if (zoneText != nullptr) utc.timeZone = zone;
    AtsTimeInfo local{};
    AtsUniversalTimeToLocalTime(&utc, &local);  // every decoded time translates
    char zoneName[kZoneTextSize] = "";
    AtsNetTimeZoneToStand(utc.timeZone, zoneName, sizeof zoneName);
    Fields()
        .Text("universal", DateTime(utc))
        .Text("local", DateTime(local))
        .Text("zone", zoneName)
        .Number("zone_quarter_hours", utc.timeZone)
        .Print(args.json);
    return kExitOk;
}

constexpr Action kActions[] = {
    {"network", "[--zone QUARTER_HOURS]", 0, 0, {"--zone"}, {}, Network},
};

}  // namespace

std::span<const Action> TimeActions() { return kActions; }

}  // namespace atcli
