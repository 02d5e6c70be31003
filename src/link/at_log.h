// Trace helpers: every source file defines kTraceSrc (its module path) and
// logs through these macros with the platform's levels.
#pragma once

#include "platform/trace.h"

// A line nobody will see costs one load: its arguments are not even evaluated,
// so they must not have side effects.
#define AT_LOG(level, ...)                                                               \
    (platform::TraceShown(level)                                                         \
         ? UMO_TRACE_PrintInfo(kTraceSrc, __LINE__, 0, "atserver", (level), __VA_ARGS__) \
         : (void)0)
#define AT_LOG_ERR(...) AT_LOG(TRACE_LEVEL_ERROR, __VA_ARGS__)
#define AT_LOG_INFO(...) AT_LOG(TRACE_LEVEL_INFO, __VA_ARGS__)
#define AT_LOG_DETAIL(...) AT_LOG(TRACE_LEVEL_DETAIL, __VA_ARGS__)
