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
    // A shipped scenario, with fail rules added in order.
    explicit ModemHarness(const char *shipped, const std::vector<std::string> &failRules = {})
        : ModemHarness(std::string(ATSIM_SCENARIO_DIR) + "/" + shipped, ReadWholeFile, failRules) {}
    // A scenario given as text.
    ModemHarness(const std::string &name, const std::string &content)
        : ModemHarness(name, [&content](const std::string &, std::string *out) {
              *out = content;
              return true;
          }) {}
    ModemHarness(const std::string &path, const FileReader &reader,
                 const std::vector<std::string> &failRules = {}) {
        std::string error;
        EXPECT_TRUE(LoadScenario(path, reader, &scenario, &error)) << error;
        for (const std::string &rule : failRules) {
            EXPECT_TRUE(AddFailRule(rule, &scenario, &error)) << error;
        }
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

// Bytes written, then time let pass, then everything sent back meanwhile: the
// echo, if any, and framed lines.
struct Exchange {
    std::string input;
    Millis waitMs;
    std::vector<std::string> output;
    std::string echo = {};
};

inline void Play(ModemHarness &harness, const std::vector<Exchange> &exchanges) {
    Millis elapsed = 0;
    for (const Exchange &e : exchanges) {
        elapsed += e.waitMs;
        EXPECT_EQ(harness.Exchange(e.input, e.waitMs), e.echo + Framed(e.output))
            << "writing \"" << e.input.substr(0, 40) << "\", at " << elapsed << " ms";
    }
}

}  // namespace atsim::test
