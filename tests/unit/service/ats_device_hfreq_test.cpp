// High-frequency information: reply lines per technology into band lists,
// carrier lists split into elements, NR band classes checked and announced,
// and every failure leaving no list behind.

#include <array>
#include <string>
#include <vector>

#include "atapi/ats_device.h"
#include "command_cases.h"
#include "platform/notify.h"
#include "service/ats_device_internal.h"

namespace atapi::test {
namespace {

using Band = std::array<int32_t, 9>;  // switch, sysmode, then the seven band values

std::vector<Band> Bands(const HfreqBandInfo *list) {
    std::vector<Band> bands;
    for (; list != nullptr; list = list->next) {
        bands.push_back({list->hfreqSwitch, list->sysmode, list->bandClass, list->dlFcn,
                         list->dlFreq, list->dlBw, list->ulFcn, list->ulFreq, list->ulBw});
    }
    return bands;
}

int32_t RecordNotify(void *ctx, int, uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    static_cast<std::vector<std::array<uint32_t, 4>> *>(ctx)->push_back({a, b, c, d});
    return 0;
}

// The query against one scripted reply; lists and notifications kept.
struct QueryRun {
    int32_t ret;
    std::vector<Band> lte;
    std::vector<Band> nr;
    std::vector<std::array<uint32_t, 4>> notified;
};

QueryRun Query(Step step) {
    QueryRun run;
    PlatformSetNotifySink(RecordNotify, &run.notified);
    {
        IsolatedRuntime runtime;
        ScriptedModem modem(runtime, {std::move(step)});
        HfreqInfoResult r{reinterpret_cast<HfreqBandInfo *>(1), nullptr};  // not freed
        run.ret = AtHfreqHandle(AT_DEVICE_QUERY, nullptr, &r);
        modem.Verify();
        run.lte = Bands(r.lteList);
        run.nr = Bands(r.nrList);
        HfreqInfoExFree(&r);
        EXPECT_EQ(r.lteList, nullptr);
        EXPECT_EQ(r.nrList, nullptr);
    }
    PlatformSetNotifySink(nullptr, nullptr);
    return run;
}

constexpr char kLteLine[] = "^HFREQINFO: 1,6,3,1300,18300,200,19300,17350,200";
constexpr char kLteCarrierAggregation[] =
    "^HFREQINFO: 1,6,3,1300,18300,200,19300,17350,200,7,3100,26550,100,21100,25550,100";
constexpr char kNrLine[] =
    "^HFREQINFO: 1,7,78,636666,35500,1000,636666,35500,1000,259,2079167,275000,1000,2079167,"
    "275000,1000";

TEST(AtsDeviceHfreq, Query) {
    const QueryRun both =
        Query(Ok("AT^HFREQINFO?", std::string(kLteLine) + "\r\n" + kNrLine).Prefix("^HFREQINFO"));
    EXPECT_EQ(both.ret, 0);
    EXPECT_EQ(both.lte, (std::vector<Band>{{1, 6, 3, 1300, 18300, 200, 19300, 17350, 200}}));
    // 259 is no NR band class the module may name: stored as 0, not announced.
    EXPECT_EQ(both.nr,
              (std::vector<Band>{{1, 7, 78, 636666, 35500, 1000, 636666, 35500, 1000},
                                 {1, 7, 0, 2079167, 275000, 1000, 2079167, 275000, 1000}}));
    EXPECT_EQ(both.notified, (std::vector<std::array<uint32_t, 4>>{{14, 14055, 78, 0}}));

    const QueryRun ca = Query(Ok("AT^HFREQINFO?", kLteCarrierAggregation));
    EXPECT_EQ(ca.ret, 0);
    EXPECT_EQ(ca.lte, (std::vector<Band>{{1, 6, 3, 1300, 18300, 200, 19300, 17350, 200},
                                         {1, 6, 7, 3100, 26550, 100, 21100, 25550, 100}}));
    EXPECT_TRUE(ca.nr.empty());
    EXPECT_TRUE(ca.notified.empty());

    // A band cut short keeps zeros behind its last value.
    const QueryRun partial = Query(Ok("AT^HFREQINFO?", "^HFREQINFO: 0,7,261,2229166"));
    EXPECT_EQ(partial.ret, 0);
    EXPECT_EQ(partial.nr, (std::vector<Band>{{0, 7, 261, 2229166, 0, 0, 0, 0, 0}}));
    EXPECT_EQ(partial.notified, (std::vector<std::array<uint32_t, 4>>{{14, 14055, 261, 0}}));
}

TEST(AtsDeviceHfreq, LinesNotKept) {
    const QueryRun other = Query(Ok("AT^HFREQINFO?", "^HFREQINFO: 1,4,1,10700,21400,50"));
    EXPECT_EQ(other.ret, 0);
    EXPECT_TRUE(other.lte.empty());
    EXPECT_TRUE(other.nr.empty());

    // A failing second line frees the first line's list too.
    const QueryRun badSwitch =
        Query(Ok("AT^HFREQINFO?", std::string(kLteLine) + "\r\n^HFREQINFO: 2,7,78"));
    EXPECT_EQ(badSwitch.ret, -1);
    EXPECT_TRUE(badSwitch.lte.empty());

    const QueryRun refused = Query(Fails("AT^HFREQINFO?", AT_RET_CME_ERROR, "+CME ERROR: 4"));
    EXPECT_EQ(refused.ret, -1);
    EXPECT_TRUE(refused.lte.empty() && refused.nr.empty());

    const QueryRun noColon = Query(Ok("AT^HFREQINFO?", "^HFREQINFO 1,6"));
    EXPECT_EQ(noColon.ret, -1);
}

TEST(AtsDeviceHfreq, SetAndRefusals) {
    const int32_t on = 1;
    HfreqInfoResult r{};
    {
        IsolatedRuntime runtime;
        ScriptedModem modem(runtime, {Ok("AT^HFREQINFO=1").Prefix(""),
                                      Fails("AT^HFREQINFO=0", AT_RET_ERROR, "ERROR")});
        EXPECT_EQ(AtHfreqHandle(AT_DEVICE_SET, &on, nullptr), 0);
        EXPECT_EQ(AtHfreqInfo(AT_DEVICE_SET, 0, nullptr), -1);
        modem.Verify();
    }
    IsolatedRuntime runtime;
    ScriptedModem modem(runtime);  // nothing may be sent
    EXPECT_EQ(AtHfreqHandle(AT_DEVICE_TEST, &on, &r), -1);
    EXPECT_EQ(AtHfreqHandle(AT_DEVICE_SET, nullptr, &r), -1);
    EXPECT_EQ(AtHfreqHandle(AT_DEVICE_QUERY, &on, nullptr), -1);
    EXPECT_EQ(AtHfreqInfo(AT_DEVICE_QUERY, 0, nullptr), -1);
    modem.Verify();
}

TEST(AtsDeviceHfreq, ParseRefusesFieldsWithoutValue) {
    char name[] = "index_0";
    char value[] = "1";
    AtCmdParseNode second{name, nullptr, nullptr, nullptr};
    AtCmdParseNode first{name, value, nullptr, &second};
    HfreqInfoResult r{};
    EXPECT_EQ(device::ParseHfreqInfoResult(&first, &r), -1);
    EXPECT_EQ(r.lteList, nullptr);
    EXPECT_EQ(r.nrList, nullptr);
    EXPECT_EQ(device::ParseHfreqInfoResult(nullptr, &r), -1);
}

}  // namespace
}  // namespace atapi::test
