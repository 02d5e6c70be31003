// Runtime paths and queue keys shared by the library and atserver.
//
// Production builds use the fixed system paths. Builds made with
// ATAPI_ISOLATED_PATHS (tests, the demo) put every path under a private root:
// SetRuntimeRoot(), else $ATAPI_ROOT, else /tmp/atapi-<uid>.
#pragma once

namespace atapi {

inline constexpr char kQueueKeyDir[] = "/var/run";
inline constexpr char kPidFileDir[] = "/var/run/pidfile/";
inline constexpr char kReadyFlagPath[] = "/var/ats_ready.flg";
inline constexpr char kServerTaskName[] = "atserver";
inline constexpr int kServerRecvProjId = 2;  // requests: library -> atserver
inline constexpr int kServerSendProjId = 1;  // replies: atserver -> library

const char *QueueKeyDir();
const char *PidFileDir();
const char *ReadyFlagPath();

// True when this build takes its paths under a private root.
bool PathsAreIsolated();
// Selects the private root (isolated builds only; ignored otherwise).
// Call before any exchange; not meant to race with running exchanges.
void SetRuntimeRoot(const char *root);
// The private root in use (empty in production builds).
const char *RuntimeRoot();

}  // namespace atapi
