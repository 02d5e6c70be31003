#include "notify.h"

#include <mutex>

#include "trace.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/platform/notify";

struct NotifySlot {
    std::mutex lock;
    PlatformNotifySink sink = nullptr;
    void *ctx = nullptr;
};

NotifySlot &Slot() {
    static NotifySlot slot;
    return slot;
}

int32_t Post(int simple, uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    UMO_TRACE_PrintInfo(kTraceSrc, __LINE__, 0, "atserver", TRACE_LEVEL_INFO,
                        "notify%s(%u, %u, %u, %u)\n", simple != 0 ? " simple" : "", a, b, c, d);
    NotifySlot &slot = Slot();
    std::lock_guard<std::mutex> guard(slot.lock);
    return slot.sink != nullptr ? slot.sink(slot.ctx, simple, a, b, c, d) : 0;
}

}  // namespace

extern "C" {

int32_t UMO_NOTIFYCLT_PostAsynNotify(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    return Post(0, a, b, c, d);
}

int32_t UMO_NOTIFYCLT_PostSimpleAsynNotify(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    return Post(1, a, b, c, d);
}

void PlatformSetNotifySink(PlatformNotifySink sink, void *ctx) {
    NotifySlot &slot = Slot();
    std::lock_guard<std::mutex> guard(slot.lock);
    slot.sink = sink;
    slot.ctx = ctx;
}

}  // extern "C"
