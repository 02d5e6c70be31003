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

}  // namespace

const char *UsageText() {
    return "usage: atserver (--tty PATH [--baud N] | --tcp HOST:PORT | --sim [SCENARIO])\n"
           "                [--atsim PATH] [--atsim-launcher PROGRAM] [--sim-arg ARG]...\n"
           "                [--report FILE|-] [--log FILE]\n"
           "                [--ready-timeout SECONDS] [-v]\n"
           "  --tty PATH         serial port of the modem (raw mode, --baud default 115200)\n"
           "  --tcp HOST:PORT    modem reached over TCP\n"
           "  --sim [SCENARIO]   start atsim with SCENARIO and use its pseudo-terminal\n"
           "  --atsim PATH       the atsim program (default: next to atserver)\n"
           "  --atsim-launcher PROGRAM\n"
           "                     run atsim as PROGRAM's argument (e.g. qemu-arm for an atsim\n"
           "                     built for another processor)\n"
           "  --sim-arg ARG      pass ARG to atsim (repeatable, e.g. --sim-arg --no-urc)\n"
           "  --report FILE|-    also write unsolicited lines to FILE or stdout\n"
           "  --log FILE         log to FILE instead of stderr\n"
           "  --ready-timeout S  give up when the modem does not answer AT within S seconds\n"
           "  -v                 log every command served\n";
}

bool ParseOptions(int argc, char **argv, ServerOptions *out, std::string *error) {
    ArgReader args(argc, argv);
    int backends = 0;
    while (!args.Done()) {
        const std::string_view opt = args.Take();
        const char *value = nullptr;
        if (opt == "-h" || opt == "--help") {
            error->clear();
            return false;
        } else if (opt == "--tty" && (value = args.Value()) != nullptr) {
            out->backend = BackendKind::kTty;
            out->ttyPath = value;
            ++backends;
        } else if (opt == "--baud" && (value = args.Value()) != nullptr) {
            if (!ParseUnsigned(value, 4000000, &out->baud)) {
                *error = std::string("bad baud rate: ") + value;
                return false;
            }
        } else if (opt == "--tcp" && (value = args.Value()) != nullptr) {
            out->backend = BackendKind::kTcp;
            if (!SplitHostPort(value, &out->tcpHost, &out->tcpPort)) {
                *error = std::string("bad HOST:PORT: ") + value;
                return false;
            }
            ++backends;
        } else if (opt == "--sim") {
            out->backend = BackendKind::kSim;
            if ((value = args.OptionalValue()) != nullptr) out->simScenario = value;
            ++backends;
        } else if (opt == "--atsim" && (value = args.Value()) != nullptr) {
            out->atsimPath = value;
        } else if (opt == "--atsim-launcher" && (value = args.Value()) != nullptr) {
            out->atsimLauncher = value;
        } else if (opt == "--sim-arg" && (value = args.Value()) != nullptr) {
            out->simArgs.emplace_back(value);
        } else if (opt == "--report" && (value = args.Value()) != nullptr) {
            out->reportPath = value;
        } else if (opt == "--log" && (value = args.Value()) != nullptr) {
            out->logPath = value;
        } else if (opt == "--ready-timeout" && (value = args.Value()) != nullptr) {
            if (!ParseUnsigned(value, 3600, &out->readyTimeoutSec) || out->readyTimeoutSec == 0) {
                *error = std::string("bad ready timeout: ") + value;
                return false;
            }
        } else if (opt == "-v" || opt == "--verbose") {
            out->verbose = true;
        } else {
            *error = "unknown option or missing value: " + std::string(opt);
            return false;
        }
    }
    if (backends != 1) {
        *error = "exactly one of --tty, --tcp and --sim is needed";
        return false;
    }
    return true;
}

}  // namespace atserver
