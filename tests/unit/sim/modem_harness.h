// A modem on a shipped scenario for the sim suites: no periodic lines, a
// made-up clock, diagnostics collected.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "modem.h"
#include "scenario.h"

namespace atsim::test {

struct ModemHarness {
    explicit ModemHarness(const char *shippedScenario)
        : ModemHarness(std::string(ATSIM_SCENARIO_DIR) + "/" + shippedScenario, ReadWholeFile) {}
    // A scenario given as text.
    ModemHarness(const std::string &name, const std::string &content)
        : ModemHarness(name, [&content](const std::string &, std::string *out) {
              *out = content;
              return true;
          }) {}
    ModemHarness(const std::string &path, const FileReader &reader) {
        std::string error;
        EXPECT_TRUE(LoadScenario(path, reader, &scenario, &error)) << error;
        ModemOptions options;
        options.periodicUrcs = false;
        options.log = [this](const std::string &line) { logs.push_back(line); };
        modem = std::make_unique<Modem>(scenario, std::move(options), now);
    }
    // Writes bytes, lets waitMs pass and returns what the modem sent meanwhile.
    std::string Exchange(const std::string &bytes, Millis waitMs = 0) {
        modem->Receive(bytes, now);
        modem->Advance(now += waitMs);
        return modem->TakeOutput();
    }

    Millis now = 1000000;
    std::vector<std::string> logs;
    Scenario scenario;
    std::unique_ptr<Modem> modem;
};

// "\r\n<line>\r\n" for each line, as the modem frames them.
inline std::string Framed(const std::vector<std::string> &lines) {
    std::string out;
    for (const std::string &line : lines) out += "\r\n" + line + "\r\n";
    return out;
}

}  // namespace atsim::test
