// atsim: a simulated modem on a pseudo-terminal, driven by a scenario file.
//   atsim [--no-urc] [--urc-interval-ms N] [--verbose] [--fail PATTERN=RESULT]... [SCENARIO]
// (kUsage below says more; usage errors exit 64, scenario errors 2).
// --fail answers the commands that match PATTERN with the final result RESULT
// ("ERROR", "NO CARRIER", "+CME ERROR: 10", "+CMS ERROR: 310", ...), or with
// nothing at all for "silent", ahead of every scenario rule, to try a
// client's error paths and timeouts.
// Prints the slave path as its first line of output, then serves until
// SIGTERM/SIGINT, a hang-up rule, or the death of its parent.
#include <limits.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "event_loop.h"
#include "modem.h"
#include "pty_port.h"
#include "scenario.h"

namespace {

constexpr int kScenarioError = 2;
constexpr int kUsageError = 64;  // EX_USAGE
constexpr char kUsage[] =
    "usage: atsim [--no-urc] [--urc-interval-ms N] [--verbose] [--fail PATTERN=RESULT]... "
    "[SCENARIO]\n"
    "       atsim --help | --version\n"
    "  SCENARIO               the scenario file (default: default.scn of the\n"
    "                         installed scenarios, share/atsim/scenarios)\n"
    "  --no-urc               no periodic unsolicited lines\n"
    "  --urc-interval-ms N    period of the unsolicited lines\n"
    "  --verbose              log every line to stderr\n"
    "  --fail PATTERN=RESULT  answer commands matching PATTERN with RESULT (repeatable)\n"
    "Prints the pseudo-terminal's path as its first line, then serves on it until\n"
    "SIGTERM or SIGINT, a hang-up rule, or the end of the process that started it.\n";

// The scenario used when none is named: the source tree's when atsim runs
// from the build tree, else the installed one, found relative to the program
// (<prefix>/share/atsim/scenarios/default.scn for <prefix>/bin/atsim).
std::string DefaultScenarioPath() {
    std::error_code error;
    const std::filesystem::path dir =
        std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    if (std::filesystem::equivalent(dir, ATSIM_BUILD_DIR, error)) return ATSIM_SOURCE_SCENARIO;
    return (dir / ATSIM_INSTALLED_SCENARIO).lexically_normal().string();
}

struct Arguments {
    std::string scenario = DefaultScenarioPath();
    std::vector<std::string> failRules;
    atsim::ModemOptions modem;
};

enum class Parsed { kRun, kHelp, kVersion, kUsageError };

bool ParseInterval(std::string_view value, atsim::Millis *out) {
    const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), *out);
    return ec == std::errc() && end == value.data() + value.size() && *out != 0;
}

Parsed ParseArguments(int argc, char **argv, Arguments *out, std::string *error) {
    bool haveScenario = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool takesValue = arg == "--fail" || arg == "--urc-interval-ms";
        if (takesValue && i + 1 == argc) {
            *error = "missing value for " + arg;
            return Parsed::kUsageError;
        }
        if (arg == "--help" || arg == "-h") {
            return Parsed::kHelp;
        } else if (arg == "--version") {
            return Parsed::kVersion;
        } else if (arg == "--no-urc") {
            out->modem.periodicUrcs = false;
        } else if (arg == "--verbose") {
            out->modem.verbose = true;
        } else if (arg == "--fail") {
            out->failRules.emplace_back(argv[++i]);
        } else if (arg == "--urc-interval-ms") {
            if (!ParseInterval(argv[++i], &out->modem.urcIntervalMs)) {
                *error = "bad value for --urc-interval-ms: " + std::string(argv[i]);
                return Parsed::kUsageError;
            }
        } else if (!arg.empty() && arg.front() != '-' && !haveScenario) {
            out->scenario = arg;
            haveScenario = true;
        } else {
            const bool positional = !arg.empty() && arg.front() != '-';
            *error = (positional ? "a second scenario: " : "unknown option: ") + arg;
            return Parsed::kUsageError;
        }
    }
    return Parsed::kRun;
}

// The path as atsim looks for it, for messages.
std::string AbsolutePath(const std::string &path) {
    if (path.empty() || path.front() == '/') return path;
    char cwd[PATH_MAX];
    return getcwd(cwd, sizeof cwd) != nullptr ? std::string(cwd) + "/" + path : path;
}

void LogToStderr(const std::string &message) { std::cerr << message << std::endl; }

}  // namespace

int main(int argc, char **argv) {
    Arguments arguments;
    std::string error;
    switch (ParseArguments(argc, argv, &arguments, &error)) {
        case Parsed::kHelp:
            std::cout << kUsage;
            return 0;
        case Parsed::kVersion:
            std::cout << "atsim " ATAPI_VERSION "\n";
            return 0;
        case Parsed::kUsageError:
            std::cerr << "atsim: " << error << " (atsim --help lists the options)" << std::endl;
            return kUsageError;
        case Parsed::kRun:
            break;
    }
    if (access(arguments.scenario.c_str(), R_OK) != 0) {
        std::cerr << "atsim: cannot read the scenario file " << AbsolutePath(arguments.scenario)
                  << ": " << std::strerror(errno) << std::endl;
        return kScenarioError;
    }
    atsim::Scenario scenario;
    if (!atsim::LoadScenario(arguments.scenario, atsim::ReadWholeFile, &scenario, &error)) {
        std::cerr << "atsim: " << error << std::endl;
        return kScenarioError;
    }
    // In reverse, so that the first --fail given is the first rule tried.
    for (auto rule = arguments.failRules.rbegin(); rule != arguments.failRules.rend(); ++rule) {
        if (!atsim::AddFailRule(*rule, &scenario, &error)) {
            std::cerr << "atsim: " << error << std::endl;
            return kScenarioError;
        }
    }
    if (!atsim::BlockTerminationSignals(&error)) {
        std::cerr << "atsim: " << error << std::endl;
        return 1;
    }
    // End with the process that started us (atserver --sim, a test).
    const pid_t parent = getppid();
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) return 0;

    atsim::PtyPort port;
    if (!port.Open(&error)) {
        std::cerr << "atsim: " << error << std::endl;
        return 1;
    }
    std::printf("%s\n", port.slavePath().c_str());
    std::fflush(stdout);

    arguments.modem.seed = std::random_device{}();
    arguments.modem.log = LogToStderr;
    atsim::Modem modem(scenario, arguments.modem, atsim::NowMillis());
    return atsim::RunEventLoop(port, modem, LogToStderr);
}
