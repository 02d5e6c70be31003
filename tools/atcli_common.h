// Pieces shared by atcli's sub-commands.
#pragma once

#include <cstdint>
#include <string>

namespace atcli {

// Exit codes.
inline constexpr int kExitOk = 0;
inline constexpr int kExitErrorReply = 1;
inline constexpr int kExitNoServer = 2;
inline constexpr int kExitUsage = 64;  // EX_USAGE

// Prints "atcli: <what>" and a pointer to --help to stderr; returns kExitUsage.
int UsageError(const std::string &what);

// "OK", "CME ERROR", ... for a reply's result class.
const char *ResultClassName(int32_t retVal);

// Text as a JSON string literal (quotes included).
std::string JsonString(const std::string &text);

// True when atserver is up; otherwise prints why to stderr.
bool ServerIsRunning();

}  // namespace atcli
