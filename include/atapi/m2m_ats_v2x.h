/*
 * V2X sidelink: the V2X mode, the channel busy ratio, the synchronisation
 * source, the PDCP and physical-layer packet counters, the sidelink RSRP and
 * RSSI, the dual transmit antenna switch and the transmit-power report.
 *
 * Every call is synchronous and keeps no state; any number of threads may
 * call at once. Every record is owned by the caller and filled in place; a
 * read that fails midway may leave the fields before the failing one
 * written. Results: 0 on success, -1 on any failure (the exchange's own
 * codes are not handed back).
 *
 * The reads parse their replies under parse module 31, which has no handler
 * table: a read that gets an OK reply fails at the parse step. Only
 * AtsV2xGetCbrInfo and AtsV2xGetAccessSyncInfo, which take a parse result
 * the caller already holds, store values from a reply.
 * Numbers are converted base 10; a value outside the 32-bit field fails the
 * read.
 */
#ifndef ATAPI_M2M_ATS_V2X_H
#define ATAPI_M2M_ATS_V2X_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

/** V2X mode. */
typedef struct AtsV2xModeCfgInfo {
    int32_t rat;  /* radio access technology: must be 0 on set; a query leaves it */
    int32_t mode; /* 0 or 1 */
} AtsV2xModeCfgInfo;

/** Channel busy ratio. */
typedef struct AtsV2xCbrInfo {
    int32_t cbrPssch;      /* shared channel ("cbr-pssch"); required */
    int32_t cbrPscchValid; /* set to 1 when the reply carried cbrPscch; else left */
    int32_t cbrPscch;      /* control channel ("cbr-pscch") */
} AtsV2xCbrInfo;

/** Synchronisation source. */
typedef struct AtsV2xSyncInfo {
    int32_t source;
    int32_t state;
    int32_t earfcn;
} AtsV2xSyncInfo;

/** PDCP packet counters. */
typedef struct AtsV2xPdcpPacketStat {
    int32_t txBytes;
    int32_t rxBytes;
    int32_t txPackets;
    int32_t rxPackets;
} AtsV2xPdcpPacketStat;

/** Physical-layer packet counters. */
typedef struct AtsV2xPhyPacketStats {
    uint32_t firSaDecSucSum;
    uint32_t secSaDecSucSum;
    uint32_t twiSaDecSucSum;
    uint32_t ulPackSum;
    uint32_t dlPackSum;
    uint32_t dspVersion;
} AtsV2xPhyPacketStats;

#define ATS_V2X_RSRP_NUM 7

/** Sidelink RSRP: the seven values in the order of the reply. */
typedef struct AtsV2xRsrpInfo {
    int32_t values[ATS_V2X_RSRP_NUM];
} AtsV2xRsrpInfo;

/** Sidelink RSSI of the two antennas. */
typedef struct AtsV2xRssiInfo {
    int32_t daMainRssiMax;
    int32_t daDiversityRssiMax;
} AtsV2xRssiInfo;

/** Transmit-power report configuration, sent in field order. */
typedef struct AtsV2xTxPwrRptCfg {
    int32_t param1;
    int32_t param2;
    int32_t param3;
    uint32_t param4;
} AtsV2xTxPwrRptCfg;

/** Reads (cmdType 0, "AT^VMODE?": stores mode only) or sets (cmdType 1,
 *  "AT^VMODE=rat,mode"; rat must be 0 and mode 0 or 1) the V2X mode. */
ATAPI_EXPORT int32_t AtsV2xModeCfg(int32_t cmdType, AtsV2xModeCfgInfo *v2xModeCfg);
/** Reads the channel busy ratio ("AT^CBR?"). */
ATAPI_EXPORT int32_t AtsV2xCbrQuery(AtsV2xCbrInfo *v2xCbrInfo);
/** Stores a parsed "^CBR" row (list, not freed) into v2xCbrInfo. */
ATAPI_EXPORT int32_t AtsV2xGetCbrInfo(const AtCmdParseNode *list, AtsV2xCbrInfo *v2xCbrInfo);
/** Reads the synchronisation source ("AT^VSYNCSRC?"). */
ATAPI_EXPORT int32_t AtsV2xAccessSyncInfoQuery(AtsV2xSyncInfo *v2xSyncInfo);
/** Stores a parsed "^VSYNCSRC" row (list, not freed) into v2xSyncInfo. */
ATAPI_EXPORT int32_t AtsV2xGetAccessSyncInfo(const AtCmdParseNode *list,
                                             AtsV2xSyncInfo *v2xSyncInfo);
/** Reads the PDCP packet counters ("AT^PTRRPT?"). */
ATAPI_EXPORT int32_t AtsV2xGetPdcpPacketStats(AtsV2xPdcpPacketStat *v2xPacketStat);
/** Reads the physical-layer packet counters ("AT^VPHYSTAT?"). */
ATAPI_EXPORT int32_t AtsV2xGetPhyPacketStats(AtsV2xPhyPacketStats *v2xPacketStats);
/** Reads the sidelink RSRP ("AT^VSNRRSRP?"). */
ATAPI_EXPORT int32_t AtsV2xGetRsrp(AtsV2xRsrpInfo *v2xRsrpInfo);
/** Reads the sidelink RSSI ("AT^V2XRSSI?"). */
ATAPI_EXPORT int32_t AtsV2xGetRssi(AtsV2xRssiInfo *v2xRssiInfo);
/** Switches the dual transmit antenna ("AT^VTXANTSWITCH=value"). */
ATAPI_EXPORT int32_t AtsV2xSetDualAntSwitch(int32_t switchValue);
/** Reads the dual transmit antenna switch (0 or 1) into *switchValue. */
ATAPI_EXPORT int32_t AtsV2xGetDualAntSwitch(int32_t *switchValue);
/** Configures the transmit-power report ("AT^TXPWRRPTCFG=p1,p2,p3,p4"). */
ATAPI_EXPORT int32_t AtsV2xTxPwrRptCfgExecute(AtsV2xTxPwrRptCfg *cfg);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(sizeof(AtsV2xModeCfgInfo) == 8, "AtsV2xModeCfgInfo is 8 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtsV2xCbrInfo, cbrPscch) == 8 && sizeof(AtsV2xCbrInfo) == 12,
                    "AtsV2xCbrInfo is 12 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtsV2xSyncInfo, earfcn) == 8 && sizeof(AtsV2xSyncInfo) == 12,
                    "AtsV2xSyncInfo is 12 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtsV2xPdcpPacketStat, rxPackets) == 12 &&
                        sizeof(AtsV2xPdcpPacketStat) == 16,
                    "AtsV2xPdcpPacketStat is 16 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtsV2xPhyPacketStats, dspVersion) == 20 &&
                        sizeof(AtsV2xPhyPacketStats) == 24,
                    "AtsV2xPhyPacketStats is 24 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtsV2xRsrpInfo) == 28, "AtsV2xRsrpInfo is 28 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtsV2xRssiInfo) == 8, "AtsV2xRssiInfo is 8 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtsV2xTxPwrRptCfg, param4) == 12 && sizeof(AtsV2xTxPwrRptCfg) == 16,
                    "AtsV2xTxPwrRptCfg is 16 bytes");

#endif
