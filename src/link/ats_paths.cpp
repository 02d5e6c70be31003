#include "link/ats_paths.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

namespace atapi {
namespace {

struct Paths {
    std::string root;
    std::string queueKeyDir{kQueueKeyDir};
    std::string pidFileDir{kPidFileDir};
    std::string readyFlag{kReadyFlagPath};

    void Rebase(const std::string &newRoot) {
        root = newRoot;
        queueKeyDir = root + kQueueKeyDir;
        pidFileDir = root + kPidFileDir;
        readyFlag = root + kReadyFlagPath;
    }
};

#ifdef ATAPI_ISOLATED_PATHS
std::string DefaultRoot() {
    if (const char *env = std::getenv("ATAPI_ROOT"); env != nullptr && *env != '\0') return env;
    return "/tmp/atapi-" + std::to_string(getuid());
}
#endif

Paths &Current() {
    static Paths paths = [] {
        Paths p;
#ifdef ATAPI_ISOLATED_PATHS
        p.Rebase(DefaultRoot());
#endif
        return p;
    }();
    return paths;
}

}  // namespace

const char *QueueKeyDir() { return Current().queueKeyDir.c_str(); }
const char *PidFileDir() { return Current().pidFileDir.c_str(); }
const char *ReadyFlagPath() { return Current().readyFlag.c_str(); }
const char *RuntimeRoot() { return Current().root.c_str(); }

bool PathsAreIsolated() {
#ifdef ATAPI_ISOLATED_PATHS
    return true;
#else
    return false;
#endif
}

void SetRuntimeRoot(const char *root) {
#ifdef ATAPI_ISOLATED_PATHS
    if (root != nullptr) Current().Rebase(root);
#else
    (void)root;
#endif
}

}  // namespace atapi
