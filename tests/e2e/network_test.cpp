// Cell monitoring, jamming detection and RSSI reports through atserver and
// atsim on the shipped default scenario: a serving-cell and neighbour read
// on each technology atsim camps on, the jamming switch set and read back,
// and the RSSI reports that follow their switch.
#include <memory>
#include <string>
#include <vector>

#include "atapi/m2m_ats_network.h"
#include "e2e_fixture.h"

namespace atapi::e2e {
namespace {

class NetworkTest : public ShippedScenarioTest {
  protected:
    static void CampOn(const std::string &technology) {
        const Exchange done = Send("AT+SIMRAT=" + technology);
        ASSERT_EQ(done.status, 0);
        ASSERT_EQ(done.retVal, AT_RET_OK) << done.text;
    }
};

std::string Neighbours(const MonncInfo &list) {
    std::string text;
    for (uint32_t i = 0; i < list.count; ++i) {
        text += std::to_string(list.neighbors[i].rat) + ":" +
                std::to_string(list.neighbors[i].arfcn) + " ";
    }
    return text;
}

TEST_F(NetworkTest, Cell_ServingAndNeighboursPerTechnology) {
    struct Camp {
        const char *technology;
        MonscInfo serving;
        const char *neighbours;  // rat:arfcn, the newer technologies first
    };
    const Camp camps[] = {
        {"GSM", {AT_CELL_RAT_GSM, 62, 0x1B7D, 0x25F0, AT_ERRID_OK}, "0:62 0:75 0:81 "},
        {"WCDMA",
         {AT_CELL_RAT_WCDMA, 10700, 0x1A2B3C4, 0x25F0, AT_ERRID_OK},
         "1:10700 1:10725 0:62 "},
        {"TD_SCDMA",
         {AT_CELL_RAT_TD_SCDMA, 10055, 0x0A1B2C, 0x25F0, AT_ERRID_OK},
         "2:10055 2:10080 "},
        {"LTE", {AT_CELL_RAT_LTE, 1300, 0xA1B2C3, 0xC3, AT_ERRID_OK}, "4:636666 3:1300 3:1850 "},
        {"NR",
         {AT_CELL_RAT_NR, 627264, 0x1A2B3C4D, 0x0A1B2C, AT_ERRID_OK},
         "4:627264 4:627264 4:636666 4:636666 3:1300 3:1850 "},
        {"NONE", {0, 0, 0, 0, AT_MONSC_ERRID_NO_SERVICE}, ""},
    };
    for (const Camp &camp : camps) {
        SCOPED_TRACE(camp.technology);
        CampOn(camp.technology);
        MonscInfo serving{};
        EXPECT_EQ(AtGetMonsc(&serving), camp.serving.errorId == AT_ERRID_OK ? 0 : -1);
        EXPECT_EQ(serving.rat, camp.serving.rat);
        EXPECT_EQ(serving.arfcn, camp.serving.arfcn);
        EXPECT_EQ(serving.cellId, camp.serving.cellId);
        EXPECT_EQ(serving.lac, camp.serving.lac);
        EXPECT_EQ(serving.errorId, camp.serving.errorId);
        MonncInfo neighbours{};
        EXPECT_EQ(AtGetMonnc(&neighbours), 0);
        EXPECT_EQ(Neighbours(neighbours), camp.neighbours);
    }

    CampOn("NR");
    const ProcessResult cli = Cli({"cell", "serving", "--json"});
    EXPECT_EQ(cli.exitCode, 0) << cli.err;
    EXPECT_EQ(cli.out, "{\"rat\":\"NR\",\"arfcn\":627264,\"cell_id\":439041101,\"lac\":662316}\n");
}

TEST_F(NetworkTest, Jamming_SwitchedOnAndReadBack) {
    const auto modes = [] {
        JammingDetectSwitchInfo info{};
        EXPECT_EQ(AtGetJammingDetectSwitch(&info), 0);
        std::string text;
        for (const auto &e : info.entry)
            text += std::to_string(e.rat) + ":" + std::to_string(e.mode) + " ";
        return text;
    };
    ASSERT_EQ(AtSetJammingDetctSwitch(0), 0);
    EXPECT_EQ(modes(), "0:0 1:0 2:0 ");
    ASSERT_EQ(AtSetJammingDetctSwitch(1), 0);
    EXPECT_EQ(modes(), "0:1 1:1 2:1 ");
    EXPECT_EQ(AtSetJammingDetctSwitch(7), -1);

    const JammingDetectCfg gsm{AT_JAMMING_RAT_GSM, 5, 6, 7, 8};
    ASSERT_EQ(AtSetJammingDetectCfg(&gsm), 0);
    JammingDetectCfgInfo cfg{};
    ASSERT_EQ(AtGetJammingDetectCfg(&cfg), 0);
    EXPECT_EQ(cfg.cfg[0].value1, 5);
    EXPECT_EQ(cfg.cfg[0].value2, 6);
    EXPECT_EQ(cfg.cfg[0].value3, 0);
    EXPECT_EQ(cfg.cfg[2].rat, AT_JAMMING_RAT_LTE);

    const ProcessResult cli = Cli({"jamming", "switch", "off", "--json"});
    EXPECT_EQ(cli.exitCode, 0) << cli.err;
    EXPECT_EQ(cli.out, "{\"gsm\":0,\"wcdma\":0,\"lte\":0}\n");
}

TEST_F(NetworkTest, Rssi_ReportsFollowTheirSwitch) {
    const EmRssiCfg threshold{AT_JAMMING_RAT_LTE, -90};
    ASSERT_EQ(AtSetEmRssiCfg(&threshold), 0);
    EmRssiCfgInfo cfg{};
    ASSERT_EQ(AtGetEmRssiCfg(&cfg), 0);
    EXPECT_EQ(cfg.cfg[AT_JAMMING_RAT_LTE].rssiThresh, -90);

    ASSERT_EQ(AtSetEmRssiRpt(1), 0);
    int32_t n = 0;
    ASSERT_EQ(AtGetEmRssiRpt(&n), 0);
    EXPECT_EQ(n, 1);
    EXPECT_TRUE(WaitUntil(
        [this] {
            return ReadFile(server_->ReportPath()).find("^EMRSSIRPT: 2,-") != std::string::npos;
        },
        std::chrono::seconds(3)))
        << ReadFile(server_->ReportPath());
    ASSERT_EQ(AtSetEmRssiRpt(0), 0);
    ASSERT_EQ(AtGetEmRssiRpt(&n), 0);
    EXPECT_EQ(n, 0);
}

}  // namespace
}  // namespace atapi::e2e
