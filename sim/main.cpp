// atsim: a simulated modem on a pseudo-terminal, driven by a scenario file.
//   atsim [--no-urc] [--urc-interval-ms N] [--verbose] [--fail PATTERN=RESULT]... [SCENARIO]
// --fail answers the commands that match PATTERN with the final result RESULT
// ("ERROR", "NO CARRIER", "+CME ERROR: 10", "+CMS ERROR: 310", ...) ahead of
// every scenario rule, to try a client's error paths.
// Prints the slave path as its first line of output, then serves until
// SIGTERM/SIGINT, a hang-up rule, or the death of its parent.
#include <sys/prctl.h>
#include <unistd.h>

#include <charconv>
#include <csignal>
#include <cstdio>
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

constexpr int kUsageOrScenarioError = 2;
constexpr char kUsage[] =
    "usage: atsim [--no-urc] [--urc-interval-ms N] [--verbose] [--fail PATTERN=RESULT]... "
    "[SCENARIO]";

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

bool ParseArguments(int argc, char **argv, Arguments *out) {
    bool haveScenario = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--no-urc") {
            out->modem.periodicUrcs = false;
        } else if (arg == "--verbose") {
            out->modem.verbose = true;
        } else if (arg == "--fail" && i + 1 < argc) {
            out->failRules.emplace_back(argv[++i]);
        } else if (arg == "--urc-interval-ms" && i + 1 < argc) {
            const std::string_view value = argv[++i];
            const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(),
                                                   out->modem.urcIntervalMs);
            if (ec != std::errc() || end != value.data() + value.size() ||
                out->modem.urcIntervalMs == 0) {
                return false;
            }
        } else if (!arg.empty() && arg.front() != '-' && !haveScenario) {
            out->scenario = std::string(arg);
            haveScenario = true;
        } else {
            return false;
        }
    }
    return true;
}

void LogToStderr(const std::string &message) { std::cerr << message << std::endl; }

}  // namespace

int main(int argc, char **argv) {
    Arguments arguments;
    if (!ParseArguments(argc, argv, &arguments)) {
        std::cerr << kUsage << std::endl;
        return kUsageOrScenarioError;
    }
    atsim::Scenario scenario;
    std::string error;
    if (!atsim::LoadScenario(arguments.scenario, atsim::ReadWholeFile, &scenario, &error)) {
        std::cerr << "atsim: " << error << std::endl;
        return kUsageOrScenarioError;
    }
    // In reverse, so that the first --fail given is the first rule tried.
    for (auto rule = arguments.failRules.rbegin(); rule != arguments.failRules.rend(); ++rule) {
        if (!atsim::AddFailRule(*rule, &scenario, &error)) {
            std::cerr << "atsim: " << error << std::endl;
            return kUsageOrScenarioError;
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
