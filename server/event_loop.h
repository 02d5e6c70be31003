// atserver's single thread: one poll over a signalfd (SIGUSR1 = a request is
// waiting; SIGTERM/SIGINT = stop), the modem descriptor and a timer.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "command_scheduler.h"
#include "line_reader.h"
#include "modem_backend.h"
#include "report_sink.h"
#include "request_queues.h"
#include "urc_filter.h"

namespace atserver {

class EventLoop : private CommandScheduler::Io {
  public:
    EventLoop(ModemBackend &backend, RequestQueues &queues, ReportSink &reports,
              unsigned readyTimeoutSec);
    ~EventLoop();
    EventLoop(const EventLoop &) = delete;
    EventLoop &operator=(const EventLoop &) = delete;

    // Serves until SIGTERM or SIGINT (0), or until the modem never became
    // ready or the loop cannot run (1). The signals must already be blocked.
    int Run();

  private:
    // CommandScheduler::Io
    void WriteToModem(const std::string &bytes) override;
    void SendReply(const AtSrvMsg &record) override;
    void Report(const std::string &line) override;

    bool Setup();
    bool HandleSignals();  // false when asked to stop
    void HandleTimer(int64_t nowMs);
    void HandleModem(short revents, int64_t nowMs);
    void TakeRequests(int64_t nowMs);
    void TryOpenModem(int64_t nowMs);
    void LoseModem(const char *why, int64_t nowMs);
    void FlushModemOutput();
    void FlushReplies(int64_t nowMs);
    void ArmTimer(int64_t intervalMs);

    ModemBackend &backend_;
    RequestQueues &queues_;
    ReportSink &reports_;
    UrcFilter urc_;
    CommandScheduler scheduler_;
    LineReader reader_;

    int signalFd_ = -1;
    int timerFd_ = -1;
    int modemFd_ = -1;
    int64_t timerIntervalMs_ = 0;
    std::string modemOutput_;
    bool modemFailed_ = false;  // a write failed; the port is dropped after this event
    int64_t nextOpenMs_ = 0;
    int64_t lastOpenMs_ = 0;
    unsigned readyTimeoutSec_;
    int64_t readyDeadlineMs_ = 0;
    bool readyFlagCreated_ = false;
    std::deque<AtSrvMsg> replyBacklog_;  // replies waiting for room in the reply queue
    int64_t replyProgressMs_ = 0;        // last time the reply queue took a reply
};

}  // namespace atserver
