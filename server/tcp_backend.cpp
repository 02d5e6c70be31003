// A modem reached over TCP (a terminal server or a modem's network port).
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "modem_backend.h"
#include "server_log.h"

namespace atserver {
namespace {

constexpr int kConnectTimeoutMs = 2000;

// Waits (bounded) for a non-blocking connect to finish; 0 or an errno value.
int FinishConnect(int fd) {
    pollfd pfd{fd, POLLOUT, 0};
    int ready = 0;
    do {
        ready = poll(&pfd, 1, kConnectTimeoutMs);
    } while (ready < 0 && errno == EINTR);
    if (ready == 0) return ETIMEDOUT;
    if (ready < 0) return errno;
    int error = 0;
    socklen_t len = sizeof error;
    if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &len) != 0) return errno;
    return error;
}

class TcpBackend : public ModemBackend {
  public:
    TcpBackend(std::string host, std::string port)
        : host_(std::move(host)), port_(std::move(port)) {}
    ~TcpBackend() override { Close(); }

    OpenResult Open() override {
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
        int error = 0;
        for (addrinfo *ai = found; ai != nullptr && fd_ == -1; ai = ai->ai_next) {
            fd_ = socket(ai->ai_family, ai->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                         ai->ai_protocol);
            if (fd_ == -1) {
                error = errno;
                continue;
            }
            error = connect(fd_, ai->ai_addr, ai->ai_addrlen) == 0 ? 0 : errno;
            if (error == EINPROGRESS) error = FinishConnect(fd_);
            if (error != 0) Close();
        }
        freeaddrinfo(found);
        if (fd_ == -1) {
            LogWarn("cannot connect to %s: %s", Describe().c_str(), std::strerror(error));
            return {};
        }
        const int one = 1;
        setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
        return {fd_};
    }

    void Close() override {
        if (fd_ != -1) close(fd_);
        fd_ = -1;
    }

    std::string Describe() const override { return "tcp " + host_ + ":" + port_; }

  private:
    std::string host_;
    std::string port_;
    int fd_ = -1;
};

}  // namespace

std::unique_ptr<ModemBackend> MakeTcpBackend(const std::string &host, const std::string &port) {
    return std::make_unique<TcpBackend>(host, port);
}

}  // namespace atserver
