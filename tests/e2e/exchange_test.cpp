// Exchanges through the whole road: library -> queues -> atserver -> pty ->
// atsim and back, checking the reply texts atserver builds.
#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

// With the modem's echo on, the replies must stay the same.
TEST_F(E2eTest, Exchange_ResultClassesAndReplyTexts) {
    const std::tuple<const char *, int32_t, std::string> cases[] = {
        {"AT+CGMI", AT_RET_OK, kManufacturer},
        {"ATE1", AT_RET_OK, ""},
        {"AT+CGDCONT?", AT_RET_OK, kPdpContexts},
        {"AT+CPIN=\"0000\"", AT_RET_CME_ERROR, "+CME ERROR: 16"},
        {"AT+CMGR=9", AT_RET_CMS_ERROR, "+CMS ERROR: 321"},
        {"AT+NOSUCHCOMMAND", AT_RET_ERROR, "ERROR"},
        {"ATD*99#", AT_RET_ERROR, "NO CARRIER"},
        {"ATE0", AT_RET_OK, ""},
    };
    for (const auto &[cmd, retVal, text] : cases) {
        const Exchange reply = Send(cmd);
        ASSERT_EQ(reply.status, 0) << cmd;
        EXPECT_EQ(reply.retVal, retVal) << cmd;
        EXPECT_EQ(reply.text, text) << cmd;
    }
}

TEST_F(E2eTest, Exchange_TooLongReplyIsCutAtALineBoundary) {
    // 63-character lines joined by CR LF: 23 of them (1493 characters) fit in
    // the 1531 characters of a reply, 24 would not.
    constexpr int kKept = 23;
    std::string expected = LongReplyLine(1);
    for (int n = 2; n <= kKept; ++n) expected += "\r\n" + LongReplyLine(n);
    const Exchange reply = Send("AT+E2ELONG");
    ASSERT_EQ(reply.status, 0);
    EXPECT_EQ(reply.text, expected);
    EXPECT_TRUE(
        server_->WaitForLog(std::to_string(kLongReplyLines - kKept) + " lines did not fit"));
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
                if (reply.status == 0 && reply.text == "+ECHOCMD: " + cmd) continue;
                if (wrong++ == 0) firstWrong[t] = cmd + " -> \"" + reply.text + "\"";
            }
        });
    }
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(wrong.load(), 0);
    for (const std::string &description : firstWrong) EXPECT_EQ(description, "");
}

// Without periodic unsolicited lines, the report file holds exactly the
// lines that atserver recognised as unsolicited.
class E2eQuietTest : public E2eTest {
  protected:
    std::vector<std::string> ServerArgs() const override { return {"--sim-arg", "--no-urc"}; }
};

TEST_F(E2eQuietTest, Unsolicited_KeptOutOfRepliesUnlessTheCommandNamesThem) {
    struct Case {
        const char *cmd;
        const char *prefix;
        std::string text;
        std::vector<std::string> reported;
    };
    const Case cases[] = {
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
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.cmd) + (c.prefix != nullptr ? c.prefix : ""));
        const Exchange reply = Send(c.cmd, 10, c.prefix);
        ASSERT_EQ(reply.status, 0);
        EXPECT_EQ(reply.retVal, AT_RET_OK);
        EXPECT_EQ(reply.text, c.text);
        reported.insert(reported.end(), c.reported.begin(), c.reported.end());
        std::ifstream in(server_->ReportPath());
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        EXPECT_EQ(lines, reported);
    }
}

}  // namespace
}  // namespace atapi::e2e
