// Secrets on atcli's way to the library: PINs, PUKs and passwords are read
// from standard input, never from the command line (where any user sees
// them in the process list and they stay in the shell's history), and every
// buffer that held one is wiped before it goes.
#pragma once

#include <cstddef>
#include <cstring>

#include "platform/bounded.h"

namespace atcli {

// A text of at most Capacity characters, wiped when it goes.
template <std::size_t Capacity>
class Secret {
  public:
    Secret() = default;
    Secret(const Secret &) = delete;
    Secret &operator=(const Secret &) = delete;
    ~Secret() { memset_s(text_, sizeof text_, 0, sizeof text_); }

    const char *Get() const { return text_; }
    std::size_t Length() const { return std::strlen(text_); }
    char *Buffer() { return text_; }
    static constexpr std::size_t Size() { return Capacity + 1; }

  private:
    char text_[Capacity + 1] = {};
};

// A record that may hold a secret (a dial-up profile), wiped when it goes.
template <typename Record>
class WipedRecord {
  public:
    WipedRecord() = default;
    WipedRecord(const WipedRecord &) = delete;
    WipedRecord &operator=(const WipedRecord &) = delete;
    ~WipedRecord() { memset_s(&record_, sizeof record_, 0, sizeof record_); }

    Record &Get() { return record_; }

  private:
    Record record_{};
};

// Reads one line from standard input into buffer (size bytes, terminator
// included), byte by byte so that no stdio buffer keeps a copy. On a
// terminal, prompt goes to stderr and echo is off while the line is typed.
// False (buffer emptied) at the end of input or for a line that does not fit.
bool ReadSecretLine(const char *prompt, char *buffer, std::size_t size);

template <std::size_t Capacity>
bool ReadSecretLine(const char *prompt, Secret<Capacity> *secret) {
    return ReadSecretLine(prompt, secret->Buffer(), secret->Size());
}

// A PIN or PUK as the SIM takes it: 4 to 8 digits.
bool IsPinText(const char *text);

}  // namespace atcli
