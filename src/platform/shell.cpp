#include "platform/shell.h"

#include <cstdlib>

#include "platform/sink_slot.h"

namespace {

platform::SinkSlot<PlatformShellSink> &Slot() {
    static platform::SinkSlot<PlatformShellSink> slot;
    return slot;
}

}  // namespace

extern "C" {

int PlatformSystem(const char *command) {
    int result = 0;
    if (Slot().CallFor(&result, command)) return result;
    return std::system(command);
}

void PlatformSetShellSink(PlatformShellSink sink, void *ctx) { Slot().Install(sink, ctx); }

}  // extern "C"
