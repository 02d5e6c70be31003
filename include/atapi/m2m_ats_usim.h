/*
 * SIM extensions of the telematics SIM module: the SIM state (^SIMSQ), the
 * eUICC identifier (^ESIMEID) and restricted SIM access with a path of the
 * caller's choosing (+CRSM).
 *
 * Every call is synchronous and keeps no state. Records and buffers are the
 * caller's, except CrsmPidResult.response, which the library allocates with
 * malloc and the caller frees with free().
 * Results: 0 on success, -1 on failure (null argument, error reply, reply
 * that does not parse).
 */
#ifndef ATAPI_M2M_ATS_USIM_H
#define ATAPI_M2M_ATS_USIM_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

#define AT_CRSM_STATUS 242
#define AT_EUICC_ID_SIZE 64

typedef struct SimSqInfo {
    int32_t mode;
    int32_t simStatus;
} SimSqInfo;

/* One +CRSM request. command 242 (STATUS) is sent alone, without the other
 * fields. data and pathId are sent quoted; null sends an empty text. */
typedef struct CrsmPidReq {
    int32_t command;
    int32_t fileId;
    int32_t p1;
    int32_t p2;
    int32_t p3;
    const char *data;
    const char *pathId;
} CrsmPidReq;

/* The status words and the reply's response text. response is set only
 * when the reply carries one: a new heap block each time, which the caller
 * frees (an earlier block is not freed by the library). errorId becomes -2
 * once the reply has parsed and is left as it was otherwise. */
typedef struct CrsmPidResult {
    int32_t sw1;
    int32_t sw2;
    char *response;
    int32_t errorId;
} CrsmPidResult;

/** The SIM state: the reply's mode and sim_status. */
ATAPI_EXPORT int32_t AtSimSqQuery(SimSqInfo *r);
/** The eUICC identifier into eid, a buffer of AT_EUICC_ID_SIZE characters;
 *  an identifier of 64 characters or more fails. */
ATAPI_EXPORT int32_t AtEuiccIdQuery(char *eid);
/** One +CRSM exchange with q's path. A line longer than an AT command line
 *  is cut to fit and sent all the same. */
ATAPI_EXPORT int32_t AtCrsmPid(const CrsmPidReq *q, CrsmPidResult *r);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(sizeof(SimSqInfo) == 8, "SimSqInfo is 8 bytes");
ATAPI_STATIC_ASSERT(offsetof(CrsmPidReq, data) == (sizeof(void *) == 4 ? 20 : 24) &&
                        offsetof(CrsmPidReq, pathId) == (sizeof(void *) == 4 ? 24 : 32),
                    "data and pathId behind the five numbers");
ATAPI_STATIC_ASSERT(sizeof(CrsmPidReq) == (sizeof(void *) == 4 ? 28 : 40),
                    "CrsmPidReq is 28 bytes");
ATAPI_STATIC_ASSERT(offsetof(CrsmPidResult, response) == 8 &&
                        offsetof(CrsmPidResult, errorId) == 8 + sizeof(void *),
                    "response at 8, errorId behind it");
ATAPI_STATIC_ASSERT(sizeof(CrsmPidResult) == (sizeof(void *) == 4 ? 16 : 24),
                    "CrsmPidResult is 16 bytes");

#endif
