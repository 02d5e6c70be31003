#include "event_loop.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <ctime>

#include "unique_fd.h"

namespace atsim {
namespace {

sigset_t TerminationSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    return set;
}

// Arms the timer for an absolute monotonic time, or disarms it.
void ArmTimer(int timer, std::optional<Millis> deadline) {
    itimerspec setting{};
    if (deadline) {
        // A zero it_value would disarm; the monotonic clock is never that early.
        setting.it_value.tv_sec = static_cast<time_t>(*deadline / 1000);
        setting.it_value.tv_nsec = static_cast<long>(*deadline % 1000) * 1000000L + 1;
    }
    timerfd_settime(timer, TFD_TIMER_ABSTIME, &setting, nullptr);
}

void AcknowledgeTimer(int timer) {
    std::uint64_t expirations = 0;
    while (::read(timer, &expirations, sizeof(expirations)) > 0) {
    }
}

std::string SystemError(const char *what) {
    return std::string(what) + ": " + std::strerror(errno);
}

}  // namespace

Millis NowMillis() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<Millis>(now.tv_sec) * 1000u + static_cast<Millis>(now.tv_nsec) / 1000000u;
}

bool BlockTerminationSignals(std::string *error) {
    const sigset_t set = TerminationSignals();
    if (sigprocmask(SIG_BLOCK, &set, nullptr) != 0) {
        *error = SystemError("sigprocmask");
        return false;
    }
    std::signal(SIGPIPE, SIG_IGN);
    return true;
}

int RunEventLoop(PtyPort &port, Modem &modem, const std::function<void(const std::string &)> &log) {
    const sigset_t set = TerminationSignals();
    UniqueFd signals(signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC));
    UniqueFd timer(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC));
    if (!signals.valid() || !timer.valid()) {
        log("atsim: " + SystemError("signalfd/timerfd"));
        return 1;
    }
    enum { kSignals, kPort, kTimer };
    for (;;) {
        ArmTimer(timer.get(), modem.NextDeadline());
        std::array<pollfd, 3> fds{
            {{signals.get(), POLLIN, 0},
             {port.fd(), static_cast<short>(POLLIN | (port.HasPending() ? POLLOUT : 0)), 0},
             {timer.get(), POLLIN, 0}}};
        if (poll(fds.data(), fds.size(), -1) < 0) {
            if (errno == EINTR) continue;
            log("atsim: " + SystemError("poll"));
            return 1;
        }
        if (fds[kSignals].revents & POLLIN) return 0;
        if (fds[kPort].revents & (POLLERR | POLLNVAL)) {
            log("atsim: the port failed");
            return 1;
        }
        if (fds[kTimer].revents & POLLIN) AcknowledgeTimer(timer.get());
        if (fds[kPort].revents & POLLIN) modem.Receive(port.ReadAvailable(), NowMillis());
        modem.Advance(NowMillis());
        port.Queue(modem.TakeOutput(), log);
        port.Flush();
        if (modem.HungUp()) return 0;  // the port closes with its owner
    }
}

}  // namespace atsim
