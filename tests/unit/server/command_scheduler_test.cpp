// The scheduler against a fake modem and a made-up clock. Every case is a
// conversation: one input at a time (a request, a modem line, a tick of the
// clock, the port coming or going), each with everything it must cause at
// once, in order:
//   "> AT+A"          written to the modem (the command line and CR)
//   "1: 2 text"       a reply to requester 1: class and text ("1: 2" has none)
//   "report ^RSSI: 1" a line handed to the report sink
//   "probe failed"    the tick that gives up on a silent modem
// Dropped(n) stands for an over-long modem line of n bytes that the line
// reader dropped.
#include "command_scheduler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace atserver::test {
namespace {

constexpr int64_t kProbeWindowMs = 5000;

struct Input {
    enum Kind { kRecord, kLine, kDropped, kTick, kUp, kDown };
    Kind kind = kRecord;
    std::string text = {};  // command line or modem line
    int32_t mtype = 0;
    RecordKind record = RecordKind::kCommand;
    uint32_t reqType = AT_REQ_COMMAND;
    int32_t timeoutSec = 10;
    std::string atName = {};
    int64_t ms = 0;  // the time of a tick, the probe window of a port, a dropped line's length
};

Input Req(int32_t mtype, std::string cmd, int32_t timeoutSec = 10, std::string atName = "") {
    return {.text = std::move(cmd), .mtype = mtype, .timeoutSec = timeoutSec, .atName = atName};
}
Input BadReq(int32_t mtype) { return {.mtype = mtype, .record = RecordKind::kBadCommand}; }
Input Malformed(int32_t mtype) {
    return {.text = "AT", .mtype = mtype, .record = RecordKind::kMalformed, .reqType = 42};
}
Input Control(int32_t mtype, uint32_t type, std::string cmd = "AT") {
    return {
        .text = std::move(cmd), .mtype = mtype, .record = RecordKind::kControl, .reqType = type};
}
Input Abort(int32_t mtype, std::string cmd) { return Control(mtype, AT_REQ_ABORT, std::move(cmd)); }
Input Clear(int32_t mtype) { return Control(mtype, AT_REQ_CLEAR); }
Input ClearAll(int32_t mtype) { return Control(mtype, AT_REQ_CLEAR_ALL); }
Input Line(std::string line) { return {Input::kLine, std::move(line)}; }
Input Dropped(int64_t length) { return {.kind = Input::kDropped, .ms = length}; }
Input At(int64_t ms) { return {.kind = Input::kTick, .ms = ms}; }
Input Up(int64_t windowMs = kProbeWindowMs) { return {.kind = Input::kUp, .ms = windowMs}; }
Input Down() { return {Input::kDown}; }

struct Step {
    Input in;
    std::vector<std::string> out;
};

struct Case {
    const char *name;
    std::vector<Step> steps;
};

// Owns a scheduler and plays its Io. Every reply is checked against the
// request it answers: header and atName kept, length field right, nothing of
// the command line left in the text area, and no request answered twice.
class Harness final : private CommandScheduler::Io {
  public:
    // A ready harness has seen its port come up and the modem answer "AT".
    explicit Harness(bool ready) {
        if (!ready) return;
        Feed(Up());
        Feed(Line("OK"));
        out_.clear();
    }

    std::vector<std::string> Feed(const Input &in) {
        switch (in.kind) {
            case Input::kRecord:
                scheduler_.OnRequest(Record(in), in.record, now_);
                break;
            case Input::kLine:
                scheduler_.OnLine(in.text, now_);
                break;
            case Input::kDropped:
                scheduler_.OnOverlongLine(static_cast<size_t>(in.ms));
                break;
            case Input::kTick:
                now_ = in.ms;
                if (scheduler_.OnTick(now_) == CommandScheduler::TickResult::kProbeFailed) {
                    out_.push_back("probe failed");
                }
                break;
            case Input::kUp:
                scheduler_.OnModemUp(now_, in.ms);
                break;
            case Input::kDown:
                scheduler_.OnModemDown();
                break;
        }
        return std::exchange(out_, {});
    }

  private:
    AtSrvMsg Record(const Input &in) {
        AtSrvMsg msg{};
        msg.mtype = in.mtype;
        msg.reqType = in.reqType;
        msg.seq = nextSeq_++;
        msg.timeoutSec = in.timeoutSec;
        AtSrvSndMsg &sMsg = msg.sndRcvMsg.sMsg;
        in.atName.copy(sMsg.atName, sizeof sMsg.atName - 1);
        // A reused record holds old bytes behind the terminator.
        std::memset(sMsg.atCmdStr, 'x', sizeof sMsg.atCmdStr);
        sMsg.atCmdStr[in.text.copy(sMsg.atCmdStr, sizeof sMsg.atCmdStr - 1)] = '\0';
        if (in.record == RecordKind::kCommand || in.record == RecordKind::kBadCommand) {
            open_[msg.seq] = msg;
        }
        return msg;
    }

    void WriteToModem(const std::string &bytes) override {
        const bool cr = !bytes.empty() && bytes.back() == '\r';
        out_.push_back("> " + (cr ? bytes.substr(0, bytes.size() - 1) : bytes + "<no CR>"));
    }

    void SendReply(const AtSrvMsg &record) override {
        const auto found = open_.find(record.seq);
        ASSERT_NE(found, open_.end()) << "a reply to no open request, seq " << record.seq;
        const AtSrvMsg request = found->second;
        open_.erase(found);
        EXPECT_EQ(record.mtype, request.mtype);
        EXPECT_EQ(record.reqType, request.reqType);
        EXPECT_EQ(record.timeoutSec, request.timeoutSec);
        const AtSrvRcvMsg &rMsg = record.sndRcvMsg.rMsg;
        EXPECT_STREQ(rMsg.atName, request.sndRcvMsg.sMsg.atName);
        const char *area = rMsg.atReportStr;
        const size_t len = strnlen(area, sizeof rMsg.atReportStr);
        ASSERT_LT(len, sizeof rMsg.atReportStr);
        EXPECT_EQ(rMsg.atReportLen, static_cast<int32_t>(len));
        EXPECT_TRUE(std::all_of(area + len, area + sizeof rMsg.atReportStr,
                                [](char c) { return c == '\0'; }));
        const std::string text(area, len);
        out_.push_back(std::to_string(record.mtype) + ": " + std::to_string(rMsg.retVal) +
                       (text.empty() ? "" : " " + text));
    }

    void Report(const std::string &line) override { out_.push_back("report " + line); }

    UrcFilter urc_;
    CommandScheduler scheduler_{*this, urc_};
    int64_t now_ = 0;
    uint32_t nextSeq_ = 1;
    std::map<uint32_t, AtSrvMsg> open_;
    std::vector<std::string> out_;
};

void Play(const std::vector<Case> &cases, bool ready = true) {
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Harness harness(ready);
        for (size_t i = 0; i < c.steps.size(); ++i) {
            SCOPED_TRACE("step " + std::to_string(i + 1));
            EXPECT_EQ(harness.Feed(c.steps[i].in), c.steps[i].out);
        }
    }
}

// clang-format off
TEST(CommandScheduler, ServesOneCommandAtATimeInArrivalOrder) {
    Play({
        {"three requesters",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}}, {Req(3, "AT+C"), {}},
          {Line("A1"), {}}, {Line("OK"), {"1: 2 A1", "> AT+B"}},
          {Line("ERROR"), {"2: 5 ERROR", "> AT+C"}}, {Line("OK"), {"3: 2"}},
          {Req(1, "AT+D"), {"> AT+D"}}}},
        {"one requester twice",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(1, "AT+B"), {}},
          {Line("OK"), {"1: 2", "> AT+B"}}, {Line("OK"), {"1: 2"}}}},
        {"a command that cannot be sent is answered at once, a malformed record not at all",
         {{Req(1, "AT+A"), {"> AT+A"}}, {BadReq(2), {"2: 5 ERROR"}}, {Malformed(3), {}},
          {Line("OK"), {"1: 2"}}}},
    });
}

TEST(CommandScheduler, ReplyTextPerResultClass) {
    struct Row {
        std::vector<std::string> lines;  // the modem's answer to "AT+X"
        std::string reply;
    };
    constexpr size_t kRoom = AT_REPORT_STR_LEN - 1;
    const std::string fits(kRoom, 'a');
    const std::string head(kRoom / 2, 'b'), tail(kRoom - 2 - kRoom / 2, 'c');  // with CR LF: kRoom
    const Row rows[] = {
        {{"AT+X", "Maker", "OK"}, "1: 2 Maker"},
        {{"+X: 1", "+X: 2", "OK"}, "1: 2 +X: 1\r\n+X: 2"},
        {{"+X: 1", "OK \t"}, "1: 2 +X: 1"},
        // Look-alikes of final results are information lines.
        {{"OKAY", "ERRORS", "+CME ERROR 5", "NO CARRIER YET", "OK"},
         "1: 2 OKAY\r\nERRORS\r\n+CME ERROR 5\r\nNO CARRIER YET"},
        {{"AT+X", "+X: 1", "+CME ERROR: 10"}, "1: 3 +CME ERROR: 10"},
        {{"+CMS ERROR: 310"}, "1: 4 +CMS ERROR: 310"},
        {{"+X: 1", "ERROR"}, "1: 5 ERROR"}, {{"NO CARRIER"}, "1: 5 NO CARRIER"},
        {{"BUSY"}, "1: 5 BUSY"}, {{"NO ANSWER"}, "1: 5 NO ANSWER"},
        {{"NO DIALTONE"}, "1: 5 NO DIALTONE"},
        // Text that does not fit is cut at a line boundary; a line that no
        // reply holds fails the command, wherever it stands.
        {{fits, "c", "OK"}, "1: 2 " + fits},
        {{head, tail, "d", "OK"}, "1: 2 " + head + "\r\n" + tail},
        {{fits + "a", "OK"}, "1: 5 ERROR: reply line too long"},
        {{fits, "c", fits + "a", "OK"}, "1: 5 ERROR: reply line too long"},
        {{fits + "a", "+CME ERROR: 10"}, "1: 3 +CME ERROR: 10"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.reply.substr(0, 40));
        Harness harness(true);
        ASSERT_EQ(harness.Feed(Req(1, "AT+X")), std::vector<std::string>{"> AT+X"});
        std::vector<std::string> out;
        for (const std::string &line : row.lines) {
            for (std::string &o : harness.Feed(Line(line))) out.push_back(std::move(o));
        }
        EXPECT_EQ(out, std::vector<std::string>{row.reply});
    }
}

TEST(CommandScheduler, UnsolicitedLinesStayOutOfReplies) {
    const std::string pdu = "07911326040000F0040B911346610089F6";
    Play({
        {"a report in the middle of a reply",
         {{Req(1, "AT+X"), {"> AT+X"}}, {Line("+X: 1"), {}},
          {Line("^RSSI: 17"), {"report ^RSSI: 17"}},
          {Line("+X: 2"), {}}, {Line("OK"), {"1: 2 +X: 1\r\n+X: 2"}}}},
        {"an SMS report takes its PDU line along",
         {{Req(1, "AT+X"), {"> AT+X"}},
          {Line("+CMT: ,24"), {"report +CMT: ,24"}}, {Line(pdu), {"report " + pdu}},
          {Line("+X: 1"), {}}, {Line("OK"), {"1: 2 +X: 1"}}}},
        {"a prefix the expected response names is its reply",
         {{Req(1, "AT+X", 10, "^RSSI"), {"> AT+X"}}, {Line("^RSSI: 20"), {}},
          {Line("OK"), {"1: 2 ^RSSI: 20"}}}},
        {"a prefix the command line names is its reply, a longer name does not name it",
         {{Req(1, "AT+CGREG?"), {"> AT+CGREG?"}}, {Line("+CREG: 1"), {"report +CREG: 1"}},
          {Line("+CGREG: 1"), {}}, {Line("OK"), {"1: 2 +CGREG: 1"}}}},
        {"every line while nothing runs",
         {{Line("RING"), {"report RING"}}, {Line("+X: 1"), {"report +X: 1"}}}},
    });
}

TEST(CommandScheduler, ADroppedLineFailsTheCommandItInterrupts) {
    Play({
        {"an OK reply becomes an error; the next command is served normally",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}},
          {Line("A1"), {}}, {Dropped(5000), {}}, {Line("A2"), {}},
          {Line("OK"), {"1: 5 ERROR: reply line too long", "> AT+B"}},
          {Line("B1"), {}}, {Line("OK"), {"2: 2 B1"}}}},
        {"an error reply keeps the modem's result",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Dropped(3000), {}},
          {Line("+CME ERROR: 10"), {"1: 3 +CME ERROR: 10"}}}},
        {"a line dropped while nothing runs belongs to no command",
         {{Dropped(3000), {}}, {Req(1, "AT+A"), {"> AT+A"}}, {Line("OK"), {"1: 2"}}}},
        {"a line a report announced is the report's",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Line("+CMT: ,24"), {"report +CMT: ,24"}},
          {Dropped(3000), {}}, {Line("A1"), {}}, {Line("OK"), {"1: 2 A1"}}}},
        {"a line dropped while an aborted command drains fails nothing",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}},
          {Abort(1, "AT+A"), {"1: 14 AT_ABORTED"}}, {Dropped(3000), {}},
          {Line("OK"), {"> AT+B"}}, {Line("OK"), {"2: 2"}}}},
    });
}

TEST(CommandScheduler, AbortAnswersAbortedAndDiscardsLateLines) {
    Play({
        {"the running command: late lines are discarded until its final result",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}},
          {Abort(1, "AT+A"), {"1: 14 AT_ABORTED"}},
          {Line("A1"), {}}, {Line("^RSSI: 3"), {"report ^RSSI: 3"}},
          {Line("+CME ERROR: 100"), {"> AT+B"}}, {Line("B1"), {}}, {Line("OK"), {"2: 2 B1"}}}},
        {"the running command that never ends: the next one waits 2 s after the abort",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}}, {At(1000), {}},
          {Abort(1, "AT+A"), {"1: 14 AT_ABORTED"}},
          {At(2999), {}}, {At(3000), {"> AT+B"}}, {Line("OK"), {"2: 2"}}}},
        {"a queued request is withdrawn, the running one goes on",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}}, {Req(3, "AT+C"), {}},
          {Abort(2, "AT+B"), {"2: 14 AT_ABORTED"}},
          {Line("A1"), {}}, {Line("OK"), {"1: 2 A1", "> AT+C"}}, {Line("OK"), {"3: 2"}}}},
        {"an abort naming the running command takes it, whoever sends it",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}},
          {Abort(3, "AT+A"), {"1: 14 AT_ABORTED"}}, {Line("OK"), {"> AT+B"}}}},
        {"an abort that names nothing of its requester changes nothing",
         {{Abort(1, "AT+A"), {}}, {Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}},
          {Abort(3, "AT+C"), {}}, {Abort(2, "AT+X"), {}},
          {Line("OK"), {"1: 2", "> AT+B"}}, {Line("OK"), {"2: 2"}}}},
    });
}

TEST(CommandScheduler, ClearAnswersQueuedRequestsError) {
    Play({
        {"clear takes the requester's own queued requests only",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}}, {Req(3, "AT+C"), {}},
          {Req(2, "AT+D"), {}}, {Clear(2), {"2: 5 ERROR", "2: 5 ERROR"}},
          {Line("OK"), {"1: 2", "> AT+C"}}, {Line("OK"), {"3: 2"}}}},
        {"clear leaves the requester's running command alone",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(1, "AT+B"), {}}, {Req(2, "AT+C"), {}},
          {Clear(1), {"1: 5 ERROR"}}, {Line("A1"), {}}, {Line("OK"), {"1: 2 A1", "> AT+C"}}}},
        {"clear-all takes every queued request, whoever asks",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}}, {Req(3, "AT+C"), {}},
          {ClearAll(4), {"2: 5 ERROR", "3: 5 ERROR"}},
          {Line("OK"), {"1: 2"}}, {Req(4, "AT+D"), {"> AT+D"}}}},
        {"nothing queued", {{Clear(1), {}}, {ClearAll(1), {}}, {Req(1, "AT+A"), {"> AT+A"}}}},
    });
}

TEST(CommandScheduler, EmergencyRequestsGoAheadOfWaitingOnes) {
    const std::string start = "AT^ECLSTART=1,2,\"112\",3", msd = "AT^ECLMSD=\"0102\"";
    Play({
        {"after the command in progress, before earlier waiters, in arrival order among "
         "themselves; the others keep theirs",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}}, {Req(3, start), {}},
          {Req(4, "ATD01121234;"), {}}, {Req(5, msd), {}}, {Req(6, "ATD911;"), {}},
          {Req(7, "AT+C"), {}}, {Line("OK"), {"1: 2", "> " + start}}, {Req(8, "AT^ECLPUSH"), {}},
          {Line("OK"), {"3: 2", "> " + msd}}, {Line("OK"), {"5: 2", "> ATD911;"}},
          {Line("OK"), {"6: 2", "> AT^ECLPUSH"}}, {Line("OK"), {"8: 2", "> AT+B"}},
          {Line("OK"), {"2: 2", "> ATD01121234;"}}, {Line("OK"), {"4: 2", "> AT+C"}},
          {Line("OK"), {"7: 2"}}}},
        {"the late result of an aborted command is waited for first",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}},
          {Abort(1, "AT+A"), {"1: 14 AT_ABORTED"}}, {Req(3, "ATD112;"), {}},
          {Line("OK"), {"> ATD112;"}}, {Line("OK"), {"3: 2", "> AT+B"}}}},
        {"aborts and clears take waiting emergency requests like any other",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}}, {Req(2, "ATD112;"), {}},
          {Req(3, start), {}}, {Req(4, "AT^ECLSTOP"), {}}, {Req(5, "AT+C"), {}},
          {Clear(2), {"2: 5 ERROR", "2: 5 ERROR"}}, {Abort(3, start), {"3: 14 AT_ABORTED"}},
          {Line("OK"), {"1: 2", "> AT^ECLSTOP"}}, {Req(6, "AT^ECLABORT"), {}},
          {ClearAll(7), {"6: 5 ERROR", "5: 5 ERROR"}}, {Line("OK"), {"4: 2"}}}},
    });
    Play({{"requests that waited for the modem's answer",
           {{Up(), {"> AT"}}, {Req(1, "AT+A"), {}}, {Req(2, "ATD112;"), {}},
            {Line("OK"), {"> ATD112;"}}, {Line("OK"), {"2: 2", "> AT+A"}}}}},
         false);
}

TEST(CommandScheduler, GuardAbortsACommandTheModemNeverAnswers) {
    Play({
        {"the guard fires 3 s after the requester's timeout, the next command 2 s later",
         {{Req(1, "AT+A", 1), {"> AT+A"}}, {Req(2, "AT+B"), {}},
          {At(3999), {}}, {At(4000), {"1: 14 AT_ABORTED"}},
          {At(5999), {}}, {At(6000), {"> AT+B"}}, {Line("OK"), {"2: 2"}}}},
        {"the guard runs from the start of the command, not its arrival",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B", 1), {}}, {At(500), {}},
          {Line("OK"), {"1: 2", "> AT+B"}}, {At(4499), {}}, {At(4500), {"2: 14 AT_ABORTED"}}}},
        {"a negative timeout counts as none; a late final result ends the wait for it",
         {{Req(1, "AT+A", -5), {"> AT+A"}}, {Req(2, "AT+B"), {}},
          {At(2999), {}}, {At(3000), {"1: 14 AT_ABORTED"}}, {Line("OK"), {"> AT+B"}}}},
    });
}

TEST(CommandScheduler, LostPortAnswersEverythingError) {
    Play({
        {"running, queued and new requests",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Req(2, "AT+B"), {}},
          {Down(), {"1: 5 ERROR", "2: 5 ERROR"}}, {Req(3, "AT+C"), {"3: 5 ERROR"}},
          {Line("OK"), {}}, {At(10000), {}}}},
        {"a reopened port forgets the aborted command and a half-read report",
         {{Req(1, "AT+A"), {"> AT+A"}}, {Abort(1, "AT+A"), {"1: 14 AT_ABORTED"}},
          {Line("+CMT: ,24"), {"report +CMT: ,24"}},
          {Down(), {}}, {Up(), {"> AT"}}, {Line("OK"), {}}, {Req(2, "AT+B"), {"> AT+B"}}}},
    });
}

TEST(CommandScheduler, ProbesTheModemUntilItAnswers) {
    Play({
        {"requests wait for the modem's answer",
         {{Req(1, "AT+A"), {"1: 5 ERROR"}}, {Up(), {"> AT"}}, {Req(2, "AT+B"), {}},
          {Line("AT"), {}}, {Line("OK"), {"> AT+B"}}, {Line("OK"), {"2: 2"}}}},
        {"probes repeat every 500 ms; other answers and lines do not make it ready",
         {{Up(), {"> AT"}}, {Req(1, "AT+A"), {}}, {Line("ERROR"), {}},
          {Line("^RSSI: 9"), {"report ^RSSI: 9"}}, {At(499), {}}, {At(500), {"> AT"}},
          {Line("OK"), {"> AT+A"}}, {Line("OK"), {"1: 2"}}}},
        {"the modem answers late: answers to earlier probes do not end the first command",
         {{Up(), {"> AT"}}, {Req(1, "AT+A"), {}}, {At(500), {"> AT"}}, {At(1000), {"> AT"}},
          {Line("OK"), {}}, {Line("AT"), {}}, {Line("OK"), {}},
          {Line("OK"), {"> AT+A"}}, {Line("A1"), {}}, {Line("OK"), {"1: 2 A1"}}}},
        {"answers to earlier probes are waited for 500 ms at most",
         {{Up(), {"> AT"}}, {At(500), {"> AT"}}, {Line("OK"), {}}, {Req(1, "AT+A"), {}},
          {At(999), {}}, {At(1000), {"> AT+A"}}}},
        {"no answer within the window",
         {{Up(1200), {"> AT"}}, {Req(1, "AT+A"), {}},
          {At(500), {"> AT"}}, {At(1000), {"> AT"}}, {At(1199), {}},
          {At(1200), {"probe failed"}}, {Down(), {"1: 5 ERROR"}}}},
    }, false);
}
// clang-format on

}  // namespace
}  // namespace atserver::test
