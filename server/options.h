// atserver's command line.
#pragma once

#include <string>
#include <vector>

#include "emergency_commands.h"
#include "server_log.h"

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
    LogTarget logTarget = LogTarget::kStderr;
    std::string logPath;  // the file of LogTarget::kFile
    LogLevel logLevel = LogLevel::kInfo;
    std::string reportPath;         // empty: log only; "-": stdout
    unsigned readyTimeoutSec = 15;  // how long the modem may take to answer "AT"
    EmergencyNumbers emergencyNumbers = DefaultEmergencyNumbers();
};

enum class ParseResult { kServe, kHelp, kVersion, kUsageError };

// Parses argv into *out; a usage error comes with a message in *error that
// names the argument at fault.
ParseResult ParseOptions(int argc, char **argv, ServerOptions *out, std::string *error);

const char *UsageText();

}  // namespace atserver
