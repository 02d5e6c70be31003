// Jamming detection and RSSI reports against the scripted modem: the lines
// sent, the rows stored by their technology, and the slots a reply does not
// name left as the caller had them.

#include <string>

#include "atapi/m2m_ats_network.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;

struct NoRecord {
    char unused;
};

// clang-format off
TEST(M2mAtsNetwork, SetLines) {
    const auto call = [](auto fn) { return [fn](NoRecord &) { return fn(); }; };
    const auto cfg = [call](int32_t rat) {
        return call([rat] {
            const JammingDetectCfg c{rat, 5, 6, 7, 8};
            return AtSetJammingDetectCfg(&c);
        });
    };
    const auto switchOn = call([] { return AtSetJammingDetctSwitch(1); });
    RunCommandCases<NoRecord>(Cases<NoRecord>{
        {"switch on", switchOn, {Ok("AT^JDSWITCH=1").Prefix("").Timeout(30)}, 0},
        {"GSM thresholds: two values", cfg(AT_JAMMING_RAT_GSM), {Ok("AT^JDCFG=0,5,6")}, 0},
        {"WCDMA thresholds", cfg(AT_JAMMING_RAT_WCDMA), {Ok("AT^JDCFG=1,5,6,7,8")}, 0},
        {"LTE thresholds", cfg(AT_JAMMING_RAT_LTE), {Ok("AT^JDCFG=2,5,6,7,8")}, 0},
        {"rat 3 is refused", cfg(3), {}, -1},
        {"rat -1 is refused", cfg(-1), {}, -1},
        {"null thresholds", call([] { return AtSetJammingDetectCfg(nullptr); }), {}, -1},
        {"RSSI reports on", call([] { return AtSetEmRssiRpt(1); }), {Ok("AT^EMRSSIRPT=1")}, 0},
        {"RSSI threshold", call([] {
             const EmRssiCfg c{AT_JAMMING_RAT_LTE, -95};
             return AtSetEmRssiCfg(&c);
         }), {Ok("AT^EMRSSICFG=2,-95")}, 0},
        {"null RSSI threshold", call([] { return AtSetEmRssiCfg(nullptr); }), {}, -1},
    } + ErrorCases<NoRecord>("switch", switchOn, "AT^JDSWITCH=1", kFails) + ErrorCases<NoRecord>("LTE", cfg(AT_JAMMING_RAT_LTE), "AT^JDCFG=2,5,6,7,8", kFails)
      + ErrorCases<NoRecord>("RSSI reports", call([] { return AtSetEmRssiRpt(1); }), "AT^EMRSSIRPT=1", kFails), Filled<NoRecord>(0));
}

TEST(M2mAtsNetwork, SwitchAndReportReads) {
    const auto get = [](JammingDetectSwitchInfo &i) { return AtGetJammingDetectSwitch(&i); };
    RunCommandCases<JammingDetectSwitchInfo>(Cases<JammingDetectSwitchInfo>{
        {"all three", get,
         {Ok("AT^JDSWITCH?", "^JDSWITCH: 1,0\r\n^JDSWITCH: 1,1\r\n^JDSWITCH: 0,2").Prefix("^JDSWITCH:").Timeout(30)}, 0,
         [](JammingDetectSwitchInfo &i) { i = {{{0, 1}, {1, 1}, {2, 0}}}; }},
        {"a row of another rat is skipped", get, {Ok("AT^JDSWITCH?", "^JDSWITCH: 1,4\r\n^JDSWITCH: 1,1")}, 0,
         [](JammingDetectSwitchInfo &i) { i.entry[1] = {1, 1}; }},
        {"a reply without the prefix", get, {Ok("AT^JDSWITCH?", "")}, -1},
    } + ErrorCases<JammingDetectSwitchInfo>("switches", get, "AT^JDSWITCH?", kFails), Filled<JammingDetectSwitchInfo>(kFill));
    EXPECT_EQ(AtGetJammingDetectSwitch(nullptr), -1);

    const auto rpt = [](int32_t &n) { return AtGetEmRssiRpt(&n); };
    RunCommandCases<int32_t>(Cases<int32_t>{
        {"reports on", rpt, {Ok("AT^EMRSSIRPT?", "^EMRSSIRPT: 1").Prefix("^EMRSSIRPT:")}, 0,
         [](int32_t &n) { n = 1; }},
    } + ErrorCases<int32_t>("reports", rpt, "AT^EMRSSIRPT?", kFails), Filled<int32_t>(kFill));
}

TEST(M2mAtsNetwork, ThresholdReads) {
    const auto cfg = [](JammingDetectCfgInfo &i) { return AtGetJammingDetectCfg(&i); };
    RunCommandCases<JammingDetectCfgInfo>(Cases<JammingDetectCfgInfo>{
        {"LTE and GSM rows leave WCDMA", cfg,
         {Ok("AT^JDCFG?", "^JDCFG: 2,70,20,30,40\r\n^JDCFG: 0,10,20,0,0").Prefix("^JDCFG:").Timeout(30)}, 0,
         [](JammingDetectCfgInfo &i) {
             i.cfg[2] = {2, 70, 20, 30, 40};
             i.cfg[0] = {0, 10, 20, 0, 0};
         }},
        {"a GSM row of three fields zeroes the rest", cfg, {Ok("AT^JDCFG?", "^JDCFG: 0,10,20")}, 0,
         [](JammingDetectCfgInfo &i) { i.cfg[0] = {0, 10, 20, 0, 0}; }},
    } + ErrorCases<JammingDetectCfgInfo>("thresholds", cfg, "AT^JDCFG?", kFails), Filled<JammingDetectCfgInfo>(kFill));

    const auto rssi = [](EmRssiCfgInfo &i) { return AtGetEmRssiCfg(&i); };
    RunCommandCases<EmRssiCfgInfo>(Cases<EmRssiCfgInfo>{
        {"a row of rat 7 is skipped, the others stored", rssi,
         {Ok("AT^EMRSSICFG?", "^EMRSSICFG: 0,-100\r\n^EMRSSICFG: 7,5\r\n^EMRSSICFG: 2,-95").Prefix("^EMRSSICFG:")}, 0,
         [](EmRssiCfgInfo &i) {
             i.cfg[0] = {0, -100};
             i.cfg[2] = {2, -95};
         }},
    } + ErrorCases<EmRssiCfgInfo>("RSSI thresholds", rssi, "AT^EMRSSICFG?", kFails), Filled<EmRssiCfgInfo>(kFill));
}
// clang-format on

}  // namespace
}  // namespace atapi::test
