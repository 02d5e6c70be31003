/*
 * Device identity and radio settings: the module's identities (IMSI, IMEI,
 * serial number, manufacturer, model, software and hardware versions) and a
 * set of radio, antenna, temperature, logging-port and NV settings.
 *
 * Ownership: every record is the caller's and is filled in place; texts are
 * NUL-terminated within their size, on the way in and out. Fields that a
 * reply does not carry keep what the caller put there.
 * errorId: -2 when the module answered OK, else the id mapped from the error
 * reply (the set forms store the result class 3 or 4 of a +CME/+CMS ERROR
 * unmapped, as the simple send primitive does).
 * Results, unless a function says otherwise: 0 on success, -1 for a null
 * record, a bad argument or a line that does not fit, else the result of
 * the send primitive (at_send.h): -1 from the simple and single-text ones,
 * the positive result class of an error reply (3, 4, 5, 14) from the list
 * and multi-line ones.
 *
 * cmdType of the query-or-set functions: AT_COMM_QUERY sends the "?" form and
 * fills the record, AT_COMM_SET sends the "=" form from the record, and
 * AT_COMM_TEST, where a function offers it, sends the "=?" form. Any other
 * value returns -1 without sending.
 */
#ifndef ATAPI_ATS_COMM_H
#define ATAPI_ATS_COMM_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

#define AT_COMM_QUERY 0u
#define AT_COMM_SET 1u
#define AT_COMM_TEST 2u

/* One identity text. */
typedef struct IdentityText {
    uint32_t reserved; /* not written */
    char text[128];
    int32_t errorId;
} IdentityText;

typedef struct ImeiShort {
    uint8_t valid; /* 1 once imei was read */
    char imei[16];
    int32_t errorId;
} ImeiShort;

/* The module's version lines, each kept whole ("EXTS:12.605.02.00.00"). */
typedef struct VersionInfo {
    char extdVersion[128]; /* software version shown to users */
    char exthVersion[128]; /* hardware version */
    char extsVersion[128]; /* software version */
    char iniVersion[64];   /* configuration version */
    char extuVersion[128]; /* product name */
    int32_t lineCount;     /* lines of the module's reply */
    int32_t errorId;       /* 0 once a version line was found */
} VersionInfo;

typedef struct SoftVersion {
    uint8_t valid; /* 1 once version was read */
    uint8_t reserved;
    char version[32];
} SoftVersion;

typedef struct HardVersion {
    uint8_t valid; /* 1 once version was read */
    uint8_t reserved;
    char version[32];
} HardVersion;

/* Download mode: mode 0 asks for the download mode itself ("G"), mode 1
 * passes value. result is the decimal value of the module's answer. */
typedef struct DownloadRequest {
    uint32_t mode;
    uint32_t value;
    int32_t errorId;
    uint32_t result;
} DownloadRequest;

/* SIM authentication: authType, rand and autn go out (as hex texts), the
 * module's result and the texts res, ck, ik and auts come back. ck and ik
 * are session keys: wiping the record after use is the caller's business. */
typedef struct UiccAuthInfo {
    uint32_t authType;
    char rand[512];
    char autn[512];
    uint32_t result;
    char res[512];
    char ck[512];
    char ik[512];
    char auts[512];
    int32_t errorId;
} UiccAuthInfo;

typedef struct LogPortSetting {
    uint32_t portType; /* 0..5 */
    uint32_t config;   /* 0..1 */
} LogPortSetting;

/* One numeric setting: the value sent by a set form, or read by a query. */
typedef struct SettingInfo {
    uint32_t value;
    int32_t errorId;
} SettingInfo;

/* Temperatures of the chip's sensors, in the module's units. */
typedef struct ChipTempInfo {
    int32_t gpaTemp;
    int32_t wpaTemp;
    int32_t lpaTemp;
    int32_t simTemp;
    int32_t batTemp;
    int32_t tcxoTemp;
    int32_t bbTemp;
    int32_t errorId;
} ChipTempInfo;

/* An ADC channel's value, or with AT_COMM_TEST the channel range, as the
 * module writes it ("1234", "(0-3)"). */
typedef struct AdcReadInfo {
    uint32_t channel; /* read by AT_COMM_SET */
    char value[32];
    int32_t errorId;
} AdcReadInfo;

typedef struct AntModeInfo {
    uint32_t nwMode;
    uint32_t antMode;
    int32_t errorId;
} AntModeInfo;

typedef struct SingleAntModeInfo {
    uint32_t ulAntEnable;
    uint32_t ulAntIndex;
    uint32_t dlAntEnable;
    uint32_t dlAntIndex;
    int32_t errorId;
} SingleAntModeInfo;

/* Crystal temperature, or with AT_COMM_TEST its range as text. */
typedef struct XoTempInfo {
    int32_t crystalTemp;
    char crystalTempRange[32];
    int32_t errorId;
} XoTempInfo;

/* Handshake: id and action go out, the module's answer comes back (its id
 * replaces the one sent). */
typedef struct HsInfo {
    uint32_t id;
    uint32_t action;
    uint32_t protocol;
    uint32_t isOffline;
    char pClass[8];
    char pId[32];
    uint32_t sId;
    int32_t errorId;
} HsInfo;

#define AT_PHYNUM_MAX_LINES 8

/* The physical numbers, one reply line each, as the text after "^PHYNUM:"
 * ("IMEI,865432010012347"). */
typedef struct PhyNumList {
    uint32_t count;
    char lines[AT_PHYNUM_MAX_LINES][128];
    int32_t errorId;
} PhyNumList;

typedef struct BackupAntCtrlInfo {
    uint32_t values[5];
    int32_t errorId;
} BackupAntCtrlInfo;

/* ---- Identities ----------------------------------------------------------- */

ATAPI_EXPORT int32_t AtImsi(IdentityText *r);
/** The IMEI as the module answers +CGSN. */
ATAPI_EXPORT int32_t AtImei(IdentityText *r);
/** The IMEI into a 16-byte field; valid is set to 1 on success. */
ATAPI_EXPORT int32_t AtCgsn(ImeiShort *r);
/** The serial number: the text after "^SN:", blanks included. */
ATAPI_EXPORT int32_t AtSn(IdentityText *r);
/** The manufacturer (waits 5 s). */
ATAPI_EXPORT int32_t AtCgmi(IdentityText *r);
/** The model; -1 when it does not fit r->text. */
ATAPI_EXPORT int32_t AtCgmm(IdentityText *r);
/** The authentication version: the text after "^AUTHVER:". */
ATAPI_EXPORT int32_t AtAuthVer(IdentityText *r);
/** The physical numbers (at most AT_PHYNUM_MAX_LINES); count is set once
 *  every line was stored. */
ATAPI_EXPORT int32_t AtQryPhyNum(PhyNumList *l);

/* ---- Versions ------------------------------------------------------------- */

/** The version lines. The first complete read is kept for the life of the
 *  process and later calls are answered from it without asking the module.
 *  An error reply (+CME/+CMS ERROR) returns 0 and leaves v as it was; -1
 *  when the reply lacks one of the five versions. A placeholder user
 *  version ("EXTD:WEBUI_00.00.00.000.03...") is returned empty and not
 *  kept, so the next call asks the module again. */
ATAPI_EXPORT int32_t AtVersion(VersionInfo *v);
/** The software version (EXTS) without its keyword. 0 or -1. */
ATAPI_EXPORT int32_t AtCgmr(SoftVersion *s);
/** The hardware version (EXTH) without its keyword. 0 or -1. */
ATAPI_EXPORT int32_t AtHwVer(HardVersion *h);

/* ---- Functionality, registration and radio ------------------------------- */

/** Sets the functionality level s->value (+CFUN). 0 or -1. */
ATAPI_EXPORT int32_t AtCfunEx(SettingInfo *s);
/** The functionality level; the module's error id is not kept. */
ATAPI_EXPORT int32_t AtCfunQuery(uint32_t *fun);
/** Sets the IMS registration report mode s->value (+CIREG). 0 or -1. */
ATAPI_EXPORT int32_t AtCiregExecute(SettingInfo *s);
/** The IMS registration state (reg_info) into s->value. */
ATAPI_EXPORT int32_t AtCiregCheck(SettingInfo *s);
/** The dial-up state (stat) into s->value; of a reply with a state per
 *  address family, the last one. */
ATAPI_EXPORT int32_t AtNetregCheck(SettingInfo *s);
ATAPI_EXPORT int32_t AtChipTemp(ChipTempInfo *t);
/** AT_COMM_SET reads channel a->channel, AT_COMM_TEST the channel range. */
ATAPI_EXPORT int32_t AtAdcReadEx(uint32_t cmdType, AdcReadInfo *a);
/** AT_COMM_QUERY or AT_COMM_SET. The query reads the fields nw_mode and
 *  ant_mode, which the ^ANTMODE reply does not name: it leaves both values
 *  as they were (AtSingleAntMode reads the reply's values). */
ATAPI_EXPORT int32_t AtAntMode(uint32_t cmdType, AntModeInfo *m);
/** AT_COMM_QUERY or AT_COMM_SET (all four values). */
ATAPI_EXPORT int32_t AtSingleAntMode(uint32_t cmdType, SingleAntModeInfo *m);
/** AT_COMM_QUERY the temperature, AT_COMM_TEST its range. The range is read
 *  as the field "CRYSTALtemp Range", which the ^XOTEMP reply does not name:
 *  crystalTempRange keeps what it held. */
ATAPI_EXPORT int32_t AtXoTemp(uint32_t cmdType, XoTempInfo *x);
/** Sends h->id and h->action; the answer fills the rest of h. */
ATAPI_EXPORT int32_t AtHs(HsInfo *h);
/** Five values of the backup antenna control. 0 or -1. */
ATAPI_EXPORT int32_t AtBackupAntCtrl(BackupAntCtrlInfo *b);
/** The RRC version (AT_COMM_QUERY or AT_COMM_SET of s->value). */
ATAPI_EXPORT int32_t AtRrcVer(uint32_t cmdType, SettingInfo *s);
/** The work mode (AT_COMM_QUERY or AT_COMM_SET of s->value). */
ATAPI_EXPORT int32_t AtSetMode(uint32_t cmdType, SettingInfo *s);
/** The shell lock state (AT_COMM_QUERY), or sets it to s->value followed by
 *  code when code is not null (AT_COMM_SET). The line that carries code is
 *  wiped after sending. */
ATAPI_EXPORT int32_t AtShlock(uint32_t cmdType, const char *code, SettingInfo *s);
/** The logical channel mode (AT_COMM_QUERY or AT_COMM_SET of s->value). */
ATAPI_EXPORT int32_t AtOpenChannel(uint32_t cmdType, SettingInfo *s);

/* ---- SIM authentication, locks and module settings ------------------------ */

/** SIM authentication with a's inputs; op is not consulted. */
ATAPI_EXPORT int32_t AtUiccAuth(int32_t op, UiccAuthInfo *a);
/** Requests download mode. -1 for a mode other than 0 or 1. */
ATAPI_EXPORT int32_t AtZteDownload(DownloadRequest *r);
/** 1 when the data lock is on or the query failed, else 0. */
ATAPI_EXPORT int32_t AtQryDatalock(void);
/** Unlocks data with code (read, never kept: the line is wiped). 0 or -1. */
ATAPI_EXPORT int32_t AtSetDatalock(const char *code);
/** 0 when the remote SIM is on, else -1. */
ATAPI_EXPORT int32_t AtQryRsim(void);
ATAPI_EXPORT int32_t AtMmiEcho(void);
/** 1 with *t set when the product type is 0..3, else 0. */
ATAPI_EXPORT int32_t AtQryProductType(uint32_t *t);
/** 1 with *t set when the log port type is 0..5, else 0. */
ATAPI_EXPORT int32_t AtQryLogPort(uint32_t *t);
/** -1 without sending unless portType is 0..5 and config 0..1. */
ATAPI_EXPORT int32_t AtSetLogPort(LogPortSetting *s);
/** Activates the NV configuration. 0 or -1. */
ATAPI_EXPORT int32_t AtActiveNcfg(void);
/** Writes NV item 2591 (four bytes, the first *v). 0 or -1. */
ATAPI_EXPORT int32_t AtSharePdpNvWr(const uint32_t *v);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(sizeof(IdentityText) == 136, "IdentityText is 136 bytes");
ATAPI_STATIC_ASSERT(offsetof(ImeiShort, errorId) == 20 && sizeof(ImeiShort) == 24,
                    "ImeiShort: errorId in the word behind the IMEI");
ATAPI_STATIC_ASSERT(offsetof(VersionInfo, iniVersion) == 384, "iniVersion at 384");
ATAPI_STATIC_ASSERT(offsetof(VersionInfo, extuVersion) == 448, "extuVersion at 448");
ATAPI_STATIC_ASSERT(offsetof(VersionInfo, lineCount) == 576, "lineCount at 576");
ATAPI_STATIC_ASSERT(sizeof(VersionInfo) == 584, "VersionInfo is 584 bytes");
ATAPI_STATIC_ASSERT(offsetof(SoftVersion, version) == 2 && sizeof(SoftVersion) == 34,
                    "SoftVersion is 34 bytes");
ATAPI_STATIC_ASSERT(sizeof(HardVersion) == 34, "HardVersion is 34 bytes");
ATAPI_STATIC_ASSERT(sizeof(DownloadRequest) == 16, "DownloadRequest is 16 bytes");
ATAPI_STATIC_ASSERT(offsetof(UiccAuthInfo, result) == 1028, "result at 1028");
ATAPI_STATIC_ASSERT(offsetof(UiccAuthInfo, auts) == 2568, "auts at 2568");
ATAPI_STATIC_ASSERT(sizeof(UiccAuthInfo) == 3084, "UiccAuthInfo is 3084 bytes");
ATAPI_STATIC_ASSERT(sizeof(LogPortSetting) == 8, "LogPortSetting is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(SettingInfo) == 8, "SettingInfo is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(ChipTempInfo) == 32, "ChipTempInfo is 32 bytes");
ATAPI_STATIC_ASSERT(sizeof(AdcReadInfo) == 40, "AdcReadInfo is 40 bytes");
ATAPI_STATIC_ASSERT(sizeof(AntModeInfo) == 12, "AntModeInfo is 12 bytes");
ATAPI_STATIC_ASSERT(sizeof(SingleAntModeInfo) == 20, "SingleAntModeInfo is 20 bytes");
ATAPI_STATIC_ASSERT(sizeof(XoTempInfo) == 40, "XoTempInfo is 40 bytes");
ATAPI_STATIC_ASSERT(offsetof(HsInfo, sId) == 56 && sizeof(HsInfo) == 64, "HsInfo is 64 bytes");
ATAPI_STATIC_ASSERT(sizeof(PhyNumList) == 1032, "PhyNumList is 1032 bytes");
ATAPI_STATIC_ASSERT(sizeof(BackupAntCtrlInfo) == 24, "BackupAntCtrlInfo is 24 bytes");

#endif
