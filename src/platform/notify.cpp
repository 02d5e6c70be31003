#include "platform/notify.h"

#include "platform/sink_slot.h"
#include "platform/trace.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/platform/notify";

platform::SinkSlot<PlatformNotifySink> &Slot() {
    static platform::SinkSlot<PlatformNotifySink> slot;
    return slot;
}

int32_t Post(int simple, uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    UMO_TRACE_PrintInfo(kTraceSrc, __LINE__, 0, "atserver", TRACE_LEVEL_INFO,
                        "notify%s(%u, %u, %u, %u)\n", simple != 0 ? " simple" : "", a, b, c, d);
    int32_t result = 0;
    Slot().CallFor(&result, simple, a, b, c, d);
    return result;
}

}  // namespace

extern "C" {

int32_t UMO_NOTIFYCLT_PostAsynNotify(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    return Post(0, a, b, c, d);
}

int32_t UMO_NOTIFYCLT_PostSimpleAsynNotify(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    return Post(1, a, b, c, d);
}

void PlatformSetNotifySink(PlatformNotifySink sink, void *ctx) { Slot().Install(sink, ctx); }

}  // extern "C"
