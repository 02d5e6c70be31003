// What atcli's family sub-commands ("pin", "pdp", "dial", ...) share: a table
// of actions per sub-command with one dispatcher, the reading of a library
// call's outcome into an exit code, and the printing of results for people
// or, with --json, for scripts.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "atcli_common.h"

namespace atcli {

// The arguments behind an action's name.
struct Args {
    std::vector<const char *> positional;
    std::vector<std::pair<std::string_view, const char *>> options;  // "--apn" -> value
    std::vector<std::string_view> flags;                             // "--puk"
    bool json = false;

    // The value of a valued option, or null when it was not given.
    const char *Option(std::string_view name) const;
    bool Flag(std::string_view name) const;
};

// One action of a sub-command ("pin state", "pdp set", ...).
struct Action {
    std::string_view name;
    std::string_view synopsis;  // its arguments, for the usage text
    std::size_t minArgs;        // positional arguments
    std::size_t maxArgs;
    std::array<std::string_view, 3> options;  // options that take a value
    std::array<std::string_view, 1> flags;    // options without a value (besides --json)
    int (*run)(const Args &args);             // returns the exit code
};

// Runs the action named by argv[0] with the rest of argv: a usage error
// exits kExitUsage, a server that is not running kExitNoServer. "--help"
// prints the sub-command's usage.
int DispatchAction(std::string_view subCommand, std::span<const Action> actions, int argc,
                   char **argv);
// "atcli <sub> <action> [--json] <synopsis>" for each action.
void PrintActionUsage(std::FILE *out, std::string_view subCommand, std::span<const Action> actions);

// The error id a call leaves untouched: no reply ever stores it.
inline constexpr int32_t kNoErrorId = INT32_MIN;

// Turns the result of one library call into an exit code: made just before
// the call with the call's error id destination (which it presets to
// kNoErrorId) and how long the call waits for its reply. Failures are
// reported on stderr under the action's name.
class CallCheck {
  public:
    CallCheck(const char *what, uint32_t timeoutSec, int32_t *errorId);
    // For a call that stores no error id: 0 is success.
    CallCheck(const char *what, uint32_t timeoutSec);
    CallCheck(const CallCheck &) = delete;
    CallCheck &operator=(const CallCheck &) = delete;

    // 0 when the call returned 0 with okId stored; 1 for an error reply (its
    // error id printed; a bare ERROR, which stores no id, counts as
    // AT_ERRID_UNMAPPED); 2 when no reply came or atserver went away.
    int Exit(int32_t ret, int32_t okId = -2) const;

  private:
    const char *what_;
    int32_t noErrorId_ = kNoErrorId;
    const int32_t *errorId_;
    std::chrono::steady_clock::duration timeout_;
    std::chrono::steady_clock::time_point start_;
};

// Runs a call that takes nothing and stores nothing; on success prints
// "result: <done>".
int RunBareCall(const Args &args, const char *what, int32_t (*call)(), const char *done);

// A decimal number in [0, INT32_MAX] for a record's signed field; false
// for anything else.
bool ParseValue(const char *text, int32_t *out);

// Named values of one result, printed as "name: value" lines or as one JSON
// object on one line.
class Fields {
  public:
    Fields &Text(std::string name, std::string value);
    Fields &Number(std::string name, int64_t value);
    // A list of texts: a JSON array, or the texts joined by ", " for people.
    Fields &List(std::string name, const std::vector<std::string> &values);
    std::string Json() const;
    void Print(bool json) const;

  private:
    struct Field {
        std::string name;
        std::string value;  // as JSON: a string literal or a number
        std::string plain;  // for people
    };
    std::vector<Field> fields_;
};

// Reads values into fields; an exit code.
using FieldsReader = int (*)(Fields *);

// Runs the readers in turn into one result, stopping at the first that
// fails, and prints the result when all succeeded; an exit code.
int PrintReads(std::span<const FieldsReader> readers, const Args &args);

// An action that prints what one reader reads.
template <FieldsReader Read>
int PrintRead(const Args &args) {
    constexpr FieldsReader kReaders[] = {Read};
    return PrintReads(kReaders, args);
}

// A fixed-size text field of a record as a string (up to its first NUL).
template <std::size_t N>
std::string FieldText(const char (&field)[N]) {
    std::size_t length = 0;
    while (length < N && field[length] != '\0') ++length;
    return std::string(field, length);
}

// Copies text into a record's field; false (with the field emptied) when it
// does not fit.
bool CopyField(char *field, std::size_t size, std::string_view text);
template <std::size_t N>
bool CopyField(char (&field)[N], std::string_view text) {
    return CopyField(field, N, text);
}

// Text that can stand inside a quoted parameter of a command line:
// printable characters without '"'.
bool IsQuotable(std::string_view text);

// A decimal number in [0, max]; false for anything else.
bool ParseNumber(const char *text, uint32_t max, uint32_t *out);

// Prints "atcli: <what>" to stderr and returns false, for the checks that
// refuse a command line.
bool Refuse(const std::string &what);

}  // namespace atcli
