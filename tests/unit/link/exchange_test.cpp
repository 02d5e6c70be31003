// The exchange against the in-process fake AT server: what goes on the wire,
// how replies are matched to requests, aborts and clears, and what is logged.

#include <cstring>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "isolated_runtime.h"
#include "link_test_util.h"
#include "platform/notify.h"
#include "scripted_modem.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr char kCmd[] = "AT+CGMI";
constexpr char kPrefix[] = "+CGMI";
constexpr char kReplyText[] = "+CGMI: \"Maker\"";

std::string CmdOf(const AtSrvMsg &msg) { return msg.sndRcvMsg.sMsg.atCmdStr; }

// The caller's record goes on the wire as given, with the seq stamped, and
// only the reply to that seq is taken. A failed exchange sends an abort
// (type 6) naming the command, stamped with the next seq; a successful one
// sends nothing more. (A reply that never comes, and a restarted server, are
// the end-to-end suite's.)
TEST(Exchange, ReplyMatchingAndAbortOnFailure) {
    struct Case {
        const char *name;
        int32_t seqOffset;
        uint32_t wireLength;
        bool lateReplyQueued;  // an old reply of this thread waits in the reply queue
        int32_t result;
    };
    constexpr uint32_t kAll = AT_SRV_MSG_SIZE;
    const Case cases[] = {
        {"late reply dropped first", 0, kAll, true, 0},
        {"only a stale reply", -1, kAll, false, -1},
        {"newer reply", 1, kAll, false, -1},
        {"short reply", 0, 1000, false, -1},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        Step reply = Fails(kCmd, AT_RET_CME_ERROR, kReplyText);
        reply.seqOffset = c.seqOffset;
        reply.wireLength = c.wireLength;
        ScriptedModem server(runtime, {reply});
        if (c.lateReplyQueued) {
            AtSrvMsg late = MakeRequest("AT+OLD", "+OLD");
            ASSERT_EQ(AtsMsgQueueExSend(server.SendQueueId(), &late, sizeof late, 0), 1);
        }
        AtSrvMsg msg = MakeRequest(kCmd, kPrefix, 1);
        EXPECT_EQ(GetDataFromAtServer(&msg), c.result);
        AtSrvMsg sent = MakeRequest(kCmd, kPrefix, 1);
        sent.seq = 1;
        ASSERT_EQ(server.Requests().size(), 1u);
        EXPECT_EQ(std::memcmp(&server.Requests()[0], &sent, sizeof sent), 0) << "on the wire";
        if (c.result == 0) {
            EXPECT_STREQ(msg.sndRcvMsg.rMsg.atName, kPrefix);
            EXPECT_EQ(msg.sndRcvMsg.rMsg.retVal, AT_RET_CME_ERROR) << "still an exchange";
            EXPECT_STREQ(msg.sndRcvMsg.rMsg.atReportStr, kReplyText);
            EXPECT_EQ(msg.sndRcvMsg.rMsg.atReportLen, static_cast<int32_t>(strlen(kReplyText)));
            EXPECT_EQ(g_atsMsgSeq, 2u) << "no abort request was stamped";
            continue;
        }
        ASSERT_TRUE(Eventually([&] { return !server.ControlRequests().empty(); }));
        const AtSrvMsg abort = server.ControlRequests().front();
        EXPECT_EQ(abort.reqType, AT_REQ_ABORT);
        EXPECT_EQ(abort.mtype, CurrentTid());
        EXPECT_EQ(abort.seq, 2u);
        EXPECT_EQ(abort.timeoutSec, 30);
        EXPECT_EQ(CmdOf(abort), kCmd);
    }
}

// A set command may carry a PIN: only queries reach the log, cut after the
// first '?'; the temperature poll is not logged at all.
TEST(Exchange, OnlyQueriesAreLogged) {
    struct Case {
        const char *cmd;
        const char *logged;  // null: no "queryCmd" line
        const char *hidden;  // must appear nowhere
    };
    const Case cases[] = {
        {"AT+CLCK=\"SC\",1,\"4321\"", nullptr, "4321"},
        {"AT+CGDCONT?;+CGACT?", "queryCmd = AT+CGDCONT?\n", "CGACT"},
        {"AT^CHIPTEMP?", nullptr, "CHIPTEMP"},
    };
    IsolatedRuntime runtime;
    ScriptedModem server(runtime, {Ok("AT")});
    AtSrvMsg warmUp = MakeRequest("AT");
    ASSERT_EQ(GetDataFromAtServer(&warmUp), 0);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.cmd);
        server.Expect({Ok(c.cmd)});
        TraceCapture trace;
        AtSrvMsg msg = MakeRequest(c.cmd, "+X");
        ASSERT_EQ(GetDataFromAtServer(&msg), 0);
        EXPECT_EQ(trace.Count(c.logged ? c.logged : "queryCmd = "), c.logged ? 1u : 0u);
        EXPECT_EQ(trace.All().find(c.hidden), std::string::npos);
    }
}

// Only the control types 6..8 are sent, carrying the text cut to its length
// or "AT"; they return without reading the reply queue.
TEST(AbortRequest, ControlTypesCarryTheTextCutToItsLength) {
    const std::string tooLong(AT_CMD_STR_LEN + 1, 'A');
    struct Case {
        uint32_t reqType;
        const char *cmd;
        uint32_t cmdLen;
        const char *sent;  // null: refused, nothing sent
    };
    const Case cases[] = {
        {5, "AT+COPS?", 8, nullptr}, {9, "AT+COPS?", 8, nullptr}, {6, "AT+COPS?", 4, "AT+C"},
        {7, nullptr, 8, "AT"},       {7, "AT+COPS?", 0, "AT"},    {8, tooLong.c_str(), 1541, "AT"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.reqType << " " << c.cmdLen);
        IsolatedRuntime runtime;
        ScriptedModem server(runtime);
        AtSrvMsg waiting = MakeRequest("AT");
        ASSERT_EQ(AtsMsgQueueExSend(server.SendQueueId(), &waiting, sizeof waiting, 0), 1);
        EXPECT_EQ(AtAbortAndClearAllCommand(c.reqType, c.cmd, c.cmdLen), c.sent ? 0 : -1);
        EXPECT_EQ(AtsMsgQueueNum(server.SendQueueId()), 1) << "reply queue untouched";
        if (c.sent == nullptr) {
            EXPECT_EQ(g_atsMsgSeq, 1u) << "nothing stamped";
            continue;
        }
        ASSERT_TRUE(Eventually([&] { return !server.ControlRequests().empty(); }));
        const AtSrvMsg m = server.ControlRequests().front();
        EXPECT_EQ(m.reqType, c.reqType);
        EXPECT_EQ(m.mtype, CurrentTid());
        EXPECT_EQ(CmdOf(m), c.sent);
    }
}

int32_t RecordNotify(void *ctx, int simple, uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    static_cast<std::vector<std::vector<uint32_t>> *>(ctx)->push_back(
        {static_cast<uint32_t>(simple), a, b, c, d});
    return 0;
}

// Requests left waiting in atserver's queue while nobody serves it: each
// requester gets an ERROR reply with the command text (maybe a PIN) gone, and
// the running command is asked to stop through a notification.
TEST(ClearAllAtCommands, EveryWaitingRequesterGetsAnErrorReply) {
    IsolatedRuntime runtime;
    runtime.CreateReadyFlag();
    runtime.WritePidFile("4321\n");
    ServerQueues queues;
    for (int32_t requester : {1000, 1001}) {
        AtSrvMsg request = MakeRequest("AT+CPIN=\"1234\"", "+CPIN");
        request.mtype = requester;
        request.seq = 70;
        ASSERT_EQ(AtsMsgQueueSend(queues.recv, &request, sizeof request), 1);
    }
    std::vector<std::vector<uint32_t>> posted;
    PlatformSetNotifySink(RecordNotify, &posted);
    EXPECT_EQ(ClearAllAtCommandsInQueue(), 0);
    PlatformSetNotifySink(nullptr, nullptr);
    EXPECT_EQ(posted, (std::vector<std::vector<uint32_t>>{{1, 31, 55023, 0, 0}}));
    EXPECT_EQ(AtsMsgQueueNum(queues.recv), 0);
    for (int32_t requester : {1000, 1001}) {
        AtSrvMsg reply;
        ASSERT_EQ(AtsMsgQueueExRecv(queues.send, &reply, sizeof reply, 0, requester),
                  AT_SRV_MSG_PAYLOAD);
        const AtSrvRcvMsg &r = reply.sndRcvMsg.rMsg;
        EXPECT_EQ(reply.seq, 70u);
        EXPECT_STREQ(r.atName, "+CPIN");
        EXPECT_EQ(r.retVal, AT_RET_ERROR);
        EXPECT_EQ(r.atReportLen, 5);
        EXPECT_EQ(std::string(r.atReportStr, AT_REPORT_STR_LEN),
                  "ERROR" + std::string(AT_REPORT_STR_LEN - 5, '\0'));
    }
}

}  // namespace
}  // namespace atapi::test
