// The end-to-end world: a private runtime root, the real atserver (with atsim
// on a pseudo-terminal) as a child process, and the library in this process.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "atapi/at_types.h"
#include "isolated_runtime.h"

namespace atapi::e2e {

// Result of one exchange through GetDataFromAtServer.
struct Exchange {
    int32_t status = -1;  // GetDataFromAtServer's result
    int32_t retVal = 0;   // meaningful when status is 0
    std::string text;
    int32_t reportLen = -1;
};

Exchange Send(const std::string &cmd, int32_t timeoutSec = 10, const char *prefix = nullptr);

// A child process's outcome.
struct ProcessResult {
    int exitCode = -1;  // -1 when it did not exit normally
    std::string out;
    std::string err;
};

// Runs argv[0] with argv, stdout and stderr captured through files in dir.
ProcessResult RunProcess(const std::vector<std::string> &argv, const std::string &dir);

// atserver --sim as a child, its stderr in <root>/atserver.log.
class AtServerProcess {
  public:
    explicit AtServerProcess(const test::IsolatedRuntime &runtime) : runtime_(runtime) {}
    ~AtServerProcess();
    AtServerProcess(const AtServerProcess &) = delete;
    AtServerProcess &operator=(const AtServerProcess &) = delete;

    // Starts atserver with the scenario and extra arguments and waits
    // (bounded) for its ready flag. Fails the test when it does not come.
    void Start(const std::string &scenario, const std::vector<std::string> &extraArgs = {});
    // SIGTERM and a bounded wait; the exit status (-1 when it did not exit).
    int Stop();

    pid_t Pid() const { return pid_; }
    bool Alive() const;
    std::string Log() const;
    std::string LogPath() const { return runtime_.Path("/atserver.log"); }
    std::string ReportPath() const { return runtime_.Path("/report.txt"); }
    // Waits (bounded) until the log holds needle.
    bool WaitForLog(const std::string &needle, int timeoutMs = 5000) const;

  private:
    const test::IsolatedRuntime &runtime_;
    pid_t pid_ = -1;
};

// The scenario of these tests: exact texts of our own in front of every
// shipped rule and fault (written into the private root).
std::string WriteTestScenario(const test::IsolatedRuntime &runtime);

// No pid file, ready flag or queue of a server in the current root.
void ExpectNothingLeft();

// Test fixture: a server per test; TearDown checks that it stops cleanly and
// leaves nothing behind.
class E2eTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
    // Arguments for atserver beyond --sim and the report file.
    virtual std::vector<std::string> ServerArgs() const { return {}; }

    std::unique_ptr<test::IsolatedRuntime> runtime_;
    std::unique_ptr<AtServerProcess> server_;
    std::string scenario_;
};

inline constexpr char kManufacturer[] = "E2E Modem Works";
inline constexpr char kPdpContexts[] =
    "+CGDCONT: 1,\"IP\",\"internet\",\"0.0.0.0\",0,0\r\n"
    "+CGDCONT: 2,\"IPV4V6\",\"ims\",\"0.0.0.0\",0,0\r\n"
    "+CGDCONT: 3,\"IPV4V6\",\"sos\",\"0.0.0.0\",0,0";

// A reply of kLongReplyLines lines ("AT+E2ELONG"), more than a reply holds.
inline constexpr int kLongReplyLines = 30;
std::string LongReplyLine(int n);

// Rules with unsolicited-report prefixes inside replies.
inline constexpr char kScenarioRules[] =
    "on AT+CREG?\n"
    "  line +CREG: 2,1,\"00C3\",\"0000A1B2\"\n"
    "on AT+E2ERSSI\n"
    "  line ^RSSI: 20\n"
    "on AT+E2ESMS\n"
    "  line +E2ESMS: 1\n"
    "  urc +CMT: ,24\n"
    "  urc 07911326040000F0040B911346610089F60000208062917314080CC8F71D14969741F977FD07\n"
    "  line +E2ESMS: 2\n";

// Sends one raw message (lengths include the type word) to a queue.
bool SendRaw(int qid, const void *msg, uint32_t length);

// A message type no thread of this machine can have (above the pid limit).
int32_t ForeignMtype(int32_t n);

}  // namespace atapi::e2e
