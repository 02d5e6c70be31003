// Clearing the server's request queue, and the modem trace switch.

#include <cstring>
#include <string>
#include <vector>

#include "atapi/at_link.h"
#include "fake_at_server.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"
#include "link_test_util.h"
#include "notify.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

struct Notification {
    int simple;
    uint32_t a, b, c, d;
};

class NotifyCapture {
  public:
    NotifyCapture() { PlatformSetNotifySink(&NotifyCapture::Sink, this); }
    ~NotifyCapture() { PlatformSetNotifySink(nullptr, nullptr); }
    std::vector<Notification> posted;

  private:
    static int32_t Sink(void *ctx, int simple, uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
        static_cast<NotifyCapture *>(ctx)->posted.push_back({simple, a, b, c, d});
        return 0;
    }
};

// Requests left waiting in atserver's queue while nobody serves it.
TEST(ClearAllAtCommands, EveryWaitingRequesterGetsAnErrorReply) {
    for (int waiting : {0, 1, 3}) {
        SCOPED_TRACE(waiting);
        IsolatedRuntime runtime;
        runtime.CreateReadyFlag();
        runtime.WritePidFile("4321\n");
        const int recvQid = AtsMsgQueueCreate(2, 10, AT_SRV_MSG_SIZE);
        const int sendQid = AtsMsgQueueCreate(1, 10, AT_SRV_MSG_SIZE);
        ASSERT_NE(recvQid, -1);
        ASSERT_NE(sendQid, -1);
        for (int i = 0; i < waiting; ++i) {
            AtSrvMsg request = MakeRequest("AT+CPIN=\"1234\"", "+N" + std::to_string(i));
            request.mtype = 1000 + i;
            request.seq = 70 + i;
            ASSERT_EQ(AtsMsgQueueSend(recvQid, &request, sizeof request), 1);
        }

        NotifyCapture notify;
        TraceCapture trace;
        EXPECT_EQ(ClearAllAtCommandsInQueue(), 0);
        EXPECT_EQ(trace.Count("Clear all AT\n"), static_cast<size_t>(waiting));
        EXPECT_TRUE(trace.Contains("ATs rcv id <" + std::to_string(recvQid) + ">\n"));
        EXPECT_EQ(AtsMsgQueueNum(recvQid), 0);
        EXPECT_EQ(AtsMsgQueueNum(sendQid), waiting);
        for (int i = 0; i < waiting; ++i) {
            AtSrvMsg reply;
            ASSERT_EQ(AtsMsgQueueExRecv(sendQid, &reply, sizeof reply, 0, 1000 + i),
                      AT_SRV_MSG_PAYLOAD);
            EXPECT_EQ(reply.seq, 70u + i);
            EXPECT_EQ(reply.sndRcvMsg.rMsg.atName, "+N" + std::to_string(i));
            EXPECT_EQ(reply.sndRcvMsg.rMsg.retVal, AT_RET_ERROR);
            EXPECT_EQ(reply.sndRcvMsg.rMsg.atReportLen, 5);
            EXPECT_STREQ(reply.sndRcvMsg.rMsg.atReportStr, "ERROR");
            const char *rest = reply.sndRcvMsg.rMsg.atReportStr + 5;
            EXPECT_EQ(std::string(rest, AT_REPORT_STR_LEN - 5),
                      std::string(AT_REPORT_STR_LEN - 5, '\0'))
                << "the command text is gone";
        }
        ASSERT_EQ(notify.posted.size(), 1u);
        const Notification &n = notify.posted[0];
        EXPECT_EQ(n.simple, 1);
        EXPECT_EQ(n.a, 31u);
        EXPECT_EQ(n.b, 55023u);
        EXPECT_EQ(n.c, 0u);
        EXPECT_EQ(n.d, 0u);
        AtsMsgQueueDelete(recvQid);
        AtsMsgQueueDelete(sendQid);
    }
}

TEST(ClearAllAtCommands, FailsWhenAReplyCannotBeSent) {
    IsolatedRuntime runtime;
    runtime.CreateReadyFlag();
    runtime.WritePidFile("4321\n");
    const int recvQid = AtsMsgQueueCreate(2, 10, AT_SRV_MSG_SIZE);
    ASSERT_NE(recvQid, -1);
    AtSrvMsg request = MakeRequest("AT+CSQ");
    ASSERT_EQ(AtsMsgQueueSend(recvQid, &request, sizeof request), 1);

    NotifyCapture notify;
    TraceCapture trace;
    EXPECT_EQ(ClearAllAtCommandsInQueue(), -1);
    EXPECT_TRUE(trace.Contains("SendToMsgQueue the cmd rsp error,retcode = <"));
    EXPECT_TRUE(notify.posted.empty());
    AtsMsgQueueDelete(recvQid);
}

TEST(TraceOn, SendsTheSwitchAndMapsTheResult) {
    struct Case {
        uint32_t on;
        ScriptedReply reply;
        int32_t result;
        const char *sent;  // null: nothing sent
    };
    const Case cases[] = {
        {1, {AT_RET_OK, ""}, 0, "AT^TRACEON=1"},
        {0, {AT_RET_OK, ""}, 0, "AT^TRACEON=0"},
        {1, {AT_RET_ERROR, "ERROR"}, -1, "AT^TRACEON=1"},
        {0, {AT_RET_CME_ERROR, "+CME ERROR: 10"}, -1, "AT^TRACEON=0"},
        {2, {AT_RET_OK, ""}, -1, nullptr},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.on);
        IsolatedRuntime runtime;
        FakeAtServer server(runtime);
        server.SetDefaultReply(c.reply);
        EXPECT_EQ(AtTraceOn(c.on), c.result);
        const auto requests = server.Requests();
        if (c.sent == nullptr) {
            EXPECT_TRUE(requests.empty());
            continue;
        }
        ASSERT_EQ(requests.size(), 1u);
        EXPECT_STREQ(requests[0].sndRcvMsg.sMsg.atCmdStr, c.sent);
        EXPECT_STREQ(requests[0].sndRcvMsg.sMsg.atName, "");
    }
}

}  // namespace
}  // namespace atapi::test
