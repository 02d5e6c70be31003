// V2X against the scripted modem: the line of every command, the mode set's
// checks before sending, and the reads that fail at the parse step (module
// 31 has no handler table) without touching a record. The walks that store
// a parsed reply are driven with rows built here.

#include "atapi/m2m_ats_v2x.h"

#include <tuple>
#include <utility>

#include "atapi/at_parse.h"
#include "error_classes.h"
#include "parse/at_parse_rows.h"
#include "telematics/m2m_ats_v2x_read.h"

namespace atapi::test {
namespace {

// Every record of the module, so that one table covers every command and
// shows a byte written anywhere.
struct V2xRecords {
    AtsV2xModeCfgInfo mode;
    AtsV2xCbrInfo cbr;
    AtsV2xSyncInfo sync;
    AtsV2xPdcpPacketStat pdcp;
    AtsV2xPhyPacketStats phy;
    AtsV2xRsrpInfo rsrp;
    AtsV2xRssiInfo rssi;
    int32_t antSwitch;
    AtsV2xTxPwrRptCfg txPwr;
};

using R = V2xRecords;

// One row from (name, value) pairs; either may be null.
ParseRows Row(std::initializer_list<std::pair<const char *, const char *>> fields) {
    std::vector<char *> names;
    std::vector<char *> values;
    for (const auto &[name, value] : fields) {
        names.push_back(name != nullptr ? strdup(name) : nullptr);
        values.push_back(value != nullptr ? strdup(value) : nullptr);
    }
    return ParseRows(GreatLinkListAt(names.data(), values.data(), names.size()));
}

// clang-format off
using Fields = std::initializer_list<std::pair<const char *, const char *>>;
// A walk over one row of the given fields into the records.
template <typename Fn>
auto Walk(Fn fn) {
    return [fn](Fields fields) { return [fn, fields](R &r) { const ParseRows row = Row(fields); return fn(row.Get(), r); }; };
}

TEST(M2mAtsV2x, CommandsAndTheParseStep) {
    const auto modeCfg = [](int32_t cmdType, int32_t rat, int32_t mode) {
        return [=](R &r) { r.mode = {rat, mode}; const int32_t ret = AtsV2xModeCfg(cmdType, &r.mode); r.mode = {0, 1}; return ret; };
    };
    R preset = Filled<R>(0x5A);
    preset.mode = {0, 1};
    preset.txPwr = {1, -2, 3, 4294967295u};
    RunRows<R>({
        {"mode query fails at the parse step", modeCfg(0, 0, 1), {Ok("AT^VMODE?", "^VMODE: 0,1").Prefix("").Timeout(30)}, -1, {}, kFails},
        {"mode set", modeCfg(1, 0, 1), {Ok("AT^VMODE=0,1").Prefix("").Timeout(30)}, 0, {}, kFails},
        {"rat 1 is not sent", modeCfg(1, 1, 0), {}, -1},
        {"mode 2 is not sent", modeCfg(1, 0, 2), {}, -1},
        {"mode -1 is not sent", modeCfg(1, 0, -1), {}, -1},
        {"unknown cmdType", modeCfg(2, 0, 1), {}, -1},
        {"antenna switch set", [](R &) { return AtsV2xSetDualAntSwitch(1); }, {Ok("AT^VTXANTSWITCH=1").Prefix("")}, 0, {}, kFails},
        {"transmit-power report", [](R &r) { return AtsV2xTxPwrRptCfgExecute(&r.txPwr); }, {Ok("AT^TXPWRRPTCFG=1,-2,3,4294967295").Prefix("")}, 0, {}, kFails},
        {"null records are not sent", [](R &) {
             return AtsV2xModeCfg(0, nullptr) + AtsV2xCbrQuery(nullptr) + AtsV2xAccessSyncInfoQuery(nullptr) + AtsV2xGetPdcpPacketStats(nullptr) + AtsV2xGetPhyPacketStats(nullptr) +
                    AtsV2xGetRsrp(nullptr) + AtsV2xGetRssi(nullptr) + AtsV2xGetDualAntSwitch(nullptr) + AtsV2xTxPwrRptCfgExecute(nullptr);
         }, {}, -9},
        // The reads fail at the parse step, whatever the reply.
        {"CBR", [](R &r) { return AtsV2xCbrQuery(&r.cbr); }, {Ok("AT^CBR?", "^CBR: 30,45").Prefix("^CBR:")}, -1, {}, kFails},
        {"sync source", [](R &r) { return AtsV2xAccessSyncInfoQuery(&r.sync); }, {Ok("AT^VSYNCSRC?", "^VSYNCSRC: 1,0,54590").Prefix("^VSYNCSRC:")}, -1, {}, kFails},
        {"PDCP", [](R &r) { return AtsV2xGetPdcpPacketStats(&r.pdcp); }, {Ok("AT^PTRRPT?", "^PTRRPT: 1200,3400,12,34").Prefix("")}, -1, {}, kFails},
        {"physical layer", [](R &r) { return AtsV2xGetPhyPacketStats(&r.phy); }, {Ok("AT^VPHYSTAT?", "^VPHYSTAT: 10,20,30,40,50,7").Prefix("")}, -1, {}, kFails},
        {"RSRP", [](R &r) { return AtsV2xGetRsrp(&r.rsrp); }, {Ok("AT^VSNRRSRP?", "^VSNRRSRP: 1\r\n^VSNRRSRP: -90 -91 -92 -93 -94 -95 -96").Prefix("")}, -1, {}, kFails},
        {"RSSI", [](R &r) { return AtsV2xGetRssi(&r.rssi); }, {Ok("AT^V2XRSSI?", "^V2XRSSI: -60,-62").Prefix("")}, -1, {}, kFails},
        {"antenna switch", [](R &r) { return AtsV2xGetDualAntSwitch(&r.antSwitch); }, {Ok("AT^VTXANTSWITCH?", "^VTXANTSWITCH: 1").Prefix("")}, -1, {}, kFails},
    }, preset);
}

TEST(M2mAtsV2x, ChannelBusyRatioAndSyncSource) {
    const auto cbr = Walk([](AtCmdParseNode *n, R &r) { return AtsV2xGetCbrInfo(n, &r.cbr); });
    const auto sync = Walk([](AtCmdParseNode *n, R &r) { return AtsV2xGetAccessSyncInfo(n, &r.sync); });
    RunRows<R>({
        {"both ratios", cbr({{"cbr-pssch", "30"}, {"cbr-pscch", "45"}}), {}, 0, [](R &r) { r.cbr = {30, 1, 45}; }},
        {"without cbr-pscch the flag stays", cbr({{"cbr-pssch", "30"}, {"cbr-pscch", nullptr}}), {}, 0, [](R &r) { r.cbr.cbrPssch = 30; }},
        {"cbr-pssch without a value", cbr({{"cbr-pssch", nullptr}, {"cbr-pscch", "45"}}), {}, -1},
        {"a ratio beyond 32 bits", cbr({{"cbr-pssch", "30"}, {"cbr-pscch", "2147483648"}}), {}, -1, [](R &r) { r.cbr.cbrPssch = 30; }},
        {"sync source", sync({{"source", "1"}, {"state", "0"}, {"earfcn", "54590"}}), {}, 0, [](R &r) { r.sync = {1, 0, 54590}; }},
        {"sync skips empty nodes", sync({{nullptr, "9"}, {"state", nullptr}, {"earfcn", "-5"}}), {}, 0, [](R &r) { r.sync.earfcn = -5; }},
        {"sync with a bad number", sync({{"source", "99999999999"}}), {}, -1},
    });
    AtsV2xCbrInfo info{};
    EXPECT_EQ(AtsV2xGetCbrInfo(nullptr, &info), -1);
    const ParseRows row = Row({{"source", "1"}});
    EXPECT_EQ(AtsV2xGetAccessSyncInfo(row.Get(), nullptr), -1);
}

TEST(M2mAtsV2x, CounterWalks) {
    const auto pdcp = Walk([](AtCmdParseNode *n, R &r) { return v2x::ReadPdcpStats(n, r.pdcp); });
    const auto phy = Walk([](AtCmdParseNode *n, R &r) { return v2x::ReadPhyStats(n, r.phy); });
    const auto rssi = Walk([](AtCmdParseNode *n, R &r) { return v2x::ReadRssi(n, r.rssi); });
    const auto mode = [](const char *value) {
        return [value](R &r) { const ParseRows row = Row({{"rat", "7"}, {"mode", value}}); return v2x::ReadMode(row.Get(), r.mode); };
    };
    RunRows<R>({
        {"PDCP", pdcp({{"tx_bytes", "1200"}, {"rx_bytes", "3400"}, {"tx_packets", "12"}, {"rx_packets", "34"}}), {}, 0, [](R &r) { r.pdcp = {1200, 3400, 12, 34}; }},
        {"PDCP with another field", pdcp({{"tx_bytes", "1"}, {"extra", "5"}, {"rx_packets", "4"}}), {}, 0, [](R &r) { r.pdcp.txBytes = 1; r.pdcp.rxPackets = 4; }},
        {"PDCP stops at a node without a value", pdcp({{"tx_bytes", "1"}, {"rx_bytes", nullptr}, {"rx_packets", "4"}}), {}, -1, [](R &r) { r.pdcp.txBytes = 1; }},
        {"PDCP converts before matching", pdcp({{"extra", "9999999999"}, {"tx_bytes", "1"}}), {}, -1},
        {"physical-layer counters above 2^31", phy({{"FirSADecSucSum", "3000000000"}, {"DSPVersion", "4294967295"}, {"ULPackSum", "-1"}}), {}, 0, [](R &r) { r.phy.firSaDecSucSum = 3000000000u; r.phy.dspVersion = 4294967295u; r.phy.ulPackSum = 4294967295u; }},
        {"physical-layer counter beyond 32 bits", phy({{"DLPackSum", "7"}, {"ULPackSum", "4294967296"}}), {}, -1, [](R &r) { r.phy.dlPackSum = 7; }},
        {"physical-layer node without a name", phy({{nullptr, "1"}}), {}, -1},
        {"RSSI", rssi({{"DAMainRSSIMax", "-60"}, {"other", "1"}, {"DADiversityRSSIMax", "-62"}}), {}, 0, [](R &r) { r.rssi = {-60, -62}; }},
        {"mode only", mode("1"), {}, 0, [](R &r) { r.mode.mode = 1; }},
        {"mode beyond 32 bits", mode("-2147483649"), {}, -1},
    });
}

TEST(M2mAtsV2x, RsrpValues) {
    const auto rsrp = [](const char *count, const char *values) {
        return [=](R &r) {
            ParseRows rows = Row({{"num", count}});
            if (values != nullptr) rows.Append(Row({{"rsrp", values}}));
            return v2x::ReadRsrp(rows.Get(), r.rsrp);
        };
    };
    RunRows<R>({
        {"seven values", rsrp("1", "-90 -91 -92 -93 -94 -95 -96"), {}, 0,
         [](R &r) { r.rsrp = {{-90, -91, -92, -93, -94, -95, -96}}; }},
        {"six values", rsrp("1", "-90 -91 -92 -93 -94 -95"), {}, -1},
        {"eight values", rsrp("1", "-90 -91 -92 -93 -94 -95 -96 -97"), {}, -1},
        {"a count of 0", rsrp("0", "-90 -91 -92 -93 -94 -95 -96"), {}, -1},
        {"no row of values", rsrp("1", nullptr), {}, -1},
    });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
