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

constexpr char kLteLine[] = "^HFREQINFO: 1,6,3,1300,18300,200,19300,17350,200";
constexpr char kNrLine[] =
    "^HFREQINFO: 1,7,78,636666,35500,1000,636666,35500,1000,259,2079167,275000,1000,2079167,"
    "275000,1000";

// clang-format off
TEST(AtsDeviceHfreq, Query) {
    using Notified = std::vector<std::array<uint32_t, 4>>;
    struct Case {
        const char *name;
        Step step;
        int32_t ret;
        std::vector<Band> lte, nr;
        Notified notified;
    };
    const Band lte3{1, 6, 3, 1300, 18300, 200, 19300, 17350, 200};
    const Case cases[] = {
        // 259 is no NR band class the module may name: stored as 0, not announced.
        {"LTE and NR", Ok("AT^HFREQINFO?", std::string(kLteLine) + "\r\n" + kNrLine).Prefix("^HFREQINFO"), 0, {lte3},
         {{1, 7, 78, 636666, 35500, 1000, 636666, 35500, 1000}, {1, 7, 0, 2079167, 275000, 1000, 2079167, 275000, 1000}}, {{14, 14055, 78, 0}}},
        {"carrier aggregation", Ok("AT^HFREQINFO?", std::string(kLteLine) + ",7,3100,26550,100,21100,25550,100"), 0,
         {lte3, {1, 6, 7, 3100, 26550, 100, 21100, 25550, 100}}, {}, {}},
        {"a band cut short keeps zeros behind its last value", Ok("AT^HFREQINFO?", "^HFREQINFO: 0,7,261,2229166"), 0, {}, {{0, 7, 261, 2229166, 0, 0, 0, 0, 0}}, {{14, 14055, 261, 0}}},
        {"another technology is not kept", Ok("AT^HFREQINFO?", "^HFREQINFO: 1,4,1,10700,21400,50"), 0, {}, {}, {}},
        {"a failing second line frees the first line's list too", Ok("AT^HFREQINFO?", std::string(kLteLine) + "\r\n^HFREQINFO: 2,7,78"), -1, {}, {}, {}},
        {"an error reply", Fails("AT^HFREQINFO?", AT_RET_CME_ERROR, "+CME ERROR: 4"), -1, {}, {}, {}},
        {"no colon", Ok("AT^HFREQINFO?", "^HFREQINFO 1,6"), -1, {}, {}, {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Notified notified;
        PlatformSetNotifySink(RecordNotify, &notified);
        IsolatedRuntime runtime;
        ScriptedModem modem(runtime, {c.step});
        HfreqInfoResult r{reinterpret_cast<HfreqBandInfo *>(1), nullptr};  // not freed
        EXPECT_EQ(AtHfreqHandle(AT_DEVICE_QUERY, nullptr, &r), c.ret);
        modem.Verify();
        PlatformSetNotifySink(nullptr, nullptr);
        EXPECT_EQ(Bands(r.lteList), c.lte);
        EXPECT_EQ(Bands(r.nrList), c.nr);
        EXPECT_EQ(notified, c.notified);
        HfreqInfoExFree(&r);
        EXPECT_EQ(r.lteList, nullptr);
        EXPECT_EQ(r.nrList, nullptr);
    }
}
// clang-format on

TEST(AtsDeviceHfreq, Set) {
    const int32_t on = 1;
    IsolatedRuntime runtime;
    ScriptedModem modem(
        runtime, {Ok("AT^HFREQINFO=1").Prefix(""), Fails("AT^HFREQINFO=0", AT_RET_ERROR, "ERROR")});
    EXPECT_EQ(AtHfreqHandle(AT_DEVICE_SET, &on, nullptr), 0);
    EXPECT_EQ(AtHfreqInfo(AT_DEVICE_SET, 0, nullptr), -1);
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
