#include "event_loop.h"

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "link/ats_paths.h"
#include "runtime_files.h"
#include "server_log.h"

namespace atserver {
namespace {

constexpr int64_t kIdleTickMs = 100;
constexpr int64_t kBacklogTickMs = 10;
constexpr int64_t kReopenIntervalMs = 1000;
// After a reopen, how long the modem may take to answer "AT".
constexpr int64_t kReprobeWindowMs = 5000;
// A full reply queue that nobody reads from for this long holds only replies
// of requesters that are gone.
constexpr int64_t kStaleReplyMs = 2000;

int64_t NowMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

sigset_t ServerSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (int sig : {SIGUSR1, SIGTERM, SIGINT}) sigaddset(&set, sig);
    return set;
}

}  // namespace

EventLoop::EventLoop(ModemBackend &backend, RequestQueues &queues, ReportSink &reports,
                     unsigned readyTimeoutSec)
    : backend_(backend),
      queues_(queues),
      reports_(reports),
      scheduler_(*this, urc_),
      readyTimeoutSec_(readyTimeoutSec),
      readyDeadlineMs_(NowMs() + static_cast<int64_t>(readyTimeoutSec) * 1000) {}

EventLoop::~EventLoop() {
    backend_.Close();
    if (signalFd_ != -1) close(signalFd_);
    if (timerFd_ != -1) close(timerFd_);
}

bool EventLoop::Setup() {
    const sigset_t signals = ServerSignals();
    signalFd_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    timerFd_ = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    if (signalFd_ == -1 || timerFd_ == -1) {
        Logf("cannot create the signal or timer descriptor: %s", std::strerror(errno));
        return false;
    }
    ArmTimer(kIdleTickMs);
    return true;
}

void EventLoop::ArmTimer(int64_t intervalMs) {
    if (intervalMs == timerIntervalMs_) return;
    timerIntervalMs_ = intervalMs;
    itimerspec spec{};
    spec.it_interval.tv_sec = intervalMs / 1000;
    spec.it_interval.tv_nsec = (intervalMs % 1000) * 1000000;
    spec.it_value = spec.it_interval;
    timerfd_settime(timerFd_, 0, &spec, nullptr);
}

int EventLoop::Run() {
    if (!Setup()) return 1;
    Logf("modem: %s", backend_.Describe().c_str());
    TryOpenModem(NowMs());
    for (;;) {
        pollfd fds[3] = {{signalFd_, POLLIN, 0}, {timerFd_, POLLIN, 0}, {modemFd_, 0, 0}};
        const nfds_t count = modemFd_ == -1 ? 2 : 3;
        fds[2].events = static_cast<short>(POLLIN | (modemOutput_.empty() ? 0 : POLLOUT));
        if (poll(fds, count, -1) < 0) {
            if (errno == EINTR) continue;
            Logf("poll failed: %s", std::strerror(errno));
            return 1;
        }
        const int64_t now = NowMs();
        if ((fds[0].revents & POLLIN) != 0 && !HandleSignals()) return 0;
        if (count == 3 && fds[2].revents != 0) HandleModem(fds[2].revents, now);
        if ((fds[1].revents & POLLIN) != 0) HandleTimer(now);
        if (modemFailed_) LoseModem("write failed", now);

        if (scheduler_.ModemReady() && !readyFlagCreated_) {
            readyFlagCreated_ = CreateReadyFlag();
            if (!readyFlagCreated_) {
                Logf("cannot create the ready flag %s: %s", atapi::ReadyFlagPath(),
                     std::strerror(errno));
                return 1;
            }
            Logf("ready");
        }
        if (!readyFlagCreated_ && now >= readyDeadlineMs_) {
            Logf("the modem did not answer AT within %u s; giving up", readyTimeoutSec_);
            return 1;
        }
    }
}

bool EventLoop::HandleSignals() {
    signalfd_siginfo info;
    bool requests = false;
    while (read(signalFd_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
        if (info.ssi_signo == SIGUSR1) {
            requests = true;
        } else {
            Logf("signal %u: stopping", info.ssi_signo);
            return false;
        }
    }
    // Signals coalesce: one wake-up may stand for many requests.
    if (requests) TakeRequests(NowMs());
    return true;
}

void EventLoop::TakeRequests(int64_t nowMs) {
    std::vector<IncomingRecord> records;
    queues_.TakeAll(&records);
    for (const IncomingRecord &record : records)
        scheduler_.OnRequest(record.msg, record.kind, nowMs);
}

void EventLoop::HandleTimer(int64_t nowMs) {
    uint64_t expirations = 0;
    while (read(timerFd_, &expirations, sizeof expirations) > 0) {
    }
    // The queue is also polled here, in case a wake-up was never sent.
    TakeRequests(nowMs);
    if (modemFd_ == -1 && nowMs >= nextOpenMs_) TryOpenModem(nowMs);
    if (scheduler_.OnTick(nowMs) == CommandScheduler::TickResult::kProbeFailed) {
        LoseModem("no answer to AT", nowMs);
    }
    FlushReplies(nowMs);
}

void EventLoop::HandleModem(short revents, int64_t nowMs) {
    if ((revents & POLLOUT) != 0) FlushModemOutput();
    if ((revents & (POLLIN | POLLHUP | POLLERR)) == 0) return;
    char buf[4096];
    for (;;) {
        const ssize_t got = read(modemFd_, buf, sizeof buf);
        if (got > 0) {
            LineReader::Output out;
            reader_.Feed(buf, static_cast<size_t>(got), &out);
            for (size_t dropped : out.droppedLengths) {
                Logf("dropped an over-long modem line (%zu bytes)", dropped);
            }
            for (const std::string &line : out.lines) scheduler_.OnLine(line, nowMs);
            continue;
        }
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && errno == EAGAIN) return;
        LoseModem(got == 0 ? "end of stream" : std::strerror(errno), nowMs);
        return;
    }
}

void EventLoop::TryOpenModem(int64_t nowMs) {
    lastOpenMs_ = nowMs;
    modemFd_ = backend_.Open();
    if (modemFd_ == -1) {
        nextOpenMs_ = nowMs + kReopenIntervalMs;
        return;
    }
    Logf("modem port open: %s", backend_.Describe().c_str());
    const int64_t window = readyFlagCreated_ ? kReprobeWindowMs : readyDeadlineMs_ - nowMs;
    scheduler_.OnModemUp(nowMs, window);
}

void EventLoop::LoseModem(const char *why, int64_t nowMs) {
    Logf("modem port closed (%s)", why);
    backend_.Close();
    modemFd_ = -1;
    modemFailed_ = false;
    modemOutput_.clear();
    reader_.Reset();
    scheduler_.OnModemDown();
    // At once after a port that served a while; a port that keeps failing is
    // retried about once a second.
    nextOpenMs_ = std::max(nowMs, lastOpenMs_ + kReopenIntervalMs);
}

void EventLoop::WriteToModem(const std::string &bytes) {
    if (modemFd_ == -1) return;
    modemOutput_ += bytes;
    FlushModemOutput();
}

void EventLoop::FlushModemOutput() {
    while (!modemOutput_.empty() && !modemFailed_) {
        const ssize_t put = write(modemFd_, modemOutput_.data(), modemOutput_.size());
        if (put > 0) {
            modemOutput_.erase(0, static_cast<size_t>(put));
        } else if (put < 0 && errno == EAGAIN) {
            return;  // POLLOUT takes it from here
        } else if (put < 0 && errno != EINTR) {
            // Dropped by the loop once the scheduler has finished this step.
            modemFailed_ = true;
        }
    }
}

void EventLoop::SendReply(const AtSrvMsg &record) {
    if (replyBacklog_.empty()) {
        switch (queues_.SendReply(record)) {
            case RequestQueues::SendResult::kSent:
            case RequestQueues::SendResult::kFailed:
                return;
            case RequestQueues::SendResult::kFull:
                replyProgressMs_ = NowMs();
                break;
        }
    }
    replyBacklog_.push_back(record);
    ArmTimer(kBacklogTickMs);
}

void EventLoop::FlushReplies(int64_t nowMs) {
    while (!replyBacklog_.empty()) {
        const RequestQueues::SendResult result = queues_.SendReply(replyBacklog_.front());
        if (result == RequestQueues::SendResult::kFull) {
            if (nowMs - replyProgressMs_ < kStaleReplyMs || !queues_.DropOldestReply()) break;
            continue;
        }
        if (result == RequestQueues::SendResult::kSent &&
            nowMs - replyProgressMs_ < kStaleReplyMs) {
            replyProgressMs_ = nowMs;
        }
        replyBacklog_.pop_front();
    }
    if (replyBacklog_.empty()) ArmTimer(kIdleTickMs);
}

void EventLoop::Report(const std::string &line) { reports_.Write(line); }

}  // namespace atserver
