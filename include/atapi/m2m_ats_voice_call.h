/*
 * Voice path settings: the PCM sampling frequency (^PCMFR), the microphone
 * gain level (+CMIC) and the voice mode (^VMSET).
 *
 * Every call is synchronous and keeps no state; records are the caller's.
 * op: 0 queries (the "?" form), 1 sets (the "=" form); any other value is
 * refused with -1 before anything is sent.
 * Results: 0 on success, -1 on failure.
 */
#ifndef ATAPI_M2M_ATS_VOICE_CALL_H
#define ATAPI_M2M_ATS_VOICE_CALL_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

#define AT_VOICE_QUERY 0
#define AT_VOICE_SET 1
#define AT_PCM_FRQ_SIZE 233
#define AT_VOICE_MODE_MAX 6u

/* errorId: -3 on entry, -2 when the module answered OK, else the id mapped
 * from a +CME or +CMS error reply. */
typedef struct PcmFrqInfo {
    char pcmFrq[AT_PCM_FRQ_SIZE]; /* the setting's text, NUL-terminated */
    int32_t errorId;
} PcmFrqInfo;

/** Sends info->pcmFrq (set) or reads it back (query); a value of 233
 *  characters or more fails the query. */
ATAPI_EXPORT int32_t AtPcmfr(uint32_t op, PcmFrqInfo *info);
/** Sets the microphone gain from *level or reads it into *level. A query
 *  whose reply does not parse returns 0 and leaves *level as it was. */
ATAPI_EXPORT int32_t AtCmic(int32_t op, int32_t *level);
/** Selects voice mode type (0..AT_VOICE_MODE_MAX). */
ATAPI_EXPORT int32_t AtVmSet(uint32_t type);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(offsetof(PcmFrqInfo, errorId) == 236 && sizeof(PcmFrqInfo) == 240,
                    "PcmFrqInfo: errorId at the 4-byte boundary behind pcmFrq");

#endif
