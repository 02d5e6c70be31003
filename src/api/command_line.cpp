#include "api/command_line.h"

#include <cstring>

#include "platform/bounded.h"

namespace atapi::api {

CommandLine::~CommandLine() {
    if (secret_) memset_s(text_, sizeof text_, 0, sizeof text_);
}

bool CommandLine::FormatV(const char *format, va_list ap) {
    if (vsnprintf_s(text_, kCapacity, kCapacity - 1, format, ap) >= 0) return true;
    memset_s(text_, sizeof text_, 0, sizeof text_);  // a cut line may hold part of a secret
    return false;
}

bool CommandLine::Format(const char *format, ...) {
    va_list ap;
    va_start(ap, format);
    const bool ok = FormatV(format, ap);
    va_end(ap);
    return ok;
}

bool AppendFormatV(char *text, size_t capacity, const char *format, va_list ap) {
    if (text == nullptr || capacity == 0) return false;
    const size_t used = strnlen(text, capacity);
    const size_t room = capacity - used;
    if (room <= 1) return false;
    if (vsnprintf_s(text + used, room, room - 1, format, ap) >= 0) return true;
    memset_s(text + used, room, 0, room);
    return false;
}

bool AppendFormat(char *text, size_t capacity, const char *format, ...) {
    va_list ap;
    va_start(ap, format);
    const bool ok = AppendFormatV(text, capacity, format, ap);
    va_end(ap);
    return ok;
}

}  // namespace atapi::api
