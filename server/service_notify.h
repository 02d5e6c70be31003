// Reports to a service manager that started atserver with NOTIFY_SOCKET set
// (a Type=notify unit): a datagram such as "READY=1" to that socket. Without
// the variable every report is a no-op.
#pragma once

namespace atserver {

// Takes NOTIFY_SOCKET out of the environment, so that atsim and other
// children do not report in our name. Call once at start.
void ServiceNotifyInit();

// Sends state ("READY=1", "STOPPING=1", "STATUS=..."); false when there is a
// socket and the datagram could not be sent.
bool ServiceNotify(const char *state);

}  // namespace atserver
