// Device control settings and reports against the scripted modem: the
// commands of each form, the records filled from realistic replies, error
// replies per class and the refusals that send nothing.

#include "atapi/ats_device.h"

#include <algorithm>

#include "error_classes.h"
#include "platform/shell.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr int32_t kUntouched = 0x5A5A5A5A;
constexpr uint32_t kBadOp = 7;

// clang-format off
TEST(AtsDevice, Sku) {
    using R = SkuInfo;
    const auto set = [](uint32_t value) { return [value](R &s) { return AtSkuHandle(AT_DEVICE_SET, &value, &s); }; };
    RunRows<R>({
        {"query", [](R &s) { return AtSkuHandle(AT_DEVICE_QUERY, nullptr, &s); }, {Ok("AT^SKU?", "^SKU: 1,0").Prefix("^SKU:").Timeout(30)}, 0, [](R &s) { s = {1, 0, AT_ERRID_OK}; }, kListClass},
        {"set, record untouched", set(2), {Ok("AT^SKU=2").Prefix("")}, 0, {}, kFails},
        {"value above 2 is not sent", set(3), {}, -1},
        {"set without a value", [](R &s) { return AtSkuHandle(AT_DEVICE_SET, nullptr, &s); }, {}, -1},
        {"unknown op", [](R &s) { return AtSkuHandle(kBadOp, nullptr, &s); }, {}, -1},
    });
}

TEST(AtsDevice, Wakeup) {
    using R = WakeupCfgInfo;
    const auto input = [](R &w) { w = {1, 2, 63, w.errorId}; };
    const auto op = [input](uint32_t code) { return [=](R &w) { input(w); return AtWakeupHandle(code, &w); }; };
    const auto is = [](uint32_t sw, uint32_t channel, uint32_t source) { return [=](R &w) { w = {sw, channel, source, AT_ERRID_OK}; }; };
    RunRows<R>({
        {"query", op(AT_DEVICE_QUERY), {Ok("AT^WAKEUPCFG?", "^WAKEUPCFG: 0,3,7").Prefix("^WAKEUPCFG")}, 0, is(0, 3, 7), kListClass, input},
        {"set", op(AT_DEVICE_SET), {Ok("AT^WAKEUPCFG=1,2,63").Prefix("")}, 0, is(1, 2, 63), kSimple, input},
        {"test form", op(AT_DEVICE_TEST), {Ok("AT^WAKEUPCFG=?", "^WAKEUPCFG: 1,1,127")}, 0, is(1, 1, 127)},
        {"unknown op", op(kBadOp), {}, -1, input},
    });
}

// Settings of one value, {value, errorId}: query and set line, the value read
// from the query's reply, and the error classes of both forms.
template <typename R>
void OneValue(std::function<int32_t(uint32_t, R &)> fn, const std::string &query, const std::string &set, const std::string &reply, uint32_t read, bool hasTest) {
    const auto op = [fn](uint32_t code) { return [fn, code](R &r) { return fn(code, r); }; };
    std::vector<Row<R>> rows = {
        {query, op(AT_DEVICE_QUERY), {Ok(query, reply)}, 0, [read](R &r) { r = {read, AT_ERRID_OK}; }, kListClass},
        {set, op(AT_DEVICE_SET), {Ok(set).Prefix("")}, 0, Done<R>, kSimple},
        {"unknown op", op(kBadOp), {}, -1},
    };
    if (!hasTest) rows.push_back({"no test form", op(AT_DEVICE_TEST), {}, -1});
    RunRows<R>(rows, R{5, kUntouched});
}

TEST(AtsDevice, OneValueSettings) {
    OneValue<CurcInfo>([](uint32_t op, CurcInfo &r) { return AtCurcHandle(op, &r); }, "AT^CURC?", "AT^CURC=5", "^CURC: 2", 2, true);
    OneValue<ThermFunInfo>([](uint32_t op, ThermFunInfo &r) { return AtThermFun(op, &r); }, "AT^THERMFUN?", "AT^THERMFUN=5", "^THERMFUN: 1", 1, false);
    OneValue<WatchdogInfo>([](uint32_t op, WatchdogInfo &r) { return AtSetWatchDogTime(op, &r); }, "AT^SETWDTIME?", "AT^SETWDTIME=5", "^SETWDTIME: 60", 60, false);
    OneValue<TrustNumInfo>([](uint32_t op, TrustNumInfo &r) { return AtTrustNum(op, "+8613800000000", &r); }, "AT^TRUSTNUM=?", "AT^TRUSTNUM=5,\"+8613800000000\"", "^TRUSTNUM: 20", 20, false);
}

TEST(AtsDevice, TrustNumRefusesNumbersThatBreakTheLine) {
    using R = TrustNumInfo;
    const std::string tooLong(AT_CMD_STR_LEN, '1');
    const auto set = [](const char *number) { return [number](R &t) { return AtTrustNum(AT_DEVICE_SET, number, &t); }; };
    RunRows<R>({
        {"a quote", set("123\";AT&F"), {}, -1},
        {"a line end", set("123\rAT&F"), {}, -1},
        {"no number", set(nullptr), {}, -1},
        {"a line that does not fit", set(tooLong.c_str()), {}, -1},
        {"the query does not read the number", [](R &t) { return AtTrustNum(AT_DEVICE_QUERY, "\"", &t); }, {Ok("AT^TRUSTNUM=?", "^TRUSTNUM: 20").Prefix("^TRUSTNUM")}, 0, [](R &t) { t = {20, AT_ERRID_OK}; }},
    }, R{1, kUntouched});
}

TEST(AtsDevice, Reports) {
    RunRows<ThermStateInfo>({{"thermal state", [](ThermStateInfo &t) { return AtThermState(&t); }, {Ok("AT^THERMSTATE?", "^THERMSTATE: 2").Prefix("^THERMSTATE")}, 0,
                              [](ThermStateInfo &t) { t = {2, AT_ERRID_OK}; }, kListClass}});
    // The template names the fields the other way round.
    RunRows<BatteryStateInfo>({{"battery level", [](BatteryStateInfo &b) { return AtQueryBatteryState(&b); }, {Ok("AT^APBATLVL", "^APBATLVL: 1,87").Prefix("^APBATLVL")}, 0,
                                [](BatteryStateInfo &b) { b = {87, 1, AT_ERRID_OK}; }, kListClass}});
    // The reply's first field is "cbs": bcs keeps the caller's value.
    RunRows<BatteryInfo>({{"battery charge", [](BatteryInfo &b) { return AtQueryBatteryInfo(&b); }, {Ok("AT+CBC", "+CBC: 0,75").Prefix("+CBC")}, 0,
                           [](BatteryInfo &b) { b.bcl = 75; Done(b); }, kListClass}});
    RunRows<AntennaInfo>({{"antenna", [](AntennaInfo &a) { return AtNetworkInfo(&a); }, {Ok("AT^ANQUERY?", "^ANQUERY: -85,-6,-60,3,0x1A2B3C").Prefix("^ANQUERY")}, 0,
                           [](AntennaInfo &a) { a = {-85, -6, 3, AT_ERRID_OK}; }, kListClass}});
}

TEST(AtsDevice, NvAndReset) {
    using Fn = int32_t (*)();
    const auto call = [](Fn fn) { return [fn](int32_t &) { return fn(); }; };
    const auto restore = [](int32_t &state) { NvRestoreState r{state, kUntouched}; const int32_t ret = AtNvRstStts(&r); state = r.state; return ret; };
    RunRows<int32_t>({
        {"factory reset", call(AtFactoryReset), {Ok("AT&F").Prefix("")}, 0, {}, kFails},
        {"NV backup", call(AtNvBackup), {Ok("AT^NVBACKUP")}, 0, {}, kFails},
        {"NV backup to the backup area", call(AtNvBackupbk), {Ok("AT^NVBACKUPBK")}, 0, {}, kFails},
        {"NV restore state", restore, {Ok("AT^NVRSTSTTS", "^NVRSTSTTS: 2").Prefix("^NVRSTSTTS")}, 0, [](int32_t &s) { s = 2; }, kFails},
        {"NV restore state not a number", restore, {Ok("AT^NVRSTSTTS", "^NVRSTSTTS: busy")}, -1},
    }, -7);
}

// Every function of the family refuses a missing argument before sending.
TEST(AtsDevice, NullArguments) {
    ExpectRefused({
        {"AtSkuHandle", [] { return AtSkuHandle(AT_DEVICE_QUERY, nullptr, nullptr); }}, {"AtWakeupHandle", [] { return AtWakeupHandle(AT_DEVICE_QUERY, nullptr); }},
        {"AtCurcHandle", [] { return AtCurcHandle(AT_DEVICE_QUERY, nullptr); }}, {"AtThermFun", [] { return AtThermFun(AT_DEVICE_QUERY, nullptr); }},
        {"AtSetWatchDogTime", [] { return AtSetWatchDogTime(AT_DEVICE_QUERY, nullptr); }}, {"AtTrustNum", [] { return AtTrustNum(AT_DEVICE_QUERY, nullptr, nullptr); }},
        {"AtThermState", [] { return AtThermState(nullptr); }}, {"AtQueryBatteryState", [] { return AtQueryBatteryState(nullptr); }},
        {"AtQueryBatteryInfo", [] { return AtQueryBatteryInfo(nullptr); }}, {"AtNetworkInfo", [] { return AtNetworkInfo(nullptr); }},
        {"AtNvRstStts", [] { return AtNvRstStts(nullptr); }},
        {"AtHfreqHandle test form", [] { static const int32_t on = 1; HfreqInfoResult r{}; return AtHfreqHandle(AT_DEVICE_TEST, &on, &r); }},
        {"AtHfreqHandle set without a value", [] { HfreqInfoResult r{}; return AtHfreqHandle(AT_DEVICE_SET, nullptr, &r); }},
        {"AtHfreqHandle query without a result", [] { static const int32_t on = 1; return AtHfreqHandle(AT_DEVICE_QUERY, &on, nullptr); }},
        {"AtHfreqInfo", [] { return AtHfreqInfo(AT_DEVICE_QUERY, 0, nullptr); }},
    });
}
// clang-format on

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
