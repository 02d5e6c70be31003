// The exchange against the in-process fake AT server: what goes on the wire,
// how replies are matched to requests, and when an abort request follows.

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "atapi/at_link.h"
#include "fake_at_server.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"
#include "link/at_lib_state.h"
#include "link_test_util.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr char kCmd[] = "AT+CGMI";
constexpr char kPrefix[] = "+CGMI";
constexpr char kReplyText[] = "+CGMI: \"Maker\"";

std::string CmdOf(const AtSrvMsg &msg) { return msg.sndRcvMsg.sMsg.atCmdStr; }

TEST(Exchange, RecordOnTheWireAndReplyCopiedBack) {
    IsolatedRuntime runtime;
    FakeAtServer server(runtime);
    server.SetDefaultReply({AT_RET_OK, kReplyText});
    for (uint32_t expectedSeq = 1; expectedSeq <= 3; ++expectedSeq) {
        SCOPED_TRACE(expectedSeq);
        AtSrvMsg msg = MakeRequest(kCmd, kPrefix, 7);
        msg.multiRsp = 1;
        ASSERT_EQ(GetDataFromAtServer(&msg), 0);
        EXPECT_EQ(msg.seq, expectedSeq);
        EXPECT_EQ(msg.mtype, CurrentTid());
        EXPECT_STREQ(msg.sndRcvMsg.rMsg.atName, kPrefix);
        EXPECT_EQ(msg.sndRcvMsg.rMsg.retVal, AT_RET_OK);
        EXPECT_STREQ(msg.sndRcvMsg.rMsg.atReportStr, kReplyText);
        EXPECT_EQ(msg.sndRcvMsg.rMsg.atReportLen, static_cast<int32_t>(strlen(kReplyText)));
    }
    const auto requests = server.Requests();
    ASSERT_EQ(requests.size(), 3u);
    for (uint32_t i = 0; i < requests.size(); ++i) {
        const AtSrvMsg &m = requests[i];
        EXPECT_EQ(m.mtype, CurrentTid());
        EXPECT_EQ(m.seq, i + 1);
        EXPECT_EQ(m.reqType, AT_REQ_COMMAND);
        EXPECT_EQ(m.reserved1, 0u);
        EXPECT_EQ(m.reserved2, 0u);
        EXPECT_EQ(m.reserved3, 0u);
        EXPECT_EQ(m.multiRsp, 1u);
        EXPECT_EQ(m.timeoutSec, 7);
        EXPECT_STREQ(m.sndRcvMsg.sMsg.atName, kPrefix);
        EXPECT_EQ(CmdOf(m), kCmd);
    }
    EXPECT_EQ(g_atsMsgSeq, 4u);
    EXPECT_EQ(g_atsRecvMsgQueueId, server.RecvQueueId());
    EXPECT_EQ(g_atsSendMsgQueueId, server.SendQueueId());
    EXPECT_TRUE(server.ControlRequests().empty());
    EXPECT_TRUE(server.Mismatches().empty());
}

TEST(Exchange, ReplyMatchingAndAbortOnFailure) {
    struct Case {
        const char *name;
        ScriptedReply reply;
        bool lateReplyQueued;  // an old reply of this thread waits in the reply queue
        int32_t timeoutSec;
        int32_t result;
        std::vector<std::string> logs;
    };
    ScriptedReply ok{AT_RET_OK, kReplyText};
    ScriptedReply cmeError{AT_RET_CME_ERROR, "+CME ERROR: 10"};
    ScriptedReply stale = ok;
    stale.seqOffset = -1;
    ScriptedReply newer = ok;
    newer.seqOffset = 1;
    ScriptedReply silent = ok;
    silent.silent = true;
    ScriptedReply shortReply = ok;
    shortReply.wireLength = 1000;
    const std::vector<Case> cases = {
        {"ok", ok, false, 30, 0, {}},
        {"error class is still an exchange", cmeError, false, 30, 0, {}},
        {"late reply dropped first", ok, true, 30, 0, {"Error:Msg seq error\n"}},
        {"only a stale reply",
         stale,
         false,
         1,
         -1,
         {"Error:Msg seq error\n", "There is no Message in the queue, at name =[]\n"}},
        {"newer reply", newer, false, 30, -1, {"Error:tmp_msg.seq = 2, pmsg->seq =1\n"}},
        {"no reply", silent, false, 1, -1, {"There is no Message in the queue, at name =[]\n"}},
        {"short reply", shortReply, false, 30, -1, {"Message length is not enough\n"}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        FakeAtServer server(runtime);
        server.Script({{kCmd, c.reply}});
        if (c.lateReplyQueued) {
            AtSrvMsg late = MakeRequest("AT+OLD", "+OLD");
            late.sndRcvMsg.rMsg.retVal = AT_RET_OK;
            ASSERT_EQ(AtsMsgQueueExSend(server.SendQueueId(), &late, sizeof late, 0), 1);
        }
        TraceCapture trace;
        AtSrvMsg msg = MakeRequest(kCmd, kPrefix, c.timeoutSec);
        EXPECT_EQ(GetDataFromAtServer(&msg), c.result);
        for (const auto &line : c.logs) EXPECT_EQ(trace.Count(line), 1u) << line;
        EXPECT_TRUE(server.Mismatches().empty());

        if (c.result == 0) {
            EXPECT_EQ(msg.seq, 1u);
            EXPECT_STREQ(msg.sndRcvMsg.rMsg.atName, kPrefix);
            EXPECT_EQ(msg.sndRcvMsg.rMsg.retVal, c.reply.retVal);
            EXPECT_EQ(std::string(msg.sndRcvMsg.rMsg.atReportStr), c.reply.text);
            EXPECT_EQ(g_atsMsgSeq, 2u) << "no abort request was stamped";
            continue;
        }
        EXPECT_EQ(g_atsMsgSeq, 3u) << "the abort request took the next seq";
        ASSERT_TRUE(Eventually([&] { return !server.ControlRequests().empty(); }));
        const AtSrvMsg abort = server.ControlRequests().front();
        EXPECT_EQ(abort.reqType, AT_REQ_ABORT);
        EXPECT_EQ(abort.mtype, CurrentTid());
        EXPECT_EQ(abort.seq, 2u);
        EXPECT_EQ(abort.timeoutSec, 30);
        EXPECT_EQ(CmdOf(abort), kCmd) << "the abort names the command that failed";
    }
}

TEST(Exchange, ControlTypesReturnWithoutReadingTheReplyQueue) {
    for (uint32_t reqType : {AT_REQ_ABORT, AT_REQ_CLEAR, AT_REQ_CLEAR_ALL}) {
        SCOPED_TRACE(reqType);
        IsolatedRuntime runtime;
        FakeAtServer server(runtime);
        AtSrvMsg waiting = MakeRequest("AT", "");
        ASSERT_EQ(AtsMsgQueueExSend(server.SendQueueId(), &waiting, sizeof waiting, 0), 1);
        TraceCapture trace;
        AtSrvMsg msg = MakeRequest("AT+COPS?", "");
        msg.reqType = reqType;
        EXPECT_EQ(GetDataFromAtServer(&msg), 0);
        EXPECT_TRUE(trace.Contains("reqType: " + std::to_string(reqType) + " has sent to ats\n"));
        EXPECT_EQ(AtsMsgQueueNum(server.SendQueueId()), 1) << "reply queue untouched";
        EXPECT_EQ(CmdOf(msg), "AT+COPS?") << "record not cleared";
        ASSERT_TRUE(Eventually([&] { return server.ControlRequests().size() == 1; }));
        EXPECT_EQ(server.ControlRequests().front().reqType, reqType);
    }
}

TEST(Exchange, ThreadsGetTheirOwnReplies) {
    constexpr int kThreads = 16;
    constexpr int kPerThread = 10;
    IsolatedRuntime runtime;
    FakeAtServer server(runtime);
    std::vector<std::thread> threads;
    std::vector<int> failures(kThreads, 0);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &failures] {
            for (int i = 0; i < kPerThread; ++i) {
                const std::string tag = std::to_string(t) + "_" + std::to_string(i);
                AtSrvMsg msg = MakeRequest("AT+T" + tag, "T" + tag);
                const int32_t tid = msg.mtype;
                const bool own = GetDataFromAtServer(&msg) == 0 && msg.mtype == tid &&
                                 msg.sndRcvMsg.rMsg.atName == "T" + tag;
                if (!own) ++failures[t];
            }
        });
    }
    for (auto &th : threads) th.join();
    for (int t = 0; t < kThreads; ++t) EXPECT_EQ(failures[t], 0) << "thread " << t;
    EXPECT_EQ(server.Requests().size(), size_t{kThreads * kPerThread});
}

TEST(Exchange, RestartedServerIsFound) {
    for (bool forget : {true, false}) {
        SCOPED_TRACE(forget ? "after AtMicResetAtsTaskId" : "through the send retry");
        IsolatedRuntime runtime;
        auto first = std::make_unique<FakeAtServer>(runtime);
        AtSrvMsg msg = MakeRequest(kCmd, kPrefix);
        ASSERT_EQ(GetDataFromAtServer(&msg), 0);
        first->Stop();
        first.reset();

        FakeAtServer second(runtime);
        if (forget) AtMicResetAtsTaskId();
        TraceCapture trace;
        msg = MakeRequest(kCmd, kPrefix);
        EXPECT_EQ(GetDataFromAtServer(&msg), 0);
        EXPECT_EQ(second.Requests().size(), 1u);
        EXPECT_EQ(g_atsRecvMsgQueueId, second.RecvQueueId());
        EXPECT_EQ(g_atsSendMsgQueueId, second.SendQueueId());
        EXPECT_EQ(trace.Count("SendToMsgQueue retcode = <"), forget ? 0u : 1u);
    }
}

TEST(Exchange, SecretsAndTemperaturePollStayOutOfTheLog) {
    IsolatedRuntime runtime;
    FakeAtServer server(runtime);
    AtSrvMsg warmUp = MakeRequest("AT");
    ASSERT_EQ(GetDataFromAtServer(&warmUp), 0);

    TraceCapture trace;
    AtSrvMsg pin = MakeRequest("AT+CPIN=\"1234\"", "+CPIN");
    ASSERT_EQ(GetDataFromAtServer(&pin), 0);
    EXPECT_TRUE(trace.Contains("send to atserver:\n"));
    EXPECT_EQ(trace.All().find("1234"), std::string::npos);

    trace.Clear();
    AtSrvMsg temp = MakeRequest("AT^CHIPTEMP?", "^CHIPTEMP");
    ASSERT_EQ(GetDataFromAtServer(&temp), 0);
    EXPECT_TRUE(trace.Lines().empty()) << trace.All();
}

TEST(ReadCmdFromMsgQueue, LogsQueriesOnly) {
    struct Case {
        const char *cmd;
        const char *logged;  // null: nothing
    };
    const Case cases[] = {
        {"AT+CPIN=\"1234\"", nullptr},
        {"AT+CLCK=\"SC\",1,\"4321\"", nullptr},
        {"ATI", nullptr},
        {nullptr, nullptr},
        {"AT^CHIPTEMP?", nullptr},
        {"AT+CPIN?", "queryCmd = AT+CPIN?\n"},
        {"AT+COPS=?", "queryCmd = AT+COPS=?\n"},
        {"AT+CGDCONT?;+CGACT?", "queryCmd = AT+CGDCONT?\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.cmd != nullptr ? c.cmd : "null");
        TraceCapture trace;
        AtReadCmdFromMsgQueue(c.cmd);
        const auto lines = trace.Lines();
        if (c.logged == nullptr) {
            EXPECT_TRUE(lines.empty()) << trace.All();
        } else {
            ASSERT_EQ(lines.size(), 1u);
            EXPECT_EQ(lines[0].text, c.logged);
            EXPECT_EQ(lines[0].source, "atapi/src/at_lib");
        }
    }
}

TEST(AbortRequest, TypeAndTextOfTheRequest) {
    const std::string longCmd(1600, 'A');
    struct Case {
        const char *name;
        uint32_t reqType;
        const char *cmd;
        uint32_t cmdLen;
        int32_t result;
        const char *sent;  // null: nothing sent
    };
    const Case cases[] = {
        {"type 5", 5, "AT+COPS?", 8, -1, nullptr},
        {"type 9", 9, "AT+COPS?", 8, -1, nullptr},
        {"abort with text", 6, "AT+COPS?", 8, 0, "AT+COPS?"},
        {"length cuts the text", 6, "AT+COPS?", 4, 0, "AT+C"},
        {"null text", 6, nullptr, 0, 0, "AT"},
        {"zero length", 7, "AT+COPS?", 0, 0, "AT"},
        {"length above the buffer", 8, longCmd.c_str(), 1541, 0, "AT"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        FakeAtServer server(runtime);
        TraceCapture trace;
        EXPECT_EQ(AtAbortAndClearAllCommand(c.reqType, c.cmd, c.cmdLen), c.result);
        EXPECT_TRUE(trace.Contains("------ Enter AT_abort_cur_command\n"));
        if (c.sent == nullptr) {
            EXPECT_TRUE(trace.Contains("reqType: " + std::to_string(c.reqType) +
                                       " is not a abort or clear type!!!\n"));
            EXPECT_EQ(g_atsMsgSeq, 1u) << "nothing stamped";
            continue;
        }
        EXPECT_TRUE(trace.Contains("AT_abort_all_command out, ret=0\n"));
        ASSERT_TRUE(Eventually([&] { return !server.ControlRequests().empty(); }));
        const AtSrvMsg m = server.ControlRequests().front();
        EXPECT_EQ(m.reqType, c.reqType);
        EXPECT_EQ(m.mtype, CurrentTid());
        EXPECT_EQ(m.timeoutSec, 30);
        EXPECT_EQ(m.multiRsp, 0u);
        EXPECT_EQ(m.reserved2, 0u);
        EXPECT_EQ(CmdOf(m), c.sent);
    }
}

}  // namespace
}  // namespace atapi::test
