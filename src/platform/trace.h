/*
 * Trace and module log of the platform, and a sink through which tests (and
 * tools) can capture every line. Without a sink, lines at or below the
 * threshold level go to stderr; the threshold comes from ATAPI_TRACE_LEVEL
 * (default 2: errors only; 0 silences everything).
 */
#ifndef ATAPI_PLATFORM_TRACE_H
#define ATAPI_PLATFORM_TRACE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum { TRACE_LEVEL_ERROR = 2, TRACE_LEVEL_INFO = 8, TRACE_LEVEL_DETAIL = 16 };

void UMO_TRACE_PrintInfo(const char *sourcePath, int line, int module, const char *name, int level,
                         const char *format, ...) __attribute__((format(printf, 6, 7)));
void mlog_print(const char *name, int level, const char *format, ...)
    __attribute__((format(printf, 3, 4)));

/* channel is "trace" or "mlog"; source is the trace source path or the name. */
typedef void (*PlatformLogSink)(void *ctx, const char *channel, const char *source, int level,
                                const char *text);
/* Installs a sink that receives every line, whatever the threshold; null
 * restores stderr output. */
void PlatformSetLogSink(PlatformLogSink sink, void *ctx);
void PlatformSetLogThreshold(int level);

#ifdef __cplusplus
}

#include <atomic>

namespace platform {

// Lines below this level are shown (INT_MAX while a sink is installed); 0
// until the first line or setting has worked it out.
extern std::atomic<int> g_traceShownBelow;

// False when a line of level would be dropped: callers skip the call, and
// the formatting of its arguments, altogether.
inline bool TraceShown(int level) {
    const int below = g_traceShownBelow.load(std::memory_order_relaxed);
    return below == 0 || level < below;
}

}  // namespace platform
#endif

#endif
