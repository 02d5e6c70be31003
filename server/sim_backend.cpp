// The simulated modem: atsim runs as our child, prints the path of its
// pseudo-terminal as the first line of its output, and serves on it.
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "modem_backend.h"
#include "server_log.h"

extern char **environ;

namespace atserver {
namespace {

constexpr int kPtyPathTimeoutMs = 5000;
constexpr int kStopTimeoutMs = 2000;
constexpr int kStopPollMs = 10;

std::string OwnDirectory() {
    char exe[PATH_MAX];
    const ssize_t len = readlink("/proc/self/exe", exe, sizeof exe - 1);
    if (len <= 0) return {};
    const std::string path(exe, static_cast<size_t>(len));
    return path.substr(0, path.rfind('/'));
}

// atsim next to atserver (installed), else where the build tree puts it.
std::string DefaultAtsimPath() {
    const std::string sibling = OwnDirectory() + "/atsim";
    if (access(sibling.c_str(), X_OK) == 0) return sibling;
#ifdef ATSIM_BUILD_PATH
    return ATSIM_BUILD_PATH;
#else
    return sibling;
#endif
}

void SleepMs(int ms) {
    timespec pause{0, static_cast<long>(ms) * 1000000L};
    nanosleep(&pause, nullptr);
}

std::string DescribeStatus(int status) {
    if (WIFEXITED(status)) return "exited with status " + std::to_string(WEXITSTATUS(status));
    if (WIFSIGNALED(status)) return "killed by signal " + std::to_string(WTERMSIG(status));
    return "stopped";
}

class SimBackend : public ModemBackend {
  public:
    SimBackend(std::string atsim, std::string scenario, std::vector<std::string> args,
               std::string launcher)
        : atsim_(atsim.empty() ? DefaultAtsimPath() : std::move(atsim)),
          scenario_(std::move(scenario)),
          args_(std::move(args)),
          launcher_(std::move(launcher)) {}
    ~SimBackend() override { Close(); }

    int Open() override {
        Close();
        if (!Spawn()) return -1;
        const std::string ptyPath = ReadPtyPath();
        if (ptyPath.empty()) {
            Close();
            return -1;
        }
        Logf("atsim (pid %d) serves on %s", static_cast<int>(child_), ptyPath.c_str());
        port_ = MakeTtyBackend(ptyPath, 115200);
        const int fd = port_->Open();
        if (fd == -1) Close();
        return fd;
    }

    void Close() override {
        port_.reset();
        if (output_ != -1) close(output_);
        output_ = -1;
        StopChild();
    }

    std::string Describe() const override {
        return "atsim " + (scenario_.empty() ? std::string("(default scenario)") : scenario_);
    }

  private:
    bool Spawn() {
        int pipeFds[2];
        if (pipe2(pipeFds, O_CLOEXEC) != 0) {
            Logf("pipe failed: %s", std::strerror(errno));
            return false;
        }
        std::vector<std::string> words{atsim_};
        if (!launcher_.empty()) words.insert(words.begin(), launcher_);
        words.insert(words.end(), args_.begin(), args_.end());
        if (!scenario_.empty()) words.push_back(scenario_);
        std::vector<char *> argv;
        for (std::string &word : words) argv.push_back(word.data());
        argv.push_back(nullptr);

        // The child starts with default dispositions and nothing blocked:
        // atserver blocks its signals for the signalfd and ignores SIGPIPE.
        posix_spawnattr_t attr;
        posix_spawnattr_init(&attr);
        sigset_t none;
        sigemptyset(&none);
        sigset_t defaults;
        sigemptyset(&defaults);
        for (int sig : {SIGPIPE, SIGUSR1, SIGTERM, SIGINT, SIGCHLD}) sigaddset(&defaults, sig);
        posix_spawnattr_setsigmask(&attr, &none);
        posix_spawnattr_setsigdefault(&attr, &defaults);
        posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);

        const int error = posix_spawnp(&child_, argv[0], &actions, &attr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attr);
        close(pipeFds[1]);
        if (error != 0) {
            child_ = 0;
            close(pipeFds[0]);
            Logf("cannot start %s: %s", argv[0], std::strerror(error));
            return false;
        }
        output_ = pipeFds[0];
        return true;
    }

    // The first line atsim prints, waited for (bounded); empty on failure.
    std::string ReadPtyPath() {
        std::string line;
        timespec start{};
        clock_gettime(CLOCK_MONOTONIC, &start);
        for (;;) {
            timespec now{};
            clock_gettime(CLOCK_MONOTONIC, &now);
            const long elapsedMs =
                (now.tv_sec - start.tv_sec) * 1000L + (now.tv_nsec - start.tv_nsec) / 1000000L;
            if (elapsedMs >= kPtyPathTimeoutMs) break;
            pollfd pfd{output_, POLLIN, 0};
            if (poll(&pfd, 1, static_cast<int>(kPtyPathTimeoutMs - elapsedMs)) <= 0) continue;
            char c = 0;
            const ssize_t got = read(output_, &c, 1);
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) {
                Logf("atsim ended before naming its pseudo-terminal");
                return {};
            }
            if (c == '\n') return line;
            if (line.size() < PATH_MAX) line.push_back(c);
        }
        Logf("atsim did not name its pseudo-terminal within %d ms", kPtyPathTimeoutMs);
        return {};
    }

    void StopChild() {
        if (child_ <= 0) return;
        int status = 0;
        pid_t done = waitpid(child_, &status, WNOHANG);
        if (done == 0) {
            kill(child_, SIGTERM);
            for (int waited = 0; done == 0 && waited < kStopTimeoutMs; waited += kStopPollMs) {
                SleepMs(kStopPollMs);
                done = waitpid(child_, &status, WNOHANG);
            }
            if (done == 0) {
                Logf("atsim (pid %d) ignored SIGTERM; killing it", static_cast<int>(child_));
                kill(child_, SIGKILL);
                done = waitpid(child_, &status, 0);
            }
        }
        if (done == child_) {
            Logf("atsim (pid %d) %s", static_cast<int>(child_), DescribeStatus(status).c_str());
        }
        child_ = 0;
    }

    std::string atsim_;
    std::string scenario_;
    std::vector<std::string> args_;
    std::string launcher_;
    pid_t child_ = 0;
    int output_ = -1;  // atsim's stdout, kept open so that it never writes into a closed pipe
    std::unique_ptr<ModemBackend> port_;
};

}  // namespace

std::unique_ptr<ModemBackend> MakeSimBackend(const std::string &atsimPath,
                                             const std::string &scenario,
                                             const std::vector<std::string> &simArgs,
                                             const std::string &launcher) {
    return std::make_unique<SimBackend>(atsimPath, scenario, simArgs, launcher);
}

}  // namespace atserver
