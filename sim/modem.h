// The simulated modem: takes the bytes written to the port, runs the scenario's
// rules and produces the bytes to send back. It knows nothing of file
// descriptors or clocks: the caller passes the time and moves the output.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "scenario.h"

namespace atsim {

using Millis = std::uint64_t;

struct ModemOptions {
    bool periodicUrcs = true;
    Millis urcIntervalMs = 3000;
    std::uint32_t seed = 1;
    bool verbose = false;                          // log every command and the rule it took
    std::function<void(const std::string &)> log;  // diagnostics; may be empty
};

class Modem {
  public:
    static constexpr std::size_t kMaxLineLength = 4096;
    static constexpr std::size_t kMaxQueuedCommands = 64;
    static constexpr std::size_t kMaxHeldUnsolicited = 256;
    static constexpr std::size_t kGarbageBytes = 200;
    static constexpr std::size_t kOverlongLine = 5000;

    // `scenario` must outlive the modem.
    Modem(const Scenario &scenario, ModemOptions options, Millis now);

    // Bytes written by the other side of the port.
    void Receive(std::string_view bytes, Millis now);
    // Runs whatever is due at `now`: resumed delays, delayed and periodic lines.
    void Advance(Millis now);
    // Earliest time at which Advance has something to do.
    std::optional<Millis> NextDeadline() const;
    // Bytes to write to the port since the last call.
    std::string TakeOutput();
    // True once a rule hung up: the port must be closed and the process end.
    bool HungUp() const { return hungUp_; }

  private:
    // What is due some time after a reply: an unsolicited line or an event.
    struct Scheduled {
        std::string text;  // the line, or the event's name
        bool event = false;
    };
    struct Job {
        const Rule *rule = nullptr;
        std::size_t next = 0;
        std::vector<std::string> captures;
        std::optional<Millis> resumeAt;
        std::vector<std::pair<Millis, Scheduled>> afterReply;  // delay, what
    };

    bool TakeByte(char byte);
    void Pump(Millis now);
    void Dispatch(const std::string &command, Millis now);
    bool ConditionsHold(const Rule &rule, const std::vector<std::string> &captures);
    void AnswerBuiltin(const std::string &command);
    void RunJob(Millis now);
    void FinishJob(Millis now);
    void ChangeVariable(const Step &step, const std::vector<std::string> &captures);
    Scheduled ScheduleOf(const Step &step, const std::vector<std::string> &captures, Millis *delay);
    void RunEvent(const std::string &name, Millis now);
    void CancelEvents(const std::string &pattern);
    void Tick(Millis now);
    void ReleaseUnsolicited(Millis now);
    void HoldUnsolicited(std::string line);
    void SendLine(std::string_view line);
    void SendPart(std::string_view piece);
    void SendGarbage();
    std::string Expand(const Text &text, const std::vector<std::string> &captures);
    std::int64_t AmountOf(const Step &step, const std::vector<std::string> &captures);
    void Log(const std::string &message) const;

    const Scenario &scenario_;
    ModemOptions options_;
    std::mt19937 random_;
    std::vector<std::string> variables_;
    std::string output_;
    std::string input_;
    std::size_t inputLength_ = 0;  // counts past the limit while an over-long line is dropped
    std::deque<std::string> commands_;
    std::optional<Job> job_;
    std::multimap<Millis, Scheduled> scheduled_;
    std::deque<std::string> held_;
    std::optional<Millis> nextTick_;
    std::uint64_t ticks_ = 0;
    bool echo_ = false;
    bool lineOpen_ = false;  // a part was sent: the next line or part continues it
    bool hungUp_ = false;
};

}  // namespace atsim
