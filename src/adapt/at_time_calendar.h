// Calendar facts shared by the time translation and the network time text
// decoder.
#pragma once

#include <cstdint>

#include "atapi/at_time_translate.h"

namespace atapi::adapt {

inline constexpr int32_t kMaxZone = 96;  // quarter hours: 24 hours either way
inline constexpr int32_t kZoneStepsPerHour = 4;
inline constexpr int32_t kMinutesPerZoneStep = 15;

inline constexpr bool IsLeapYear(int32_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// Days of month 1..12 of year; 0 for another month.
inline constexpr int32_t DaysInMonth(int32_t year, int32_t month) {
    constexpr int32_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) return 0;
    return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

// Whether every member that the translation reads is within its range
// (the day against 31, whatever the month).
inline constexpr bool IsValidTime(const AtsTimeInfo &t) {
    return t.tm_year >= 0 && t.tm_mon >= 1 && t.tm_mon <= 12 && t.tm_mday >= 1 && t.tm_mday <= 31 &&
           t.tm_hour >= 0 && t.tm_hour <= 23 && t.tm_min >= 0 && t.tm_min <= 59 && t.tm_sec >= 0 &&
           t.tm_sec <= 59 && t.timeZone >= -kMaxZone && t.timeZone <= kMaxZone;
}

}  // namespace atapi::adapt
