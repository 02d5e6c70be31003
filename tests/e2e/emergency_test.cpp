// Emergency requests overtake a flood of ordinary ones. The proof is the
// order in which the modem received the commands (atsim --verbose logs each
// into atserver's log), never elapsed time.
#include <algorithm>
#include <atomic>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

constexpr int kFloodThreads = 16;
constexpr char kQuery[] = "AT+E2EQUERY=";  // answered after 60 ms
constexpr char kQueuedMark[] = "emergency request \"";
constexpr char kAheadMark[] = "goes ahead of ";
constexpr char kSimMark[] = "atsim: \"";

// An own list of emergency numbers, which replaces the default one.
class EmergencyOrderTest : public E2eTest {
  protected:
    std::vector<std::string> ServerArgs() const override {
        return {"--sim-arg", "--verbose", "--emergency-numbers", "999,+112"};
    }
};

// The log in the order it was written: atserver's line for each emergency
// request it queued, and atsim's line for each command the modem received.
struct LogEvent {
    bool queued;       // else a command reached the modem
    std::string text;  // the command (as the modem got it, or as atserver logs it)
    size_t passed = 0;
};

std::vector<LogEvent> ReadEvents(const std::string &log) {
    std::vector<LogEvent> events;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        if (const size_t at = line.find(kQueuedMark); at != std::string::npos) {
            const size_t start = at + sizeof kQueuedMark - 1;
            const size_t ahead = line.find(kAheadMark);
            events.push_back({true, line.substr(start, line.find('"', start) - start),
                              ahead == std::string::npos
                                  ? 0
                                  : std::stoul(line.substr(ahead + sizeof kAheadMark - 1))});
        } else if (line.starts_with(kSimMark)) {
            const size_t start = sizeof kSimMark - 1;
            events.push_back({false, line.substr(start, line.rfind("\" -> ") - start)});
        }
    }
    return events;
}

size_t Count(const std::string &log, bool queued, const std::string &head) {
    const std::vector<LogEvent> events = ReadEvents(log);
    return std::count_if(events.begin(), events.end(), [&](const LogEvent &e) {
        return e.queued == queued && e.text.starts_with(head);
    });
}

TEST_F(EmergencyOrderTest, Flood_EmergencyCommandsGoRightAfterTheCommandInProgress) {
    // What atserver's log shows for each emergency command (see LoggableCommand).
    const struct {
        std::string cmd;
        std::string logged;
    } emergencies[] = {{"ATD999;", "ATD..."}, {"AT^ECLSTART=1,2,\"112\",3", "AT^ECLSTART=..."}};

    std::atomic<bool> stop{false};
    std::vector<std::thread> flood;
    for (int t = 0; t < kFloodThreads; ++t) {
        flood.emplace_back([&, t] {
            for (int n = 0; !stop; ++n) {
                const std::string tag = std::to_string(t) + "," + std::to_string(n);
                const Exchange reply = Send(kQuery + tag);
                EXPECT_EQ(reply.status, 0) << tag;
                EXPECT_EQ(reply.text, "+E2EQUERY: " + tag);
            }
        });
    }
    // The flood is in full swing once every thread has been served twice.
    EXPECT_TRUE(WaitUntil([&] { return Count(server_->Log(), false, kQuery) >= 2 * kFloodThreads; },
                          std::chrono::seconds(30)));
    // The modem's answer (which the shipped scenario decides) is not at
    // stake, only that one comes.
    for (const auto &emergency : emergencies) {
        EXPECT_EQ(Send(emergency.cmd).status, 0) << emergency.cmd;
    }
    stop = true;
    for (std::thread &thread : flood) thread.join();

    const std::vector<LogEvent> events = ReadEvents(server_->Log());
    for (const auto &emergency : emergencies) {
        SCOPED_TRACE(emergency.cmd);
        const auto queued = std::find_if(events.begin(), events.end(), [&](const LogEvent &e) {
            return e.queued && e.text == emergency.logged;
        });
        ASSERT_NE(queued, events.end()) << server_->Log();
        EXPECT_GE(queued->passed, 1u) << "nothing was waiting: the flood did not hold the queue";
        // The command in progress when it was queued may still reach the
        // modem's log after that line; the emergency command comes next.
        std::vector<std::string> received;
        for (auto it = queued + 1; it != events.end(); ++it) {
            if (!it->queued) received.push_back(it->text);
        }
        const auto at = std::find(received.begin(), received.end(), emergency.cmd);
        ASSERT_NE(at, received.end());
        EXPECT_LE(at - received.begin(), 1)
            << "commands before it: " << received[0] << ", " << received[1];
    }

    // Only the list's numbers are emergency ones.
    for (const auto &[cmd, emergency] : {std::pair{"ATD112;", false}, {"ATD+112;", true}}) {
        const size_t before = Count(server_->Log(), true, "ATD");
        EXPECT_EQ(Send(cmd).status, 0) << cmd;
        EXPECT_EQ(Count(server_->Log(), true, "ATD") - before, emergency ? 1u : 0u) << cmd;
    }
}

}  // namespace
}  // namespace atapi::e2e
