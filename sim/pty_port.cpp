#include "pty_port.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace atsim {
namespace {

std::string Failure(const char *what) { return std::string(what) + ": " + std::strerror(errno); }

}  // namespace

bool PtyPort::Open(std::string *error) {
    master_.Reset(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!master_.valid()) return *error = Failure("posix_openpt"), false;
    if (grantpt(master_.get()) != 0) return *error = Failure("grantpt"), false;
    if (unlockpt(master_.get()) != 0) return *error = Failure("unlockpt"), false;
    char path[128] = {};
    if (ptsname_r(master_.get(), path, sizeof(path)) != 0)
        return *error = Failure("ptsname_r"), false;
    slavePath_ = path;

    slave_.Reset(::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!slave_.valid()) return *error = Failure("open slave"), false;
    // Raw: no echo, no CR/LF translation, bytes pass as they are.
    termios mode{};
    if (tcgetattr(slave_.get(), &mode) != 0) return *error = Failure("tcgetattr"), false;
    cfmakeraw(&mode);
    if (tcsetattr(slave_.get(), TCSANOW, &mode) != 0) return *error = Failure("tcsetattr"), false;

    const int flags = fcntl(master_.get(), F_GETFL);
    if (flags < 0 || fcntl(master_.get(), F_SETFL, flags | O_NONBLOCK) != 0) {
        return *error = Failure("fcntl"), false;
    }
    return true;
}

std::string PtyPort::ReadAvailable() {
    std::string data;
    char chunk[4096];
    for (;;) {
        const ssize_t n = ::read(master_.get(), chunk, sizeof(chunk));
        if (n > 0) {
            data.append(chunk, static_cast<std::size_t>(n));
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        return data;  // EAGAIN, or EIO while the peer's side is being reopened
    }
}

void PtyPort::Queue(std::string_view bytes, const std::function<void(const std::string &)> &log) {
    if (bytes.empty()) return;
    if (pending_.size() - sent_ + bytes.size() > kMaxPendingBytes) {
        if (!overflowLogged_ && log) log("atsim: the port is not read, output dropped");
        overflowLogged_ = true;
        return;
    }
    overflowLogged_ = false;
    pending_.erase(0, sent_);
    sent_ = 0;
    pending_.append(bytes);
}

void PtyPort::Flush() {
    while (HasPending()) {
        const ssize_t n = ::write(master_.get(), pending_.data() + sent_, pending_.size() - sent_);
        if (n > 0) {
            sent_ += static_cast<std::size_t>(n);
        } else if (n < 0 && errno == EINTR) {
            continue;
        } else {
            return;  // the peer is slow: poll says when to go on
        }
    }
    pending_.clear();
    sent_ = 0;
}

}  // namespace atsim
