#include "modem.h"

#include <string.h>

#include <algorithm>
#include <cctype>
#include <charconv>

#include "pattern.h"
#include "text.h"

namespace atsim {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

std::optional<std::int64_t> ToNumber(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

bool Compare(const std::string &left, CompareOp op, const std::string &right) {
    if (op == CompareOp::kEqual) return left == right;
    if (op == CompareOp::kNotEqual) return left != right;
    const auto a = ToNumber(left);
    const auto b = ToNumber(right);
    if (!a || !b) return false;  // ordering compares numbers only
    switch (op) {
        case CompareOp::kLess:
            return *a < *b;
        case CompareOp::kLessEqual:
            return *a <= *b;
        case CompareOp::kGreater:
            return *a > *b;
        default:
            return *a >= *b;
    }
}

bool SameLetter(char x, char y) {
    return std::toupper(static_cast<unsigned char>(x)) ==
           std::toupper(static_cast<unsigned char>(y));
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), SameLetter);
}

// Commands whose parameters are PINs, PUKs, passwords or unlock codes: the
// log shows them only up to their '='.
constexpr std::string_view kSecretCommands[] = {
    "+CPIN=", "^CPIN=", "+CLCK=", "+CPWD=", "^CARDLOCK=", "^AUTHDATA=", "^NDISDUP="};

std::string Loggable(const std::string &command) {
    for (const std::string_view name : kSecretCommands) {
        const auto at =
            std::search(command.begin(), command.end(), name.begin(), name.end(), SameLetter);
        if (at != command.end()) return std::string(command.begin(), at + name.size()) + "...";
    }
    return command;
}

}  // namespace

Modem::Modem(const Scenario &scenario, ModemOptions options, Millis now)
    : scenario_(scenario),
      options_(std::move(options)),
      random_(options_.seed),
      variables_(scenario.initialValues) {
    if (options_.periodicUrcs && !scenario_.periodics.empty() && options_.urcIntervalMs > 0) {
        nextTick_ = now + options_.urcIntervalMs;
    }
}

void Modem::Log(const std::string &message) const {
    if (options_.log) options_.log(message);
}

void Modem::Receive(std::string_view bytes, Millis now) {
    if (hungUp_) return;
    // Each command is taken up as soon as its CR arrives.
    for (char byte : bytes) {
        if (TakeByte(byte)) Pump(now);
    }
    Pump(now);
}

// Commands end with CR; LF is tolerated and ignored. True at the end of a line.
bool Modem::TakeByte(char byte) {
    if (byte == '\n') return false;
    if (byte != '\r') {
        if (inputLength_ < kMaxLineLength) input_.push_back(byte);
        ++inputLength_;
        return false;
    }
    if (inputLength_ > kMaxLineLength) {
        Log("atsim: dropped an input line of " + std::to_string(inputLength_) + " bytes (limit " +
            std::to_string(kMaxLineLength) + ")");
    } else if (!input_.empty()) {
        if (echo_) output_.append(input_).push_back('\r');
        if (commands_.size() < kMaxQueuedCommands) {
            commands_.push_back(input_);
        } else {
            Log("atsim: too many commands waiting, dropped \"" + Loggable(input_) + "\"");
        }
    }
    // Copied rather than moved, and wiped: a short line's bytes would stay
    // behind, and the line may carry a PIN.
    explicit_bzero(input_.data(), input_.size());
    input_.clear();
    inputLength_ = 0;
    return true;
}

// Serves queued commands one after the other; a delayed reply holds the queue.
void Modem::Pump(Millis now) {
    while (!hungUp_ && !job_ && !commands_.empty()) {
        const std::string command = std::move(commands_.front());
        commands_.pop_front();
        Dispatch(command, now);
    }
    ReleaseUnsolicited(now);
}

void Modem::Dispatch(const std::string &command, Millis now) {
    std::vector<std::string> captures;
    for (const Rule &rule : scenario_.rules) {
        if (!MatchPattern(rule.pattern, command, &captures) || !ConditionsHold(rule, captures)) {
            continue;
        }
        if (options_.verbose) {
            Log("atsim: \"" + Loggable(command) + "\" -> " + rule.where.file + ":" +
                std::to_string(rule.where.line));
        }
        job_ = Job{&rule, 0, std::move(captures), std::nullopt, {}};
        RunJob(now);
        return;
    }
    if (options_.verbose) Log("atsim: \"" + Loggable(command) + "\" -> built-in");
    AnswerBuiltin(command);
}

bool Modem::ConditionsHold(const Rule &rule, const std::vector<std::string> &captures) {
    return std::all_of(rule.conditions.begin(), rule.conditions.end(), [&](const Condition &c) {
        return Compare(Expand(c.left, captures), c.op, Expand(c.right, captures));
    });
}

// What every modem answers even when the scenario does not say.
void Modem::AnswerBuiltin(const std::string &command) {
    if (EqualsIgnoringCase(command, "AT")) {
        SendLine("OK");
    } else if (EqualsIgnoringCase(command, "ATE1")) {
        echo_ = true;
        SendLine("OK");
    } else if (EqualsIgnoringCase(command, "ATE0") || EqualsIgnoringCase(command, "ATE")) {
        echo_ = false;
        SendLine("OK");
    } else {
        SendLine("ERROR");
    }
}

std::string Modem::Expand(const Text &text, const std::vector<std::string> &captures) {
    return ExpandText(text, ExpandContext{variables_, captures, random_});
}

// The number of a delay, 'after', 'trigger' or 'add'; what is not a number
// counts as 0.
std::int64_t Modem::AmountOf(const Step &step, const std::vector<std::string> &captures) {
    const std::string value = Expand(step.amount, captures);
    const auto number = ToNumber(value);
    if (!number) {
        Log("atsim: " + step.where.file + ":" + std::to_string(step.where.line) + ": \"" + value +
            "\" is not a number, taken as 0");
    }
    return number.value_or(0);
}

void Modem::RunJob(Millis now) {
    Job &job = *job_;
    job.resumeAt.reset();
    while (job.next < job.rule->steps.size()) {
        const Step &step = job.rule->steps[job.next++];
        switch (step.kind) {
            case StepKind::kLine:
            case StepKind::kUrc:
                SendLine(Expand(step.text, job.captures));
                break;
            case StepKind::kPart:
                SendPart(Expand(step.text, job.captures));
                break;
            case StepKind::kDelay: {
                const std::int64_t ms = AmountOf(step, job.captures);
                if (ms > 0) {
                    job.resumeAt = now + static_cast<Millis>(ms);
                    return;
                }
                break;
            }
            case StepKind::kSet:
            case StepKind::kAdd:
                ChangeVariable(step, job.captures);
                break;
            case StepKind::kCancel:
                CancelEvents(Expand(step.text, job.captures));
                break;
            case StepKind::kGarbage:
                SendGarbage();
                break;
            case StepKind::kHangup:
                hungUp_ = true;
                job_.reset();
                return;
            case StepKind::kSilent:
                job.next = job.rule->steps.size();
                break;
            case StepKind::kFinal:
                SendLine(Expand(step.text, job.captures));
                break;
            case StepKind::kAfter:
            case StepKind::kTrigger: {
                Millis delay = 0;
                Scheduled what = ScheduleOf(step, job.captures, &delay);
                job.afterReply.emplace_back(delay, std::move(what));
                break;
            }
        }
    }
    FinishJob(now);
}

void Modem::ChangeVariable(const Step &step, const std::vector<std::string> &captures) {
    if (step.kind == StepKind::kSet) {
        variables_[step.slot] = Expand(step.text, captures);
        return;
    }
    const std::int64_t base = ToNumber(variables_[step.slot]).value_or(0);
    const std::int64_t amount = AmountOf(step, captures);
    std::int64_t sum = 0;
    if (__builtin_add_overflow(base, amount, &sum)) sum = base;
    variables_[step.slot] = std::to_string(sum);
}

// The line of an 'after' or the event of a 'trigger', and its delay. An event
// comes at least 1 ms later, so that one that triggers itself cannot spin.
Modem::Scheduled Modem::ScheduleOf(const Step &step, const std::vector<std::string> &captures,
                                   Millis *delay) {
    const bool event = step.kind == StepKind::kTrigger;
    *delay = static_cast<Millis>(std::max<std::int64_t>(AmountOf(step, captures), event ? 1 : 0));
    return Scheduled{Expand(step.text, captures), event};
}

// An event runs the first event rule of its name whose conditions hold, at
// once: its variable changes take effect now, its lines wait like every
// unsolicited line. No rule holding is no fault: the event has lapsed (a
// call that ended before it was answered, ...).
void Modem::RunEvent(const std::string &name, Millis now) {
    const std::vector<std::string> captures{name};  // $0 is the event's name
    const auto rule =
        std::find_if(scenario_.events.begin(), scenario_.events.end(), [&](const Rule &event) {
            return event.pattern == name && ConditionsHold(event, captures);
        });
    if (options_.verbose) {
        Log("atsim: event " + name + " -> " +
            (rule == scenario_.events.end()
                 ? std::string("lapsed")
                 : rule->where.file + ":" + std::to_string(rule->where.line)));
    }
    if (rule == scenario_.events.end()) return;
    for (const Step &step : rule->steps) {
        switch (step.kind) {
            case StepKind::kLine:
                HoldUnsolicited(Expand(step.text, captures));
                break;
            case StepKind::kSet:
            case StepKind::kAdd:
                ChangeVariable(step, captures);
                break;
            case StepKind::kCancel:
                CancelEvents(Expand(step.text, captures));
                break;
            case StepKind::kAfter:
            case StepKind::kTrigger: {
                Millis delay = 0;
                Scheduled what = ScheduleOf(step, captures, &delay);
                scheduled_.emplace(now + delay, std::move(what));
                break;
            }
            default:  // the loader keeps every other step out of an event
                break;
        }
    }
}

void Modem::FinishJob(Millis now) {
    const std::vector<Step> &steps = job_->rule->steps;
    const bool answered = std::any_of(steps.begin(), steps.end(), [](const Step &step) {
        return step.kind == StepKind::kFinal || step.kind == StepKind::kSilent;
    });
    if (!answered) SendLine("OK");
    for (auto &[delay, what] : job_->afterReply) scheduled_.emplace(now + delay, std::move(what));
    job_.reset();
}

void Modem::Advance(Millis now) {
    if (hungUp_) return;
    if (job_ && job_->resumeAt && *job_->resumeAt <= now) RunJob(now);
    Tick(now);
    Pump(now);
}

void Modem::Tick(Millis now) {
    if (!nextTick_ || *nextTick_ > now) return;
    ++ticks_;
    for (const Periodic &periodic : scenario_.periodics) {
        if (ticks_ % periodic.every == 0) HoldUnsolicited(Expand(periodic.text, {}));
    }
    // A late wake-up skips the ticks it missed rather than bursting them out.
    *nextTick_ += options_.urcIntervalMs;
    if (*nextTick_ <= now) *nextTick_ = now + options_.urcIntervalMs;
}

// Unsolicited lines wait while a command is being typed or answered, so that
// they never land inside a reply unless a rule puts them there ('urc').
void Modem::ReleaseUnsolicited(Millis now) {
    while (!scheduled_.empty() && scheduled_.begin()->first <= now) {
        const Millis dueAt = scheduled_.begin()->first;
        Scheduled due = std::move(scheduled_.begin()->second);
        scheduled_.erase(scheduled_.begin());
        if (due.event) {
            // Counted from when it was due, so that a late wake-up does not
            // stretch a chain of events.
            RunEvent(due.text, dueAt);
        } else {
            HoldUnsolicited(std::move(due.text));
        }
    }
    if (job_ || inputLength_ > 0 || !commands_.empty()) return;
    for (const std::string &line : held_) SendLine(line);
    held_.clear();
}

void Modem::HoldUnsolicited(std::string line) {
    if (held_.size() >= kMaxHeldUnsolicited) held_.pop_front();
    held_.push_back(std::move(line));
}

void Modem::CancelEvents(const std::string &pattern) {
    std::erase_if(scheduled_, [&pattern](const auto &entry) {
        return entry.second.event && MatchPattern(pattern, entry.second.text, nullptr);
    });
}

std::optional<Millis> Modem::NextDeadline() const {
    if (hungUp_) return std::nullopt;
    std::optional<Millis> next = nextTick_;
    const auto earliest = [&next](Millis at) { next = next ? std::min(*next, at) : at; };
    if (job_ && job_->resumeAt) earliest(*job_->resumeAt);
    if (!scheduled_.empty()) earliest(scheduled_.begin()->first);
    return next;
}

void Modem::SendLine(std::string_view line) {
    if (!lineOpen_) output_.append(kLineEnd);
    output_.append(line).append(kLineEnd);
    lineOpen_ = false;
}

void Modem::SendPart(std::string_view piece) {
    if (!lineOpen_) output_.append(kLineEnd);
    output_.append(piece);
    lineOpen_ = true;
}

// Binary noise (with NUL and 0xFF, without CR or LF), then a line far longer
// than any reader's line buffer.
void Modem::SendGarbage() {
    std::uniform_int_distribution<int> byte(0, 255);
    std::string noise(kGarbageBytes, '\0');
    for (char &c : noise) {
        do {
            c = static_cast<char>(byte(random_));
        } while (c == '\r' || c == '\n');
    }
    noise[kGarbageBytes / 3] = '\0';
    noise[2 * kGarbageBytes / 3] = static_cast<char>(0xFF);
    output_.append(noise);
    SendLine(std::string(kOverlongLine, 'A'));
}

std::string Modem::TakeOutput() {
    std::string taken;
    taken.swap(output_);
    return taken;
}

}  // namespace atsim
