// The modem's port: a pseudo-terminal master whose slave side is in raw mode.
// Writes never block: what the peer does not take yet waits in a bounded buffer.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "unique_fd.h"

namespace atsim {

class PtyPort {
  public:
    static constexpr std::size_t kMaxPendingBytes = 1 << 20;

    // Opens the master and the slave (kept open so that the master does not
    // report a hang-up while no peer has the slave open). False with `error`.
    bool Open(std::string *error);

    int fd() const { return master_.get(); }
    const std::string &slavePath() const { return slavePath_; }

    // Reads what is available (non-blocking); empty when nothing is.
    std::string ReadAvailable();
    // Queues bytes for the peer; drops them (once logged) when the buffer is full.
    void Queue(std::string_view bytes, const std::function<void(const std::string &)> &log);
    // Writes as much of the queue as the port takes now.
    void Flush();
    bool HasPending() const { return sent_ < pending_.size(); }

  private:
    UniqueFd master_;
    UniqueFd slave_;
    std::string slavePath_;
    std::string pending_;
    std::size_t sent_ = 0;
    bool overflowLogged_ = false;
};

}  // namespace atsim
