// atserver as a service: the signals it takes, its log, its reports to a
// service manager, and stops that leave nothing behind whatever atsim is doing.
// A start after a kill: faults_test.cpp.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <tuple>

#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

using std::chrono::milliseconds;

// The datagram socket a service manager names in NOTIFY_SOCKET: a path, or
// an abstract name written with a leading '@'.
class NotifySocket {
  public:
    explicit NotifySocket(const std::string &name) : name_(name) {
        sockaddr_un addr{AF_UNIX, {}};
        if (name.size() >= sizeof addr.sun_path) return;
        std::memcpy(addr.sun_path, name.data(), name.size());
        if (name[0] == '@') addr.sun_path[0] = '\0';
        fd_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        const auto len = static_cast<socklen_t>(sizeof addr.sun_family + name.size());
        bound_ = fd_ != -1 && bind(fd_, reinterpret_cast<const sockaddr *>(&addr), len) == 0;
    }
    ~NotifySocket() {
        if (fd_ != -1) close(fd_);
        if (name_[0] == '/') unlink(name_.c_str());
    }
    bool Bound() const { return bound_; }
    // The next datagram, or "" when none comes within a few seconds.
    std::string Receive() const {
        char buf[256];
        ssize_t got = -1;
        WaitUntil([&] { return (got = recv(fd_, buf, sizeof buf, MSG_DONTWAIT)) >= 0; },
                  milliseconds(5000));
        return got > 0 ? std::string(buf, static_cast<size_t>(got)) : "";
    }

  private:
    std::string name_;
    int fd_ = -1;
    bool bound_ = false;
};

// Each stop signal removes every file and says why; a service manager's
// socket (abstract or a path) hears of the start and of the stop.
TEST(AtserverStop, StopSignalsRemoveEveryFileAndReachTheServiceManager) {
    for (const auto &[signo, name, abstract] :
         {std::tuple{SIGTERM, "SIGTERM", true}, std::tuple{SIGINT, "SIGINT", false}}) {
        SCOPED_TRACE(name);
        test::IsolatedRuntime runtime;
        const std::string socketName = abstract ? "@atapi-e2e-notify-" + std::to_string(getpid())
                                                : runtime.Path("/notify.sock");
        NotifySocket socket(socketName);
        ASSERT_TRUE(socket.Bound()) << std::strerror(errno);
        setenv("NOTIFY_SOCKET", socketName.c_str(), 1);
        AtServerProcess server(runtime);
        server.Start(std::string(ATSIM_SCENARIO_DIR) + "/default.scn", {});
        unsetenv("NOTIFY_SOCKET");
        EXPECT_EQ(socket.Receive(), "READY=1") << server.Log();
        EXPECT_EQ(server.Stop(signo), 0);
        EXPECT_EQ(socket.Receive(), "STOPPING=1") << server.Log();
        ExpectNothingLeft();
        EXPECT_NE(server.Log().find(std::string("stopped (") + name + ")"), std::string::npos)
            << server.Log();
    }
}

// An atsim that never names its pseudo-terminal: atserver must not wait on
// it, and one that ignores SIGTERM is killed after a moment.
TEST(AtserverStop, StopsAtOnceWhileAtsimIsStillStarting) {
    if (RunsThroughLauncher()) GTEST_SKIP() << "the stand-in atsim is a shell script";
    for (const auto &[prelude, logged] : {std::pair{"", "killed by signal 15"},
                                          {"trap '' TERM\n", "ignored SIGTERM; killing it"}}) {
        SCOPED_TRACE(logged);
        test::IsolatedRuntime runtime;
        const std::string atsim = runtime.Path("/stalling-atsim");
        std::ofstream(atsim) << "#!/bin/sh\n" << prelude << ": > \"$0.started\"\nexec sleep 30\n";
        ASSERT_EQ(chmod(atsim.c_str(), 0755), 0);
        AtServerProcess server(runtime);
        server.Launch({"--sim", "--atsim", atsim, "--ready-timeout", "60"});
        ASSERT_TRUE(
            WaitUntil([&] { return FileExists(PidFile()) && FileExists(atsim + ".started"); },
                      milliseconds(5000)))
            << server.Log();
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(server.Stop(), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(1500));
        ExpectNothingLeft();
        EXPECT_NE(server.Log().find(logged), std::string::npos) << server.Log();
    }
}

// A second server leaves the running one alone.
TEST_F(E2eTest, Start_SecondServerLeavesTheRunningOneAlone) {
    const ProcessResult second = RunProcess(
        {ServerProgram(), "--sim", scenario_, "--atsim", SimProgram()}, runtime_->Root());
    EXPECT_EQ(second.exitCode, 1);
    EXPECT_NE(second.err.find("atserver is already running (pid " + std::to_string(server_->Pid())),
              std::string::npos)
        << second.err;
    EXPECT_EQ(Send("AT+CGMI").text, kManufacturer);
}

// Logging to a file at level info.
class LogFileTest : public E2eTest {
  protected:
    std::vector<std::string> ServerArgs() const override {
        return {"--log", LogPath(), "--log-level", "info"};
    }
    std::string LogPath() const { return runtime_->Path("/service.log"); }
};

TEST_F(LogFileTest, HupReopensTheLogAndPipeIsIgnored) {
    const std::string rotated = LogPath() + ".1";
    ASSERT_EQ(std::rename(LogPath().c_str(), rotated.c_str()), 0);
    ASSERT_EQ(kill(server_->Pid(), SIGHUP), 0);
    ASSERT_TRUE(WaitUntil([&] { return ReadFile(LogPath()).find("SIGHUP") != std::string::npos; },
                          milliseconds(5000)));
    ASSERT_EQ(kill(server_->Pid(), SIGPIPE), 0);
    EXPECT_EQ(Send("AT+CGMI").text, kManufacturer);
    EXPECT_TRUE(server_->Alive());
    EXPECT_NE(ReadFile(rotated).find("ready after"), std::string::npos);
    // Per-command lines are debug.
    EXPECT_EQ(ReadFile(LogPath()).find("AT+CGMI"), std::string::npos) << ReadFile(LogPath());
}

}  // namespace
}  // namespace atapi::e2e
