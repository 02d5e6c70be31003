// No secret left behind: the programs that handle PINs, PUKs, passwords and
// unlock codes run with the freed-block scan preloaded (free_scan.c) and the
// planted secrets of planted_secrets.h; no block they hand back may still
// hold one, and no log, trace or output may show one.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "e2e_fixture.h"
#include "isolated_runtime.h"
#include "planted_secrets.h"
#include "secret_log_check.h"

namespace atapi::e2e {
namespace {

using namespace atapi::secrets;
using test::ExpectNoSecretIn;

// What the scan reported for one process.
struct ScannedProcess {
    std::string program;
    bool ended = false;
    unsigned long scanned = 0;
    std::vector<std::string> hits;  // "<block size> <secret>"
};

std::map<int, ScannedProcess> ReadScanReport(const std::string &path) {
    std::map<int, ScannedProcess> processes;
    std::istringstream lines(ReadFile(path));
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream words(line);
        std::string kind;
        int pid = 0;
        std::string program;
        words >> kind >> pid >> program;
        ScannedProcess &process = processes[pid];
        process.program = program;
        if (kind == "end") {
            process.ended = true;
            words >> process.scanned;
        } else if (kind == "hit") {
            std::string rest;
            std::getline(words, rest);
            process.hits.push_back(rest);
        }
    }
    return processes;
}

std::string PlantedList() {
    std::string list;
    for (const char *secret : kPlanted) list += (list.empty() ? "" : ",") + std::string(secret);
    return list;
}

// The scan is preloaded into the programs this test starts, never into the
// test itself.
class SecretScanTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (std::string(FREE_SCAN_LIBRARY).empty()) {
            GTEST_SKIP() << "the freed-block scan needs a build without sanitizers";
        }
        runtime_ = std::make_unique<test::IsolatedRuntime>();
        reportPath_ = runtime_->Path("/free_scan.txt");
        setenv("LD_PRELOAD", FREE_SCAN_LIBRARY, 1);
        setenv("FREE_SCAN_SECRETS", PlantedList().c_str(), 1);
        setenv("FREE_SCAN_REPORT", reportPath_.c_str(), 1);
        // The library's whole trace, down to its detail lines, goes to the
        // driver's stderr, which is scanned like every log.
        setenv("ATAPI_TRACE_LEVEL", "16", 1);
    }

    void TearDown() override {
        for (const char *name :
             {"LD_PRELOAD", "FREE_SCAN_SECRETS", "FREE_SCAN_REPORT", "ATAPI_TRACE_LEVEL"}) {
            unsetenv(name);
        }
        if (server_ != nullptr && server_->Pid() > 0) server_->Stop(SIGKILL);
        server_.reset();
        runtime_.reset();
    }

    ProcessResult Run(const std::vector<std::string> &argv, const std::string &input = "") {
        const ProcessResult result = RunProcess(argv, runtime_->Root(), input);
        ExpectNoSecretIn(result.out, argv.front() + " output");
        ExpectNoSecretIn(result.err, argv.front() + " errors");
        return result;
    }

    // Every program of programs ran to its end under the scan, and no block
    // that any process handed back held a planted secret.
    void ExpectCleanScan(const std::vector<std::string> &programs) {
        const std::map<int, ScannedProcess> processes = ReadScanReport(reportPath_);
        for (const std::string &program : programs) {
            bool seen = false;
            for (const auto &[pid, process] : processes) {
                if (process.program != program) continue;
                seen = true;
                EXPECT_TRUE(process.ended) << program << " (pid " << pid << ") did not end";
                EXPECT_GT(process.scanned, 0u) << program << " (pid " << pid << ")";
            }
            EXPECT_TRUE(seen) << program << " never ran under the scan";
        }
        for (const auto &[pid, process] : processes) {
            for (const std::string &hit : process.hits) {
                ADD_FAILURE() << process.program << " (pid " << pid
                              << ") freed a block holding a secret:" << hit;
            }
        }
    }

    std::unique_ptr<test::IsolatedRuntime> runtime_;
    std::unique_ptr<AtServerProcess> server_;
    std::string reportPath_;
};

// The check itself: a block freed with a secret in it is reported, once,
// with the secret it held.
TEST_F(SecretScanTest, Scan_ReportsAnUnwipedBlock) {
    ASSERT_EQ(Run({SECRET_DRIVER_PATH, "leak"}).exitCode, 0);
    const std::map<int, ScannedProcess> processes = ReadScanReport(reportPath_);
    ASSERT_EQ(processes.size(), 1u);
    const ScannedProcess &driver = processes.begin()->second;
    EXPECT_EQ(driver.program, "secret_driver");
    EXPECT_TRUE(driver.ended);
    ASSERT_EQ(driver.hits.size(), 1u);
    EXPECT_NE(driver.hits[0].find(kPin), std::string::npos) << driver.hits[0];
}

TEST_F(SecretScanTest, LibraryParse_FreesNoSecret) {
    const ProcessResult driver = Run({SECRET_DRIVER_PATH, "parse"});
    EXPECT_EQ(driver.exitCode, 0) << driver.err;
    ExpectCleanScan({"secret_driver"});
}

// Every secret-bearing command, from the library and from atcli, through
// atserver (logging at debug level) and atsim (logging every command), with
// the modem echoing each command line back.
TEST_F(SecretScanTest, ServerSession_FreesAndLogsNoSecret) {
    const std::string scenario = runtime_->Path("/secrets.scn");
    std::ofstream(scenario) << "include " << ATSIM_SCENARIO_DIR << "/default.scn\n"
                            << "var pin = " << kPin << "\nvar puk = " << kPuk
                            << "\nvar nck = " << kUnlockCode << "\nvar cardlock = 1\n";
    server_ = std::make_unique<AtServerProcess>(*runtime_);
    ASSERT_NO_FATAL_FAILURE(
        server_->Start(scenario, {"--sim-arg", "--no-urc", "--sim-arg", "--verbose"}));
    ASSERT_EQ(Send("ATE1").retVal, AT_RET_OK);

    const ProcessResult driver = Run({SECRET_DRIVER_PATH, "send"});
    EXPECT_EQ(driver.exitCode, 0) << driver.err;
    EXPECT_NE(driver.err.find("send to atserver"), std::string::npos) << "no trace to scan";
    const struct {
        std::vector<std::string> args;
        std::string input;
        int exitCode;
    } cliRuns[] = {
        {{"pin", "change"}, std::string(kNewPin) + "\n" + kPin + "\n", 0},
        {{"pin", "enter", "--puk"}, std::string(kPuk) + "\n" + kNewPin + "\n", 1},
    };
    for (const auto &run : cliRuns) {
        std::vector<std::string> argv{CliProgram()};
        argv.insert(argv.end(), run.args.begin(), run.args.end());
        EXPECT_EQ(Run(argv, run.input).exitCode, run.exitCode) << run.args.back();
    }
    ASSERT_EQ(server_->Stop(), 0) << server_->Log();

    ExpectCleanScan({"atserver", "atsim", "secret_driver", "atcli"});
    server_->ExpectNoSecretShown();
    const std::string log = server_->Log();
    // The log did see the secret-bearing commands, masked, from both sides.
    for (const char *masked :
         {"AT+CPIN=...", "AT^CARDLOCK=...", "AT^AUTHDATA=...", "atsim: \"AT+CPWD=...\""}) {
        EXPECT_NE(log.find(masked), std::string::npos) << masked << " not in\n" << log;
    }
}

}  // namespace
}  // namespace atapi::e2e
