#include "platform/bounded.h"

#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "platform/secure_wipe.h"

namespace {

// Upper bound on any destination we accept: catches negative lengths cast to size_t.
constexpr size_t kMaxDest = SIZE_MAX >> 1;

bool Overlaps(const void *a, size_t aLen, const void *b, size_t bLen) {
    auto x = reinterpret_cast<uintptr_t>(a);
    auto y = reinterpret_cast<uintptr_t>(b);
    return x < y + bLen && y < x + aLen;
}

bool BadDest(const void *dest, size_t destMax) {
    return dest == nullptr || destMax == 0 || destMax > kMaxDest;
}

}  // namespace

extern "C" {

errno_t memcpy_s(void *dest, size_t destMax, const void *src, size_t count) {
    if (BadDest(dest, destMax)) return EINVAL;
    if (src == nullptr || count > destMax || Overlaps(dest, destMax, src, count)) {
        memset_s(dest, destMax, 0, destMax);
        return src == nullptr ? EINVAL : ERANGE;
    }
    std::memcpy(dest, src, count);
    return 0;
}

errno_t memset_s(void *dest, size_t destMax, int c, size_t count) {
    if (BadDest(dest, destMax)) return EINVAL;
    const size_t n = count > destMax ? destMax : count;
    platform::SecureWipe(dest, n, c);
    return count > destMax ? ERANGE : 0;
}

errno_t strncpy_s(char *dest, size_t destMax, const char *src, size_t count) {
    if (BadDest(dest, destMax)) return EINVAL;
    if (src == nullptr) {
        dest[0] = '\0';
        return EINVAL;
    }
    const size_t len = strnlen(src, count);
    if (len >= destMax || Overlaps(dest, destMax, src, len + 1)) {
        dest[0] = '\0';
        return ERANGE;
    }
    std::memcpy(dest, src, len);
    dest[len] = '\0';
    return 0;
}

errno_t strcpy_s(char *dest, size_t destMax, const char *src) {
    return strncpy_s(dest, destMax, src, SIZE_MAX);
}

errno_t strncat_s(char *dest, size_t destMax, const char *src, size_t count) {
    if (BadDest(dest, destMax)) return EINVAL;
    const size_t used = strnlen(dest, destMax);
    if (used == destMax) return EINVAL;
    if (src == nullptr) return EINVAL;
    const size_t len = strnlen(src, count);
    if (used + len >= destMax) return ERANGE;
    std::memcpy(dest + used, src, len);
    dest[used + len] = '\0';
    return 0;
}

errno_t strcat_s(char *dest, size_t destMax, const char *src) {
    return strncat_s(dest, destMax, src, SIZE_MAX);
}

int sprintf_s(char *dest, size_t destMax, const char *format, ...) {
    if (BadDest(dest, destMax) || format == nullptr) return -1;
    va_list ap;
    va_start(ap, format);
    const int n = std::vsnprintf(dest, destMax, format, ap);
    va_end(ap);
    if (n < 0 || static_cast<size_t>(n) >= destMax) {
        dest[0] = '\0';
        return -1;
    }
    return n;
}

int vsnprintf_s(char *dest, size_t destMax, size_t count, const char *format, va_list ap) {
    if (BadDest(dest, destMax) || format == nullptr || count >= destMax) {
        if (!BadDest(dest, destMax)) dest[0] = '\0';
        return -1;
    }
    const int n = std::vsnprintf(dest, count + 1, format, ap);
    if (n < 0) {
        dest[0] = '\0';
        return -1;
    }
    return static_cast<size_t>(n) > count ? -1 : n;
}

int snprintf_s(char *dest, size_t destMax, size_t count, const char *format, ...) {
    va_list ap;
    va_start(ap, format);
    const int n = vsnprintf_s(dest, destMax, count, format, ap);
    va_end(ap);
    return n;
}

char *strtok_s(char *str, const char *delim, char **context) {
    if (delim == nullptr || context == nullptr) return nullptr;
    return strtok_r(str, delim, context);
}

}  // extern "C"
