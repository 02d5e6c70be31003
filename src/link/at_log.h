// Trace helpers: every source file defines kTraceSrc (its module path) and
// logs through these macros with the platform's levels.
#pragma once

#include "platform/trace.h"

#define AT_LOG(level, ...) \
    UMO_TRACE_PrintInfo(kTraceSrc, __LINE__, 0, "atserver", (level), __VA_ARGS__)
#define AT_LOG_ERR(...) AT_LOG(TRACE_LEVEL_ERROR, __VA_ARGS__)
#define AT_LOG_INFO(...) AT_LOG(TRACE_LEVEL_INFO, __VA_ARGS__)
#define AT_LOG_DETAIL(...) AT_LOG(TRACE_LEVEL_DETAIL, __VA_ARGS__)

// For the few lines on the path of every parsed reply: the level is checked
// inline first, so a hidden line costs one load and its arguments are not
// evaluated. Elsewhere the plain call is smaller (the check would be inlined
// at each of several hundred call sites).
#define AT_LOG_INFO_HOT(...) \
    (platform::TraceShown(TRACE_LEVEL_INFO) ? AT_LOG_INFO(__VA_ARGS__) : (void)0)
