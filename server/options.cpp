#include "options.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace atserver {
namespace {

bool ParseUnsigned(const char *text, unsigned max, unsigned *out) {
    if (text == nullptr || *text == '\0') return false;
    char *end = nullptr;
    const unsigned long value = std::strtoul(text, &end, 10);
    if (*end != '\0' || value > max || text[0] == '-') return false;
    *out = static_cast<unsigned>(value);
    return true;
}

bool SplitHostPort(const std::string &text, std::string *host, std::string *port) {
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == text.size()) return false;
    *host = text.substr(0, colon);
    *port = text.substr(colon + 1);
    if (host->size() > 2 && host->front() == '[' && host->back() == ']') {
        *host = host->substr(1, host->size() - 2);
    }
    return true;
}

class ArgReader {
  public:
    ArgReader(int argc, char **argv) : argc_(argc), argv_(argv) {}
    bool Done() const { return next_ >= argc_; }
    const char *Take() { return argv_[next_++]; }
    // The value of the option just taken, or null when it is missing.
    const char *Value() { return Done() ? nullptr : Take(); }
    // An optional positional value: taken only when it is not an option.
    const char *OptionalValue() {
        if (Done() || argv_[next_][0] == '-') return nullptr;
        return Take();
    }

  private:
    int argc_;
    char **argv_;
    int next_ = 1;
};

// Options that take a value; apply is false when the value is bad.
struct Option {
    const char *name;
    bool backend;  // selects the modem
    bool (*apply)(const char *value, ServerOptions *out);
};

constexpr Option kOptions[] = {
    {"--tty", true,
     [](const char *value, ServerOptions *out) {
         out->backend = BackendKind::kTty;
         out->ttyPath = value;
         return *value != '\0';
     }},
    {"--baud", false,
     [](const char *value, ServerOptions *out) {
         return ParseUnsigned(value, 4000000, &out->baud);
     }},
    {"--tcp", true,
     [](const char *value, ServerOptions *out) {
         out->backend = BackendKind::kTcp;
         return SplitHostPort(value, &out->tcpHost, &out->tcpPort);
     }},
    {"--atsim", false,
     [](const char *value, ServerOptions *out) {
         out->atsimPath = value;
         return true;
     }},
    {"--atsim-launcher", false,
     [](const char *value, ServerOptions *out) {
         out->atsimLauncher = value;
         return true;
     }},
    {"--sim-arg", false,
     [](const char *value, ServerOptions *out) {
         out->simArgs.emplace_back(value);
         return true;
     }},
    {"--report", false,
     [](const char *value, ServerOptions *out) {
         out->reportPath = value;
         return *value != '\0';
     }},
    {"--log", false,
     [](const char *value, ServerOptions *out) {
         out->logTarget = LogTarget::kFile;
         out->logPath = value;
         return *value != '\0';
     }},
    {"--log-level", false,
     [](const char *value, ServerOptions *out) { return ParseLogLevel(value, &out->logLevel); }},
    {"--ready-timeout", false,
     [](const char *value, ServerOptions *out) {
         return ParseUnsigned(value, 3600, &out->readyTimeoutSec) && out->readyTimeoutSec != 0;
     }},
    {"--emergency-numbers", false,
     [](const char *value, ServerOptions *out) {
         return ParseEmergencyNumbers(value, &out->emergencyNumbers);
     }},
};

const Option *FindOption(std::string_view name) {
    for (const Option &option : kOptions) {
        if (name == option.name) return &option;
    }
    return nullptr;
}

}  // namespace

const char *UsageText() {
    return "usage: atserver (--tty PATH [--baud N] | --tcp HOST:PORT | --sim [SCENARIO])\n"
           "                [--atsim PATH] [--atsim-launcher PROGRAM] [--sim-arg ARG]...\n"
           "                [--report FILE|-] [--log FILE | --syslog]\n"
           "                [--log-level error|warn|info|debug] [-v]\n"
           "                [--ready-timeout SECONDS] [--emergency-numbers LIST]\n"
           "       atserver --help | --version\n"
           "  --tty PATH         serial port of the modem (raw mode, --baud default 115200)\n"
           "  --tcp HOST:PORT    modem reached over TCP\n"
           "  --sim [SCENARIO]   start atsim with SCENARIO and use its pseudo-terminal\n"
           "  --atsim PATH       the atsim program (default: next to atserver)\n"
           "  --atsim-launcher PROGRAM\n"
           "                     run atsim as PROGRAM's argument (e.g. qemu-arm for an atsim\n"
           "                     built for another processor)\n"
           "  --sim-arg ARG      pass ARG to atsim (repeatable, e.g. --sim-arg --no-urc)\n"
           "  --report FILE|-    also write unsolicited lines to FILE or stdout\n"
           "  --log FILE         log to FILE (appended) instead of stderr\n"
           "  --syslog           log to syslog (facility daemon) instead of stderr\n"
           "  --log-level LEVEL  log events of LEVEL and above (default info); debug adds a\n"
           "                     line per command served\n"
           "  -v, --verbose      same as --log-level debug\n"
           "  --ready-timeout S  give up when the modem does not answer AT within S seconds\n"
           "                     of the start (default 15)\n"
           "  --emergency-numbers LIST\n"
           "                     the numbers whose dialling goes first, comma-separated\n"
           "                     digits, *, # and + (default 112,911)\n"
           "order of service:\n"
           "  One command at a time, in arrival order, except that emergency requests wait\n"
           "  ahead of all others (in arrival order among themselves); the command in\n"
           "  progress is never interrupted. Emergency requests are the eCall steps\n"
           "  AT^ECLSTART, AT^ECLMSD, AT^ECLPUSH, AT^ECLSTOP and AT^ECLABORT in any form,\n"
           "  and ATD of a listed number: spaces, case and the modifiers T, P, I and G\n"
           "  aside, the dial string up to ';' must equal the number (ATD 112; and\n"
           "  atdt112; dial 112; ATD01121234; and ATD+112; do not, unless listed as\n"
           "  dialled). Aborts and clears take waiting emergency requests like any other.\n"
           "signals:\n"
           "  SIGUSR1            a request is waiting in the queue\n"
           "  SIGTERM, SIGINT    stop: answer nothing more, remove the pid file, the ready\n"
           "                     flag and both queues, exit 0\n"
           "  SIGHUP             reopen the --log file (after a log rotation) and go on\n"
           "                     serving\n"
           "  SIGPIPE            ignored: a write to a closed modem socket is an error of\n"
           "                     that write\n"
           "modem port:\n"
           "  When the port closes (end of stream, a failed write, no answer to AT) the\n"
           "  server logs why, answers ERROR to the requests it holds, keeps serving and\n"
           "  opens the port again: at once after a port that served, then after 1, 2, 4\n"
           "  ... up to 30 seconds while it keeps failing. Requests meanwhile get ERROR.\n"
           "  The ready flag stays. --sim restarts atsim the same way.\n"
           "systemd:\n"
           "  With NOTIFY_SOCKET set (Type=notify) the server reports READY=1 once the\n"
           "  modem answers and STOPPING=1 when it stops.\n"
           "exit status: 0 stopped by a signal or --help/--version, 1 cannot start or the\n"
           "  modem did not answer within --ready-timeout (files removed), 64 usage error\n";
}

ParseResult ParseOptions(int argc, char **argv, ServerOptions *out, std::string *error) {
    ArgReader args(argc, argv);
    int backends = 0;
    bool syslog = false;
    while (!args.Done()) {
        const std::string opt = args.Take();
        if (opt == "-h" || opt == "--help") return ParseResult::kHelp;
        if (opt == "--version") return ParseResult::kVersion;
        if (opt == "-v" || opt == "--verbose") {
            out->logLevel = LogLevel::kDebug;
        } else if (opt == "--syslog") {
            syslog = true;
        } else if (opt == "--sim") {
            out->backend = BackendKind::kSim;
            if (const char *value = args.OptionalValue()) out->simScenario = value;
            ++backends;
        } else if (const Option *option = FindOption(opt)) {
            const char *value = args.Value();
            if (value == nullptr) {
                *error = "missing value for " + opt;
                return ParseResult::kUsageError;
            }
            if (!option->apply(value, out)) {
                *error = "bad value for " + opt + ": " + value;
                return ParseResult::kUsageError;
            }
            backends += option->backend ? 1 : 0;
        } else {
            *error = "unknown option: " + opt;
            return ParseResult::kUsageError;
        }
    }
    if (backends != 1) {
        *error = "exactly one of --tty, --tcp and --sim is needed";
        return ParseResult::kUsageError;
    }
    if (syslog && !out->logPath.empty()) {
        *error = "--log and --syslog exclude each other";
        return ParseResult::kUsageError;
    }
    if (syslog) out->logTarget = LogTarget::kSyslog;
    return ParseResult::kServe;
}

}  // namespace atserver
