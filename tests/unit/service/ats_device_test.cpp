// Device control settings and reports against the scripted modem: the
// commands of each form, the records filled from realistic replies, error
// replies per class and the refusals that send nothing.

#include "atapi/ats_device.h"

#include <algorithm>
#include <string>
#include <vector>

#include "error_classes.h"
#include "platform/shell.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;
constexpr int32_t kUntouched = 0x5A5A5A5A;
constexpr uint32_t kBadOp = 7;

template <typename R>
void Done(R &r) {
    r.errorId = AT_ERRID_OK;
}

// clang-format off
TEST(AtsDevice, Sku) {
    using R = SkuInfo;
    const auto query = [](R &s) { return AtSkuHandle(AT_DEVICE_QUERY, nullptr, &s); };
    const auto set = [](uint32_t value) { return [value](R &s) { return AtSkuHandle(AT_DEVICE_SET, &value, &s); }; };
    RunCommandCases<R>(Cases<R>{
        {"query", query, {Ok("AT^SKU?", "^SKU: 1,0").Prefix("^SKU:").Timeout(30)}, 0, [](R &s) { s = {1, 0, AT_ERRID_OK}; }},
        {"set, record untouched", set(2), {Ok("AT^SKU=2").Prefix("")}, 0},
        {"value above 2 is not sent", set(3), {}, -1},
        {"set without a value", [](R &s) { return AtSkuHandle(AT_DEVICE_SET, nullptr, &s); }, {}, -1},
        {"unknown op", [](R &s) { return AtSkuHandle(kBadOp, nullptr, &s); }, {}, -1},
    } + ErrorCases<R>("query", query, "AT^SKU?", kListClass, &R::errorId) + ErrorCases<R>("set", set(0), "AT^SKU=0", kFails),
      Filled<R>(kFill));
    EXPECT_EQ(AtSkuHandle(AT_DEVICE_QUERY, nullptr, nullptr), -1);
}

TEST(AtsDevice, Wakeup) {
    using R = WakeupCfgInfo;
    const auto op = [](uint32_t code) { return [code](R &w) { w = {1, 2, 63, w.errorId}; return AtWakeupHandle(code, &w); }; };
    const auto is = [](uint32_t sw, uint32_t channel, uint32_t source) { return [=](R &w) { w = {sw, channel, source, AT_ERRID_OK}; }; };
    const auto input = [](R &w) { w = {1, 2, 63, w.errorId}; };
    RunCommandCases<R>(Cases<R>{
        {"query", op(AT_DEVICE_QUERY), {Ok("AT^WAKEUPCFG?", "^WAKEUPCFG: 0,3,7").Prefix("^WAKEUPCFG")}, 0, is(0, 3, 7)},
        {"set", op(AT_DEVICE_SET), {Ok("AT^WAKEUPCFG=1,2,63").Prefix("")}, 0, is(1, 2, 63)},
        {"test form", op(AT_DEVICE_TEST), {Ok("AT^WAKEUPCFG=?", "^WAKEUPCFG: 1,1,127")}, 0, is(1, 1, 127)},
        {"unknown op", op(kBadOp), {}, -1, input},
    } + ErrorCases<R>("query", op(AT_DEVICE_QUERY), "AT^WAKEUPCFG?", kListClass, &R::errorId, input)
      + ErrorCases<R>("set", op(AT_DEVICE_SET), "AT^WAKEUPCFG=1,2,63", kSimple, &R::errorId, input),
      Filled<R>(kFill));
    EXPECT_EQ(AtWakeupHandle(AT_DEVICE_QUERY, nullptr), -1);
}

// A setting of one value, {value, errorId}: query and set line, the value
// read from the query's reply, and the error classes of both forms.
template <typename R>
void OneValue(std::function<int32_t(uint32_t, R &)> fn, const std::string &query, const std::string &set,
              const std::string &reply, uint32_t read, bool hasTest) {
    const auto op = [fn](uint32_t code) { return [fn, code](R &r) { return fn(code, r); }; };
    Cases<R> cases = Cases<R>{
        {query, op(AT_DEVICE_QUERY), {Ok(query, reply)}, 0, [read](R &r) { r = {read, AT_ERRID_OK}; }},
        {set, op(AT_DEVICE_SET), {Ok(set).Prefix("")}, 0, Done<R>},
        {"unknown op", op(kBadOp), {}, -1},
    } + ErrorCases<R>(query, op(AT_DEVICE_QUERY), query, kListClass, &R::errorId)
      + ErrorCases<R>(set, op(AT_DEVICE_SET), set, kSimple, &R::errorId);
    if (!hasTest) cases.push_back({"no test form", op(AT_DEVICE_TEST), {}, -1});
    RunCommandCases<R>(cases, R{5, kUntouched});
}

TEST(AtsDevice, OneValueSettings) {
    OneValue<CurcInfo>([](uint32_t op, CurcInfo &r) { return AtCurcHandle(op, &r); }, "AT^CURC?", "AT^CURC=5", "^CURC: 2", 2, true);
    OneValue<ThermFunInfo>([](uint32_t op, ThermFunInfo &r) { return AtThermFun(op, &r); }, "AT^THERMFUN?", "AT^THERMFUN=5",
                           "^THERMFUN: 1", 1, false);
    OneValue<WatchdogInfo>([](uint32_t op, WatchdogInfo &r) { return AtSetWatchDogTime(op, &r); }, "AT^SETWDTIME?",
                           "AT^SETWDTIME=5", "^SETWDTIME: 60", 60, false);
    OneValue<TrustNumInfo>([](uint32_t op, TrustNumInfo &r) { return AtTrustNum(op, "+8613800000000", &r); }, "AT^TRUSTNUM=?",
                           "AT^TRUSTNUM=5,\"+8613800000000\"", "^TRUSTNUM: 20", 20, false);
    EXPECT_EQ(AtCurcHandle(AT_DEVICE_QUERY, nullptr), -1);
    EXPECT_EQ(AtThermFun(AT_DEVICE_QUERY, nullptr), -1);
    EXPECT_EQ(AtSetWatchDogTime(AT_DEVICE_QUERY, nullptr), -1);
    EXPECT_EQ(AtTrustNum(AT_DEVICE_QUERY, nullptr, nullptr), -1);
}

TEST(AtsDevice, TrustNumRefusesNumbersThatBreakTheLine) {
    using R = TrustNumInfo;
    const std::string tooLong(AT_CMD_STR_LEN, '1');
    const auto set = [](const char *number) { return [number](R &t) { return AtTrustNum(AT_DEVICE_SET, number, &t); }; };
    RunCommandCases<R>({
        {"a quote", set("123\";AT&F"), {}, -1},
        {"a line end", set("123\rAT&F"), {}, -1},
        {"no number", set(nullptr), {}, -1},
        {"a line that does not fit", set(tooLong.c_str()), {}, -1},
        {"the query does not read the number", [](R &t) { return AtTrustNum(AT_DEVICE_QUERY, "\"", &t); },
         {Ok("AT^TRUSTNUM=?", "^TRUSTNUM: 20").Prefix("^TRUSTNUM")}, 0, [](R &t) { t = {20, AT_ERRID_OK}; }},
    }, R{1, kUntouched});
}

TEST(AtsDevice, Reports) {
    const auto therm = [](ThermStateInfo &t) { return AtThermState(&t); };
    RunCommandCases<ThermStateInfo>(Cases<ThermStateInfo>{
        {"thermal state", therm, {Ok("AT^THERMSTATE?", "^THERMSTATE: 2").Prefix("^THERMSTATE")}, 0,
         [](ThermStateInfo &t) { t = {2, AT_ERRID_OK}; }},
    } + ErrorCases<ThermStateInfo>("state", therm, "AT^THERMSTATE?", kListClass, &ThermStateInfo::errorId), Filled<ThermStateInfo>(kFill));
    // The template names the fields the other way round.
    const auto level = [](BatteryStateInfo &b) { return AtQueryBatteryState(&b); };
    RunCommandCases<BatteryStateInfo>(Cases<BatteryStateInfo>{
        {"battery level", level, {Ok("AT^APBATLVL", "^APBATLVL: 1,87").Prefix("^APBATLVL")}, 0,
         [](BatteryStateInfo &b) { b = {87, 1, AT_ERRID_OK}; }},
    } + ErrorCases<BatteryStateInfo>("level", level, "AT^APBATLVL", kListClass, &BatteryStateInfo::errorId),
      Filled<BatteryStateInfo>(kFill));
    // The reply's first field is "cbs": bcs keeps the caller's value.
    const auto charge = [](BatteryInfo &b) { return AtQueryBatteryInfo(&b); };
    RunCommandCases<BatteryInfo>(Cases<BatteryInfo>{
        {"battery charge", charge, {Ok("AT+CBC", "+CBC: 0,75").Prefix("+CBC")}, 0, [](BatteryInfo &b) { b.bcl = 75; b.errorId = AT_ERRID_OK; }},
    } + ErrorCases<BatteryInfo>("charge", charge, "AT+CBC", kListClass, &BatteryInfo::errorId), Filled<BatteryInfo>(kFill));
    const auto antenna = [](AntennaInfo &a) { return AtNetworkInfo(&a); };
    RunCommandCases<AntennaInfo>(Cases<AntennaInfo>{
        {"antenna", antenna, {Ok("AT^ANQUERY?", "^ANQUERY: -85,-6,-60,3,0x1A2B3C").Prefix("^ANQUERY")}, 0,
         [](AntennaInfo &a) { a = {-85, -6, 3, AT_ERRID_OK}; }},
    } + ErrorCases<AntennaInfo>("antenna", antenna, "AT^ANQUERY?", kListClass, &AntennaInfo::errorId), Filled<AntennaInfo>(kFill));
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
    RunCommandCases<int32_t>(Cases<int32_t>{
        {"factory reset", call(AtFactoryReset), {Ok("AT&F").Prefix("")}, 0},
        {"NV backup", call(AtNvBackup), {Ok("AT^NVBACKUP")}, 0},
        {"NV backup to the backup area", call(AtNvBackupbk), {Ok("AT^NVBACKUPBK")}, 0},
        {"NV restore state", restore, {Ok("AT^NVRSTSTTS", "^NVRSTSTTS: 2").Prefix("^NVRSTSTTS")}, 0, [](int32_t &s) { s = 2; }},
        {"NV restore state not a number", restore, {Ok("AT^NVRSTSTTS", "^NVRSTSTTS: busy")}, -1},
    } + ErrorCases<int32_t>("factory reset", call(AtFactoryReset), "AT&F", kFails)
      + ErrorCases<int32_t>("NV backup", call(AtNvBackup), "AT^NVBACKUP", kFails)
      + ErrorCases<int32_t>("NV backup area", call(AtNvBackupbk), "AT^NVBACKUPBK", kFails)
      + ErrorCases<int32_t>("NV restore state", restore, "AT^NVRSTSTTS", kFails), -7);
    EXPECT_EQ(AtNvRstStts(nullptr), -1);
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
