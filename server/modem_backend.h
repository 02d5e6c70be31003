// Where the modem is: a serial port, a TCP peer, or an atsim child on a
// pseudo-terminal. A backend only opens and closes the port; reading and
// writing are the event loop's.
#pragma once

#include <memory>
#include <string>

#include "options.h"

namespace atserver {

class ModemBackend {
  public:
    virtual ~ModemBackend() = default;
    // Opens (or restarts) the port: a non-blocking, close-on-exec descriptor
    // owned by the backend, or -1 with the reason logged.
    virtual int Open() = 0;
    // Closes the port and stops whatever Open started.
    virtual void Close() = 0;
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
