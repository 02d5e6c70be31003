// The network time text decoder on arbitrary text, and what it accepts
// through the time translation and the zone text.
#include <cstdint>
#include <cstring>
#include <string>

#include "adapt/at_network_time.h"
#include "adapt/at_time_calendar.h"
#include "atapi/at_time_translate.h"

namespace {

void Check(bool condition) {
    if (!condition) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    AtsTimeInfo utc;
    std::memset(&utc, 0x5A, sizeof utc);
    const AtsTimeInfo before = utc;
    if (!atapi::adapt::DecodeNetworkTime(text.c_str(), &utc)) {
        Check(std::memcmp(&utc, &before, sizeof utc) == 0);  // untouched on refusal
        return 0;
    }
    Check(atapi::adapt::IsValidTime(utc));

    // Whatever decodes, translates into a real date of the calendar.
    AtsTimeInfo local;
    std::memset(&local, 0x33, sizeof local);
    Check(AtsUniversalTimeToLocalTime(&utc, &local) == 0);
    Check(local.timeZone == utc.timeZone && local.tm_sec == utc.tm_sec);
    Check(local.tm_hour >= 0 && local.tm_hour <= 23 && local.tm_min >= 0 && local.tm_min <= 59);
    Check(local.tm_mon >= 1 && local.tm_mon <= 12 && local.tm_mday >= 1);
    Check(local.tm_mday <= atapi::adapt::DaysInMonth(local.tm_year, local.tm_mon));
    for (int32_t r : local.reserved) Check(r == 0x33333333);

    // The zone text: whole in a large buffer, bounded in a small one.
    char zone[16];
    Check(AtsNetTimeZoneToStand(utc.timeZone, zone, sizeof zone) == 0);
    Check(std::strlen(zone) == 9 && std::memcmp(zone, "GMT", 3) == 0);
    char small[6];
    std::memset(small, '#', sizeof small);
    AtsNetTimeZoneToStand(utc.timeZone, small, 4);
    Check(small[3] == '\0' && small[4] == '#');
    return 0;
}
