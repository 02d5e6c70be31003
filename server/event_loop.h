// atserver's event loop: one poll over a signalfd (SIGUSR1 = a request is
// waiting, a mere nudge; SIGTERM/SIGINT = stop; SIGHUP = reopen the log), the
// request intake's wake-up, the modem descriptor (or the one its backend
// waits on while opening) and timers. The intake's thread is the only other.
#pragma once

#include <signal.h>

#include <cstdint>
#include <string>

#include "command_scheduler.h"
#include "line_reader.h"
#include "modem_backend.h"
#include "reply_outbox.h"
#include "report_sink.h"
#include "request_intake.h"
#include "request_queues.h"
#include "urc_filter.h"

namespace atserver {

// The signals the loop takes through its signalfd; they must be blocked in
// every thread before the loop starts.
sigset_t ServerSignals();

class EventLoop : private CommandScheduler::Io, private ReplyOutbox::Queue {
  public:
    EventLoop(ModemBackend &backend, RequestQueues &queues, ReportSink &reports,
              unsigned readyTimeoutSec, const EmergencyNumbers &emergencyNumbers);
    ~EventLoop();
    EventLoop(const EventLoop &) = delete;
    EventLoop &operator=(const EventLoop &) = delete;

    // Serves until SIGTERM or SIGINT (0), or until the modem never became
    // ready or the loop cannot run (1); StopReason() then says why.
    int Run();
    const std::string &StopReason() const { return stopReason_; }

  private:
    // CommandScheduler::Io
    void WriteToModem(const std::string &bytes) override;
    void SendReply(const AtSrvMsg &record) override;
    void Report(const std::string &line) override;
    // ReplyOutbox::Queue
    ReplyOutbox::SendResult Send(const AtSrvMsg &reply) override;
    size_t Count() override;
    bool DropOldest() override;

    bool Setup();
    bool HandleSignals();  // false when asked to stop
    int Stop(int status, std::string reason);
    bool NoteModemReady(int64_t nowMs);  // false when the ready flag cannot be made
    void HandleTimer(int64_t nowMs);
    void HandleModem(short revents, int64_t nowMs);
    void TakeRequests(int64_t nowMs);
    void TryOpenModem(int64_t nowMs);
    void LoseModem(const std::string &why, int64_t nowMs);
    void ScheduleReopen(int64_t atMs);
    void FlushModemOutput();
    void ReleaseModemOutput();
    void ArmTimer(int64_t intervalMs);
    void ArmOutboxTimer(int64_t atUs);

    ModemBackend &backend_;
    RequestQueues &queues_;
    RequestIntake intake_;
    ReportSink &reports_;
    UrcFilter urc_;
    CommandScheduler scheduler_;
    LineReader reader_;

    int signalFd_ = -1;
    int timerFd_ = -1;
    int outboxTimerFd_ = -1;  // one-shot: the reply outbox has work
    int64_t outboxTimerUs_ = -1;
    int modemFd_ = -1;
    int openWaitFd_ = -1;  // the backend is opening the port and waits on this
    short openWaitEvents_ = POLLIN;
    int64_t timerIntervalMs_ = 0;
    std::string modemOutput_;
    int modemFailed_ = 0;  // errno of a failed write; the port is dropped after this event
    int64_t nextOpenMs_ = 0;
    int64_t lastOpenMs_ = 0;
    int64_t reopenDelayMs_;  // grows while the port keeps failing
    bool answeredSinceOpen_ = false;
    unsigned readyTimeoutSec_;
    int64_t startMs_;
    int64_t readyDeadlineMs_ = 0;
    bool readyFlagCreated_ = false;
    ReplyOutbox outbox_;
    std::string stopReason_;
};

}  // namespace atserver
