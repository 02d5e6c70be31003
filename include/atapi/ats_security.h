/*
 * PIN and card lock: the SIM's PIN state and retry counters, PIN entry and
 * unblocking, facility passwords, facility locks (+CLCK) and the card lock.
 *
 * Ownership: every record is the caller's and is filled in place. PINs,
 * PUKs, passwords and unlock codes are read, never kept: the command lines
 * that carry them are wiped after sending.
 * errorId: -2 when the module answered OK, else the id mapped from the
 * error reply. A query answered with an error reply still returns 0 (read
 * errorId); a set form returns 0 when its stored errorId is 3 or 4.
 */
#ifndef ATAPI_ATS_SECURITY_H
#define ATAPI_ATS_SECURITY_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

typedef struct CpinInfo {
    uint32_t reserved;
    char code[32]; /* PIN state text, e.g. "READY", "SIM PIN" */
    int32_t errorId;
} CpinInfo;

/* Retry counters are kept as the module's text. */
typedef struct CpinExInfo {
    uint32_t reserved;
    char code[32];
    char times[8];
    char pukTimes[8];
    char pinTimes[8];
    char puk2Times[8];
    char pin2Times[8];
    uint8_t reserved2[4];
    int32_t errorId;
} CpinExInfo;

typedef struct CardLockInfo {
    uint32_t state;
    uint32_t times;
    int32_t errorId;
} CardLockInfo;

typedef struct ClckRequest {
    char fac[5];        /* facility, e.g. "SC" */
    char mode[5];       /* "0" unlock, "1" lock, "2" query */
    const char *passwd; /* NUL-terminated; read for modes "0" and "1" */
} ClckRequest;

typedef struct ClckResult {
    uint32_t reserved;
    int32_t errorId;
    char status[5];
} ClckResult;

/** op 0 queries the PIN state (+CPIN?); op 1 enters pin, or pin and newPin
 *  when newPin is a non-empty text. 0 or -1. */
ATAPI_EXPORT int32_t AtPinManagement(uint32_t op, const char *pin, const char *newPin, CpinInfo *r);
/** As AtPinManagement with ^CPIN: the query reads the retry counters; the
 *  set form sends newPin whenever it is not null. 0 or -1. */
ATAPI_EXPORT int32_t AtPinManagementEx(uint32_t op, const char *pin, const char *newPin,
                                       CpinExInfo *r);
/** op 0 queries the card lock; op 1 unlocks it with code. 0 or -1. */
ATAPI_EXPORT int32_t AtSimLock(uint32_t op, const char *code, CardLockInfo *r);
/** op must be 1. Mode "2" queries the facility's status; "0"/"1" unlock or
 *  lock it with q->passwd. 0 or -1. */
ATAPI_EXPORT int32_t AtPinEnableDisableCmd(uint32_t op, ClckRequest *q, ClckResult *r);
/** Changes the password of facility fac. 0 or -1; *errorId as above. */
ATAPI_EXPORT int32_t AtPinModify(const char *fac, const char *oldPwd, const char *newPwd,
                                 int32_t *errorId);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(sizeof(CpinInfo) == 40, "CpinInfo is 40 bytes");
ATAPI_STATIC_ASSERT(offsetof(CpinExInfo, pin2Times) == 68, "pin2Times at 68");
ATAPI_STATIC_ASSERT(sizeof(CpinExInfo) == 84, "CpinExInfo is 84 bytes");
ATAPI_STATIC_ASSERT(sizeof(CardLockInfo) == 12, "CardLockInfo is 12 bytes");
ATAPI_STATIC_ASSERT(offsetof(ClckRequest, passwd) == (sizeof(void *) == 4 ? 12 : 16),
                    "passwd behind the two texts");
ATAPI_STATIC_ASSERT(offsetof(ClckResult, status) == 8 && sizeof(ClckResult) == 16,
                    "ClckResult is 16 bytes");

#endif
