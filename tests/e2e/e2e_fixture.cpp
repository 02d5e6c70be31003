#include "e2e_fixture.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "atapi/at_link.h"
#include "atapi/at_send.h"
#include "link/ats_paths.h"

extern char **environ;

namespace atapi::e2e {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kReadyTimeout = std::chrono::seconds(20);
constexpr auto kStopTimeout = std::chrono::seconds(15);
constexpr auto kPollStep = std::chrono::milliseconds(10);

std::string ReadFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

bool FileExists(const std::string &path) { return access(path.c_str(), F_OK) == 0; }

bool QueueExists(int projId) {
    const key_t key = ftok(QueueKeyDir(), projId);
    return key != -1 && msgget(key, 0) != -1;
}

// posix_spawn of argv with stdout and stderr sent to files; -1 on failure.
pid_t Spawn(const std::vector<std::string> &argv, const std::string &outPath,
            const std::string &errPath) {
    std::vector<std::string> words = argv;
    std::vector<char *> args;
    for (std::string &word : words) args.push_back(word.data());
    args.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath.c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND, 0644);
    pid_t pid = -1;
    const int error = posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? pid : -1;
}

int ExitCode(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

}  // namespace

Exchange Send(const std::string &cmd, int32_t timeoutSec, const char *prefix) {
    AtSrvMsg msg;
    Exchange result;
    if (AtInitCommonMsgHandler(&msg, cmd.c_str(), prefix, 0, timeoutSec) != 0) {
        ADD_FAILURE() << "cannot build the request for " << cmd;
        return result;
    }
    result.status = GetDataFromAtServer(&msg);
    if (result.status == 0) {
        const AtSrvRcvMsg &reply = msg.sndRcvMsg.rMsg;
        result.retVal = reply.retVal;
        result.text.assign(reply.atReportStr, strnlen(reply.atReportStr, sizeof reply.atReportStr));
        result.reportLen = reply.atReportLen;
    }
    return result;
}

ProcessResult RunProcess(const std::vector<std::string> &argv, const std::string &dir) {
    const std::string outPath = dir + "/process.out";
    const std::string errPath = dir + "/process.err";
    std::remove(errPath.c_str());
    ProcessResult result;
    const pid_t pid = Spawn(argv, outPath, errPath);
    if (pid == -1) {
        ADD_FAILURE() << "cannot start " << argv.front();
        return result;
    }
    int status = 0;
    while (waitpid(pid, &status, 0) == -1 && errno == EINTR) {
    }
    result.exitCode = ExitCode(status);
    result.out = ReadFile(outPath);
    result.err = ReadFile(errPath);
    return result;
}

AtServerProcess::~AtServerProcess() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

void AtServerProcess::Start(const std::string &scenario,
                            const std::vector<std::string> &extraArgs) {
    std::vector<std::string> argv{ATSERVER_PATH, "--sim",    scenario,     "--atsim",
                                  ATSIM_PATH,    "--report", ReportPath(), "-v"};
    argv.insert(argv.end(), extraArgs.begin(), extraArgs.end());
    pid_ = Spawn(argv, runtime_.Path("/atserver.out"), LogPath());
    ASSERT_NE(pid_, -1) << "cannot start " << ATSERVER_PATH;
    const auto deadline = Clock::now() + kReadyTimeout;
    while (!FileExists(ReadyFlagPath())) {
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            FAIL() << "atserver ended before it was ready (exit " << ExitCode(status) << "):\n"
                   << Log();
        }
        ASSERT_LT(Clock::now(), deadline) << "atserver not ready in time:\n" << Log();
        std::this_thread::sleep_for(kPollStep);
    }
}

int AtServerProcess::Stop() {
    if (pid_ <= 0) return -1;
    kill(pid_, SIGTERM);
    const auto deadline = Clock::now() + kStopTimeout;
    int status = 0;
    pid_t done = 0;
    while ((done = waitpid(pid_, &status, WNOHANG)) == 0 && Clock::now() < deadline) {
        std::this_thread::sleep_for(kPollStep);
    }
    if (done != pid_) {
        kill(pid_, SIGKILL);
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return -1;
    }
    pid_ = -1;
    return ExitCode(status);
}

bool AtServerProcess::Alive() const { return pid_ > 0 && kill(pid_, 0) == 0; }

std::string AtServerProcess::Log() const { return ReadFile(LogPath()); }

bool AtServerProcess::WaitForLog(const std::string &needle, int timeoutMs) const {
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    while (Log().find(needle) == std::string::npos) {
        if (Clock::now() >= deadline) return false;
        std::this_thread::sleep_for(kPollStep);
    }
    return true;
}

std::string LongReplyLine(int n) {
    return "+E2ELONG: " + std::string(n < 10 ? "0" : "") + std::to_string(n) + " " +
           std::string(50, 'x');
}

std::string WriteTestScenario(const test::IsolatedRuntime &runtime) {
    const std::string path = runtime.Path("/e2e.scn");
    std::ofstream out(path);
    out << "on AT+CGMI\n  line " << kManufacturer << "\n";
    out << "on AT+CGDCONT?\n";
    std::istringstream rows(kPdpContexts);
    for (std::string row; std::getline(rows, row);) {
        if (!row.empty() && row.back() == '\r') row.pop_back();
        out << "  line " << row << "\n";
    }
    out << "on AT+E2ELONG\n";
    for (int n = 1; n <= kLongReplyLines; ++n) out << "  line " << LongReplyLine(n) << "\n";
    out << kScenarioRules << "include " << ATSIM_SCENARIO_DIR << "/faults.scn\n";
    if (!out) ADD_FAILURE() << "cannot write " << path;
    return path;
}

void E2eTest::SetUp() {
    runtime_ = std::make_unique<test::IsolatedRuntime>();
    scenario_ = WriteTestScenario(*runtime_);
    server_ = std::make_unique<AtServerProcess>(*runtime_);
    server_->Start(scenario_, ServerArgs());
}

void E2eTest::TearDown() {
    if (server_->Pid() > 0) {
        EXPECT_EQ(server_->Stop(), 0) << server_->Log();
        ExpectNothingLeft();
    }
    server_.reset();
    runtime_.reset();
}

void ExpectNothingLeft() {
    EXPECT_FALSE(FileExists(std::string(PidFileDir()) + kServerTaskName + ".pid"));
    EXPECT_FALSE(FileExists(ReadyFlagPath()));
    EXPECT_FALSE(QueueExists(kServerRecvProjId));
    EXPECT_FALSE(QueueExists(kServerSendProjId));
}

bool SendRaw(int qid, const void *msg, uint32_t length) {
    std::vector<char> copy(static_cast<const char *>(msg), static_cast<const char *>(msg) + length);
    return AtsMsgQueueExSend(qid, copy.data(), length, 0) == 1;
}

int32_t ForeignMtype(int32_t n) { return 0x40000000 + n; }

}  // namespace atapi::e2e
