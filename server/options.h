// atserver's command line.
#pragma once

#include <string>
#include <vector>

namespace atserver {

enum class BackendKind { kNone, kTty, kTcp, kSim };

struct ServerOptions {
    BackendKind backend = BackendKind::kNone;
    std::string ttyPath;
    unsigned baud = 115200;
    std::string tcpHost;
    std::string tcpPort;
    std::string simScenario;           // empty: atsim's default scenario
    std::string atsimPath;             // empty: found next to atserver or in the build tree
    std::vector<std::string> simArgs;  // passed on to atsim (--sim-arg)
    std::string atsimLauncher;         // empty: atsim runs itself; else it runs under this program
    std::string logPath;               // empty: stderr
    std::string reportPath;            // empty: log only; "-": stdout
    unsigned readyTimeoutSec = 15;     // how long the modem may take to answer "AT"
    bool verbose = false;
};

// Parses argv into *out. False with a message in *error on a usage error;
// *error stays empty when help was asked for.
bool ParseOptions(int argc, char **argv, ServerOptions *out, std::string *error);

const char *UsageText();

}  // namespace atserver
