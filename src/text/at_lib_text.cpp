// Bounded text search and trimming over buffers that need not be terminated
// where the caller's length ends.
#include <strings.h>

#include <cstring>

#include "atapi/at_text.h"
#include "platform/bounded.h"

namespace {

// Line feed, carriage return and blank only: tabs are kept on purpose.
bool IsTrimmedSpace(char c) { return c == '\n' || c == '\r' || c == ' '; }

}  // namespace

extern "C" {

const char *AtStrcasestr(const char *buf, uint32_t bufLen, const char *needle) {
    if (buf == nullptr || needle == nullptr) return nullptr;
    const size_t needleLen = std::strlen(needle);
    if (needleLen == 0 || needleLen > bufLen) return nullptr;
    const size_t lastStart = bufLen - needleLen;
    for (size_t i = 0; i <= lastStart; ++i) {
        if (strncasecmp(buf + i, needle, needleLen) == 0) return buf + i;
    }
    return nullptr;
}

int32_t AtCheckAtCmd(const char *buf, uint32_t bufLen) {
    for (const AtRightListCmd &row : g_tdRightListCmdMap) {
        if (AtStrcasestr(buf, bufLen, row.prefix) != nullptr) return row.id;
    }
    return -1;
}

int32_t AtStringTrim(const char *src, uint32_t srcLen, char *dst, uint32_t dstSize) {
    if (src == nullptr || dst == nullptr || srcLen == 0 || srcLen >= dstSize) return 1;
    const size_t len = strnlen(src, srcLen);
    size_t start = 0;
    while (start < len && IsTrimmedSpace(src[start])) ++start;
    size_t end = len;
    while (end > start && IsTrimmedSpace(src[end - 1])) --end;
    return strncpy_s(dst, dstSize, src + start, end - start) == 0 ? 0 : 1;
}

}  // extern "C"
