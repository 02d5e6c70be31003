/*
 * Telematics calls: voice calls (dial, answer, hang up, hold/multiparty, the
 * call lists, auto-answer, mute and the voice-path switches), supplementary
 * services (CLIP/CLIR, call waiting, call forwarding, notifications, trusted
 * special numbers) and eCall.
 *
 * Every call is synchronous and keeps no state; any number of threads may
 * call at once. Every record is owned by the caller and filled in place.
 * Results: 0 on success, -1 on failure; where a function says so, a failed
 * exchange with the AT server is handed back as its own non-zero result.
 *
 * cmdType: 0 queries (the "?" form), 1 sets (the "=" form); any other value
 * is refused with -1.
 * errorId: set to -3 on entry (the command did not complete), -2 when the
 * module answered OK, else the id mapped from the error reply. The eCall
 * records only ever receive -2; an error reply leaves them as they were.
 */
#ifndef ATAPI_M2M_ATS_CALL_H
#define ATAPI_M2M_ATS_CALL_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

/* ---- Call control ------------------------------------------------------- */

/** One entry of the standard call list (+CLCC). */
typedef struct AtsClccInfo {
    int32_t idx;
    int32_t dir;  /* 0 mobile originated, 1 mobile terminated */
    int32_t stat; /* 0..5; a reported value above 5 is not stored */
    int32_t mode;
    int32_t mpty;    /* 1: part of a multiparty call */
    int32_t type;    /* type of address of number */
    char number[44]; /* at most 40 characters */
} AtsClccInfo;

/** One entry of the extended call list (^CLCC). */
typedef struct AtsClccExInfo {
    int32_t idx;
    int32_t dir;
    int32_t state;
    int32_t mode;
    int32_t mpty;
    int32_t voiceDomain;
    int32_t callType;
    int32_t isEconference;
    char number[44]; /* at most 40 characters */
    int32_t type;
} AtsClccExInfo;

typedef struct AtSwitchModeInfo {
    int32_t switchMode;
    int32_t errorId;
} AtSwitchModeInfo;

typedef struct AtEchoExParam {
    int32_t enable;
    int32_t time;
    int32_t singleLen;
    int32_t singleDec;
    int32_t doubleDec;
    int32_t errorId;
} AtEchoExParam;

typedef struct AtCpcmParam {
    int32_t mode;
    int32_t format;
    int32_t clock;
    int32_t frame;
    int32_t offset;
    int32_t errorId;
} AtCpcmParam;

typedef struct AtDtmfParam {
    int32_t dtmfChar; /* the tone character */
    int32_t duration;
    int32_t errorId;
} AtDtmfParam;

/** Dials dialString as a voice call ("ATD<dialString>;"). */
ATAPI_EXPORT int32_t AtsD(const char *dialString);
/** Answers the incoming call. */
ATAPI_EXPORT int32_t AtsA(void);
/** Hangs up. */
ATAPI_EXPORT int32_t AtsChup(void);
/** Call hold and multiparty operation n (+CHLD). */
ATAPI_EXPORT int32_t AtsChld(int32_t n);
/** Reads the call list into list[0..maxIndex]: the array must hold
 *  maxIndex + 1 entries; maxIndex at most 20. Without calls the array is
 *  left as it was. */
ATAPI_EXPORT int32_t AtsClcc(AtsClccInfo *list, int32_t maxIndex);
/** Reads up to count (at most 7) entries of the extended call list. */
ATAPI_EXPORT int32_t AtsClccEx(AtsClccExInfo *list, int32_t count);
/** Auto-answer rings (S0): queried into or set from *value. */
ATAPI_EXPORT int32_t AtsS0(int32_t cmdType, int32_t *value);
/** Microphone mute (+CMUT): queried into or set from *mode. */
ATAPI_EXPORT int32_t AtsCmut(int32_t cmdType, int32_t *mode);
/** Speaker mute (^SMUT): queried into or set from *mode. */
ATAPI_EXPORT int32_t AtsSmut(int32_t cmdType, int32_t *mode);
/** Noise suppression switch. */
ATAPI_EXPORT int32_t AtsNsSwitch(int32_t cmdType, AtSwitchModeInfo *info);
/** Echo cancellation switch. */
ATAPI_EXPORT int32_t AtEchoSwitch(int32_t cmdType, AtSwitchModeInfo *info);
/** Extended echo cancellation parameters. */
ATAPI_EXPORT int32_t AtsEchoEx(int32_t cmdType, AtEchoExParam *param);
/** Sends one DTMF tone. An error reply still returns 0: read errorId. */
ATAPI_EXPORT int32_t AtDtmf(AtDtmfParam *param);
/** Sends the delta table text. */
ATAPI_EXPORT int32_t AtDeltaSet(const char *delta);
/** PCM interface: cmdType 0 is AtCpcmCheck, 1 AtCpcmExecute. */
ATAPI_EXPORT int32_t AtCpcm(int32_t cmdType, AtCpcmParam *cpcmParam);
/** Reads the PCM interface settings. */
ATAPI_EXPORT int32_t AtCpcmCheck(AtCpcmParam *cpcmParam);
/** Sets the PCM interface. */
ATAPI_EXPORT int32_t AtCpcmExecute(AtCpcmParam *cpcmParam);

/* ---- Supplementary services --------------------------------------------- */

typedef struct AtClipClirInfo {
    int32_t n;
    int32_t m;
} AtClipClirInfo;

typedef struct AtsCcwaEntry {
    int32_t status;
    int32_t classx;
} AtsCcwaEntry;

/** mode on input is the operation: 0, 1 set waiting for classx; 2 queries
 *  classx's status into entries; 3 reads the presentation (the extended
 *  form stores it in mode); 4 sets the presentation n; 16 (extended form
 *  only) sends no value. ccwaCount is only ever incremented: clear it. */
typedef struct AtsCcwaInfo {
    int32_t mode;
    int32_t classx;
    int32_t n;
    int32_t ccwaCount;
    AtsCcwaEntry entries[8];
} AtsCcwaInfo;

typedef struct AtsCcfcEntry {
    int32_t status;
    int32_t classx;
    int32_t type;
    int32_t time;
    char number[44];
} AtsCcfcEntry;

/** mode 2 queries reason; any other mode is sent as a set with number,
 *  type, classx and, when not 0, time. ccfcCount is only ever incremented. */
typedef struct AtsCcfcInfo {
    int32_t reason;
    int32_t mode;
    int32_t type;
    int32_t classx;
    int32_t time;
    int32_t ccfcCount;
    char number[44];
    AtsCcfcEntry entries[10];
} AtsCcfcInfo;

typedef struct AtsCssnInfo {
    int32_t n;
    int32_t m;
} AtsCssnInfo;

/** The set sends mode and ctrlMode; the query stores mode and ctrlModeRead. */
typedef struct AtsCcwaiInfo {
    int32_t mode;
    int32_t ctrlMode;
    int32_t ctrlModeRead;
} AtsCcwaiInfo;

typedef struct AtTrustNumInfo {
    uint32_t index;
    char phonenum[28];
    int32_t errorId;
} AtTrustNumInfo;

typedef struct AtTrustNumEntry {
    uint32_t index;
    char phonenum[28]; /* at most 25 characters */
} AtTrustNumEntry;

/** entries points to count (at least 1) entries that the caller clears.
 *  Named by its tag only: AtTrustNumList is also the SMS module's function
 *  (m2m_ats_sms.h). */
struct AtTrustNumList {
    int32_t count;
    AtTrustNumEntry *entries;
    int32_t errorId;
};

/** Calling line presentation (+CLIP). */
ATAPI_EXPORT int32_t AtsClip(int32_t value);
ATAPI_EXPORT int32_t AtClipQuery(AtClipClirInfo *info);
/** Calling line restriction (+CLIR); 16 sends no value. */
ATAPI_EXPORT int32_t AtClir(int32_t value);
ATAPI_EXPORT int32_t AtClirQuery(AtClipClirInfo *info);
/** Extended calling line presentation (^CLIP); 16 sends no value. */
ATAPI_EXPORT int32_t AtClipEx(int32_t value);
ATAPI_EXPORT int32_t AtClipQueryEx(AtClipClirInfo *info);
/** Call waiting (+CCWA), operation info->mode. */
ATAPI_EXPORT int32_t AtsCcwa(AtsCcwaInfo *info);
/** Extended call waiting (^CCWA), operation info->mode. */
ATAPI_EXPORT int32_t AtCcwaEx(AtsCcwaInfo *info);
ATAPI_EXPORT int32_t AtsSetCcwai(AtsCcwaiInfo *info);
ATAPI_EXPORT int32_t AtsGetCcwai(AtsCcwaiInfo *info);
/** Call forwarding (+CCFC). A query succeeds only when every reported
 *  entry has status 0. */
ATAPI_EXPORT int32_t AtsCcfc(AtsCcfcInfo *info);
/** Supplementary-service notifications (+CSSN). */
ATAPI_EXPORT int32_t AtsCssn(AtsCssnInfo *info);
/** operation 1 stores phonenum under index; operation 2 reads the index
 *  range into index. */
ATAPI_EXPORT int32_t AtTrustSpecialNum(int32_t operation, AtTrustNumInfo *trustNumInfo);
/** Reads up to count trusted numbers; does not say how many were read. */
ATAPI_EXPORT int32_t AtTrustSpecialNumList(struct AtTrustNumList *trustNumList);

/* ---- eCall -------------------------------------------------------------- */

typedef struct AtsEclImsCfgInfo {
    int32_t modeType;
    char contentType[64]; /* sent only when modeType is 1 */
} AtsEclImsCfgInfo;

typedef struct AtsEclMsdInfo {
    const char *msd; /* the MSD text, passed through as it is */
    int32_t errorId;
} AtsEclMsdInfo;

typedef struct AtsEclCfgInfo {
    int32_t param1;
    int32_t param2;
    int32_t param3;
    int32_t errorId;
} AtsEclCfgInfo;

/** Sent as param1, param2, number, param4. */
typedef struct AtsEclStartInfo {
    int32_t param1;
    int32_t param2;
    int32_t param4;
    char number[84];
    int32_t errorId;
} AtsEclStartInfo;

/** eCall mode: queried into (0..2) or set from *mode. */
ATAPI_EXPORT int32_t AtEclMode(int32_t cmdType, int32_t *mode);
/** eCall over IMS configuration. */
ATAPI_EXPORT int32_t AtsEclImsCfg(int32_t cmdType, AtsEclImsCfgInfo *imsData);
/** Hands over the minimum set of data. */
ATAPI_EXPORT int32_t AtsEclMsd(AtsEclMsdInfo *msdInfo);
/** Configures the in-band modem. */
ATAPI_EXPORT int32_t AtsEclCfg(AtsEclCfgInfo *cfgInfo);
/** Starts an eCall. */
ATAPI_EXPORT int32_t AtsEclStart(AtsEclStartInfo *startInfo);
/** Makes the module send the MSD again. */
ATAPI_EXPORT int32_t AtsEclPush(void);
/** Ends the eCall. */
ATAPI_EXPORT int32_t AtsEclStop(void);
/** Aborts the eCall. */
ATAPI_EXPORT int32_t AtEcalllAbort(void);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(offsetof(AtsClccInfo, number) == 24 && sizeof(AtsClccInfo) == 68,
                    "AtsClccInfo is 68 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtsClccExInfo, number) == 32 && offsetof(AtsClccExInfo, type) == 76,
                    "number and type of AtsClccExInfo at 32 and 76");
ATAPI_STATIC_ASSERT(sizeof(AtsClccExInfo) == 80, "AtsClccExInfo is 80 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtSwitchModeInfo) == 8, "AtSwitchModeInfo is 8 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtEchoExParam, errorId) == 20 && sizeof(AtEchoExParam) == 24,
                    "AtEchoExParam is 24 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtCpcmParam, errorId) == 20 && sizeof(AtCpcmParam) == 24,
                    "AtCpcmParam is 24 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtDtmfParam) == 12, "AtDtmfParam is 12 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtClipClirInfo) == 8, "AtClipClirInfo is 8 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtsCcwaInfo, entries) == 16 && sizeof(AtsCcwaInfo) == 80,
                    "AtsCcwaInfo is 80 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtsCcfcEntry) == 60, "AtsCcfcEntry is 60 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtsCcfcInfo, number) == 24 && offsetof(AtsCcfcInfo, entries) == 68,
                    "number and entries of AtsCcfcInfo at 24 and 68");
ATAPI_STATIC_ASSERT(sizeof(AtsCcfcInfo) == 668, "AtsCcfcInfo is 668 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtsCssnInfo) == 8, "AtsCssnInfo is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtsCcwaiInfo) == 12, "AtsCcwaiInfo is 12 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtTrustNumInfo, errorId) == 32 && sizeof(AtTrustNumInfo) == 36,
                    "AtTrustNumInfo is 36 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtTrustNumEntry) == 32, "AtTrustNumEntry is 32 bytes");
ATAPI_STATIC_ASSERT(sizeof(struct AtTrustNumList) == (sizeof(void *) == 4 ? 12 : 24),
                    "AtTrustNumList: count, entries, errorId");
ATAPI_STATIC_ASSERT(sizeof(AtsEclImsCfgInfo) == 68, "AtsEclImsCfgInfo is 68 bytes");
ATAPI_STATIC_ASSERT(sizeof(AtsEclMsdInfo) == (sizeof(void *) == 4 ? 8 : 16),
                    "AtsEclMsdInfo: msd, errorId");
ATAPI_STATIC_ASSERT(sizeof(AtsEclCfgInfo) == 16, "AtsEclCfgInfo is 16 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtsEclStartInfo, number) == 12 &&
                        offsetof(AtsEclStartInfo, errorId) == 96 && sizeof(AtsEclStartInfo) == 100,
                    "AtsEclStartInfo is 100 bytes");

#endif
