// A private runtime root and the real atserver (atsim on a pseudo-terminal,
// without periodic lines) serving it for a whole benchmark run. Needs a
// build with ATAPI_ISOLATED_PATHS=ON and ATSERVER_PATH / ATSIM_PATH defined;
// ATAPI_BENCH_ATSERVER names another atserver to measure (an older build).
#pragma once

#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "atapi/at_link.h"
#include "link/ats_paths.h"

extern char **environ;

namespace atapi::bench {

class BenchWorld {
  public:
    bool Start() {
        char pattern[] = "/tmp/atapi-bench-XXXXXX";
        if (mkdtemp(pattern) == nullptr) return false;
        root_ = pattern;
        setenv("ATAPI_ROOT", root_.c_str(), 1);
        atapi::SetRuntimeRoot(root_.c_str());
        std::filesystem::create_directories(atapi::PidFileDir());
        const std::string log = root_ + "/atserver.log";
        const char *server = std::getenv("ATAPI_BENCH_ATSERVER");
        std::vector<std::string> words{server != nullptr ? server : ATSERVER_PATH,
                                       "--sim",
                                       "--atsim",
                                       ATSIM_PATH,
                                       "--sim-arg",
                                       "--no-urc",
                                       "--log",
                                       log};
        std::vector<char *> argv;
        for (std::string &word : words) argv.push_back(word.data());
        argv.push_back(nullptr);
        if (posix_spawn(&server_, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
            return false;
        }
        for (int waited = 0; waited < 2000; ++waited) {
            if (CheckAtServerReady() == 0) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    // Stops atserver; its exit status (0 when it stopped cleanly).
    int Stop() {
        int status = -1;
        if (server_ > 0) {
            kill(server_, SIGTERM);
            waitpid(server_, &status, 0);
        }
        if (!root_.empty()) std::filesystem::remove_all(root_);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    pid_t ServerPid() const { return server_; }

  private:
    std::string root_;
    pid_t server_ = -1;
};

}  // namespace atapi::bench
