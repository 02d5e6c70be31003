// Null-safe string and number helpers used to take reply text apart. Each
// routine's null and edge behaviour is part of its contract: callers rely on it.
#include <strings.h>

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "atapi/at_text.h"

namespace {

constexpr size_t kMaxHexDigits = 16;  // a 64-bit value

int LowerCase(char c) { return std::tolower(static_cast<unsigned char>(c)); }

bool IsDecimalDigit(char c) { return c >= '0' && c <= '9'; }

int HexDigitValue(char c) {
    if (IsDecimalDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// First sep outside double-quoted stretches; a '"' only toggles the state, so
// searching for '"' itself never matches.
const char *FindUnquoted(const char *s, char sep) {
    bool quoted = false;
    for (; *s != '\0'; ++s) {
        if (*s == '"') {
            quoted = !quoted;
        } else if (!quoted && *s == sep) {
            return s;
        }
    }
    return nullptr;
}

}  // namespace

extern "C" {

int32_t AtCharToHex(char *c) {
    if (c == nullptr) return -1;
    if (*c > 96) *c = static_cast<char>(*c - 32);
    if (IsDecimalDigit(*c)) return *c - '0';
    return *c - 55;
}

char *SplitSpace(char *buf, uint32_t size, char ch) {
    if (buf == nullptr) return nullptr;
    const size_t len = strnlen(buf, size);
    if (size < 2 || ch == '\0') return buf + len;

    size_t start = 0;
    while (start < len && buf[start] == ch) ++start;
    size_t end = len;
    while (end > start && buf[end - 1] == ch) --end;
    // Untouched text keeps its bytes; a buffer without a terminator within
    // size bytes is then never written past.
    if (start == 0 && end == len) return buf + len;

    const size_t kept = end - start;
    std::memmove(buf, buf + start, kept);
    buf[kept] = '\0';
    return buf + kept;
}

uint64_t AtHexStrToUnsignedInteger(const char *s) {
    if (s == nullptr) return 0;
    const size_t len = strnlen(s, kMaxHexDigits + 1);
    if (len == 0 || len > kMaxHexDigits) return 0;
    uint64_t value = 0;
    for (size_t i = 0; i < len; ++i) {
        const int digit = HexDigitValue(s[i]);
        if (digit < 0) return 0;
        value = (value << 4) | static_cast<uint64_t>(digit);
    }
    return value;
}

int32_t AtCountSeparator(const char *s, char sep) {
    if (s == nullptr) return 0;
    uint32_t count = 0;
    for (const char *p = FindUnquoted(s, sep); p != nullptr; p = FindUnquoted(p + 1, sep)) {
        if (count == INT32_MAX) break;
        ++count;
    }
    return static_cast<int32_t>(count);
}

const char *AtGetNextSeperator(const char *s, char sep) {
    if (s == nullptr || sep == '"') return nullptr;
    return FindUnquoted(s, sep);
}

int32_t AtTestStrNum(const char *s) {
    if (s == nullptr) return -1;
    for (; *s != '\0'; ++s) {
        if (!IsDecimalDigit(*s)) return -1;
    }
    return 0;
}

int32_t SafeStrCmp(const char *a, const char *b) {
    if (a == nullptr) return b == nullptr ? 0 : -1;
    if (b == nullptr) return 1;
    return std::strcmp(a, b);
}

int32_t SafeStrCaseCmp(const char *a, const char *b) {
    if (a == nullptr) return b == nullptr ? 0 : -1;
    if (b == nullptr) return 1;
    return strcasecmp(a, b);
}

int32_t SafeStrAtoi(const char *s) { return s == nullptr ? 0 : std::atoi(s); }

long SafeStrAtol(const char *s) { return s == nullptr ? 0 : std::atol(s); }

int32_t AtStrMultiCaseCmp(const char *a, const char *b, uint32_t n) {
    if (a == nullptr || b == nullptr || n == 0) return 0;
    // Two texts that both end before n characters never compare equal.
    if (strnlen(a, n) < n && strnlen(b, n) < n) return 1;
    for (uint32_t i = 0; i < n; ++i) {
        const int diff = LowerCase(a[i]) - LowerCase(b[i]);
        if (diff != 0) return diff;
        if (a[i] == '\0') break;
    }
    return 0;
}

int32_t AtCheckValidNum(const char *s, int64_t minVal, int64_t maxVal) {
    if (s == nullptr || maxVal < minVal) return 0;
    if (minVal == 0 && maxVal == 0) return 1;  // no range: any text is accepted
    // strtoll is atoll with a defined result on overflow (it saturates).
    const long long value = std::strtoll(s, nullptr, 10);
    return (value >= minVal && value <= maxVal) ? 1 : 0;
}

}  // extern "C"
