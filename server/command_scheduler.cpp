#include "command_scheduler.h"

#include <algorithm>
#include <cstring>

#include "platform/bounded.h"
#include "result_classifier.h"
#include "server_log.h"

namespace atserver {
namespace {

// The requester gives up after timeoutSec and then sends an abort; the guard
// answers only when that abort never comes.
constexpr int64_t kGuardMarginMs = 3000;
// How long the late lines of an aborted command are waited for.
constexpr int64_t kDrainWindowMs = 2000;
constexpr int64_t kProbeIntervalMs = 500;
constexpr char kProbeCommand[] = "AT";

std::string CommandText(const AtSrvMsg &msg) {
    const char *text = msg.sndRcvMsg.sMsg.atCmdStr;
    return std::string(text, strnlen(text, sizeof msg.sndRcvMsg.sMsg.atCmdStr));
}

std::string ExpectedName(const AtSrvMsg &msg) {
    const char *name = msg.sndRcvMsg.sMsg.atName;
    return std::string(name, strnlen(name, sizeof msg.sndRcvMsg.sMsg.atName));
}

int64_t GuardMs(int32_t timeoutSec) {
    return static_cast<int64_t>(std::max(timeoutSec, 0)) * 1000 + kGuardMarginMs;
}

const char *RequestTypeName(uint32_t reqType) {
    return reqType == AT_REQ_ABORT ? "abort" : reqType == AT_REQ_CLEAR ? "clear" : "clear-all";
}

}  // namespace

void CommandScheduler::OnModemUp(int64_t nowMs, int64_t probeWindowMs) {
    state_ = ModemState::kProbing;
    probeDeadlineMs_ = nowMs + probeWindowMs;
    nextProbeMs_ = nowMs;
    probesUnanswered_ = 0;
    reportLinesToFollow_ = 0;
    OnTick(nowMs);
}

void CommandScheduler::OnModemDown() {
    state_ = ModemState::kDown;
    draining_.reset();
    reportLinesToFollow_ = 0;
    if (running_) {
        LogWarn("modem lost while running \"%s\" of %d: answering ERROR",
                LoggableCommand(running_->cmd).c_str(), running_->request.mtype);
        Answer(running_->request, PlainErrorReply());
        running_.reset();
    }
    const size_t cleared = Clear([](const AtSrvMsg &) { return true; });
    if (cleared > 0) LogWarn("modem lost: answered ERROR to %zu queued requests", cleared);
}

void CommandScheduler::OnRequest(const AtSrvMsg &msg, RecordKind kind, int64_t nowMs) {
    switch (kind) {
        case RecordKind::kControl:
            HandleControl(msg, nowMs);
            return;
        case RecordKind::kBadCommand:
            LogWarn("refused a request of %d: empty, unterminated or multi-line command",
                    msg.mtype);
            Answer(msg, PlainErrorReply());
            return;
        case RecordKind::kMalformed:
            return;
        case RecordKind::kCommand:
            break;
    }
    if (state_ == ModemState::kDown) {
        LogWarn("modem is down: answering ERROR to \"%s\" of %d",
                LoggableCommand(CommandText(msg)).c_str(), msg.mtype);
        Answer(msg, PlainErrorReply());
        return;
    }
    Enqueue(msg);
    StartNext(nowMs);
}

void CommandScheduler::Enqueue(const AtSrvMsg &msg) {
    const std::string cmd = CommandText(msg);
    if (!IsEmergencyCommand(cmd, emergencyNumbers_)) {
        pending_.push_back({msg, false});
        return;
    }
    const auto firstOrdinary =
        std::find_if(pending_.begin(), pending_.end(),
                     [](const Waiting &waiting) { return !waiting.emergency; });
    const auto passed = static_cast<size_t>(pending_.end() - firstOrdinary);
    pending_.insert(firstOrdinary, {msg, true});
    Logf("emergency request \"%s\" of %d goes ahead of %zu waiting requests",
         LoggableCommand(cmd).c_str(), msg.mtype, passed);
}

void CommandScheduler::HandleControl(const AtSrvMsg &msg, int64_t nowMs) {
    const std::string text = CommandText(msg);
    Logf("%s request from %d for \"%s\"", RequestTypeName(msg.reqType), msg.mtype,
         LoggableCommand(text).c_str());
    if (msg.reqType == AT_REQ_ABORT) {
        Abort(msg.mtype, text, nowMs);
        return;
    }
    const int32_t requester = msg.mtype;
    const bool all = msg.reqType == AT_REQ_CLEAR_ALL;
    const size_t cleared =
        Clear([&](const AtSrvMsg &queued) { return all || queued.mtype == requester; });
    Logf("cleared %zu queued requests", cleared);
}

void CommandScheduler::Abort(int32_t mtype, const std::string &text, int64_t nowMs) {
    bool aborted = false;
    if (running_ && (running_->request.mtype == mtype || running_->cmd == text)) {
        AbortRunning("on request", nowMs);
        aborted = true;
    }
    // A request that timed out before it even started is withdrawn as well.
    for (auto it = pending_.begin(); it != pending_.end();) {
        if (it->request.mtype == mtype && CommandText(it->request) == text) {
            Answer(it->request, AbortedReply());
            it = pending_.erase(it);
            aborted = true;
        } else {
            ++it;
        }
    }
    if (!aborted) LogDebug("nothing to abort for %d", mtype);
    StartNext(nowMs);
}

template <typename Pick>
size_t CommandScheduler::Clear(Pick pick) {
    size_t cleared = 0;
    for (auto it = pending_.begin(); it != pending_.end();) {
        if (pick(it->request)) {
            Answer(it->request, PlainErrorReply());
            it = pending_.erase(it);
            ++cleared;
        } else {
            ++it;
        }
    }
    return cleared;
}

void CommandScheduler::OnLine(const std::string &line, int64_t nowMs) {
    if (reportLinesToFollow_ > 0) {
        --reportLinesToFollow_;
        io_.Report(line);
        return;
    }
    switch (state_) {
        case ModemState::kDown:
            return;
        case ModemState::kProbing:
            OnProbeLine(line, nowMs);
            return;
        case ModemState::kReady:
            break;
    }
    if (running_) {
        OnCommandLine(line, nowMs);
    } else if (draining_) {
        OnDrainLine(line);
        StartNext(nowMs);
    } else {
        Unsolicited(line, {}, {});
    }
}

void CommandScheduler::OnOverlongLine(size_t length) {
    if (reportLinesToFollow_ > 0) {
        --reportLinesToFollow_;
        LogWarn("dropped an over-long modem line (%zu bytes) that a report announced", length);
    } else if (state_ == ModemState::kReady && running_) {
        LogWarn("dropped an over-long modem line (%zu bytes) in the reply to \"%s\" of %d", length,
                LoggableCommand(running_->cmd).c_str(), running_->request.mtype);
        running_->droppedLength = std::max(running_->droppedLength, length);
    } else {
        LogWarn("dropped an over-long modem line (%zu bytes)", length);
    }
}

void CommandScheduler::OnProbeLine(const std::string &line, int64_t nowMs) {
    if (line == kProbeCommand) return;  // echo
    const std::optional<int32_t> result = ClassifyFinalResult(line);
    if (!result) {
        Unsolicited(line, {}, {});
        return;
    }
    if (probesUnanswered_ > 0) --probesUnanswered_;
    if (*result != AT_RET_OK) return;
    Logf("modem answers");
    state_ = ModemState::kReady;
    // A modem that was slow to answer may still answer the probes it took
    // meanwhile, back to back; their results must not end the first command.
    if (probesUnanswered_ > 0) {
        draining_ = Draining{kProbeCommand, nowMs + kProbeIntervalMs, probesUnanswered_};
    }
    StartNext(nowMs);
}

void CommandScheduler::OnCommandLine(const std::string &line, int64_t nowMs) {
    Running &cmd = *running_;
    if (cmd.lines.empty() && line == cmd.cmd) return;  // echo (ATE1)
    if (const std::optional<int32_t> result = ClassifyFinalResult(line)) {
        Complete(*result, line, nowMs);
        return;
    }
    const UrcFilter::Verdict verdict = urc_.Check(line, cmd.atName, cmd.cmd);
    if (verdict.unsolicited) {
        io_.Report(line);
        reportLinesToFollow_ = verdict.followingLines;
        return;
    }
    cmd.lines.push_back(line);
}

void CommandScheduler::OnDrainLine(const std::string &line) {
    if (const std::optional<int32_t> result = ClassifyFinalResult(line)) {
        LogDebug("late result \"%s\" of \"%s\" discarded", line.c_str(),
                 LoggableCommand(draining_->cmd).c_str());
        if (--draining_->results == 0) draining_.reset();
        return;
    }
    if (urc_.Check(line, {}, draining_->cmd).unsolicited) {
        Unsolicited(line, {}, draining_->cmd);
    } else {
        LogDebug("late line of \"%s\" discarded", LoggableCommand(draining_->cmd).c_str());
    }
}

void CommandScheduler::Unsolicited(const std::string &line, std::string_view atName,
                                   std::string_view cmd) {
    io_.Report(line);
    reportLinesToFollow_ = urc_.Check(line, atName, cmd).followingLines;
}

void CommandScheduler::Complete(int32_t retVal, const std::string &finalLine, int64_t nowMs) {
    Running &cmd = *running_;
    const ReplyText reply = retVal != AT_RET_OK     ? ErrorReply(retVal, finalLine)
                            : cmd.droppedLength > 0 ? LineTooLongReply(cmd.droppedLength)
                                                    : OkReply(cmd.lines);
    if (reply.lineTooLong > 0) {
        LogWarn("reply to \"%s\" of %d failed: a line of %zu bytes is longer than a reply holds",
                LoggableCommand(cmd.cmd).c_str(), cmd.request.mtype, reply.lineTooLong);
    }
    if (reply.linesCut > 0) {
        LogWarn("reply to \"%s\" of %d cut: %zu lines did not fit",
                LoggableCommand(cmd.cmd).c_str(), cmd.request.mtype, reply.linesCut);
    }
    LogDebug("served \"%s\" for %d seq %u: class %d, %zu chars, %lld ms",
             LoggableCommand(cmd.cmd).c_str(), cmd.request.mtype, cmd.request.seq, retVal,
             reply.text.size(), static_cast<long long>(nowMs - cmd.startedMs));
    Answer(cmd.request, reply);
    running_.reset();
    StartNext(nowMs);
}

void CommandScheduler::AbortRunning(const char *why, int64_t nowMs) {
    Logf("aborted \"%s\" of %d %s", LoggableCommand(running_->cmd).c_str(), running_->request.mtype,
         why);
    Answer(running_->request, AbortedReply());
    draining_ = Draining{running_->cmd, nowMs + kDrainWindowMs};
    running_.reset();
}

CommandScheduler::TickResult CommandScheduler::OnTick(int64_t nowMs) {
    if (state_ == ModemState::kProbing) {
        if (nowMs >= probeDeadlineMs_) return TickResult::kProbeFailed;
        if (nowMs >= nextProbeMs_) {
            io_.WriteToModem(std::string(kProbeCommand) + "\r");
            ++probesUnanswered_;
            nextProbeMs_ = nowMs + kProbeIntervalMs;
        }
    }
    if (running_ && nowMs >= running_->guardMs) {
        AbortRunning("by the guard timer (no final result and no abort request)", nowMs);
    }
    if (draining_ && nowMs >= draining_->untilMs) {
        LogWarn("\"%s\" gave no final result; going on", LoggableCommand(draining_->cmd).c_str());
        draining_.reset();
    }
    StartNext(nowMs);
    return TickResult::kNone;
}

void CommandScheduler::StartNext(int64_t nowMs) {
    if (state_ != ModemState::kReady || running_ || draining_ || pending_.empty()) return;
    // Built in place: the request (which may carry a PIN) is not copied
    // through the stack on its way.
    Running &next = running_.emplace();
    next.request = pending_.front().request;
    pending_.pop_front();
    next.cmd = CommandText(next.request);
    next.atName = ExpectedName(next.request);
    next.startedMs = nowMs;
    next.guardMs = nowMs + GuardMs(next.request.timeoutSec);
    io_.WriteToModem(next.cmd + "\r");
    LogDebug("sent \"%s\" of %d", LoggableCommand(next.cmd).c_str(), next.request.mtype);
}

void CommandScheduler::Answer(const AtSrvMsg &request, const ReplyText &reply) {
    // The reply may carry a password the modem read back.
    AtSrvMsg record = MakeReplyRecord(request, reply);
    io_.SendReply(record);
    memset_s(&record, sizeof record, 0, sizeof record);
}

}  // namespace atserver
