/*
 * Notification client of the platform. Notifications are logged at info
 * level and handed to a sink when one is installed (tests).
 */
#ifndef ATAPI_PLATFORM_NOTIFY_H
#define ATAPI_PLATFORM_NOTIFY_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

int32_t UMO_NOTIFYCLT_PostAsynNotify(uint32_t a, uint32_t b, uint32_t c, uint32_t d);
int32_t UMO_NOTIFYCLT_PostSimpleAsynNotify(uint32_t a, uint32_t b, uint32_t c, uint32_t d);

/* simple is 1 for PostSimpleAsynNotify, 0 for PostAsynNotify. The sink's
 * result is what the post returns. */
typedef int32_t (*PlatformNotifySink)(void *ctx, int simple, uint32_t a, uint32_t b, uint32_t c,
                                      uint32_t d);
void PlatformSetNotifySink(PlatformNotifySink sink, void *ctx);

#ifdef __cplusplus
}
#endif

#endif
