// Device control settings and reports against the scripted modem: the
// commands of each form, the records filled from realistic replies, error
// replies per class and the refusals that send nothing.

#include "atapi/ats_device.h"

#include <algorithm>
#include <string>
#include <vector>

#include "command_cases.h"
#include "platform/shell.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;
constexpr int32_t kUntouched = 0x5A5A5A5A;
constexpr uint32_t kBadOp = 7;

TEST(AtsDevice, Sku) {
    const auto query = [](SkuInfo &s) { return AtSkuHandle(AT_DEVICE_QUERY, nullptr, &s); };
    const auto set = [](uint32_t value) {
        return [value](SkuInfo &s) { return AtSkuHandle(AT_DEVICE_SET, &value, &s); };
    };
    // clang-format off
    RunCommandCases<SkuInfo>({
        {"query", query, {Ok("AT^SKU?", "^SKU: 1,0").Prefix("^SKU:").Timeout(30)}, 0,
         [](SkuInfo &s) { s = {1, 0, AT_ERRID_OK}; }},
        {"query answered +CME ERROR", query,
         {Fails("AT^SKU?", AT_RET_CME_ERROR, "+CME ERROR: 10")}, AT_RET_CME_ERROR,
         [](SkuInfo &s) { s.errorId = 13; }},
        {"set, record untouched", set(2), {Ok("AT^SKU=2").Prefix("")}, 0},
        {"set refused by the module", set(0), {Fails("AT^SKU=0", AT_RET_ERROR, "ERROR")}, -1},
        {"value above 2 is not sent", set(3), {}, -1},
        {"set without a value", [](SkuInfo &s) { return AtSkuHandle(AT_DEVICE_SET, nullptr, &s); },
         {}, -1},
        {"unknown op", [](SkuInfo &s) { return AtSkuHandle(kBadOp, nullptr, &s); }, {}, -1},
    }, Filled<SkuInfo>(kFill));
    // clang-format on
    EXPECT_EQ(AtSkuHandle(AT_DEVICE_QUERY, nullptr, nullptr), -1);
}

TEST(AtsDevice, Wakeup) {
    const auto op = [](uint32_t code) {
        return [code](WakeupCfgInfo &w) {
            w = {1, 2, 63, w.errorId};
            return AtWakeupHandle(code, &w);
        };
    };
    const auto is = [](uint32_t sw, uint32_t channel, uint32_t source, int32_t errorId) {
        return [=](WakeupCfgInfo &w) { w = {sw, channel, source, errorId}; };
    };
    // clang-format off
    RunCommandCases<WakeupCfgInfo>({
        {"query", op(AT_DEVICE_QUERY),
         {Ok("AT^WAKEUPCFG?", "^WAKEUPCFG: 0,3,7").Prefix("^WAKEUPCFG")}, 0,
         is(0, 3, 7, AT_ERRID_OK)},
        {"set", op(AT_DEVICE_SET), {Ok("AT^WAKEUPCFG=1,2,63").Prefix("")}, 0,
         is(1, 2, 63, AT_ERRID_OK)},
        {"set answered +CME ERROR keeps the class", op(AT_DEVICE_SET),
         {Fails("AT^WAKEUPCFG=1,2,63", AT_RET_CME_ERROR, "+CME ERROR: 50")}, -1,
         is(1, 2, 63, AT_RET_CME_ERROR)},
        {"test form", op(AT_DEVICE_TEST), {Ok("AT^WAKEUPCFG=?", "^WAKEUPCFG: 1,1,127")}, 0,
         is(1, 1, 127, AT_ERRID_OK)},
        {"query aborted", op(AT_DEVICE_QUERY),
         {Fails("AT^WAKEUPCFG?", AT_RET_ABORTED, "AT_ABORTED")}, AT_RET_ABORTED,
         is(1, 2, 63, AT_ERRID_UNMAPPED)},
        {"unknown op", op(kBadOp), {}, -1, is(1, 2, 63, kUntouched)},
    }, Filled<WakeupCfgInfo>(kFill));
    // clang-format on
    EXPECT_EQ(AtWakeupHandle(AT_DEVICE_QUERY, nullptr), -1);
}

// The one-value settings: {function, query, set line, query reply}.
struct OneValue {
    const char *name;
    int32_t (*call)(uint32_t op, uint32_t value, int32_t *errorId, uint32_t *read);
    const char *query;
    const char *set;  // for the value 5
    const char *reply;
    uint32_t read;
    bool hasTest;
};

template <typename Record, uint32_t Record::*Member, int32_t (*Fn)(uint32_t, Record *)>
int32_t CallOne(uint32_t op, uint32_t value, int32_t *errorId, uint32_t *read) {
    Record r{};
    r.*Member = value;
    r.errorId = *errorId;
    const int32_t ret = Fn(op, &r);
    *errorId = r.errorId;
    *read = r.*Member;
    return ret;
}

int32_t CallTrustNum(uint32_t op, uint32_t value, int32_t *errorId, uint32_t *read) {
    TrustNumInfo r{value, *errorId};
    const int32_t ret = AtTrustNum(op, "+8613800000000", &r);
    *errorId = r.errorId;
    *read = r.index;
    return ret;
}

constexpr auto kCallCurc = CallOne<CurcInfo, &CurcInfo::mode, AtCurcHandle>;
constexpr auto kCallThermFun = CallOne<ThermFunInfo, &ThermFunInfo::thermSwitch, AtThermFun>;
constexpr auto kCallWatchdog =
    CallOne<WatchdogInfo, &WatchdogInfo::watchdogTime, AtSetWatchDogTime>;

const OneValue kOneValues[] = {
    {"CURC", kCallCurc, "AT^CURC?", "AT^CURC=5", "^CURC: 2", 2, true},
    {"thermal function", kCallThermFun, "AT^THERMFUN?", "AT^THERMFUN=5", "^THERMFUN: 1", 1, false},
    {"watchdog", kCallWatchdog, "AT^SETWDTIME?", "AT^SETWDTIME=5", "^SETWDTIME: 60", 60, false},
    {"trusted number", CallTrustNum, "AT^TRUSTNUM=?", "AT^TRUSTNUM=5,\"+8613800000000\"",
     "^TRUSTNUM: 20", 20, false},
};

TEST(AtsDevice, OneValueSettings) {
    for (const OneValue &v : kOneValues) {
        SCOPED_TRACE(v.name);
        struct Outcome {
            int32_t ret;
            int32_t errorId;
            uint32_t value;
        };
        const auto run = [&](uint32_t op, std::vector<Step> script) {
            IsolatedRuntime runtime;
            ScriptedModem modem(runtime, std::move(script));
            Outcome o{0, kUntouched, 5};
            o.ret = v.call(op, 5, &o.errorId, &o.value);
            modem.Verify();
            return o;
        };
        Outcome o = run(AT_DEVICE_QUERY, {Ok(v.query, v.reply)});
        EXPECT_EQ(o.ret, 0);
        EXPECT_EQ(o.value, v.read);
        EXPECT_EQ(o.errorId, AT_ERRID_OK);
        o = run(AT_DEVICE_SET, {Ok(v.set).Prefix("")});
        EXPECT_EQ(o.ret, 0);
        EXPECT_EQ(o.errorId, AT_ERRID_OK);
        o = run(AT_DEVICE_QUERY, {Fails(v.query, AT_RET_CME_ERROR, "+CME ERROR: 10")});
        EXPECT_EQ(o.ret, AT_RET_CME_ERROR);
        EXPECT_EQ(o.errorId, 13);
        EXPECT_EQ(o.value, 5u);
        o = run(AT_DEVICE_SET, {Fails(v.set, AT_RET_CMS_ERROR, "+CMS ERROR: 500")});
        EXPECT_EQ(o.ret, -1);
        EXPECT_EQ(o.errorId, AT_RET_CMS_ERROR);
        o = run(kBadOp, {});
        EXPECT_EQ(o.ret, -1);
        EXPECT_EQ(o.errorId, kUntouched);
        if (!v.hasTest) {
            EXPECT_EQ(run(AT_DEVICE_TEST, {}).ret, -1);
        }
    }
    EXPECT_EQ(AtCurcHandle(AT_DEVICE_QUERY, nullptr), -1);
    EXPECT_EQ(AtThermFun(AT_DEVICE_QUERY, nullptr), -1);
    EXPECT_EQ(AtSetWatchDogTime(AT_DEVICE_QUERY, nullptr), -1);
    EXPECT_EQ(AtTrustNum(AT_DEVICE_QUERY, nullptr, nullptr), -1);
}

TEST(AtsDevice, TrustNumRefusesNumbersThatBreakTheLine) {
    const std::string tooLong(AT_CMD_STR_LEN, '1');
    const auto set = [](const char *number) {
        return [number](TrustNumInfo &t) {
            t.index = 1;
            return AtTrustNum(AT_DEVICE_SET, number, &t);
        };
    };
    const auto indexOne = [](TrustNumInfo &t) { t.index = 1; };
    // clang-format off
    RunCommandCases<TrustNumInfo>({
        {"a quote", set("123\";AT&F"), {}, -1, indexOne},
        {"a line end", set("123\rAT&F"), {}, -1, indexOne},
        {"no number", set(nullptr), {}, -1, indexOne},
        {"a line that does not fit", set(tooLong.c_str()), {}, -1, indexOne},
        {"the query does not read the number", [](TrustNumInfo &t) {
             return AtTrustNum(AT_DEVICE_QUERY, "\"", &t); },
         {Ok("AT^TRUSTNUM=?", "^TRUSTNUM: 20").Prefix("^TRUSTNUM")}, 0,
         [](TrustNumInfo &t) { t = {20, AT_ERRID_OK}; }},
    }, Filled<TrustNumInfo>(kFill));
    // clang-format on
}

TEST(AtsDevice, Reports) {
    // clang-format off
    RunCommandCases<ThermStateInfo>({
        {"thermal state", [](ThermStateInfo &t) { return AtThermState(&t); },
         {Ok("AT^THERMSTATE?", "^THERMSTATE: 2").Prefix("^THERMSTATE")}, 0,
         [](ThermStateInfo &t) { t = {2, AT_ERRID_OK}; }},
        {"thermal state answered ERROR", [](ThermStateInfo &t) { return AtThermState(&t); },
         {Fails("AT^THERMSTATE?", AT_RET_ERROR, "ERROR")}, AT_RET_ERROR,
         [](ThermStateInfo &t) { t.errorId = AT_ERRID_UNMAPPED; }},
    }, Filled<ThermStateInfo>(kFill));
    // The template names the fields the other way round.
    RunCommandCases<BatteryStateInfo>({
        {"battery level", [](BatteryStateInfo &b) { return AtQueryBatteryState(&b); },
         {Ok("AT^APBATLVL", "^APBATLVL: 1,87").Prefix("^APBATLVL")}, 0,
         [](BatteryStateInfo &b) { b = {87, 1, AT_ERRID_OK}; }},
    }, Filled<BatteryStateInfo>(kFill));
    // The reply's first field is "cbs": bcs keeps the caller's value.
    RunCommandCases<BatteryInfo>({
        {"battery charge", [](BatteryInfo &b) { return AtQueryBatteryInfo(&b); },
         {Ok("AT+CBC", "+CBC: 0,75").Prefix("+CBC")}, 0,
         [](BatteryInfo &b) { b.bcl = 75; b.errorId = AT_ERRID_OK; }},
    }, Filled<BatteryInfo>(kFill));
    RunCommandCases<AntennaInfo>({
        {"antenna", [](AntennaInfo &a) { return AtNetworkInfo(&a); },
         {Ok("AT^ANQUERY?", "^ANQUERY: -85,-6,-60,3,0x1A2B3C").Prefix("^ANQUERY")}, 0,
         [](AntennaInfo &a) { a = {-85, -6, 3, AT_ERRID_OK}; }},
        {"antenna answered +CME ERROR", [](AntennaInfo &a) { return AtNetworkInfo(&a); },
         {Fails("AT^ANQUERY?", AT_RET_CME_ERROR, "+CME ERROR: 30")}, AT_RET_CME_ERROR,
         [](AntennaInfo &a) { a.errorId = 30; }},
    }, Filled<AntennaInfo>(kFill));
    // clang-format on
    EXPECT_EQ(AtThermState(nullptr), -1);
    EXPECT_EQ(AtQueryBatteryState(nullptr), -1);
    EXPECT_EQ(AtQueryBatteryInfo(nullptr), -1);
    EXPECT_EQ(AtNetworkInfo(nullptr), -1);
}

TEST(AtsDevice, NvAndReset) {
    using Fn = int32_t (*)();
    const auto call = [](Fn fn) { return [fn](int32_t &) { return fn(); }; };
    const auto restore = [](int32_t &state) {
        NvRestoreState r{state, kUntouched};
        const int32_t ret = AtNvRstStts(&r);
        state = r.state;
        return ret;
    };
    // clang-format off
    RunCommandCases<int32_t>({
        {"factory reset", call(AtFactoryReset), {Ok("AT&F").Prefix("")}, 0},
        {"factory reset refused", call(AtFactoryReset), {Fails("AT&F", AT_RET_ERROR, "ERROR")}, -1},
        {"NV backup", call(AtNvBackup), {Ok("AT^NVBACKUP")}, 0},
        {"NV backup to the backup area", call(AtNvBackupbk), {Ok("AT^NVBACKUPBK")}, 0},
        {"NV backup failed", call(AtNvBackup),
         {Fails("AT^NVBACKUP", AT_RET_CME_ERROR, "+CME ERROR: 100")}, -1},
        {"NV restore state", restore, {Ok("AT^NVRSTSTTS", "^NVRSTSTTS: 2").Prefix("^NVRSTSTTS")},
         0, [](int32_t &s) { s = 2; }},
        {"NV restore state not a number", restore, {Ok("AT^NVRSTSTTS", "^NVRSTSTTS: busy")}, -1},
        {"NV restore state refused", restore,
         {Fails("AT^NVRSTSTTS", AT_RET_CME_ERROR, "+CME ERROR: 4")}, -1},
    }, -7);
    // clang-format on
    EXPECT_EQ(AtNvRstStts(nullptr), -1);
    TraceCapture trace;
    {
        IsolatedRuntime runtime;
        ScriptedModem modem(runtime, {Fails("AT^NVBACKUPBK", AT_RET_ERROR, "ERROR")});
        EXPECT_EQ(AtNvBackupbk(), -1);
    }
    EXPECT_TRUE(trace.Contains("error occurred in AtNvFunc"));
}

// Download mode records its reboot reason through the shell, which a sink
// takes here instead.
int RecordShell(void *ctx, const char *command) {
    static_cast<std::vector<std::string> *>(ctx)->push_back(command);
    return 1;  // a failed shell does not stop download mode
}

TEST(AtsDevice, GodLoad) {
    std::vector<std::string> commands;
    PlatformSetShellSink(RecordShell, &commands);
    TraceCapture trace;
    {
        IsolatedRuntime runtime;
        ScriptedModem modem(runtime, {Ok("AT^GODLOAD").Prefix("^GODLOAD").Timeout(30),
                                      Fails("AT^GODLOAD", AT_RET_CME_ERROR, "+CME ERROR: 3")});
        EXPECT_EQ(AtGodLoad(), 0);
        EXPECT_EQ(AtGodLoad(), -1);
        modem.Verify();
    }
    PlatformSetShellSink(nullptr, nullptr);
    const std::string reason = "echo -n \"update\" > /proc/mbb_reb/reason";
    EXPECT_EQ(commands, (std::vector<std::string>{reason, reason}));
    const auto lines = trace.Lines();
    const auto reboot = std::find_if(lines.begin(), lines.end(), [](const TraceLine &l) {
        return l.channel == "mlog" && l.source == "rebootcms";
    });
    ASSERT_NE(reboot, lines.end());
    EXPECT_EQ(reboot->level, 8);
    EXPECT_EQ(reboot->text, "reboot type 0x5\n");
}

}  // namespace
}  // namespace atapi::test
