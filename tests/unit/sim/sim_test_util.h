// Scenario files held in memory, and a modem driven on a made-up clock.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "modem.h"
#include "scenario.h"

namespace atsim::test {

using Files = std::map<std::string, std::string>;

inline FileReader ReaderOf(const Files &files) {
    return [&files](const std::string &path, std::string *content) {
        const auto it = files.find(path);
        if (it == files.end()) return false;
        *content = it->second;
        return true;
    };
}

inline std::string ShippedScenario(const char *name) {
    return std::string(ATSIM_SCENARIO_DIR) + "/" + name;
}

// One modem with its scenario; `Send` writes a command and returns what came back.
class ModemHarness {
  public:
    static constexpr Millis kStart = 1000000;

    explicit ModemHarness(const Files &files, ModemOptions options = QuietOptions()) {
        Load("main.scn", ReaderOf(files), std::move(options));
    }
    ModemHarness(const std::string &path, ModemOptions options) {
        Load(path, ReadWholeFile, std::move(options));
    }

    static ModemOptions QuietOptions() {
        ModemOptions options;
        options.periodicUrcs = false;
        return options;
    }

    std::string Send(const std::string &command) { return Write(command + "\r"); }
    std::string Write(const std::string &bytes) {
        modem_->Receive(bytes, now_);
        modem_->Advance(now_);
        return modem_->TakeOutput();
    }
    // Lets `ms` milliseconds pass and returns what the modem sent meanwhile.
    std::string Wait(Millis ms) {
        now_ += ms;
        modem_->Advance(now_);
        return modem_->TakeOutput();
    }

    Modem &modem() { return *modem_; }
    Millis now() const { return now_; }
    const std::vector<std::string> &logs() const { return logs_; }

  private:
    void Load(const std::string &path, const FileReader &reader, ModemOptions options) {
        std::string error;
        scenario_ = std::make_unique<Scenario>();
        EXPECT_TRUE(LoadScenario(path, reader, scenario_.get(), &error)) << error;
        options.log = [this](const std::string &line) { logs_.push_back(line); };
        modem_ = std::make_unique<Modem>(*scenario_, std::move(options), now_);
    }

    Millis now_ = kStart;
    std::vector<std::string> logs_;
    std::unique_ptr<Scenario> scenario_;
    std::unique_ptr<Modem> modem_;
};

// "\r\n<line>\r\n" for each line, as the modem frames them.
inline std::string Framed(const std::vector<std::string> &lines) {
    std::string out;
    for (const std::string &line : lines) out += "\r\n" + line + "\r\n";
    return out;
}

}  // namespace atsim::test
