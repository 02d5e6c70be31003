// atserver: owns the modem port and serves the library's request queue.
#include <signal.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "event_loop.h"
#include "link/ats_paths.h"
#include "modem_backend.h"
#include "options.h"
#include "report_sink.h"
#include "request_queues.h"
#include "runtime_files.h"
#include "server_log.h"
#include "service_notify.h"

namespace {

using namespace atserver;

constexpr int kExitUsage = 64;

// Blocked before anything else, so that a wake-up sent early stays pending
// for the signalfd instead of killing the process.
void BlockServerSignals() {
    const sigset_t set = ServerSignals();
    sigprocmask(SIG_BLOCK, &set, nullptr);
    signal(SIGPIPE, SIG_IGN);  // a modem socket closed under a write
}

int Serve(const ServerOptions &options) {
    if (const pid_t other = RunningServerPid(); other != 0) {
        LogError("atserver is already running (pid %d, %s)", static_cast<int>(other),
                 PidFilePath().c_str());
        return 1;
    }
    ReportSink reports;
    if (!reports.Open(options.reportPath)) {
        LogError("cannot open the report file %s: %s", options.reportPath.c_str(),
                 std::strerror(errno));
        return 1;
    }
    // Declared before the queues and the loop: an atsim still stopping is
    // waited for after the files are gone.
    std::unique_ptr<ModemBackend> backend = MakeBackend(options);
    RemoveReadyFlag();  // left by a crashed run: clients must wait for the modem
    RequestQueues queues;
    if (!queues.Create()) return 1;
    if (!WritePidFile()) {
        LogError("cannot write the pid file %s: %s", PidFilePath().c_str(), std::strerror(errno));
        return 1;
    }
    int status = 0;
    std::string reason;
    {
        EventLoop loop(*backend, queues, reports, options.readyTimeoutSec,
                       options.emergencyNumbers);
        status = loop.Run();
        reason = loop.StopReason();
    }
    ServiceNotify("STOPPING=1");
    RemoveReadyFlag();
    RemovePidFile();
    queues.Destroy();
    Logf("stopped (%s): pid file, ready flag and queues removed", reason.c_str());
    return status;
}

}  // namespace

int main(int argc, char **argv) {
    BlockServerSignals();
    ServerOptions options;
    std::string error;
    switch (ParseOptions(argc, argv, &options, &error)) {
        case ParseResult::kHelp:
            std::fputs(UsageText(), stdout);
            return 0;
        case ParseResult::kVersion:
            std::printf("atserver %s\n", ATAPI_VERSION);
            return 0;
        case ParseResult::kUsageError:
            std::fprintf(stderr, "atserver: %s (atserver --help lists the options)\n",
                         error.c_str());
            return kExitUsage;
        case ParseResult::kServe:
            break;
    }
    if (!LogOpen(options.logTarget, options.logPath)) {
        std::fprintf(stderr, "atserver: cannot open the log %s: %s\n", options.logPath.c_str(),
                     std::strerror(errno));
        return 1;
    }
    LogSetLevel(options.logLevel);
    ServiceNotifyInit();
    const int status = Serve(options);
    LogClose();
    return status;
}
