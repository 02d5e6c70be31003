// One thread, one poll: the port, a timer for delays and periodic lines, and
// the termination signals.
#pragma once

#include <functional>
#include <string>

#include "modem.h"
#include "pty_port.h"

namespace atsim {

// Blocks SIGTERM and SIGINT (they are read from a signalfd) and ignores SIGPIPE.
// Call before any other thread or child could take the signals.
bool BlockTerminationSignals(std::string *error);

// Serves until SIGTERM/SIGINT or a hang-up rule; returns the exit status.
int RunEventLoop(PtyPort &port, Modem &modem, const std::function<void(const std::string &)> &log);

// CLOCK_MONOTONIC in milliseconds.
Millis NowMillis();

}  // namespace atsim
