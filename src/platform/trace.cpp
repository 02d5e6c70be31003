#include "platform/trace.h"

#include <atomic>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "platform/bounded.h"
#include "platform/sink_slot.h"

namespace {

platform::SinkSlot<PlatformLogSink> &Slot() {
    static platform::SinkSlot<PlatformLogSink> slot;
    return slot;
}

int InitialThreshold() {
    const char *env = std::getenv("ATAPI_TRACE_LEVEL");
    return env != nullptr ? std::atoi(env) : TRACE_LEVEL_ERROR;
}

std::atomic<int> &Threshold() {
    static std::atomic<int> threshold{InitialThreshold()};
    return threshold;
}

// Works out which levels are shown after the sink or the threshold changed.
void UpdateShownBelow() {
    const int threshold = Threshold().load(std::memory_order_relaxed);
    const int below = Slot().Installed() || threshold >= INT_MAX - 1 ? INT_MAX : threshold + 1;
    platform::g_traceShownBelow.store(below < 1 ? 1 : below, std::memory_order_relaxed);
}

void Emit(const char *channel, const char *source, int level, const char *format, va_list ap) {
    if (platform::g_traceShownBelow.load(std::memory_order_relaxed) == 0) UpdateShownBelow();
    if (!Slot().Installed() && level > Threshold().load(std::memory_order_relaxed)) return;
    char text[2048];
    std::vsnprintf(text, sizeof text, format, ap);
    if (!Slot().Call(channel, source, level, static_cast<const char *>(text)) &&
        level <= Threshold().load(std::memory_order_relaxed)) {
        std::fprintf(stderr, "[%s %d] %s: %s", channel, level, source != nullptr ? source : "",
                     text);
    }
    // Reply text passes through here too.
    memset_s(text, sizeof text, 0, sizeof text);
}

}  // namespace

std::atomic<int> platform::g_traceShownBelow{0};

extern "C" {

void UMO_TRACE_PrintInfo(const char *sourcePath, int line, int module, const char *name, int level,
                         const char *format, ...) {
    (void)line;
    (void)module;
    (void)name;
    va_list ap;
    va_start(ap, format);
    Emit("trace", sourcePath, level, format, ap);
    va_end(ap);
}

void mlog_print(const char *name, int level, const char *format, ...) {
    va_list ap;
    va_start(ap, format);
    Emit("mlog", name, level, format, ap);
    va_end(ap);
}

void PlatformSetLogSink(PlatformLogSink sink, void *ctx) {
    Slot().Install(sink, ctx);
    UpdateShownBelow();
}

void PlatformSetLogThreshold(int level) {
    Threshold().store(level, std::memory_order_relaxed);
    UpdateShownBelow();
}

}  // extern "C"
