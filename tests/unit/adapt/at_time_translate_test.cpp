// Universal into local time across day, month and year ends in both
// directions, leap years, zones of both signs in quarter hours; the zone
// text; and the network time text decoder.

#include "atapi/at_time_translate.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <tuple>

#include "adapt/at_network_time.h"

namespace atapi::test {
namespace {

constexpr int32_t kKept = 77;  // in the members the translation leaves alone

// clang-format off
// "YYYY-MM-DD hh:mm:ss" of a record.
std::string Text(const AtsTimeInfo &t) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
    return text;
}

AtsTimeInfo Utc(int32_t year, int32_t mon, int32_t day, int32_t hour, int32_t min, int32_t sec, int32_t zone) {
    AtsTimeInfo t{};
    std::tie(t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, t.timeZone) = std::tie(year, mon, day, hour, min, sec, zone);
    return t;
}

struct Shift {
    const char *name;
    AtsTimeInfo utc;
    const char *local;
};

const Shift kShifts[] = {
    {"same day", Utc(2024, 6, 15, 10, 0, 5, 32), "2024-06-15 18:00:05"},
    {"leap day reached", Utc(2024, 2, 28, 23, 30, 0, 4), "2024-02-29 00:30:00"},
    {"no leap day", Utc(2023, 2, 28, 23, 30, 0, 4), "2023-03-01 00:30:00"},
    {"century without leap day", Utc(2100, 2, 28, 22, 0, 0, 8), "2100-03-01 00:00:00"},
    {"400th year has one", Utc(2000, 2, 28, 22, 0, 0, 8), "2000-02-29 00:00:00"},
    {"leap day left forward", Utc(2024, 2, 29, 20, 0, 0, 16), "2024-03-01 00:00:00"},
    {"back into the old year", Utc(2024, 1, 1, 0, 10, 0, -1), "2023-12-31 23:55:00"},
    {"into the new year", Utc(2023, 12, 31, 23, 59, 59, 1), "2024-01-01 00:14:59"},
    {"back into a leap February", Utc(2024, 3, 1, 2, 0, 0, -12), "2024-02-29 23:00:00"},
    {"back into a short February", Utc(2023, 3, 1, 2, 0, 0, -12), "2023-02-28 23:00:00"},
    {"back into a 30-day month", Utc(2024, 5, 1, 3, 0, 0, -16), "2024-04-30 23:00:00"},
    {"half an hour", Utc(2024, 6, 15, 10, 40, 0, 2), "2024-06-15 11:10:00"},
    {"minus three quarters", Utc(2024, 6, 15, 10, 30, 0, -3), "2024-06-15 09:45:00"},
    {"quarter hours carry the hour back", Utc(2024, 6, 15, 0, 10, 0, -1), "2024-06-14 23:55:00"},
    {"India", Utc(2024, 6, 30, 20, 45, 0, 22), "2024-07-01 02:15:00"},
    {"Newfoundland", Utc(2024, 7, 1, 1, 15, 0, -14), "2024-06-30 21:45:00"},
    {"a full day ahead", Utc(2024, 12, 31, 23, 0, 0, 96), "2025-01-01 23:00:00"},
    {"a full day back", Utc(2024, 1, 1, 0, 0, 0, -96), "2023-12-31 00:00:00"},
    {"most minutes ahead", Utc(2024, 6, 15, 23, 50, 0, 95), "2024-06-16 23:35:00"},
    {"most minutes back", Utc(2024, 6, 15, 0, 5, 0, -95), "2024-06-14 00:20:00"},
    // The day is checked against 31 only.
    {"31 April is 1 May", Utc(2024, 4, 31, 12, 0, 0, 0), "2024-05-01 12:00:00"},
};

TEST(AtTimeTranslate, UniversalToLocal) {
    for (const Shift &s : kShifts) {
        SCOPED_TRACE(s.name);
        AtsTimeInfo local;
        std::memset(&local, 0, sizeof local);
        for (int32_t &r : local.reserved) r = kKept;
        ASSERT_EQ(AtsUniversalTimeToLocalTime(&s.utc, &local), 0);
        EXPECT_EQ(Text(local), s.local);
        EXPECT_EQ(local.timeZone, s.utc.timeZone);
        for (int32_t r : local.reserved) EXPECT_EQ(r, kKept);
    }
}

TEST(AtTimeTranslate, RefusesOutOfRange) {
    const AtsTimeInfo good = Utc(2024, 6, 15, 10, 0, 0, 0);
    using T = AtsTimeInfo;
    const std::pair<int32_t T::*, int32_t> bad[] = {{&T::timeZone, 97}, {&T::timeZone, -97}, {&T::timeZone, INT32_MIN}, {&T::tm_year, -1}, {&T::tm_mon, 0}, {&T::tm_mon, 13},
                                                    {&T::tm_mday, 0},   {&T::tm_mday, 32},  {&T::tm_hour, 24}, {&T::tm_min, 60}, {&T::tm_sec, 60}, {&T::tm_min, -1}};
    for (const auto &[member, value] : bad) {
        AtsTimeInfo utc = good;
        utc.*member = value;
        AtsTimeInfo local = Utc(1, 1, 1, 1, 1, 1, 1);
        const AtsTimeInfo before = local;
        EXPECT_EQ(AtsUniversalTimeToLocalTime(&utc, &local), -1) << value;
        EXPECT_EQ(std::memcmp(&local, &before, sizeof local), 0) << value;
    }
    AtsTimeInfo local{};
    EXPECT_EQ(AtsUniversalTimeToLocalTime(nullptr, &local), -1);
    EXPECT_EQ(AtsUniversalTimeToLocalTime(&good, nullptr), -1);
}

TEST(AtTimeTranslate, ZoneText) {
    const std::tuple<int32_t, uint32_t, const char *> zones[] = {  // zone, size, text (null: nothing written)
        {32, 16, "GMT+08:00"}, {-33, 16, "GMT-08:15"}, {0, 16, "GMT+00:00"}, {22, 16, "GMT+05:30"}, {-14, 16, "GMT-03:30"}, {96, 16, "GMT+24:00"},
        {-96, 16, "GMT-24:00"}, {97, 16, nullptr}, {-97, 16, nullptr}, {32, 1, nullptr}, {INT32_MIN, 16, nullptr}, {32, 6, "GMT+0"},  // bounded by the size
    };
    for (const auto &[zone, size, text] : zones) {
        char buf[16];
        std::memset(buf, '#', sizeof buf);
        AtsNetTimeZoneToStand(zone, buf, size);
        const std::string written = text != nullptr ? std::string(text) + '\0' : "";
        EXPECT_EQ(std::string(buf, sizeof buf), written + std::string(sizeof buf - written.size(), '#')) << zone;
    }
    AtsNetTimeZoneToStand(32, nullptr, 16);  // refused, nothing to write to
}

TEST(AtNetworkTime, Decode) {
    const std::pair<const char *, std::string> cases[] = {  // empty: refused, the record left
        {"24/02/28,23:30:00+32", "2024-02-28 23:30:00 32"},
        {" 24/02/28,23:30:00+32,01", "2024-02-28 23:30:00 32"},
        {"\"23/12/31,23:55:00-14\"", "2023-12-31 23:55:00 -14"},
        {"2025/01/09,07:05:03+0", "2025-01-09 07:05:03 0"},
        {"24/02/28,23:30:00+32\r\n", "2024-02-28 23:30:00 32"},
        {"24/02/28,23:30:00", ""},       // no zone
        {"24/13/28,23:30:00+32", ""},    // month 13
        {"24/02/28,24:00:00+32", ""},    // hour 24
        {"24/02/28,23:30:00+97", ""},    // zone beyond a day
        {"24/2/28,23:30:00+32", ""},     // one-digit month
        {"\"24/02/28,23:30:00+32", ""},  // quote not closed
        {"24/02/28,23:30:00+32x", ""},
        {"", ""},
    };
    for (const auto &[text, decoded] : cases) {
        AtsTimeInfo t = Utc(1, 1, 1, 1, 1, 1, 5);
        EXPECT_EQ(adapt::DecodeNetworkTime(text, &t), !decoded.empty()) << text;
        EXPECT_EQ(Text(t) + " " + std::to_string(t.timeZone), decoded.empty() ? "0001-01-01 01:01:01 5" : decoded) << text;
    }
    EXPECT_FALSE(adapt::DecodeNetworkTime(nullptr, nullptr));
}
// clang-format on

}  // namespace
}  // namespace atapi::test
