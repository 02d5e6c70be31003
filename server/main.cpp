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

namespace {

using namespace atserver;

// Blocked before anything else, so that a wake-up sent early stays pending
// for the signalfd instead of killing the process.
void BlockServerSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (int sig : {SIGUSR1, SIGTERM, SIGINT}) sigaddset(&set, sig);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    signal(SIGPIPE, SIG_IGN);  // a modem socket closed under a write
}

int Serve(const ServerOptions &options) {
    if (const pid_t other = RunningServerPid(); other != 0) {
        Logf("atserver is already running (pid %d, %s)", static_cast<int>(other),
             PidFilePath().c_str());
        return 1;
    }
    ReportSink reports;
    if (!reports.Open(options.reportPath)) {
        Logf("cannot open the report file %s: %s", options.reportPath.c_str(),
             std::strerror(errno));
        return 1;
    }
    std::unique_ptr<ModemBackend> backend = MakeBackend(options);
    RemoveReadyFlag();  // left by a crashed run: clients must wait for the modem
    RequestQueues queues;
    if (!queues.Create()) return 1;
    if (!WritePidFile()) {
        Logf("cannot write the pid file %s: %s", PidFilePath().c_str(), std::strerror(errno));
        return 1;
    }
    int status = 0;
    {
        EventLoop loop(*backend, queues, reports, options.readyTimeoutSec);
        status = loop.Run();
    }
    RemoveReadyFlag();
    RemovePidFile();
    queues.Destroy();
    Logf("stopped");
    return status;
}

}  // namespace

int main(int argc, char **argv) {
    BlockServerSignals();
    ServerOptions options;
    std::string error;
    if (!ParseOptions(argc, argv, &options, &error)) {
        if (!error.empty()) std::fprintf(stderr, "atserver: %s\n", error.c_str());
        std::fputs(UsageText(), error.empty() ? stdout : stderr);
        return error.empty() ? 0 : 2;
    }
    if (!LogOpen(options.logPath)) {
        std::fprintf(stderr, "atserver: cannot open the log %s: %s\n", options.logPath.c_str(),
                     std::strerror(errno));
        return 2;
    }
    LogSetVerbose(options.verbose);
    const int status = Serve(options);
    LogClose();
    return status;
}
