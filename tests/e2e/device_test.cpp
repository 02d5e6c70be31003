// Device control and the network time through atserver and atsim on the
// shipped default scenario: from the library in this process and from
// atcli.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "adapt/at_network_time.h"
#include "atapi/at_send.h"
#include "atapi/at_time_translate.h"
#include "atapi/ats_device.h"
#include "e2e_fixture.h"
#include "platform/shell.h"

namespace atapi::e2e {
namespace {

using DeviceTest = ShippedScenarioTest;

std::string DateTime(const AtsTimeInfo &t) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", t.tm_year, t.tm_mon,
                  t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec);
    return text;
}

TEST_F(DeviceTest, Device_NetworkTimeIntoLocalTime) {
    char answer[AT_REPORT_STR_LEN];
    int32_t errorId = 0;
    ASSERT_EQ(AtSendAndGetSingleStrRsp("AT^NWTIME?", "^NWTIME", answer, sizeof answer, &errorId),
              0);
    EXPECT_EQ(errorId, AT_ERRID_OK);
    AtsTimeInfo utc{};
    ASSERT_TRUE(adapt::DecodeNetworkTime(answer, &utc)) << answer;
    AtsTimeInfo local{};
    ASSERT_EQ(AtsUniversalTimeToLocalTime(&utc, &local), 0);
    EXPECT_EQ(DateTime(local), "2024-05-17 20:30:45");
    char zone[16];
    AtsNetTimeZoneToStand(local.timeZone, zone, sizeof zone);
    EXPECT_STREQ(zone, "GMT+08:00");

    const ProcessResult cli = Cli({"time", "network", "--zone", "-17", "--json"});
    EXPECT_EQ(cli.exitCode, 0) << cli.err;
    EXPECT_EQ(cli.out,
              "{\"universal\":\"2024-05-17 12:30:45\",\"local\":\"2024-05-17 08:15:45\","
              "\"zone\":\"GMT-04:15\",\"zone_quarter_hours\":-17}\n");
}

TEST_F(DeviceTest, Device_QueriesAndSettings) {
    SkuInfo sku{};
    ASSERT_EQ(AtSkuHandle(AT_DEVICE_QUERY, nullptr, &sku), 0);
    EXPECT_EQ(sku.n, 1u);
    EXPECT_EQ(sku.errorId, AT_ERRID_OK);
    const uint32_t tooLarge = 3;
    EXPECT_EQ(AtSkuHandle(AT_DEVICE_SET, &tooLarge, nullptr), -1);

    HfreqInfoResult bands{};
    ASSERT_EQ(AtHfreqHandle(AT_DEVICE_QUERY, nullptr, &bands), 0);
    ASSERT_NE(bands.lteList, nullptr);
    ASSERT_NE(bands.nrList, nullptr);
    EXPECT_EQ(bands.lteList->bandClass, 3);
    EXPECT_EQ(bands.lteList->ulFcn, 19300);
    EXPECT_EQ(bands.nrList->bandClass, 78);
    EXPECT_EQ(bands.nrList->ulBw, 1000);
    HfreqInfoExFree(&bands);

    // Reset and download mode leave the simulated module as it was; the
    // reboot reason goes to a sink instead of this machine's shell.
    WatchdogInfo watchdog{45, 0};
    ASSERT_EQ(AtSetWatchDogTime(AT_DEVICE_SET, &watchdog), 0);
    EXPECT_EQ(AtFactoryReset(), 0);
    PlatformSetShellSink([](void *, const char *) { return 0; }, nullptr);
    EXPECT_EQ(AtGodLoad(), 0);
    PlatformSetShellSink(nullptr, nullptr);

    const ProcessResult cli = Cli({"device", "all", "--json"});
    EXPECT_EQ(cli.exitCode, 0) << cli.err;
    EXPECT_EQ(cli.out,
              "{\"sku\":1,\"simlock\":0,\"thermal_state\":0,\"thermal_protection\":1,"
              "\"watchdog_time\":45,\"nv_restore_state\":0}\n");
    const ProcessResult refused = Cli({"device", "sku", "--set", "7"});
    EXPECT_EQ(refused.exitCode, 64);
}

}  // namespace
}  // namespace atapi::e2e
