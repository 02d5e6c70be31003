// No secret left behind: the programs that handle PINs, PUKs, passwords and
// unlock codes run with the freed-block scan preloaded (free_scan.c) and the
// planted secrets of planted_secrets.h; no block they hand back may still
// hold one, and no log, trace or output may show one.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include "e2e_fixture.h"
#include "isolated_runtime.h"
#include "planted_secrets.h"

namespace atapi::e2e {
namespace {

using namespace atapi::secrets;

constexpr const char *kScanVariables[] = {"LD_PRELOAD", "FREE_SCAN_SECRETS", "FREE_SCAN_REPORT",
                                          "ATAPI_TRACE_LEVEL"};

// The scan's report: each process's program and the blocks it scanned by its
// end (-1: it did not end), and every hit as "<program> <block size> <secret>".
struct ScanReport {
    std::map<int, std::pair<std::string, long>> processes;
    std::vector<std::string> hits;
};

// The scan is preloaded into the programs this test starts, never into the
// test itself.
class SecretScanTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (*FREE_SCAN_LIBRARY == '\0') GTEST_SKIP() << "the scan needs a build without sanitizers";
        std::string planted;
        for (const char *secret : kPlanted)
            planted += (planted.empty() ? "" : ",") + std::string(secret);
        const std::string values[] = {FREE_SCAN_LIBRARY, planted, report_, "16"};
        // The library's whole trace, down to its detail lines, goes to the
        // driver's stderr, which is checked like every log.
        for (size_t i = 0; i < std::size(values); ++i)
            setenv(kScanVariables[i], values[i].c_str(), 1);
    }
    void TearDown() override {
        for (const char *name : kScanVariables) unsetenv(name);
    }

    ProcessResult Run(const std::vector<std::string> &argv, const std::string &input = "") {
        const ProcessResult result = RunProcess(argv, runtime_.Root(), input);
        ExpectNoSecretIn(result.out, argv.front() + " output");
        ExpectNoSecretIn(result.err, argv.front() + " errors");
        return result;
    }

    ScanReport Scanned() const {
        ScanReport report;
        std::istringstream lines(ReadFile(report_));
        int pid = 0;
        for (std::string kind, program, rest; lines >> kind >> pid >> program;) {
            std::getline(lines, rest);
            if (kind == "hit") {
                report.hits.push_back(program + rest);
            } else {
                report.processes[pid] = {program, kind == "end" ? std::stol(rest) : -1};
            }
        }
        return report;
    }

    test::IsolatedRuntime runtime_;
    const std::string report_ = runtime_.Path("/free_scan.txt");
};

// The check itself: a block freed with a secret in it is reported, once,
// with the secret it held.
TEST_F(SecretScanTest, Scan_ReportsAnUnwipedBlock) {
    ASSERT_EQ(Run({SECRET_DRIVER_PATH, "leak"}).exitCode, 0);
    const ScanReport report = Scanned();
    ASSERT_EQ(report.hits.size(), 1u);
    EXPECT_TRUE(report.hits[0].starts_with("secret_driver ")) << report.hits[0];
    EXPECT_TRUE(report.hits[0].ends_with(kPin)) << report.hits[0];
    ASSERT_EQ(report.processes.size(), 1u);
    EXPECT_GT(report.processes.begin()->second.second, 0);
}

// The library's parsers and every secret-bearing command, from the library
// and from atcli, through atserver (logging at debug level) and atsim
// (logging every command), with the modem echoing each command line back.
TEST_F(SecretScanTest, Session_FreesAndLogsNoSecret) {
    const std::string scenario = runtime_.Path("/secrets.scn");
    std::ofstream(scenario) << "include " << ATSIM_SCENARIO_DIR << "/default.scn\n"
                            << "var pin = " << kPin << "\nvar puk = " << kPuk
                            << "\nvar nck = " << kUnlockCode << "\nvar cardlock = 1\n";
    AtServerProcess server(runtime_);
    ASSERT_NO_FATAL_FAILURE(
        server.Start(scenario, {"--sim-arg", "--no-urc", "--sim-arg", "--verbose"}));
    ASSERT_EQ(Send("ATE1").retVal, AT_RET_OK);

    const ProcessResult driver = Run({SECRET_DRIVER_PATH});
    EXPECT_EQ(driver.exitCode, 0) << driver.err;
    EXPECT_NE(driver.err.find("send to atserver"), std::string::npos) << "no trace to check";
    std::vector<std::string> changePin{CliProgram(), "pin", "change"};
    EXPECT_EQ(Run(changePin, std::string(kNewPin) + "\n" + kPin + "\n").exitCode, 0);
    std::vector<std::string> enterPuk{CliProgram(), "pin", "enter", "--puk"};
    EXPECT_EQ(Run(enterPuk, std::string(kPuk) + "\n" + kNewPin + "\n").exitCode, 1);
    ASSERT_EQ(server.Stop(), 0) << server.Log();

    const ScanReport report = Scanned();
    EXPECT_EQ(report.hits, std::vector<std::string>{});
    std::set<std::string> programs;
    for (const auto &[pid, process] : report.processes) {
        programs.insert(process.first);
        EXPECT_GT(process.second, 0) << process.first << " (pid " << pid << ") did not end";
    }
    for (const char *program : {"atcli", "atserver", "atsim", "secret_driver"}) {
        EXPECT_TRUE(programs.contains(program)) << program << " never ran under the scan";
    }
    server.ExpectNoSecretShown();
    // The log did see the secret-bearing commands, masked, from both sides.
    for (const char *masked :
         {"AT+CPIN=...", "AT^CARDLOCK=...", "AT^AUTHDATA=...", "atsim: \"AT+CPWD=...\""}) {
        EXPECT_NE(server.Log().find(masked), std::string::npos) << masked << "\n" << server.Log();
    }
}

}  // namespace
}  // namespace atapi::e2e
