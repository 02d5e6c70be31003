// Where the modem is: a serial port, a TCP peer, or an atsim child on a
// pseudo-terminal. A backend only opens and closes the port; reading and
// writing are the event loop's. No call blocks for more than a moment: a
// port that takes time to open (atsim starting) is opened in steps.
#pragma once

#include <poll.h>

#include <cstdint>
#include <memory>
#include <string>

#include "options.h"

namespace atserver {

class ModemBackend {
  public:
    virtual ~ModemBackend() = default;
    struct OpenResult {
        int fd = -1;      // the port: non-blocking, close-on-exec, owned by the backend
        int waitFd = -1;  // still opening: call Open again once waitFd has waitEvents
        short waitEvents = POLLIN;
    };
    // Opens (or restarts) the port, or goes on opening it after a waitFd
    // result. Both descriptors -1: failed, the reason logged.
    virtual OpenResult Open() = 0;
    // Closes the port and starts stopping whatever Open started.
    virtual void Close() = 0;
    // Called every few milliseconds: finishes what Close started.
    virtual void Tick(int64_t /*nowMs*/) {}
    virtual std::string Describe() const = 0;
};

std::unique_ptr<ModemBackend> MakeTtyBackend(const std::string &path, unsigned baud);
std::unique_ptr<ModemBackend> MakeTcpBackend(const std::string &host, const std::string &port);
std::unique_ptr<ModemBackend> MakeSimBackend(const std::string &atsimPath,
                                             const std::string &scenario,
                                             const std::vector<std::string> &simArgs,
                                             const std::string &launcher);

std::unique_ptr<ModemBackend> MakeBackend(const ServerOptions &options);

}  // namespace atserver
