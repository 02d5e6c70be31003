// atserver's own log: one line per event, to stderr, a file or syslog, with a
// level threshold.
#pragma once

#include <string>

namespace atserver {

enum class LogLevel { kError, kWarn, kInfo, kDebug };

enum class LogTarget { kStderr, kFile, kSyslog };

// Parses "error", "warn", "info" or "debug"; false for anything else.
bool ParseLogLevel(const std::string &name, LogLevel *out);

// Sends the log to target (a file is appended to at path). False when the
// file cannot be opened (the log then stays on stderr).
bool LogOpen(LogTarget target, const std::string &path);
// Opens the file again under its name (after a log rotation); the other
// targets need nothing. False (errno set) when it cannot be opened: the log
// then stays on the file it had.
bool LogReopen();
void LogClose();
void LogSetLevel(LogLevel level);

void LogError(const char *format, ...) __attribute__((format(printf, 1, 2)));
void LogWarn(const char *format, ...) __attribute__((format(printf, 1, 2)));
void Logf(const char *format, ...) __attribute__((format(printf, 1, 2)));  // info
// Per-command lines: written only at level debug.
void LogDebug(const char *format, ...) __attribute__((format(printf, 1, 2)));

// A command line as it may appear in the log: set commands can carry PINs
// and passwords, so only their part up to the '=' is kept; dial strings carry
// numbers and keep only "ATD".
std::string LoggableCommand(const std::string &cmd);

}  // namespace atserver
