// A modem reached over TCP (a terminal server or a modem's network port).
// The connection is made without blocking: each address is tried in turn and
// the event loop waits for the socket to become writable.
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "modem_backend.h"
#include "monotonic_clock.h"
#include "server_log.h"

namespace atserver {
namespace {

constexpr int64_t kConnectTimeoutMs = 2000;

struct AddrInfoFree {
    void operator()(addrinfo *list) const { freeaddrinfo(list); }
};

class TcpBackend : public ModemBackend {
  public:
    TcpBackend(std::string host, std::string port)
        : host_(std::move(host)), port_(std::move(port)) {}
    ~TcpBackend() override { Close(); }

    OpenResult Open() override {
        if (fd_ != -1 && connecting_) return GoOnConnecting();
        Close();
        addrinfo hints{};
        hints.ai_family = AF_UNSPEC;
        hints.ai_socktype = SOCK_STREAM;
        addrinfo *found = nullptr;
        const int gai = getaddrinfo(host_.c_str(), port_.c_str(), &hints, &found);
        if (gai != 0) {
            LogWarn("cannot resolve %s: %s", Describe().c_str(), gai_strerror(gai));
            return {};
        }
        addresses_.reset(found);
        next_ = found;
        error_ = 0;
        return ConnectNext();
    }

    void Close() override {
        if (fd_ != -1) close(fd_);
        fd_ = -1;
        connecting_ = false;
    }

    std::string Describe() const override { return "tcp " + host_ + ":" + port_; }

  private:
    // Starts a connection to the next address; fails when none is left.
    OpenResult ConnectNext() {
        for (; next_ != nullptr; next_ = next_->ai_next) {
            fd_ = socket(next_->ai_family, next_->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                         next_->ai_protocol);
            if (fd_ == -1) {
                error_ = errno;
                continue;
            }
            if (connect(fd_, next_->ai_addr, next_->ai_addrlen) == 0) return Connected();
            error_ = errno;
            if (error_ == EINPROGRESS) {
                connecting_ = true;
                deadlineMs_ = MonotonicMs() + kConnectTimeoutMs;
                next_ = next_->ai_next;
                return {-1, fd_, POLLOUT};
            }
            Close();
        }
        addresses_.reset();
        LogWarn("cannot connect to %s: %s", Describe().c_str(), std::strerror(error_));
        return {};
    }

    OpenResult GoOnConnecting() {
        pollfd pfd{fd_, POLLOUT, 0};
        if (poll(&pfd, 1, 0) == 0) {
            if (MonotonicMs() < deadlineMs_) return {-1, fd_, POLLOUT};
            error_ = ETIMEDOUT;
        } else {
            socklen_t len = sizeof error_;
            if (getsockopt(fd_, SOL_SOCKET, SO_ERROR, &error_, &len) != 0) error_ = errno;
            if (error_ == 0) return Connected();
        }
        Close();
        return ConnectNext();
    }

    OpenResult Connected() {
        connecting_ = false;
        addresses_.reset();
        const int one = 1;
        setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        return {fd_};
    }

    std::string host_;
    std::string port_;
    int fd_ = -1;
    bool connecting_ = false;
    std::unique_ptr<addrinfo, AddrInfoFree> addresses_;
    const addrinfo *next_ = nullptr;  // the address to try after the current one
    int error_ = 0;                   // of the last address tried
    int64_t deadlineMs_ = 0;
};

}  // namespace

std::unique_ptr<ModemBackend> MakeTcpBackend(const std::string &host, const std::string &port) {
    return std::make_unique<TcpBackend>(host, port);
}

}  // namespace atserver
