#include "atcli_secret.h"

#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace atcli {
namespace {

// Turns the terminal's echo off for its lifetime; nothing when stdin is no
// terminal.
class EchoOff {
  public:
    EchoOff() {
        if (tcgetattr(STDIN_FILENO, &saved_) != 0) return;
        termios quiet = saved_;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        active_ = tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet) == 0;
    }
    ~EchoOff() {
        if (!active_) return;
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &saved_);
        std::fputc('\n', stderr);
    }
    EchoOff(const EchoOff &) = delete;
    EchoOff &operator=(const EchoOff &) = delete;

  private:
    termios saved_{};
    bool active_ = false;
};

bool ReadByte(char *byte) {
    for (;;) {
        const ssize_t got = read(STDIN_FILENO, byte, 1);
        if (got == 1) return true;
        if (got == 0 || errno != EINTR) return false;
    }
}

}  // namespace

bool ReadSecretLine(const char *prompt, char *buffer, std::size_t size) {
    memset_s(buffer, size, 0, size);
    if (isatty(STDIN_FILENO)) std::fprintf(stderr, "%s: ", prompt);
    const EchoOff echoOff;
    std::size_t length = 0;
    bool fits = true;
    char byte = '\0';
    bool any = false;
    while (ReadByte(&byte)) {
        any = true;
        if (byte == '\n') break;
        if (byte == '\r') continue;
        if (length + 1 < size) {
            buffer[length++] = byte;
        } else {
            fits = false;  // read on to the line's end, keep nothing of it
        }
    }
    byte = '\0';
    if (!any || !fits) {
        memset_s(buffer, size, 0, size);
        return false;
    }
    return true;
}

bool IsPinText(const char *text) {
    std::size_t length = 0;
    for (; text[length] != '\0'; ++length) {
        if (text[length] < '0' || text[length] > '9') return false;
    }
    return length >= 4 && length <= 8;
}

}  // namespace atcli
