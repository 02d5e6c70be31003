#include "modem_backend.h"

namespace atserver {

std::unique_ptr<ModemBackend> MakeBackend(const ServerOptions &options) {
    switch (options.backend) {
        case BackendKind::kTty:
            return MakeTtyBackend(options.ttyPath, options.baud);
        case BackendKind::kTcp:
            return MakeTcpBackend(options.tcpHost, options.tcpPort);
        case BackendKind::kSim:
            return MakeSimBackend(options.atsimPath, options.simScenario, options.simArgs,
                                  options.atsimLauncher);
        case BackendKind::kNone:
            break;
    }
    return nullptr;
}

}  // namespace atserver
