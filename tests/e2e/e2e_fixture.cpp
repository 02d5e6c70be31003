#include "e2e_fixture.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>
#include <utility>

#include "atapi/at_link.h"
#include "atapi/at_send.h"
#include "link/ats_paths.h"
#include "planted_secrets.h"

extern char **environ;

namespace atapi::e2e {
namespace {

// Exact texts of our own in front of every shipped rule and fault.
constexpr char kScenarioRules[] =
    "on AT+CGMI\n  line E2E Modem Works\n"
    "on AT+CGDCONT?\n"
    "  line +CGDCONT: 1,\"IP\",\"internet\",\"0.0.0.0\",0,0\n"
    "  line +CGDCONT: 2,\"IPV4V6\",\"ims\",\"0.0.0.0\",0,0\n"
    "on AT+E2ERSSI\n  line ^RSSI: 20\n";

// Commands whose parameters carry secrets; a log shows them only masked.
constexpr const char *kSecretCommands[] = {
    "CPIN=", "CLCK=", "CPWD=", "CARDLOCK=", "AUTHDATA=", "NDISDUP="};

std::string FromEnvironment(const char *name, const char *fallback) {
    const char *value = std::getenv(name);
    return value != nullptr ? value : fallback;
}

const std::string &ServerLauncher() {
    static const std::string launcher =
        FromEnvironment("ATAPI_E2E_LAUNCHER", ATAPI_TARGET_LAUNCHER);
    return launcher;
}

// posix_spawnp of argv (through the program's launcher, if any) with stdin,
// stdout and stderr redirected to files; -1 on failure.
pid_t Spawn(std::vector<std::string> argv, const std::string &inPath, const std::string &outPath,
            const std::string &errPath) {
    const bool server = argv[0] == ServerProgram() || argv[0] == SimProgram();
    const std::string launcher = server ? ServerLauncher() : ATAPI_TARGET_LAUNCHER;
    // atserver --sim starts atsim itself, through the same launcher; the
    // option goes ahead of the test's own arguments, which may end in a bad one.
    if (!launcher.empty() && server && std::find(argv.begin(), argv.end(), "--sim") != argv.end()) {
        argv.insert(argv.begin() + 1, {"--atsim-launcher", launcher});
    }
    if (!launcher.empty()) argv.insert(argv.begin(), launcher);
    std::vector<char *> args;
    for (std::string &word : argv) args.push_back(word.data());
    args.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, inPath.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(), kWrite, 0644);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath.c_str(), kWrite, 0644);
    pid_t pid = -1;
    const int error = posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? pid : -1;
}

// Waits (bounded) for pid to end; its exit code, -1 when it did not exit
// normally or was killed for taking too long.
int Reap(pid_t pid, std::chrono::milliseconds limit) {
    int status = 0;
    if (!WaitUntil([&] { return waitpid(pid, &status, WNOHANG) == pid; }, limit)) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

bool RunsThroughLauncher() { return !ServerLauncher().empty(); }

std::string ReadFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

bool FileExists(const std::string &path) { return access(path.c_str(), F_OK) == 0; }

bool WaitUntil(const std::function<bool()> &done, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!done()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

std::string PidFile() { return std::string(PidFileDir()) + kServerTaskName + ".pid"; }

const std::string &ServerProgram() {
    static const std::string program = FromEnvironment("ATAPI_E2E_ATSERVER", ATSERVER_PATH);
    return program;
}

const std::string &SimProgram() {
    static const std::string program = FromEnvironment("ATAPI_E2E_ATSIM", ATSIM_PATH);
    return program;
}

const std::string &CliProgram() {
    static const std::string program = ATCLI_PATH;
    return program;
}

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
        EXPECT_EQ(reply.atReportLen, static_cast<int32_t>(result.text.size())) << cmd;
    }
    return result;
}

ProcessResult RunProcess(const std::vector<std::string> &argv, const std::string &dir,
                         const std::string &input) {
    ProcessResult result;
    const std::string inPath = dir + "/process.in";
    std::ofstream(inPath, std::ios::binary | std::ios::trunc) << input;
    const pid_t pid = Spawn(argv, inPath, dir + "/process.out", dir + "/process.err");
    if (pid == -1) {
        ADD_FAILURE() << "cannot start " << argv.front();
        return result;
    }
    result.exitCode = Reap(pid, std::chrono::seconds(30));
    result.out = ReadFile(dir + "/process.out");
    result.err = ReadFile(dir + "/process.err");
    return result;
}

void ExpectNoSecretIn(const std::string &text, const std::string &where) {
    const auto lineAt = [&text](size_t at) {
        const size_t start = text.rfind('\n', at);
        const size_t from = start == std::string::npos ? 0 : start + 1;
        return text.substr(from, text.find('\n', at) - from);
    };
    for (const char *secret : secrets::kPlanted) {
        const size_t at = text.find(secret);
        EXPECT_EQ(at, std::string::npos) << where << " shows a planted secret: " << lineAt(at);
    }
    for (const std::string command : kSecretCommands) {
        for (size_t at = text.find(command); at != std::string::npos;
             at = text.find(command, at + 1)) {
            EXPECT_EQ(text.compare(at + command.size(), 3, "..."), 0)
                << where << " shows a secret-bearing command unmasked: " << lineAt(at);
        }
    }
}

void AtServerProcess::Start(const std::string &scenario,
                            const std::vector<std::string> &extraArgs) {
    std::vector<std::string> args{"--sim",    scenario,     "--atsim", SimProgram(),
                                  "--report", ReportPath(), "-v"};
    args.insert(args.end(), extraArgs.begin(), extraArgs.end());
    ASSERT_NO_FATAL_FAILURE(Launch(args));
    // Peeks at an early end without reaping: Stop still owns the child.
    const auto ended = [this] {
        siginfo_t info{};
        return waitid(P_PID, pid_, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == pid_;
    };
    WaitUntil([&] { return FileExists(ReadyFlagPath()) || ended(); }, std::chrono::seconds(20));
    ASSERT_TRUE(FileExists(ReadyFlagPath())) << "atserver not ready:\n" << Log();
}

void AtServerProcess::Launch(const std::vector<std::string> &args) {
    std::vector<std::string> argv{ServerProgram()};
    argv.insert(argv.end(), args.begin(), args.end());
    pid_ = Spawn(argv, "/dev/null", runtime_.Path("/atserver.out"), runtime_.Path("/atserver.log"));
    ASSERT_NE(pid_, -1) << "cannot start " << ServerProgram();
}

int AtServerProcess::Stop(int signo) {
    if (pid_ <= 0) return -1;
    kill(pid_, signo);
    return Reap(std::exchange(pid_, -1), std::chrono::seconds(15));
}

bool AtServerProcess::Alive() const { return pid_ > 0 && kill(pid_, 0) == 0; }

std::string AtServerProcess::Log() const { return ReadFile(runtime_.Path("/atserver.log")); }

bool AtServerProcess::WaitForLog(const std::string &needle) const {
    return WaitUntil([&] { return Log().find(needle) != std::string::npos; },
                     std::chrono::seconds(5));
}

void AtServerProcess::ExpectNoSecretShown() const {
    ExpectNoSecretIn(Log(), "atserver's log");
    ExpectNoSecretIn(ReadFile(ReportPath()), "the report file");
}

void ExpectNothingLeft() {
    EXPECT_FALSE(FileExists(PidFile()));
    EXPECT_FALSE(FileExists(ReadyFlagPath()));
    EXPECT_EQ(AtsGetMsgQueueId(kServerRecvProjId), -1);
    EXPECT_EQ(AtsGetMsgQueueId(kServerSendProjId), -1);
}

std::string E2eTest::Scenario() const {
    const std::string path = runtime_->Path("/e2e.scn");
    std::ofstream(path) << kScenarioRules << "on AT+E2EWIDE\n  line " << WidestLine()
                        << "\non AT+E2ETOOWIDE\n  line " << WidestLine() << "w\n"
                        << "include " << ATSIM_SCENARIO_DIR << "/faults.scn\n";
    return path;
}

void E2eTest::SetUp() {
    runtime_ = std::make_unique<test::IsolatedRuntime>();
    scenario_ = Scenario();
    server_ = std::make_unique<AtServerProcess>(*runtime_);
    server_->Start(scenario_, ServerArgs());
}

void E2eTest::TearDown() {
    if (server_ != nullptr && server_->Pid() > 0) {
        EXPECT_EQ(server_->Stop(), 0) << server_->Log();
        ExpectNothingLeft();
        server_->ExpectNoSecretShown();
    }
    server_.reset();
    runtime_.reset();
}

ProcessResult E2eTest::Cli(const std::vector<std::string> &args, const std::string &input) const {
    std::vector<std::string> argv{CliProgram()};
    argv.insert(argv.end(), args.begin(), args.end());
    return RunProcess(argv, runtime_->Root(), input);
}

std::string ShippedScenarioTest::Scenario() const {
    return std::string(ATSIM_SCENARIO_DIR) + "/default.scn";
}

bool SendRaw(int qid, const void *msg, uint32_t length) {
    std::vector<char> copy(static_cast<const char *>(msg), static_cast<const char *>(msg) + length);
    return AtsMsgQueueExSend(qid, copy.data(), length, 0) == 1;
}

}  // namespace atapi::e2e
