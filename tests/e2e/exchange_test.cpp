// Exchanges through the whole road: library -> queues -> atserver -> pty ->
// atsim and back, checking the reply texts atserver builds.
#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

struct ReplyCase {
    const char *cmd;
    int32_t retVal;
    std::string text;
};

TEST_F(E2eTest, Exchange_ResultClassesAndReplyTexts) {
    const ReplyCase cases[] = {
        {"AT+CGMI", AT_RET_OK, kManufacturer},
        {"AT+CGDCONT?", AT_RET_OK, kPdpContexts},
        {"AT", AT_RET_OK, ""},
        {"AT+CPIN=\"0000\"", AT_RET_CME_ERROR, "+CME ERROR: 16"},
        {"AT+CMGR=9", AT_RET_CMS_ERROR, "+CMS ERROR: 321"},
        {"AT+NOSUCHCOMMAND", AT_RET_ERROR, "ERROR"},
        {"ATD*99#", AT_RET_ERROR, "NO CARRIER"},
    };
    for (const ReplyCase &c : cases) {
        SCOPED_TRACE(c.cmd);
        const Exchange reply = Send(c.cmd);
        ASSERT_EQ(reply.status, 0);
        EXPECT_EQ(reply.retVal, c.retVal);
        EXPECT_EQ(reply.text, c.text);
        EXPECT_EQ(reply.reportLen, static_cast<int32_t>(reply.text.size()));
    }
}

TEST_F(E2eTest, Exchange_EchoIsKeptOutOfReplies) {
    ASSERT_EQ(Send("ATE1").retVal, AT_RET_OK);
    const Exchange single = Send("AT+CGMI");
    const Exchange rows = Send("AT+CGDCONT?");
    const Exchange error = Send("AT+NOSUCHCOMMAND");
    ASSERT_EQ(Send("ATE0").retVal, AT_RET_OK);

    EXPECT_EQ(single.text, kManufacturer);
    EXPECT_EQ(rows.text, kPdpContexts);
    EXPECT_EQ(error.text, "ERROR");
}

// Unsolicited lines every 50 ms run between the replies all the while.
class E2eBusyTest : public E2eTest {
  protected:
    std::vector<std::string> ServerArgs() const override {
        return {"--sim-arg", "--urc-interval-ms", "--sim-arg", "50"};
    }
};

TEST_F(E2eBusyTest, Exchange_ConcurrentThreadsEachGetTheirOwnReplies) {
    constexpr int kThreads = 16;
    constexpr int kCommandsPerThread = 200;
    std::atomic<int> wrong{0};
    std::vector<std::string> firstWrong(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &wrong, &firstWrong] {
            for (int i = 0; i < kCommandsPerThread; ++i) {
                const std::string cmd = "AT+ECHOCMD=" + std::to_string(t) + "," + std::to_string(i);
                const Exchange reply = Send(cmd, 30);
                if (reply.status != 0 || reply.retVal != AT_RET_OK ||
                    reply.text != "+ECHOCMD: " + cmd) {
                    ++wrong;
                    if (firstWrong[t].empty()) {
                        firstWrong[t] = cmd + " -> status " + std::to_string(reply.status) +
                                        ", class " + std::to_string(reply.retVal) + ", \"" +
                                        reply.text + "\"";
                    }
                }
            }
        });
    }
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(wrong.load(), 0);
    for (const std::string &description : firstWrong) {
        EXPECT_TRUE(description.empty()) << description;
    }
}

// Without periodic unsolicited lines, the report file holds exactly the
// lines that atserver recognised as unsolicited.
class E2eQuietTest : public E2eTest {
  protected:
    std::vector<std::string> ServerArgs() const override { return {"--sim-arg", "--no-urc"}; }
};

std::vector<std::string> ReportLines(const std::string &path) {
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

struct UrcCase {
    const char *cmd;
    const char *prefix;
    std::string text;
    std::vector<std::string> reported;
};

TEST_F(E2eQuietTest, Unsolicited_KeptOutOfRepliesUnlessTheCommandNamesThem) {
    const UrcCase cases[] = {
        {"AT+URCMID", nullptr, "+URCMID: 1\r\n+URCMID: 2", {"^RSSI: 17"}},
        {"AT+CREG?", nullptr, "+CREG: 2,1,\"00C3\",\"0000A1B2\"", {}},
        {"AT+E2ERSSI", "^RSSI", "^RSSI: 20", {}},
        {"AT+E2ERSSI", nullptr, "", {"^RSSI: 20"}},
        {"AT+E2ESMS",
         nullptr,
         "+E2ESMS: 1\r\n+E2ESMS: 2",
         {"+CMT: ,24",
          "07911326040000F0040B911346610089F60000208062917314080CC8F71D14969741F977FD07"}},
    };
    std::vector<std::string> reported;
    for (const UrcCase &c : cases) {
        SCOPED_TRACE(std::string(c.cmd) + (c.prefix != nullptr ? c.prefix : ""));
        const Exchange reply = Send(c.cmd, 10, c.prefix);
        ASSERT_EQ(reply.status, 0);
        EXPECT_EQ(reply.retVal, AT_RET_OK);
        EXPECT_EQ(reply.text, c.text);
        reported.insert(reported.end(), c.reported.begin(), c.reported.end());
        EXPECT_EQ(ReportLines(server_->ReportPath()), reported);
    }
}

TEST_F(E2eQuietTest, Unsolicited_LinesWhileIdleGoToTheReport) {
    // Call progress arrives after the dial's reply, while nothing runs.
    const Exchange dial = Send("ATD0123456789;");
    ASSERT_EQ(dial.status, 0);
    EXPECT_EQ(dial.retVal, AT_RET_OK);
    EXPECT_EQ(dial.text, "");
    ASSERT_TRUE(server_->WaitForLog("unsolicited: ^CONN: 1,0"));
    EXPECT_EQ(ReportLines(server_->ReportPath()),
              (std::vector<std::string>{"^ORIG: 1,0", "^CONF: 1", "^CONN: 1,0"}));
}

TEST_F(E2eTest, Exchange_TooLongReplyIsCutAtALineBoundary) {
    // 63-character lines joined by CR LF: 23 of them (1493 characters) fit in
    // the 1531 characters of a reply, 24 would not.
    constexpr int kKept = 23;
    std::string expected = LongReplyLine(1);
    for (int n = 2; n <= kKept; ++n) expected += "\r\n" + LongReplyLine(n);

    const Exchange reply = Send("AT+E2ELONG");
    ASSERT_EQ(reply.status, 0);
    EXPECT_EQ(reply.retVal, AT_RET_OK);
    EXPECT_EQ(reply.text, expected);
    EXPECT_EQ(reply.reportLen, static_cast<int32_t>(expected.size()));
    EXPECT_TRUE(
        server_->WaitForLog(std::to_string(kLongReplyLines - kKept) + " lines did not fit"));
}

}  // namespace
}  // namespace atapi::e2e
