// V2X through atserver and atsim on the shipped default scenario: the reads
// get OK replies and still fail at the parse step (module 31 has no handler
// table), the sets go through; from the library and from atcli.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "atapi/m2m_ats_v2x.h"
#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

using V2xTest = ShippedScenarioTest;

// The transmitted packets of a "^PTRRPT:" reply, or -1.
long TxPackets(const std::string &reply) {
    long bytes = 0;
    long rxBytes = 0;
    long packets = -1;
    if (std::sscanf(reply.c_str(), "^PTRRPT: %ld,%ld,%ld", &bytes, &rxBytes, &packets) != 3) {
        return -1;
    }
    return packets;
}

TEST_F(V2xTest, V2x_StatisticsReadEndsAtTheParseStep) {
    // The module answers, and its counters grow between reads.
    const Exchange first = Send("AT^PTRRPT?");
    const Exchange second = Send("AT^PTRRPT?");
    ASSERT_EQ(first.status, 0);
    ASSERT_EQ(second.retVal, AT_RET_OK);
    EXPECT_GT(TxPackets(first.text), 0) << first.text;
    EXPECT_GT(TxPackets(second.text), TxPackets(first.text)) << second.text;

    // The library gets the same OK reply and cannot parse it under module 31.
    AtsV2xPdcpPacketStat pdcp{7, 7, 7, 7};
    EXPECT_EQ(AtsV2xGetPdcpPacketStats(&pdcp), -1);
    EXPECT_EQ(pdcp.txBytes, 7);
    EXPECT_EQ(pdcp.rxPackets, 7);
    AtsV2xPhyPacketStats phy{};
    EXPECT_EQ(AtsV2xGetPhyPacketStats(&phy), -1);
    AtsV2xRsrpInfo rsrp{};
    EXPECT_EQ(AtsV2xGetRsrp(&rsrp), -1);

    const ProcessResult cli = Cli({"v2x", "stats", "--json"});
    EXPECT_EQ(cli.exitCode, 1) << cli.err;
    EXPECT_EQ(cli.out, "");
    EXPECT_NE(cli.err.find("v2x stats: failed"), std::string::npos) << cli.err;
}

TEST_F(V2xTest, V2x_SetsGoThrough) {
    AtsV2xModeCfgInfo cfg{0, 0};
    EXPECT_EQ(AtsV2xModeCfg(1, &cfg), 0);
    EXPECT_EQ(Send("AT^VMODE?").text.find("^VMODE: 0,0"), 0u);
    // The read gets "^VMODE: 0,0" and ends at the parse step, mode untouched.
    AtsV2xModeCfgInfo read{0, 5};
    EXPECT_EQ(AtsV2xModeCfg(0, &read), -1);
    EXPECT_EQ(read.mode, 5);

    const ProcessResult cli = Cli({"v2x", "mode", "1", "--json"});
    EXPECT_EQ(cli.exitCode, 0) << cli.err;
    EXPECT_EQ(cli.out, "{\"mode\":1}\n");
    EXPECT_EQ(Send("AT^VMODE?").text.find("^VMODE: 0,1"), 0u);
    EXPECT_EQ(Cli({"v2x", "mode", "2"}).exitCode, 64);

    EXPECT_EQ(AtsV2xSetDualAntSwitch(1), 0);
    EXPECT_EQ(Send("AT^VTXANTSWITCH?").text.find("^VTXANTSWITCH: 1"), 0u);
    EXPECT_EQ(AtsV2xSetDualAntSwitch(2), -1);
    AtsV2xTxPwrRptCfg txPwr{1, -2, 3, 4000000000u};
    EXPECT_EQ(AtsV2xTxPwrRptCfgExecute(&txPwr), 0);
}

}  // namespace
}  // namespace atapi::e2e
