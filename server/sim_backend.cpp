// The simulated modem: atsim runs as our child, prints the path of its
// pseudo-terminal as the first line of its output, and serves on it.
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "modem_backend.h"
#include "monotonic_clock.h"
#include "server_log.h"

extern char **environ;

namespace atserver {
namespace {

constexpr int64_t kPtyPathTimeoutMs = 5000;
constexpr int64_t kStopTimeoutMs = 2000;
// At atserver's own stop, how long an atsim is given before SIGKILL.
constexpr int64_t kFinalStopMs = 200;
constexpr int kFinalStopPollMs = 5;

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

std::string DescribeStatus(int status) {
    if (WIFEXITED(status)) return "exited with status " + std::to_string(WEXITSTATUS(status));
    if (WIFSIGNALED(status)) return "killed by signal " + std::to_string(WTERMSIG(status));
    return "stopped";
}

// An atsim that was told to stop and has not ended yet.
struct StoppingChild {
    pid_t pid;
    int64_t killAtMs;  // SIGKILL when it is still there by then
};

class SimBackend : public ModemBackend {
  public:
    SimBackend(std::string atsim, std::string scenario, std::vector<std::string> args,
               std::string launcher)
        : atsim_(atsim.empty() ? DefaultAtsimPath() : std::move(atsim)),
          scenario_(std::move(scenario)),
          args_(std::move(args)),
          launcher_(std::move(launcher)) {}

    // atserver is stopping: a short wait, then SIGKILL for what is left.
    ~SimBackend() override {
        Close();
        const int64_t killAt = MonotonicMs() + kFinalStopMs;
        for (StoppingChild &child : stopping_) child.killAtMs = std::min(child.killAtMs, killAt);
        while (!stopping_.empty()) {
            const timespec pause{0, kFinalStopPollMs * 1000000L};
            nanosleep(&pause, nullptr);
            Reap(MonotonicMs());
        }
    }

    // Step one starts atsim; the next steps read the pseudo-terminal's path
    // from its output as it comes, then open the port.
    OpenResult Open() override {
        if (child_ == 0) {
            Close();
            if (!Spawn()) return {};
            startDeadlineMs_ = MonotonicMs() + kPtyPathTimeoutMs;
        }
        std::string ptyPath;
        switch (ReadPtyPath(&ptyPath)) {
            case ReadState::kWaiting:
                return {-1, output_};
            case ReadState::kFailed:
                Close();
                return {};
            case ReadState::kDone:
                break;
        }
        Logf("atsim (pid %d) serves on %s", static_cast<int>(child_), ptyPath.c_str());
        port_ = MakeTtyBackend(ptyPath, 115200);
        const OpenResult result = port_->Open();
        if (result.fd == -1) Close();
        return result;
    }

    void Close() override {
        port_.reset();
        if (output_ != -1) close(output_);
        output_ = -1;
        line_.clear();
        if (child_ > 0) {
            kill(child_, SIGTERM);
            stopping_.push_back({child_, MonotonicMs() + kStopTimeoutMs});
            child_ = 0;
        }
        Reap(MonotonicMs());
    }

    void Tick(int64_t nowMs) override { Reap(nowMs); }

    std::string Describe() const override {
        return "atsim " + (scenario_.empty() ? std::string("(default scenario)") : scenario_);
    }

  private:
    enum class ReadState { kWaiting, kDone, kFailed };

    bool Spawn() {
        int pipeFds[2];
        if (pipe2(pipeFds, O_CLOEXEC) != 0) {
            LogError("pipe failed: %s", std::strerror(errno));
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
        for (int sig : {SIGPIPE, SIGUSR1, SIGTERM, SIGINT, SIGHUP, SIGCHLD}) {
            sigaddset(&defaults, sig);
        }
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
            LogError("cannot start %s: %s", argv[0], std::strerror(error));
            return false;
        }
        output_ = pipeFds[0];
        fcntl(output_, F_SETFL, O_NONBLOCK);
        return true;
    }

    // Takes what atsim has printed so far: its first line is the path.
    ReadState ReadPtyPath(std::string *path) {
        char buf[256];
        for (;;) {
            const ssize_t got = read(output_, buf, sizeof buf);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0 && errno == EAGAIN) break;
            if (got <= 0) {
                LogWarn("atsim ended before naming its pseudo-terminal");
                return ReadState::kFailed;
            }
            const std::string_view text(buf, static_cast<size_t>(got));
            const size_t newline = text.find('\n');
            line_.append(text.substr(0, newline));
            if (line_.size() > PATH_MAX) {
                LogWarn("atsim printed no pseudo-terminal path");
                return ReadState::kFailed;
            }
            if (newline != std::string_view::npos) {
                *path = std::exchange(line_, {});
                return ReadState::kDone;
            }
        }
        if (MonotonicMs() < startDeadlineMs_) return ReadState::kWaiting;
        LogWarn("atsim did not name its pseudo-terminal within %lld ms",
                static_cast<long long>(kPtyPathTimeoutMs));
        return ReadState::kFailed;
    }

    // Collects the atsims that ended; SIGKILL for those past their time.
    void Reap(int64_t nowMs) {
        for (auto it = stopping_.begin(); it != stopping_.end();) {
            int status = 0;
            const pid_t done = waitpid(it->pid, &status, WNOHANG);
            if (done == 0 && nowMs >= it->killAtMs) {
                LogWarn("atsim (pid %d) ignored SIGTERM; killing it", static_cast<int>(it->pid));
                kill(it->pid, SIGKILL);
                it->killAtMs = INT64_MAX;
            }
            if (done == 0) {
                ++it;
                continue;
            }
            if (done == it->pid) {
                Logf("atsim (pid %d) %s", static_cast<int>(it->pid),
                     DescribeStatus(status).c_str());
            }
            it = stopping_.erase(it);
        }
    }

    std::string atsim_;
    std::string scenario_;
    std::vector<std::string> args_;
    std::string launcher_;
    pid_t child_ = 0;
    int output_ = -1;   // atsim's stdout, kept open so that it never writes into a closed pipe
    std::string line_;  // its first line so far
    int64_t startDeadlineMs_ = 0;
    std::vector<StoppingChild> stopping_;
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
