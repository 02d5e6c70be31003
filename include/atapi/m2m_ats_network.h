/*
 * Telematics radio monitoring: the serving cell and up to six neighbour
 * cells (^MONSC, ^MONNC), the modem's jamming detection (switch and
 * thresholds per radio access technology) and its RSSI reports (switch and
 * per-technology threshold).
 *
 * Every call is synchronous and keeps no state; any number of threads may
 * call at once. Every record is owned by the caller and filled in place;
 * a null record pointer is refused with -1.
 * Results: 0 on success, -1 on failure, or the failed exchange's own
 * non-zero result.
 */
#ifndef ATAPI_M2M_ATS_NETWORK_H
#define ATAPI_M2M_ATS_NETWORK_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

/* ---- Cell monitoring ------------------------------------------------------ */

/* Radio access technology of a cell report. */
#define AT_CELL_RAT_GSM 0
#define AT_CELL_RAT_WCDMA 1
#define AT_CELL_RAT_TD_SCDMA 2
#define AT_CELL_RAT_LTE 3
#define AT_CELL_RAT_NR 4

#define AT_MONNC_MAX_NEIGHBORS 6
/* errorId of a serving-cell report without service ("NONE"). */
#define AT_MONSC_ERRID_NO_SERVICE 30

/** The serving cell. */
typedef struct MonscInfo {
    int32_t rat;     /* AT_CELL_RAT_* */
    int32_t arfcn;   /* channel number */
    int32_t cellId;  /* cell identity (reported in hexadecimal) */
    int32_t lac;     /* location or tracking area code (reported in hexadecimal) */
    int32_t errorId; /* -3 working or failed, -2 success, 30 no service */
} MonscInfo;

typedef struct MonncNeighbor {
    int32_t rat; /* AT_CELL_RAT_* */
    int32_t arfcn;
} MonncNeighbor;

/** Up to six neighbour cells, the newer technologies first. */
typedef struct MonncInfo {
    uint32_t count; /* 0..6 */
    MonncNeighbor neighbors[AT_MONNC_MAX_NEIGHBORS];
} MonncInfo;

/** Sends "AT^MONSC" and reduces the serving cell to rat, channel, cell
 *  identity and area code. A cell without service fails with errorId 30. */
ATAPI_EXPORT int32_t AtGetMonsc(MonscInfo *out);
/** Sends "AT^MONNC"; an empty neighbour list ("NONE") is a success with
 *  count 0. */
ATAPI_EXPORT int32_t AtGetMonnc(MonncInfo *out);

/* ---- Jamming detection and RSSI reports ----------------------------------- */

/* rat of the records below: 0 GSM, 1 WCDMA, 2 LTE; each *Info record holds
 * one entry per technology at that index. The get functions fill only the
 * entries the reply names and never clear the others. */
#define AT_JAMMING_RAT_GSM 0
#define AT_JAMMING_RAT_WCDMA 1
#define AT_JAMMING_RAT_LTE 2
#define AT_JAMMING_RAT_COUNT 3

/** Detection thresholds of one technology, passed to the modem unchanged. */
typedef struct JammingDetectCfg {
    int32_t rat;
    int32_t value1;
    int32_t value2;
    int32_t value3; /* not sent for GSM */
    int32_t value4; /* not sent for GSM */
} JammingDetectCfg;

typedef struct JammingDetectCfgInfo {
    JammingDetectCfg cfg[AT_JAMMING_RAT_COUNT];
} JammingDetectCfgInfo;

typedef struct JammingDetectSwitchEntry {
    int32_t rat;
    int32_t mode; /* detection on or off, as the modem reports it */
} JammingDetectSwitchEntry;

typedef struct JammingDetectSwitchInfo {
    JammingDetectSwitchEntry entry[AT_JAMMING_RAT_COUNT];
} JammingDetectSwitchInfo;

typedef struct EmRssiCfg {
    int32_t rat;
    int32_t rssiThresh;
} EmRssiCfg;

typedef struct EmRssiCfgInfo {
    EmRssiCfg cfg[AT_JAMMING_RAT_COUNT];
} EmRssiCfgInfo;

/** "AT^JDSWITCH=<mode>". (The name is spelled so.) */
ATAPI_EXPORT int32_t AtSetJammingDetctSwitch(uint32_t mode);
/** "AT^JDSWITCH?" into the entries of the technologies reported. */
ATAPI_EXPORT int32_t AtGetJammingDetectSwitch(JammingDetectSwitchInfo *info);
/** "AT^JDCFG=..." for rat 0 (value1 and value2 only), 1 or 2; any other rat
 *  is refused with -1 before sending. */
ATAPI_EXPORT int32_t AtSetJammingDetectCfg(const JammingDetectCfg *cfg);
/** "AT^JDCFG?" into the entries of the technologies reported. */
ATAPI_EXPORT int32_t AtGetJammingDetectCfg(JammingDetectCfgInfo *info);
/** "AT^EMRSSIRPT=<mode>": RSSI reports on or off. */
ATAPI_EXPORT int32_t AtSetEmRssiRpt(uint32_t mode);
/** "AT^EMRSSIRPT?" into *n. */
ATAPI_EXPORT int32_t AtGetEmRssiRpt(int32_t *n);
/** "AT^EMRSSICFG=<rat>,<rssiThresh>". */
ATAPI_EXPORT int32_t AtSetEmRssiCfg(const EmRssiCfg *cfg);
/** "AT^EMRSSICFG?" into the entries of the technologies reported. */
ATAPI_EXPORT int32_t AtGetEmRssiCfg(EmRssiCfgInfo *info);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(sizeof(MonscInfo) == 20, "MonscInfo is 20 bytes");
ATAPI_STATIC_ASSERT(offsetof(MonscInfo, errorId) == 16, "errorId at 16");
ATAPI_STATIC_ASSERT(sizeof(MonncInfo) == 52, "MonncInfo is 52 bytes");
ATAPI_STATIC_ASSERT(offsetof(MonncInfo, neighbors) == 4, "neighbors at 4");
ATAPI_STATIC_ASSERT(sizeof(JammingDetectCfg) == 20, "JammingDetectCfg is 20 bytes");
ATAPI_STATIC_ASSERT(sizeof(JammingDetectCfgInfo) == 60, "JammingDetectCfgInfo is 60 bytes");
ATAPI_STATIC_ASSERT(sizeof(JammingDetectSwitchEntry) == 8, "JammingDetectSwitchEntry is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(JammingDetectSwitchInfo) == 24, "JammingDetectSwitchInfo is 24 bytes");
ATAPI_STATIC_ASSERT(sizeof(EmRssiCfg) == 8, "EmRssiCfg is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(EmRssiCfgInfo) == 24, "EmRssiCfgInfo is 24 bytes");

#endif
