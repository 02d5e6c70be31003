// atcli raw against the real atserver, and without one.
#include <string>
#include <vector>

#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

struct CliCase {
    std::vector<std::string> args;
    int exitCode;
    std::string out;
};

TEST_F(E2eTest, Atcli_RawPrintsClassAndText) {
    const CliCase cases[] = {
        {{"raw", "AT+CGMI"}, 0, std::string("OK (2)\n") + kManufacturer + "\n"},
        {{"raw", "AT"}, 0, "OK (2)\n"},
        {{"raw", "AT+CPIN=\"0000\""}, 1, "CME ERROR (3)\n+CME ERROR: 16\n"},
        {{"raw", "AT+NOSUCHCOMMAND", "--timeout", "5"}, 1, "ERROR (5)\nERROR\n"},
        {{"raw", "AT+CGMI", "--json"},
         0,
         std::string("{\"command\":\"AT+CGMI\",\"class\":\"OK\",\"retVal\":2,\"text\":\"") +
             kManufacturer + "\"}\n"},
        {{"raw", "AT+CGDCONT?", "--prefix", "+CGDCONT", "--json"},
         0,
         "{\"command\":\"AT+CGDCONT?\",\"class\":\"OK\",\"retVal\":2,\"text\":\"+CGDCONT: "
         "1,\\\"IP\\\",\\\"internet\\\",\\\"0.0.0.0\\\",0,0\\r\\n+CGDCONT: "
         "2,\\\"IPV4V6\\\",\\\"ims\\\",\\\"0.0.0.0\\\",0,0\\r\\n+CGDCONT: "
         "3,\\\"IPV4V6\\\",\\\"sos\\\",\\\"0.0.0.0\\\",0,0\"}\n"},
        {{"raw"}, 2, ""},
        {{"nosuchsubcommand"}, 2, ""},
    };
    for (const CliCase &c : cases) {
        std::vector<std::string> argv{ATCLI_PATH};
        argv.insert(argv.end(), c.args.begin(), c.args.end());
        SCOPED_TRACE(c.args.back());
        const ProcessResult result = RunProcess(argv, runtime_->Root());
        EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
        EXPECT_EQ(result.out, c.out);
    }
}

TEST(AtcliWithoutServer, Atcli_SaysSoAndExitsTwo) {
    test::IsolatedRuntime runtime;
    const ProcessResult result = RunProcess({ATCLI_PATH, "raw", "AT+CGMI"}, runtime.Root());
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "atcli: atserver is not running (no ready flag at " +
                              runtime.Path(kReadyFlagPath) + ")\n");
}

}  // namespace
}  // namespace atapi::e2e
