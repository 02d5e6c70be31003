// The end-to-end world: a private runtime root, the real atserver (with atsim
// on a pseudo-terminal) as a child process, and the library in this process.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "atapi/at_types.h"
#include "isolated_runtime.h"

namespace atapi::e2e {

// One exchange through GetDataFromAtServer; retVal and text when status is 0
// (the reply's length field is checked against its text on the way).
struct Exchange {
    int32_t status = -1;
    int32_t retVal = 0;
    std::string text;
};
Exchange Send(const std::string &cmd, int32_t timeoutSec = 10, const char *prefix = nullptr);

// The programs under test: this build's own, run through the build's emulator
// when it is cross-built. The environment may point atserver and atsim at
// another build (ATAPI_E2E_ATSERVER, ATAPI_E2E_ATSIM, with ATAPI_E2E_LAUNCHER
// the program that runs them, empty for none): the cross-ABI runs do.
const std::string &ServerProgram();
const std::string &SimProgram();
const std::string &CliProgram();
// Whether atserver and atsim run under an emulator (a cross build, or a peer's).
bool RunsThroughLauncher();

// Runs argv to its end with input as its stdin and stdout and stderr
// captured, all through files in dir; exitCode is -1 when it did not exit
// normally.
struct ProcessResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};
ProcessResult RunProcess(const std::vector<std::string> &argv, const std::string &dir,
                         const std::string &input = "");

std::string ReadFile(const std::string &path);
bool FileExists(const std::string &path);
// Polls done() every few milliseconds until it holds or the time is up.
bool WaitUntil(const std::function<bool()> &done, std::chrono::milliseconds limit);
std::string PidFile();

// Fails the test for each planted secret in text, and for each secret-bearing
// command line shown with anything but "..." behind its '='.
void ExpectNoSecretIn(const std::string &text, const std::string &where);

// atserver --sim as a child, its stderr in <root>/atserver.log and the
// unsolicited lines it recognised in <root>/report.txt.
class AtServerProcess {
  public:
    explicit AtServerProcess(const test::IsolatedRuntime &runtime) : runtime_(runtime) {}
    ~AtServerProcess() { Stop(SIGKILL); }
    AtServerProcess(const AtServerProcess &) = delete;
    AtServerProcess &operator=(const AtServerProcess &) = delete;

    // Starts atserver and waits (bounded) for its ready flag; fails the test
    // when it does not come.
    void Start(const std::string &scenario, const std::vector<std::string> &extraArgs);
    // Starts atserver with args alone and does not wait.
    void Launch(const std::vector<std::string> &args);
    // The signal and a bounded wait; the exit status (-1 when it did not exit).
    int Stop(int signo = SIGTERM);

    pid_t Pid() const { return pid_; }
    bool Alive() const;
    std::string Log() const;
    std::string ReportPath() const { return runtime_.Path("/report.txt"); }
    // Waits (bounded) until the log holds needle.
    bool WaitForLog(const std::string &needle) const;
    // Neither the log nor the report file shows a secret.
    void ExpectNoSecretShown() const;

  private:
    const test::IsolatedRuntime &runtime_;
    pid_t pid_ = -1;
};

// No pid file, ready flag or queue of a server in the current root.
void ExpectNothingLeft();

// A server per test, by default on the test scenario (our own rules in front
// of every shipped rule and fault); TearDown checks that it stops cleanly,
// leaves nothing behind and showed no secret.
class E2eTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
    virtual std::string Scenario() const;
    // Arguments for atserver beyond the scenario, atsim and the report file.
    virtual std::vector<std::string> ServerArgs() const { return {}; }
    // atcli with args (and input on its standard input), to its end.
    ProcessResult Cli(const std::vector<std::string> &args, const std::string &input = "") const;

    std::unique_ptr<test::IsolatedRuntime> runtime_;
    std::unique_ptr<AtServerProcess> server_;
    std::string scenario_;
};

// The shipped default scenario, without periodic lines.
class ShippedScenarioTest : public E2eTest {
  protected:
    std::string Scenario() const override;
    std::vector<std::string> ServerArgs() const override { return {"--sim-arg", "--no-urc"}; }
};

// Replies of the test scenario.
inline constexpr char kManufacturer[] = "E2E Modem Works";
inline constexpr char kPdpContexts[] =
    "+CGDCONT: 1,\"IP\",\"internet\",\"0.0.0.0\",0,0\r\n"
    "+CGDCONT: 2,\"IPV4V6\",\"ims\",\"0.0.0.0\",0,0";
// The room for text in a reply, without its terminator, and a line of the
// test scenario ("AT+E2EWIDE") that fills it.
inline constexpr size_t kReplyRoom = AT_REPORT_STR_LEN - 1;
inline std::string WidestLine() { return "+E2EWIDE: " + std::string(kReplyRoom - 10, 'w'); }

// Sends one raw message (lengths include the type word) to a queue.
bool SendRaw(int qid, const void *msg, uint32_t length);

// A message type no thread of this machine can have (above the pid limit).
inline int32_t ForeignMtype(int32_t n) { return 0x40000000 + n; }

}  // namespace atapi::e2e
