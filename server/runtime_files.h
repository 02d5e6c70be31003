// The files through which clients find atserver: the pid file (written at
// start) and the ready flag (created once the modem answers).
#pragma once

#include <sys/types.h>

#include <string>

namespace atserver {

std::string PidFilePath();

// The pid of a live atserver named by the pid file, or 0.
pid_t RunningServerPid();

bool WritePidFile();
void RemovePidFile();
bool CreateReadyFlag();
void RemoveReadyFlag();

// mkdir -p; false (errno set) when a component cannot be created.
bool MakeDirectories(const std::string &path);

}  // namespace atserver
