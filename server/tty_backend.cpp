// A modem on a serial port, in raw mode.
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "modem_backend.h"
#include "server_log.h"

namespace atserver {
namespace {

struct BaudRate {
    unsigned rate;
    speed_t speed;
};

constexpr BaudRate kBaudRates[] = {
    {9600, B9600},       {19200, B19200},     {38400, B38400},     {57600, B57600},
    {115200, B115200},   {230400, B230400},   {460800, B460800},   {921600, B921600},
    {1000000, B1000000}, {2000000, B2000000}, {3000000, B3000000}, {4000000, B4000000},
};

bool SpeedOf(unsigned rate, speed_t *speed) {
    for (const BaudRate &entry : kBaudRates) {
        if (entry.rate == rate) {
            *speed = entry.speed;
            return true;
        }
    }
    return false;
}

class TtyBackend : public ModemBackend {
  public:
    TtyBackend(std::string path, unsigned baud) : path_(std::move(path)), baud_(baud) {}
    ~TtyBackend() override { Close(); }

    OpenResult Open() override {
        Close();
        speed_t speed = B115200;
        if (!SpeedOf(baud_, &speed)) {
            LogError("unsupported baud rate %u", baud_);
            return {};
        }
        fd_ = open(path_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (fd_ == -1) {
            LogWarn("cannot open %s: %s", path_.c_str(), std::strerror(errno));
            return {};
        }
        termios tio{};
        if (tcgetattr(fd_, &tio) == 0) {
            cfmakeraw(&tio);
            tio.c_cflag |= CLOCAL | CREAD;
            cfsetispeed(&tio, speed);
            cfsetospeed(&tio, speed);
            if (tcsetattr(fd_, TCSANOW, &tio) != 0) {
                LogWarn("cannot set raw mode on %s: %s", path_.c_str(), std::strerror(errno));
            }
            tcflush(fd_, TCIOFLUSH);
        }
        return {fd_};
    }

    void Close() override {
        if (fd_ != -1) close(fd_);
        fd_ = -1;
    }

    std::string Describe() const override {
        return path_ + " at " + std::to_string(baud_) + " baud";
    }

  private:
    std::string path_;
    unsigned baud_;
    int fd_ = -1;
};

}  // namespace

std::unique_ptr<ModemBackend> MakeTtyBackend(const std::string &path, unsigned baud) {
    return std::make_unique<TtyBackend>(path, baud);
}

}  // namespace atserver
