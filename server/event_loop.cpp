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
#include "monotonic_clock.h"
#include "runtime_files.h"
#include "server_log.h"
#include "service_notify.h"

namespace atserver {
namespace {

constexpr int64_t kIdleTickMs = 100;
// A port that keeps failing is tried again after 1, 2, 4 ... up to 30 s.
constexpr int64_t kReopenIntervalMs = 1000;
constexpr int64_t kMaxReopenIntervalMs = 30000;
// After a reopen, how long the modem may take to answer "AT".
constexpr int64_t kReprobeWindowMs = 5000;

int64_t NowMs() { return MonotonicMs(); }

enum class SignalAction { kRequests, kStop, kReopenLog };

struct ServerSignal {
    int signo;
    const char *name;
    SignalAction action;
};

constexpr ServerSignal kServerSignals[] = {
    {SIGUSR1, "SIGUSR1", SignalAction::kRequests},
    {SIGTERM, "SIGTERM", SignalAction::kStop},
    {SIGINT, "SIGINT", SignalAction::kStop},
    {SIGHUP, "SIGHUP", SignalAction::kReopenLog},
};

const ServerSignal *FindSignal(uint32_t signo) {
    for (const ServerSignal &entry : kServerSignals) {
        if (static_cast<uint32_t>(entry.signo) == signo) return &entry;
    }
    return nullptr;
}

}  // namespace

sigset_t ServerSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const ServerSignal &entry : kServerSignals) sigaddset(&set, entry.signo);
    return set;
}

EventLoop::EventLoop(ModemBackend &backend, RequestQueues &queues, ReportSink &reports,
                     unsigned readyTimeoutSec, const EmergencyNumbers &emergencyNumbers)
    : backend_(backend),
      queues_(queues),
      reports_(reports),
      scheduler_(*this, urc_, emergencyNumbers),
      reopenDelayMs_(kReopenIntervalMs),
      readyTimeoutSec_(readyTimeoutSec),
      startMs_(NowMs()),
      readyDeadlineMs_(startMs_ + static_cast<int64_t>(readyTimeoutSec) * 1000),
      outbox_(*this, queues.ReplyRoom()) {}

EventLoop::~EventLoop() {
    intake_.Stop();  // before the queues go
    backend_.Close();
    if (signalFd_ != -1) close(signalFd_);
    if (timerFd_ != -1) close(timerFd_);
    if (outboxTimerFd_ != -1) close(outboxTimerFd_);
}

bool EventLoop::Setup() {
    const sigset_t signals = ServerSignals();
    signalFd_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    timerFd_ = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    outboxTimerFd_ = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    if (signalFd_ == -1 || timerFd_ == -1 || outboxTimerFd_ == -1) {
        LogError("cannot create the signal or timer descriptor: %s", std::strerror(errno));
        return false;
    }
    ArmTimer(kIdleTickMs);
    return intake_.Start(queues_.RequestQid());
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

void EventLoop::ArmOutboxTimer(int64_t atUs) {
    if (atUs == outboxTimerUs_) return;
    outboxTimerUs_ = atUs;
    itimerspec spec{};  // all zero disarms
    if (atUs >= 0) {
        spec.it_value.tv_sec = atUs / 1000000;
        spec.it_value.tv_nsec = (atUs % 1000000) * 1000 + 1;  // never the zero that disarms
    }
    timerfd_settime(outboxTimerFd_, TFD_TIMER_ABSTIME, &spec, nullptr);
}

int EventLoop::Run() {
    if (!Setup()) return Stop(1, "no signal or timer descriptor, or no request intake");
    Logf("modem: %s", backend_.Describe().c_str());
    TryOpenModem(NowMs());
    for (;;) {
        ArmOutboxTimer(outbox_.NextFlushUs(MonotonicUs()));
        // The last descriptor is the port, or what its backend waits on while opening.
        const int portFd = modemFd_ != -1 ? modemFd_ : openWaitFd_;
        const short portEvents = modemFd_ != -1 ? POLLIN : openWaitEvents_;
        pollfd fds[5] = {{signalFd_, POLLIN, 0},
                         {timerFd_, POLLIN, 0},
                         {outboxTimerFd_, POLLIN, 0},
                         {intake_.WakeFd(), POLLIN, 0},
                         {portFd, portEvents, 0}};
        const nfds_t count = portFd == -1 ? 4 : 5;
        if (modemFd_ != -1 && !modemOutput_.empty()) fds[4].events |= POLLOUT;
        if (poll(fds, count, -1) < 0) {
            if (errno == EINTR) continue;
            LogError("poll failed: %s", std::strerror(errno));
            return Stop(1, "poll failed");
        }
        const int64_t now = NowMs();
        if ((fds[0].revents & POLLIN) != 0 && !HandleSignals()) return 0;
        // What the intake took is served after every wake-up, whatever woke
        // the loop: a caller's signal only nudges it (and may never come).
        TakeRequests(now);
        if (count == 5 && fds[4].revents != 0) {
            if (modemFd_ != -1) {
                HandleModem(fds[4].revents, now);
            } else {
                TryOpenModem(now);
            }
        }
        if ((fds[1].revents & POLLIN) != 0) HandleTimer(now);
        if ((fds[2].revents & POLLIN) != 0) {
            uint64_t expirations = 0;
            if (read(outboxTimerFd_, &expirations, sizeof expirations) > 0) outboxTimerUs_ = -1;
            outbox_.Flush(MonotonicUs());
        }
        if (modemFailed_ != 0) {
            LoseModem(std::string("write failed: ") + std::strerror(modemFailed_), now);
        }

        if (scheduler_.ModemReady() && !answeredSinceOpen_ && !NoteModemReady(now)) {
            return Stop(1, "no ready flag");
        }
        if (!readyFlagCreated_ && now >= readyDeadlineMs_) {
            LogError("the modem did not answer AT within %u s; giving up", readyTimeoutSec_);
            return Stop(1, "the modem never answered");
        }
    }
}

int EventLoop::Stop(int status, std::string reason) {
    stopReason_ = std::move(reason);
    return status;
}

bool EventLoop::NoteModemReady(int64_t nowMs) {
    answeredSinceOpen_ = true;
    reopenDelayMs_ = kReopenIntervalMs;
    if (readyFlagCreated_) return true;
    readyFlagCreated_ = CreateReadyFlag();
    if (!readyFlagCreated_) {
        LogError("cannot create the ready flag %s: %s", atapi::ReadyFlagPath(),
                 std::strerror(errno));
        return false;
    }
    Logf("ready after %lld ms", static_cast<long long>(nowMs - startMs_));
    ServiceNotify("READY=1");
    return true;
}

bool EventLoop::HandleSignals() {
    signalfd_siginfo info;
    while (read(signalFd_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
        const ServerSignal *signal = FindSignal(info.ssi_signo);
        if (signal == nullptr) continue;
        switch (signal->action) {
            case SignalAction::kRequests:
                break;  // served after every wake-up (Run)
            case SignalAction::kStop:
                Logf("%s from pid %u: stopping", signal->name, info.ssi_pid);
                stopReason_ = signal->name;
                return false;
            case SignalAction::kReopenLog:
                if (LogReopen()) {
                    Logf("%s from pid %u: log reopened; serving on", signal->name, info.ssi_pid);
                } else {
                    LogError("%s: cannot reopen the log: %s; serving on", signal->name,
                             std::strerror(errno));
                }
                break;
        }
    }
    return true;
}

void EventLoop::TakeRequests(int64_t nowMs) {
    const std::vector<IncomingRecord> records = intake_.Take();
    const int64_t nowUs = MonotonicUs();
    for (const IncomingRecord &record : records) {
        if (record.kind != RecordKind::kControl) outbox_.OnRequest(record.msg.mtype, nowUs);
        scheduler_.OnRequest(record.msg, record.kind, nowMs);
    }
}

void EventLoop::HandleTimer(int64_t nowMs) {
    uint64_t expirations = 0;
    while (read(timerFd_, &expirations, sizeof expirations) > 0) {
    }
    backend_.Tick(nowMs);
    queues_.Recover();
    intake_.Serve(queues_.RequestQid());
    // A backend that is opening is also asked again on the tick, so that its
    // own deadline holds when its descriptor stays silent.
    if (modemFd_ == -1 && (openWaitFd_ != -1 || nowMs >= nextOpenMs_)) TryOpenModem(nowMs);
    if (scheduler_.OnTick(nowMs) == CommandScheduler::TickResult::kProbeFailed) {
        LoseModem("no answer to AT", nowMs);
    }
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
            for (const LineReader::Line &line : out) {
                if (line.droppedLength > 0) {
                    scheduler_.OnOverlongLine(line.droppedLength);
                } else {
                    scheduler_.OnLine(line.text, nowMs);
                }
            }
            continue;
        }
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && errno == EAGAIN) return;
        LoseModem(got == 0 ? "end of stream" : std::string("read failed: ") + std::strerror(errno),
                  nowMs);
        return;
    }
}

void EventLoop::TryOpenModem(int64_t nowMs) {
    if (openWaitFd_ == -1) lastOpenMs_ = nowMs;
    const ModemBackend::OpenResult opened = backend_.Open();
    openWaitFd_ = opened.waitFd;
    openWaitEvents_ = opened.waitEvents;
    if (opened.fd == -1) {
        if (openWaitFd_ == -1) {
            LogWarn("cannot open the modem port; trying again in %lld ms",
                    static_cast<long long>(reopenDelayMs_));
            ScheduleReopen(nowMs + reopenDelayMs_);
        }
        return;
    }
    modemFd_ = opened.fd;
    answeredSinceOpen_ = false;
    Logf("modem port open: %s", backend_.Describe().c_str());
    const int64_t window = readyFlagCreated_ ? kReprobeWindowMs : readyDeadlineMs_ - nowMs;
    scheduler_.OnModemUp(nowMs, window);
}

void EventLoop::ScheduleReopen(int64_t atMs) {
    nextOpenMs_ = atMs;
    reopenDelayMs_ = std::min(reopenDelayMs_ * 2, kMaxReopenIntervalMs);
}

void EventLoop::LoseModem(const std::string &why, int64_t nowMs) {
    backend_.Close();
    modemFd_ = -1;
    modemFailed_ = 0;
    ReleaseModemOutput();
    reader_.Reset();
    scheduler_.OnModemDown();
    // At once after a port that served a while; one that keeps failing is
    // tried again ever more rarely.
    const int64_t reopenAtMs = std::max(nowMs, lastOpenMs_ + reopenDelayMs_);
    LogWarn("modem port closed (%s); opening it again in %lld ms", why.c_str(),
            static_cast<long long>(reopenAtMs - nowMs));
    ScheduleReopen(reopenAtMs);
}

void EventLoop::WriteToModem(const std::string &bytes) {
    if (modemFd_ == -1) return;
    modemOutput_ += bytes;
    FlushModemOutput();
}

// The written lines may carry PINs and passwords: the buffer goes back to
// the heap, which wipes it, rather than keep them until it is overwritten.
void EventLoop::ReleaseModemOutput() { std::string().swap(modemOutput_); }

void EventLoop::FlushModemOutput() {
    while (!modemOutput_.empty() && modemFailed_ == 0) {
        const ssize_t put = write(modemFd_, modemOutput_.data(), modemOutput_.size());
        if (put > 0) {
            modemOutput_.erase(0, static_cast<size_t>(put));
            if (modemOutput_.empty()) ReleaseModemOutput();
        } else if (put < 0 && errno == EAGAIN) {
            return;  // POLLOUT takes it from here
        } else if (put < 0 && errno != EINTR) {
            // Dropped by the loop once the scheduler has finished this step.
            modemFailed_ = errno;
        }
    }
}

void EventLoop::SendReply(const AtSrvMsg &record) { outbox_.Add(record, MonotonicUs()); }

ReplyOutbox::SendResult EventLoop::Send(const AtSrvMsg &reply) {
    switch (queues_.SendReply(reply)) {
        case RequestQueues::SendResult::kSent:
            return ReplyOutbox::SendResult::kSent;
        case RequestQueues::SendResult::kFull:
            return ReplyOutbox::SendResult::kFull;
        case RequestQueues::SendResult::kFailed:
            break;
    }
    return ReplyOutbox::SendResult::kFailed;
}

size_t EventLoop::Count() { return queues_.RepliesWaiting(); }

bool EventLoop::DropOldest() { return queues_.DropOldestReply(); }

void EventLoop::Report(const std::string &line) { reports_.Write(line); }

}  // namespace atserver
