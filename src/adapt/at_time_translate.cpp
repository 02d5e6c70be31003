// Universal time into local time by a zone in quarter hours, and the zone
// as text.
#include "atapi/at_time_translate.h"

#include <cstdlib>

#include "adapt/at_time_calendar.h"
#include "link/at_log.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_time_translate";

using atapi::adapt::kMaxZone;
using atapi::adapt::kMinutesPerZoneStep;
using atapi::adapt::kZoneStepsPerHour;

constexpr int32_t kMinutesPerHour = 60;
constexpr int32_t kHoursPerDay = 24;
constexpr int32_t kMonthsPerYear = 12;

// A value and what it carries into the next larger unit (-1, 0 or 1).
struct Carried {
    int32_t value;
    int32_t carry;
};

// value brought back into 0..unit-1 by at most one unit.
Carried Wrap(int32_t value, int32_t unit) {
    if (value >= unit) return {value - unit, 1};
    if (value < 0) return {value + unit, -1};
    return {value, 0};
}

// The day, month and year that day d of utc's month falls on, when d is one
// off the month at most: 0 is the previous month's last day.
bool CarryDay(const AtsTimeInfo &utc, int32_t d, AtsTimeInfo &local) {
    int32_t mon = utc.tm_mon;
    int32_t year = utc.tm_year;
    if (d == 0) {
        if (--mon < 1) {
            mon = kMonthsPerYear;
            --year;
        }
        d = atapi::adapt::DaysInMonth(year, mon);
    } else if (d > atapi::adapt::DaysInMonth(year, mon)) {
        d = 1;
        if (++mon > kMonthsPerYear) {
            mon = 1;
            ++year;
        }
    }
    if (mon < 1) {  // cannot happen once the month was checked
        AT_LOG_ERR("tm_mon is invalid. tm_mon = %d\n", mon);
        return false;
    }
    local.tm_mday = d;
    local.tm_mon = mon;
    local.tm_year = year;
    return true;
}

}  // namespace

extern "C" {

int32_t AtsUniversalTimeToLocalTime(const AtsTimeInfo *utc, AtsTimeInfo *local) {
    if (utc == nullptr || local == nullptr) return -1;
    if (!atapi::adapt::IsValidTime(*utc)) {
        AT_LOG_ERR("universal time is invalid\n");
        return -1;
    }
    const int32_t zone = utc->timeZone;
    local->timeZone = zone;
    local->tm_sec = utc->tm_sec;
    // Both quotients truncate toward zero and keep the zone's sign.
    const Carried min =
        Wrap(utc->tm_min + (zone % kZoneStepsPerHour) * kMinutesPerZoneStep, kMinutesPerHour);
    const Carried hour = Wrap(utc->tm_hour + zone / kZoneStepsPerHour + min.carry, kHoursPerDay);
    local->tm_min = min.value;
    local->tm_hour = hour.value;
    return CarryDay(*utc, utc->tm_mday + hour.carry, *local) ? 0 : -1;
}

int32_t AtsNetTimeZoneToStand(int32_t zone, char *buf, uint32_t size) {
    if (zone < -kMaxZone || zone > kMaxZone || buf == nullptr || size < 2) return -1;
    const int32_t steps = std::abs(zone);
    const int hours = steps / kZoneStepsPerHour;
    const int minutes = steps % kZoneStepsPerHour * kMinutesPerZoneStep;
    const int written = zone < 0 ? snprintf_s(buf, size, size - 1, "GMT-%02d:%02d", hours, minutes)
                                 : snprintf_s(buf, size, size - 1, "GMT+%02d:%02d", hours, minutes);
    return written < 0 ? -1 : 0;
}

}  // extern "C"
