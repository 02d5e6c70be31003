// The bounded command-line builder: one AT command line of at most 1539
// characters in a 1540-byte buffer. A line that does not fit is a failure,
// never a truncated command. A line built for a secret is wiped when it
// goes out of scope, on every path.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "api/command_description.h"
#include "atapi/at_types.h"

namespace atapi::api {

class CommandLine {
  public:
    static constexpr size_t kCapacity = AT_CMD_STR_LEN;

    explicit CommandLine(Secrecy secrecy = Secrecy::kPlain) : secret_(secrecy == Secrecy::kSecret) {
        text_[0] = '\0';
    }
    ~CommandLine();
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    // Replaces the line; false (and an empty line) when it does not fit.
    bool Format(const char *format, ...) __attribute__((format(printf, 2, 3)));
    bool FormatV(const char *format, va_list ap) __attribute__((format(printf, 2, 0)));
    const char *Text() const { return text_; }
    char *Buffer() { return text_; }

  private:
    char text_[kCapacity];
    bool secret_;
};

// Appends to a NUL-terminated text in a buffer of `capacity` bytes, bounded
// by the room left; false (the text unchanged) when the addition does not fit.
bool AppendFormat(char *text, size_t capacity, const char *format, ...)
    __attribute__((format(printf, 3, 4)));
bool AppendFormatV(char *text, size_t capacity, const char *format, va_list ap)
    __attribute__((format(printf, 3, 0)));

}  // namespace atapi::api
