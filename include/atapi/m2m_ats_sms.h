/*
 * Trusted numbers of the telematics SMS module: the trusted-number filter
 * for SMS and voice calls (^TNUMCTL) and the list of trusted numbers
 * (^TRUSTNUM).
 *
 * Every call is synchronous and keeps no state; records are the caller's.
 * Results: 0 on success, -1 on failure.
 * errorId: -2 when the module answered OK, the id mapped from a +CME or
 * +CMS error reply, and left as it was by any other failure.
 */
#ifndef ATAPI_M2M_ATS_SMS_H
#define ATAPI_M2M_ATS_SMS_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

#define AT_TRUSTNUM_QUERY 0u
#define AT_TRUSTNUM_SET 1u

/* The filter switches: sent by AT_TRUSTNUM_SET, read by AT_TRUSTNUM_QUERY. */
typedef struct TrustNumCtrl {
    int32_t smsSwitch;
    int32_t voiceSwitch;
    int32_t errorId;
} TrustNumCtrl;

typedef struct TrustNumEntry {
    int32_t index;
    char phonenum[26]; /* at most 25 characters */
} TrustNumEntry;

/* entries points to count (at least 1) entries. The list fills them from
 * the first on and does not say how many it filled, nor clears the others:
 * clear the array before the call. */
typedef struct TrustNumList {
    int32_t count;
    TrustNumEntry *entries;
    int32_t errorId;
} TrustNumList;

/** op AT_TRUSTNUM_SET sends both switches, AT_TRUSTNUM_QUERY reads them;
 *  another op returns -1 without sending. */
ATAPI_EXPORT int32_t AtTrustNumCtrl(uint32_t op, TrustNumCtrl *ctrl);
/** Reads up to list->count trusted numbers into list->entries. A number
 *  that does not fit its entry leaves the entry's phonenum empty and the
 *  next number goes into the next entry. */
ATAPI_EXPORT int32_t AtTrustNumList(TrustNumList *list);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(sizeof(TrustNumCtrl) == 12, "TrustNumCtrl is 12 bytes");
ATAPI_STATIC_ASSERT(offsetof(TrustNumEntry, phonenum) == 4 && sizeof(TrustNumEntry) == 32,
                    "TrustNumEntry: an entry every 32 bytes");
ATAPI_STATIC_ASSERT(offsetof(TrustNumList, errorId) == 2 * sizeof(void *) &&
                        sizeof(TrustNumList) == (sizeof(void *) == 4 ? 12 : 24),
                    "TrustNumList: count, entries, errorId");

#endif
