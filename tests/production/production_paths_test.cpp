// The production build carries exactly the system paths and keys: this
// program compiles the path module without the test-build switch.

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "link/ats_paths.h"

namespace {

int Check(const char *what, const char *got, const char *want) {
    if (std::strcmp(got, want) == 0) return 0;
    std::fprintf(stderr, "%s: got \"%s\", want \"%s\"\n", what, got, want);
    return 1;
}

}  // namespace

int main() {
    setenv("ATAPI_ROOT", "/tmp/ignored-by-production", 1);
    atapi::SetRuntimeRoot("/tmp/also-ignored");
    int failures = 0;
    failures += Check("queue key directory", atapi::QueueKeyDir(), "/var/run");
    failures += Check("pid file directory", atapi::PidFileDir(), "/var/run/pidfile/");
    failures += Check("ready flag", atapi::ReadyFlagPath(), "/var/ats_ready.flg");
    failures += Check("server name", atapi::kServerTaskName, "atserver");
    failures += atapi::PathsAreIsolated() ? 1 : 0;
    failures += (atapi::kServerRecvProjId == 2 && atapi::kServerSendProjId == 1) ? 0 : 1;
    return failures == 0 ? 0 : 1;
}
