/*
 * Telematics voice calls: dial, answer, hang up and call hold/multiparty.
 *
 * Every call is synchronous and keeps no state. Results: 0 on success, -1
 * on failure; a failed exchange with the AT server is handed back as its
 * own non-zero result.
 */
#ifndef ATAPI_M2M_ATS_CALL_H
#define ATAPI_M2M_ATS_CALL_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

/** Dials dialString as a voice call ("ATD<dialString>;"). */
ATAPI_EXPORT int32_t AtsD(const char *dialString);
/** Answers the incoming call. */
ATAPI_EXPORT int32_t AtsA(void);
/** Hangs up. */
ATAPI_EXPORT int32_t AtsChup(void);
/** Call hold and multiparty operation n (+CHLD). */
ATAPI_EXPORT int32_t AtsChld(int32_t n);

ATAPI_END_DECLS

#endif
