/*
 * Device control: the SKU, high-frequency (band and channel) information,
 * wake-up sources, unsolicited-report control, trusted numbers, thermal
 * functions and state, the watchdog time, battery and antenna reports,
 * factory reset, NV backup and restore status, and download mode.
 *
 * Ownership: every record is the caller's and is filled in place. Fields
 * that a reply does not carry keep what the caller put there. The band
 * lists of HfreqInfoResult are the library's malloc'ed elements, owned by
 * the caller from then on and released with HfreqInfoFree/HfreqInfoExFree.
 * errorId: -2 when the module answered OK; a query answered with an error
 * reply stores the id mapped from it, a set form the result class 3 or 4 of
 * a +CME/+CMS ERROR unmapped (as the simple send primitive does).
 * Results: -1 for a null record, an unknown operation code, a bad value or
 * a line that does not fit, without sending; else the send primitive's
 * result: 0 or -1 for the set forms, 0 or the positive result class of an
 * error reply (3, 4, 5, 14) for the queries (at_send.h).
 *
 * Operation codes: AT_DEVICE_QUERY sends the query ("?") form and fills the
 * record, AT_DEVICE_SET sends the set ("=") form from the record, and
 * AT_DEVICE_TEST, where a function says so, sends the test ("=?") form and
 * fills the record from its answer.
 */
#ifndef ATAPI_ATS_DEVICE_H
#define ATAPI_ATS_DEVICE_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

#define AT_DEVICE_QUERY 0u
#define AT_DEVICE_SET 1u
#define AT_DEVICE_TEST 2u

/* The SKU: n and simlock of the query. */
typedef struct SkuInfo {
    uint32_t n;
    uint32_t simlock;
    int32_t errorId;
} SkuInfo;

/* One band of the high-frequency information, an element of a list. */
typedef struct HfreqBandInfo {
    int32_t hfreqSwitch; /* 0 or 1 */
    int32_t sysmode;     /* 6 LTE, 7 NR */
    int32_t bandClass;   /* for NR: 0 when the module named no valid band */
    int32_t dlFcn;
    int32_t dlFreq;
    int32_t dlBw;
    int32_t ulFcn;
    int32_t ulFreq;
    int32_t ulBw;
    struct HfreqBandInfo *next;
} HfreqBandInfo;

/* The bands in use per radio technology; null when the module named none. */
typedef struct HfreqInfoResult {
    HfreqBandInfo *lteList;
    HfreqBandInfo *nrList;
} HfreqInfoResult;

typedef struct WakeupCfgInfo {
    uint32_t wakeupSwitch;
    uint32_t channel;
    uint32_t source;
    int32_t errorId;
} WakeupCfgInfo;

/* Unsolicited-report control. */
typedef struct CurcInfo {
    uint32_t mode;
    int32_t errorId;
} CurcInfo;

typedef struct TrustNumInfo {
    uint32_t index;
    int32_t errorId;
} TrustNumInfo;

typedef struct ThermFunInfo {
    uint32_t thermSwitch;
    int32_t errorId;
} ThermFunInfo;

typedef struct WatchdogInfo {
    uint32_t watchdogTime;
    int32_t errorId;
} WatchdogInfo;

typedef struct ThermStateInfo {
    uint32_t state;
    int32_t errorId;
} ThermStateInfo;

typedef struct BatteryStateInfo {
    uint32_t batterylvl;
    uint32_t chargerState;
    int32_t errorId;
} BatteryStateInfo;

/* +CBC: the module's reply names its first field "cbs", while bcs is read
 * as "bcs": bcs keeps what the caller put there. */
typedef struct BatteryInfo {
    uint32_t bcs;
    uint32_t bcl;
    int32_t errorId;
} BatteryInfo;

/* Antenna report. */
typedef struct AntennaInfo {
    int32_t rscp;
    int32_t ecio;
    int32_t antennaLevel;
    int32_t errorId;
} AntennaInfo;

/* Status of the last NV restore, as the module numbers it. */
typedef struct NvRestoreState {
    int32_t state;
    int32_t errorId;
} NvRestoreState;

/** AT_DEVICE_QUERY fills out (in not read); AT_DEVICE_SET sends *in, which
 *  must be 0..2, and returns 0 or -1 (out not read). */
ATAPI_EXPORT int32_t AtSkuHandle(uint32_t op, const uint32_t *in, SkuInfo *out);

/** AT_DEVICE_SET sends *in; AT_DEVICE_QUERY reads the bands into out, as
 *  AtHfreqInfo. */
ATAPI_EXPORT int32_t AtHfreqHandle(uint32_t op, const int32_t *in, HfreqInfoResult *out);
/** op AT_DEVICE_SET sends value (r not read); any other op reads the bands:
 *  r's two lists are replaced (whatever they held is not freed) and hold
 *  the bands of each line the module reported, NR bands announced through
 *  the notification client. 0 or -1; on -1 the lists are freed and null. */
ATAPI_EXPORT int32_t AtHfreqInfo(uint32_t op, int32_t value, HfreqInfoResult *r);
/** Frees a band list; null is allowed. */
ATAPI_EXPORT void HfreqInfoFree(HfreqBandInfo *list);
/** Frees both lists of r and sets them to null; null is allowed. */
ATAPI_EXPORT void HfreqInfoExFree(HfreqInfoResult *r);

/** Query, set (switch, channel, source) or test form. */
ATAPI_EXPORT int32_t AtWakeupHandle(uint32_t op, WakeupCfgInfo *r);
/** Query, set (mode) or test form. */
ATAPI_EXPORT int32_t AtCurcHandle(uint32_t op, CurcInfo *r);
/** AT_DEVICE_SET writes number (digits and dialling characters, quoted on
 *  the line) at r->index; AT_DEVICE_QUERY reads the index of the test
 *  form's answer (number not read). */
ATAPI_EXPORT int32_t AtTrustNum(uint32_t op, const char *number, TrustNumInfo *r);
ATAPI_EXPORT int32_t AtThermFun(uint32_t op, ThermFunInfo *r);
/** The watchdog time, in the module's units. */
ATAPI_EXPORT int32_t AtSetWatchDogTime(uint32_t op, WatchdogInfo *r);
ATAPI_EXPORT int32_t AtThermState(ThermStateInfo *r);
ATAPI_EXPORT int32_t AtQueryBatteryState(BatteryStateInfo *r);
ATAPI_EXPORT int32_t AtQueryBatteryInfo(BatteryInfo *r);
ATAPI_EXPORT int32_t AtNetworkInfo(AntennaInfo *r);

/** Restores the factory settings. 0 or -1. */
ATAPI_EXPORT int32_t AtFactoryReset(void);
/** Backs the NV items up (AtNvBackupbk: into the backup area). 0 or -1. */
ATAPI_EXPORT int32_t AtNvBackup(void);
ATAPI_EXPORT int32_t AtNvBackupbk(void);
/** The NV restore status; -1 when the answer is not a number. */
ATAPI_EXPORT int32_t AtNvRstStts(NvRestoreState *r);
/** Records "update" as the reboot reason and switches the module into
 *  download mode: it restarts and leaves the running system. 0 or -1. */
ATAPI_EXPORT int32_t AtGodLoad(void);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(sizeof(SkuInfo) == 12 && offsetof(SkuInfo, errorId) == 8,
                    "SkuInfo: errorId in the third word");
ATAPI_STATIC_ASSERT(offsetof(HfreqBandInfo, ulBw) == 32 &&
                        offsetof(HfreqBandInfo, next) == (sizeof(void *) == 4 ? 36 : 40),
                    "HfreqBandInfo: nine words, then next");
ATAPI_STATIC_ASSERT(sizeof(HfreqBandInfo) == (sizeof(void *) == 4 ? 40 : 48),
                    "HfreqBandInfo is 40 bytes on 32-bit ARM");
ATAPI_STATIC_ASSERT(offsetof(HfreqInfoResult, nrList) == sizeof(void *) &&
                        sizeof(HfreqInfoResult) == 2 * sizeof(void *),
                    "HfreqInfoResult is two pointers");
ATAPI_STATIC_ASSERT(sizeof(WakeupCfgInfo) == 16, "WakeupCfgInfo is 16 bytes");
ATAPI_STATIC_ASSERT(sizeof(CurcInfo) == 8, "CurcInfo is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(TrustNumInfo) == 8, "TrustNumInfo is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(ThermFunInfo) == 8, "ThermFunInfo is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(WatchdogInfo) == 8, "WatchdogInfo is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(ThermStateInfo) == 8, "ThermStateInfo is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(BatteryStateInfo) == 12, "BatteryStateInfo is 12 bytes");
ATAPI_STATIC_ASSERT(sizeof(BatteryInfo) == 12, "BatteryInfo is 12 bytes");
ATAPI_STATIC_ASSERT(sizeof(AntennaInfo) == 16, "AntennaInfo is 16 bytes");
ATAPI_STATIC_ASSERT(sizeof(NvRestoreState) == 8, "NvRestoreState is 8 bytes");

#endif
