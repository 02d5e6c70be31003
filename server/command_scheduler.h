// Serves requests on the modem one at a time, in arrival order except that
// emergency requests (see emergency_commands.h) wait ahead of all others, in
// arrival order among themselves; they never interrupt the running command.
// Aborts and clears treat a waiting emergency request like any other. The
// scheduler keeps the conversation with the modem in step: the running command collects its
// lines until a final result; an aborted command's late lines are discarded
// until its final result (or a bounded wait), and so are the answers to the
// surplus probes of a modem that was slow to answer "AT"; a silent modem is
// cut short by a guard timer; a lost port answers everything with ERROR.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "atapi/at_types.h"
#include "emergency_commands.h"
#include "reply_builder.h"
#include "request_queues.h"
#include "urc_filter.h"

namespace atserver {

class CommandScheduler {
  public:
    // What the scheduler asks of the event loop.
    class Io {
      public:
        virtual void WriteToModem(const std::string &bytes) = 0;
        virtual void SendReply(const AtSrvMsg &record) = 0;
        virtual void Report(const std::string &line) = 0;

      protected:
        ~Io() = default;
    };

    enum class TickResult { kNone, kProbeFailed };

    CommandScheduler(Io &io, const UrcFilter &urc,
                     EmergencyNumbers emergencyNumbers = DefaultEmergencyNumbers())
        : io_(io), urc_(urc), emergencyNumbers_(std::move(emergencyNumbers)) {}

    // The port is open: probe it with "AT" until OK, for at most probeWindowMs.
    void OnModemUp(int64_t nowMs, int64_t probeWindowMs);
    // The port is gone: the running and queued requests are answered ERROR.
    void OnModemDown();
    bool ModemReady() const { return state_ == ModemState::kReady; }

    void OnRequest(const AtSrvMsg &msg, RecordKind kind, int64_t nowMs);
    void OnLine(const std::string &line, int64_t nowMs);
    // The line reader dropped a line too long to carry. The running command
    // then ends in an error rather than in a reply that hides the loss.
    void OnOverlongLine(size_t length);
    // Guard, drain and probe timers.
    TickResult OnTick(int64_t nowMs);

  private:
    enum class ModemState { kDown, kProbing, kReady };

    struct Waiting {
        AtSrvMsg request;
        bool emergency;
    };

    // Made by running_.emplace(), which zeroes what the start does not set.
    struct Running {
        AtSrvMsg request;
        std::string cmd;
        std::string atName;
        std::vector<std::string> lines;
        int64_t startedMs;
        int64_t guardMs;
        size_t droppedLength;  // an over-long line of the reply was dropped (0: none)
    };

    // Lines of commands whose replies nobody waits for any more: an aborted
    // command, or probes the modem took while it was slow to answer.
    struct Draining {
        std::string cmd;
        int64_t untilMs;
        size_t results = 1;  // final results still to come
    };

    void Enqueue(const AtSrvMsg &msg);
    void HandleControl(const AtSrvMsg &msg, int64_t nowMs);
    void Abort(int32_t mtype, const std::string &text, int64_t nowMs);
    // Answers ERROR to every queued request for which pick is true.
    template <typename Pick>
    size_t Clear(Pick pick);
    void OnCommandLine(const std::string &line, int64_t nowMs);
    void OnDrainLine(const std::string &line);
    void OnProbeLine(const std::string &line, int64_t nowMs);
    void Unsolicited(const std::string &line, std::string_view atName, std::string_view cmd);
    void Complete(int32_t retVal, const std::string &finalLine, int64_t nowMs);
    void AbortRunning(const char *why, int64_t nowMs);
    void StartNext(int64_t nowMs);
    void Answer(const AtSrvMsg &request, const ReplyText &reply);

    Io &io_;
    const UrcFilter &urc_;
    const EmergencyNumbers emergencyNumbers_;
    ModemState state_ = ModemState::kDown;
    int64_t probeDeadlineMs_ = 0;
    int64_t nextProbeMs_ = 0;
    size_t probesUnanswered_ = 0;
    std::deque<Waiting> pending_;
    std::optional<Running> running_;
    std::optional<Draining> draining_;
    size_t reportLinesToFollow_ = 0;
};

}  // namespace atserver
