/*
 * Time translation: a network's universal time shifted into local time by
 * its zone, and the zone as text. Pure functions: no command is sent.
 *
 * Ownership: both records and the text buffer are the caller's.
 */
#ifndef ATAPI_AT_TIME_TRANSLATE_H
#define ATAPI_AT_TIME_TRANSLATE_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

/* A broken-down time with its zone. */
typedef struct AtsTimeInfo {
    int32_t tm_sec;      /* 0..59 */
    int32_t tm_min;      /* 0..59 */
    int32_t tm_hour;     /* 0..23 */
    int32_t tm_mday;     /* 1..31 */
    int32_t tm_mon;      /* 1..12, January is 1 */
    int32_t tm_year;     /* the full year, e.g. 2024 */
    int32_t reserved[5]; /* neither read nor written here */
    int32_t timeZone;    /* quarter hours east of universal time, -96..96 */
} AtsTimeInfo;

/** local = utc shifted by utc->timeZone, with day, month and year carried;
 *  local->timeZone is the zone, local->reserved is left as it was. The day
 *  is checked against 31 only: day 31 of a 30-day month becomes the first
 *  of the next. 0, or -1 for a null pointer or a value out of range. */
ATAPI_EXPORT int32_t AtsUniversalTimeToLocalTime(const AtsTimeInfo *utc, AtsTimeInfo *local);
/** Writes zone as "GMT+hh:mm" or "GMT-hh:mm" into buf (at most size - 1
 *  characters and a terminator); nothing for |zone| above 96, a null buf or
 *  size below 2. The result is 0 when the text was written whole, else -1. */
ATAPI_EXPORT int32_t AtsNetTimeZoneToStand(int32_t zone, char *buf, uint32_t size);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(sizeof(AtsTimeInfo) == 48, "AtsTimeInfo is twelve words");
ATAPI_STATIC_ASSERT(offsetof(AtsTimeInfo, timeZone) == 44, "timeZone in the last word");

#endif
