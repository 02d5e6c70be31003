#include "runtime_files.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>

#include "link/ats_paths.h"

namespace atserver {
namespace {

std::string ParentDir(const std::string &path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos || slash == 0 ? std::string() : path.substr(0, slash);
}

std::string ProcessName(pid_t pid) {
    std::ifstream comm("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    std::getline(comm, name);
    return name;
}

bool WriteWholeFile(const std::string &path, const std::string &text) {
    if (!MakeDirectories(ParentDir(path))) return false;
    const std::string temp = path + ".tmp";
    std::FILE *file = std::fopen(temp.c_str(), "we");
    if (file == nullptr) return false;
    const bool written = std::fputs(text.c_str(), file) >= 0;
    if (std::fclose(file) != 0 || !written) {
        std::remove(temp.c_str());
        return false;
    }
    // Renamed into place so that a reader never sees a half-written file.
    return std::rename(temp.c_str(), path.c_str()) == 0;
}

}  // namespace

bool MakeDirectories(const std::string &path) {
    if (path.empty()) return true;
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        if (mkdir(part.c_str(), 0755) != 0 && errno != EEXIST) return false;
        if (slash == std::string::npos) return true;
    }
}

std::string PidFilePath() {
    return std::string(atapi::PidFileDir()) + atapi::kServerTaskName + ".pid";
}

pid_t RunningServerPid() {
    std::ifstream in(PidFilePath());
    long pid = 0;
    if (!(in >> pid) || pid <= 0 || pid == getpid()) return 0;
    const auto candidate = static_cast<pid_t>(pid);
    if (kill(candidate, 0) != 0 && errno == ESRCH) return 0;
    return ProcessName(candidate) == atapi::kServerTaskName ? candidate : 0;
}

bool WritePidFile() {
    // The check above knows a running server by its process name; under an
    // emulator that name would be the emulator's, so the server names itself.
    prctl(PR_SET_NAME, atapi::kServerTaskName);
    return WriteWholeFile(PidFilePath(), std::to_string(getpid()) + "\n");
}

void RemovePidFile() { std::remove(PidFilePath().c_str()); }

bool CreateReadyFlag() { return WriteWholeFile(atapi::ReadyFlagPath(), ""); }

void RemoveReadyFlag() { std::remove(atapi::ReadyFlagPath()); }

}  // namespace atserver
