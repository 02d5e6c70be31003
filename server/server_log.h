// atserver's own log: one timestamped line per event, to stderr or a file.
#pragma once

#include <string>

namespace atserver {

// Sends the log to path (appending); an empty path keeps stderr. False when
// the file cannot be opened (the log then stays on stderr).
bool LogOpen(const std::string &path);
void LogClose();
void Logf(const char *format, ...) __attribute__((format(printf, 1, 2)));

// Per-command lines are written only when verbose logging is on.
void LogSetVerbose(bool verbose);
bool LogVerbose();

// A command line as it may appear in the log: set commands can carry PINs
// and passwords, so only their part up to the '=' is kept; dial strings carry
// numbers and keep only "ATD".
std::string LoggableCommand(const std::string &cmd);

}  // namespace atserver
