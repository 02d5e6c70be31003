// Cell monitoring, jamming detection and RSSI reports against the scripted
// modem: the serving cell of each technology as modems report it, the
// failures that keep what the mapping filled, the neighbour list with its
// preference for newer technologies, and the report rows stored by their
// technology, the slots a reply does not name left as the caller had them.

#include "atapi/m2m_ats_network.h"

#include <algorithm>

#include "error_classes.h"

namespace atapi::test {
namespace {

// clang-format off
// Every error class fails and leaves errorId at -3 (not completed).
constexpr ErrorOutcome kPending{-1, AT_ERRID_NOT_COMPLETED};
constexpr Convention kNotCompleted{kPending, kPending, kPending, kPending, kPending};

Step Monsc(std::string reply) { return Ok("AT^MONSC", std::move(reply)).Prefix("^MONSC:").Timeout(30); }
Step Monnc(std::string reply) { return Ok("AT^MONNC", std::move(reply)).Prefix("^MONNC:").Timeout(30); }
auto Serving(int32_t rat, int32_t arfcn, int32_t cellId, int32_t lac, int32_t errorId) { return [=](MonscInfo &m) { m = {rat, arfcn, cellId, lac, errorId}; }; }

TEST(M2mAtsNetwork, ServingCellPerTechnology) {
    const auto get = [](MonscInfo &m) { return AtGetMonsc(&m); };
    RunRows<MonscInfo>({
        // GSM: band in the arfcn field, the channel behind it.
        {"GSM", get, {Monsc("^MONSC: GSM,460,00,1,62,25,1B7D,25F0,-75")}, 0, Serving(AT_CELL_RAT_GSM, 62, 0x1B7D, 0x25F0, AT_ERRID_OK), kNotCompleted},
        {"WCDMA", get, {Monsc("^MONSC: WCDMA,460,01,10700,312,1A2B3C4,25F0,-85,-6")}, 0, Serving(AT_CELL_RAT_WCDMA, 10700, 0x1A2B3C4, 0x25F0, AT_ERRID_OK)},
        {"TD_SCDMA", get, {Monsc("^MONSC: TD_SCDMA,460,00,10055,12,34,0A1B2C,25F0,-80")}, 0, Serving(AT_CELL_RAT_TD_SCDMA, 10055, 0x0A1B2C, 0x25F0, AT_ERRID_OK)},
        {"LTE", get, {Monsc("^MONSC: LTE,001,01,1300,A1B2C3,123,00C3,-95,-10,-65,15")}, 0, Serving(AT_CELL_RAT_LTE, 1300, 0xA1B2C3, 0xC3, AT_ERRID_OK)},
        {"NR with a channel above 16 bits", get, {Monsc("^MONSC: NR,001,01,627264,1,1a2b3c4d,501,0A1B2C,-85,-11,15")}, 0, Serving(AT_CELL_RAT_NR, 627264, 0x1A2B3C4D, 0x0A1B2C, AT_ERRID_OK)},
        {"no service", get, {Monsc("^MONSC: NONE")}, -1, Serving(0, 0, 0, 0, AT_MONSC_ERRID_NO_SERVICE)},
        {"a rat of another name", get, {Monsc("^MONSC: CDMA,460,03,283,1,2,3,4")}, -1, Serving(0, 0, 0, 0, AT_ERRID_NOT_COMPLETED)},
        // A failing conversion keeps what the mapping stored before it.
        {"a cell identity of nine hex digits", get, {Monsc("^MONSC: LTE,001,01,1300,1A2B3C4D5,123,00C3,-95,-10,-65,15")}, -1, Serving(AT_CELL_RAT_LTE, 1300, 0, 0, AT_ERRID_NOT_COMPLETED)},
        {"an area code that is not hex", get, {Monsc("^MONSC: WCDMA,460,01,10700,312,1A2B3C4,25G0,-85,-6")}, -1, Serving(AT_CELL_RAT_WCDMA, 10700, 0x1A2B3C4, 0, AT_ERRID_NOT_COMPLETED)},
        {"an NR channel without digits", get, {Monsc("^MONSC: NR,001,01,n/a,1,1A2B3C4D,501,0A1B2C")}, -1, Serving(AT_CELL_RAT_NR, 0, 0, 0, AT_ERRID_NOT_COMPLETED)},
        // The walk stops at the channel of 12 characters; the empty texts
        // behind it convert to 0 and the call succeeds.
        {"a value too long for its slot ends the walk", get, {Monsc("^MONSC: LTE,001,01,123456789012,A1B2C3,123,00C3")}, 0, Serving(AT_CELL_RAT_LTE, 0, 0, 0, AT_ERRID_OK)},
        {"a reply without the prefix", get, {Monsc("")}, -1, Serving(0, 0, 0, 0, AT_ERRID_NOT_COMPLETED)},
    });
}
// clang-format on

// Neighbour lines as modems send them, one per technology (by AT_CELL_RAT_*).
std::string Neighbor(int32_t rat, int32_t arfcn) {
    static const char *const kLine[][2] = {{"GSM,1,", ",25,1B7D,25F0,-80"},
                                           {"WCDMA,", ",312,-90,-8"},
                                           {"TD_SCDMA,", ",34,-88"},
                                           {"LTE,", ",124,-98,-12,-68"},
                                           {"NR,", ",501,-90,-11,18"}};
    return "^MONNC: " + std::string(kLine[rat][0]) + std::to_string(arfcn) + kLine[rat][1];
}

// clang-format off
std::string Lines(const std::vector<MonncNeighbor> &cells) {
    std::string text;
    for (const MonncNeighbor &c : cells) text += (text.empty() ? "" : "\r\n") + Neighbor(c.rat, c.arfcn);
    return text;
}

std::vector<MonncNeighbor> Cells(int32_t rat, int32_t count, int32_t firstArfcn) {
    std::vector<MonncNeighbor> cells;
    for (int32_t i = 0; i < count; ++i) cells.push_back({rat, firstArfcn + i});
    return cells;
}

std::vector<MonncNeighbor> operator+(std::vector<MonncNeighbor> a, const std::vector<MonncNeighbor> &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

auto Listed(const std::vector<MonncNeighbor> &cells) {
    return [cells](MonncInfo &m) { m = MonncInfo{}; m.count = static_cast<uint32_t>(cells.size()); std::copy(cells.begin(), cells.end(), m.neighbors); };
}

TEST(M2mAtsNetwork, NeighbourCells) {
    const auto get = [](MonncInfo &m) { return AtGetMonnc(&m); };
    std::vector<Row<MonncInfo>> rows;
    for (int32_t rat = AT_CELL_RAT_GSM; rat <= AT_CELL_RAT_NR; ++rat) {
        for (int32_t n : {1, AT_MONNC_MAX_NEIGHBORS}) {
            const auto cells = Cells(rat, n, 100 * (rat + 1));
            rows.push_back({std::to_string(n) + " of rat " + std::to_string(rat), get, {Monnc(Lines(cells))}, 0, Listed(cells)});
        }
    }
    const auto lte8 = Cells(AT_CELL_RAT_LTE, 8, 1300);
    const auto nr4 = Cells(AT_CELL_RAT_NR, 4, 627264);
    const auto mixed = Cells(AT_CELL_RAT_GSM, 1, 62) + Cells(AT_CELL_RAT_TD_SCDMA, 1, 10055) + Cells(AT_CELL_RAT_LTE, 1, 1850) + Cells(AT_CELL_RAT_NR, 1, 636666);
    const auto mixedOrdered = Cells(AT_CELL_RAT_NR, 1, 636666) + Cells(AT_CELL_RAT_LTE, 1, 1850) + Cells(AT_CELL_RAT_TD_SCDMA, 1, 10055) + Cells(AT_CELL_RAT_GSM, 1, 62);
    rows.insert(rows.end(), {
        {"no neighbours", get, {Monnc("^MONNC: NONE")}, 0, Listed({}), kFails},
        {"a first NONE line ends the list", get, {Monnc("^MONNC: NONE\r\n" + Lines(lte8))}, 0, Listed({})},
        {"eight LTE and three GSM: six LTE", get, {Monnc(Lines(Cells(AT_CELL_RAT_GSM, 3, 62) + lte8))}, 0, Listed(Cells(AT_CELL_RAT_LTE, 6, 1300))},
        {"four WCDMA and four NR: NR first", get, {Monnc(Lines(Cells(AT_CELL_RAT_WCDMA, 4, 10700) + nr4))}, 0, Listed(nr4 + Cells(AT_CELL_RAT_WCDMA, 2, 10700))},
        {"one of each, newest first", get, {Monnc(Lines(mixed))}, 0, Listed(mixedOrdered)},
        {"a rat of another name", get, {Monnc(Neighbor(AT_CELL_RAT_LTE, 1300) + "\r\n^MONNC: CDMA,283,1")}, -1},
        {"a reply without the prefix", get, {Monnc("")}, -1},
    });
    RunRows<MonncInfo>(rows);
}

TEST(M2mAtsNetwork, SetLines) {
    const auto call = [](auto fn) { return [fn](NoRecord &) { return fn(); }; };
    const auto cfg = [call](int32_t rat) { return call([rat] { const JammingDetectCfg c{rat, 5, 6, 7, 8}; return AtSetJammingDetectCfg(&c); }); };
    RunRows<NoRecord>({
        {"switch on", call([] { return AtSetJammingDetctSwitch(1); }), {Ok("AT^JDSWITCH=1").Prefix("").Timeout(30)}, 0, {}, kFails},
        {"GSM thresholds: two values", cfg(AT_JAMMING_RAT_GSM), {Ok("AT^JDCFG=0,5,6")}, 0},
        {"WCDMA thresholds", cfg(AT_JAMMING_RAT_WCDMA), {Ok("AT^JDCFG=1,5,6,7,8")}, 0},
        {"LTE thresholds", cfg(AT_JAMMING_RAT_LTE), {Ok("AT^JDCFG=2,5,6,7,8")}, 0, {}, kFails},
        {"rat 3 is refused", cfg(3), {}, -1},
        {"rat -1 is refused", cfg(-1), {}, -1},
        {"RSSI reports on", call([] { return AtSetEmRssiRpt(1); }), {Ok("AT^EMRSSIRPT=1")}, 0, {}, kFails},
        {"RSSI threshold", call([] { const EmRssiCfg c{AT_JAMMING_RAT_LTE, -95}; return AtSetEmRssiCfg(&c); }), {Ok("AT^EMRSSICFG=2,-95")}, 0},
    }, NoRecord{0});
}

TEST(M2mAtsNetwork, SwitchAndReportReads) {
    const auto get = [](JammingDetectSwitchInfo &i) { return AtGetJammingDetectSwitch(&i); };
    RunRows<JammingDetectSwitchInfo>({
        {"all three", get, {Ok("AT^JDSWITCH?", "^JDSWITCH: 1,0\r\n^JDSWITCH: 1,1\r\n^JDSWITCH: 0,2").Prefix("^JDSWITCH:").Timeout(30)}, 0,
         [](JammingDetectSwitchInfo &i) { i = {{{0, 1}, {1, 1}, {2, 0}}}; }, kFails},
        {"a row of another rat is skipped", get, {Ok("AT^JDSWITCH?", "^JDSWITCH: 1,4\r\n^JDSWITCH: 1,1")}, 0, [](JammingDetectSwitchInfo &i) { i.entry[1] = {1, 1}; }},
        {"a reply without the prefix", get, {Ok("AT^JDSWITCH?", "")}, -1},
    });
    RunRows<int32_t>({{"reports on", [](int32_t &n) { return AtGetEmRssiRpt(&n); }, {Ok("AT^EMRSSIRPT?", "^EMRSSIRPT: 1").Prefix("^EMRSSIRPT:")}, 0, [](int32_t &n) { n = 1; }, kFails}});
}

TEST(M2mAtsNetwork, ThresholdReads) {
    const auto cfg = [](JammingDetectCfgInfo &i) { return AtGetJammingDetectCfg(&i); };
    RunRows<JammingDetectCfgInfo>({
        {"LTE and GSM rows leave WCDMA", cfg, {Ok("AT^JDCFG?", "^JDCFG: 2,70,20,30,40\r\n^JDCFG: 0,10,20,0,0").Prefix("^JDCFG:").Timeout(30)}, 0,
         [](JammingDetectCfgInfo &i) { i.cfg[2] = {2, 70, 20, 30, 40}; i.cfg[0] = {0, 10, 20, 0, 0}; }, kFails},
        {"a GSM row of three fields zeroes the rest", cfg, {Ok("AT^JDCFG?", "^JDCFG: 0,10,20")}, 0, [](JammingDetectCfgInfo &i) { i.cfg[0] = {0, 10, 20, 0, 0}; }},
    });
    RunRows<EmRssiCfgInfo>({{"a row of rat 7 is skipped, the others stored", [](EmRssiCfgInfo &i) { return AtGetEmRssiCfg(&i); },
                             {Ok("AT^EMRSSICFG?", "^EMRSSICFG: 0,-100\r\n^EMRSSICFG: 7,5\r\n^EMRSSICFG: 2,-95").Prefix("^EMRSSICFG:")}, 0,
                             [](EmRssiCfgInfo &i) { i.cfg[0] = {0, -100}; i.cfg[2] = {2, -95}; }, kFails}});
}

// Every function of the family refuses a missing argument before sending.
TEST(M2mAtsNetwork, NullArguments) {
    ExpectRefused({
        {"AtGetMonsc", [] { return AtGetMonsc(nullptr); }}, {"AtGetMonnc", [] { return AtGetMonnc(nullptr); }},
        {"AtSetJammingDetectCfg", [] { return AtSetJammingDetectCfg(nullptr); }}, {"AtSetEmRssiCfg", [] { return AtSetEmRssiCfg(nullptr); }},
        {"AtGetJammingDetectSwitch", [] { return AtGetJammingDetectSwitch(nullptr); }},
    });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
