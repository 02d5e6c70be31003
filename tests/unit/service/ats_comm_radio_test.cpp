// Radio and module settings against the scripted modem: the query, set and
// test form of each, the values read, the error classes of every form, the
// settings with their own result conventions (boolean queries, a failed
// query read as locked), and refused arguments.

#include "atapi/ats_comm.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

constexpr int32_t kUntouched = 0x5A5A5A5A;

// clang-format off
TEST(AtsCommRadio, Settings) {
    using R = SettingInfo;
    using Fn = int32_t (*)(uint32_t, R *);
    const auto call = [](Fn fn, uint32_t cmdType, uint32_t value = 0) { return [=](R &s) { s.value = value; return fn(cmdType, &s); }; };
    const auto plain = [](int32_t (*fn)(R *), uint32_t value = 0) { return [=](R &s) { s.value = value; return fn(&s); }; };
    const auto shlock = [](uint32_t cmdType, const char *code) { return [=](R &s) { s.value = 1; return AtShlock(cmdType, code, &s); }; };
    const auto is = [](uint32_t value, int32_t errorId = AT_ERRID_OK) { return [=](R &s) { s = {value, errorId}; }; };
    const auto value = [](uint32_t v) { return [v](R &s) { s.value = v; }; };
    const std::string longCode(AT_CMD_STR_LEN, '9');
    RunRows<R>({
        {"RRC version query", call(AtRrcVer, AT_COMM_QUERY), {Ok("AT^RRCVer?", "^RRCVer: 15").Prefix("^RRCVer").Timeout(30)}, 0, is(15), kListClass, value(0)},
        {"RRC version set", call(AtRrcVer, AT_COMM_SET, 14), {Ok("AT^RRCVer=14").Prefix("")}, 0, is(14), kSimple, value(14)},
        {"work mode", call(AtSetMode, AT_COMM_QUERY), {Ok("AT^SETMODE?", "^SETMODE: 2")}, 0, is(2), kListClass, value(0)},
        {"work mode set", call(AtSetMode, AT_COMM_SET, 1), {Ok("AT^SETMODE=1")}, 0, is(1), kSimple, value(1)},
        {"logical channel", call(AtOpenChannel, AT_COMM_QUERY), {Ok("AT^LOPCNL?", "^LOPCNL: 1")}, 0, is(1), kListClass, value(0)},
        {"logical channel set", call(AtOpenChannel, AT_COMM_SET, 3), {Ok("AT^LOPCNL=3")}, 0, is(3), kSimple, value(3)},
        {"shell lock query", shlock(AT_COMM_QUERY, "x"), {Ok("AT^SHLOCK?", "^SHLOCK: 1").Prefix("^SHLOCK")}, 0, is(1), kListClass, value(1)},
        {"shell lock set", shlock(AT_COMM_SET, nullptr), {Ok("AT^SHLOCK=1")}, 0, is(1), kSimple, value(1)},
        {"shell lock set with a code, unquoted", shlock(AT_COMM_SET, "9876"), {Ok("AT^SHLOCK=1,9876").Prefix("")}, 0, is(1)},
        {"a code that does not fit", shlock(AT_COMM_SET, longCode.c_str()), {}, -1, is(1, kUntouched)},
        {"IMS registration report", plain(AtCiregExecute, 2), {Ok("AT+CIREG=2").Prefix("")}, 0, is(2), kSimple, value(2)},
        {"IMS registration state", plain(AtCiregCheck), {Ok("AT+CIREG?", "+CIREG: 2,1,0").Prefix("+CIREG")}, 0, is(1), kListClass, value(0)},
        // Both families' values are named "stat": the last one stays.
        {"dial-up state", plain(AtNetregCheck), {Ok("AT^NDISSTATQRY?", "^NDISSTATQRY: 0,,,\"IPV4\",1,,,\"IPV6\"").Prefix("^NDISSTATQRY")}, 0, is(1), kListClass, value(0)},
        {"functionality level", plain(AtCfunEx, 4), {Ok("AT+CFUN=4").Prefix("+CFUN:")}, 0, is(4), kSimple, value(4)},
        {"unknown cmdType", call(AtSetMode, AT_COMM_TEST), {}, -1, is(0, kUntouched)},
    });
    const auto level = [](uint32_t &fun) { return AtCfunQuery(&fun); };
    RunRows<uint32_t>({
        {"level", level, {Ok("AT+CFUN?", "+CFUN: 1").Prefix("+CFUN:")}, 0, [](uint32_t &f) { f = 1; }, kListClass},
        {"a negative level is not stored", level, {Ok("AT+CFUN?", "+CFUN: -1")}, 0},
    }, kUntouched);
}

TEST(AtsCommRadio, Readings) {
    RunRows<ChipTempInfo>({{"chip temperatures", [](ChipTempInfo &t) { return AtChipTemp(&t); }, {Ok("AT^CHIPTEMP?", "^CHIPTEMP: 412,398,405,-30,301,350,455").Prefix("^CHIPTEMP")}, 0,
                            [](ChipTempInfo &t) { t = {412, 398, 405, -30, 301, 350, 455, AT_ERRID_OK}; }, kListClass}});
    const auto adc = [](uint32_t cmdType) { return [cmdType](AdcReadInfo &a) { a.channel = 2; return AtAdcReadEx(cmdType, &a); }; };
    const auto adcIs = [](const char *value) { return [=](AdcReadInfo &a) { a.channel = 2; SetText(a.value, value); Done(a); }; };
    RunRows<AdcReadInfo>({
        {"ADC channel", adc(AT_COMM_SET), {Ok("AT^ADCREADEX=2", "^ADCREADEX: 1234").Prefix("^ADCREADEX")}, 0, adcIs("1234"), kListClass, [](AdcReadInfo &a) { a.channel = 2; }},
        {"ADC range", adc(AT_COMM_TEST), {Ok("AT^ADCREADEX=?", "^ADCREADEX: (0-3)")}, 0, adcIs("(0-3)")},
        {"no query form", adc(AT_COMM_QUERY), {}, -1, [](AdcReadInfo &a) { a.channel = 2; }},
    });
    const auto xo = [](uint32_t cmdType) { return [cmdType](XoTempInfo &x) { return AtXoTemp(cmdType, &x); }; };
    RunRows<XoTempInfo>({
        {"crystal temperature", xo(AT_COMM_QUERY), {Ok("AT^XOTEMP?", "^XOTEMP: -8").Prefix("^XOTEMP")}, 0, [](XoTempInfo &x) { x.crystalTemp = -8; Done(x); }, kListClass},
        // The handler table names the range field "CRYSTALtemp": the range
        // field row never matches it, so only the outcome is stored.
        {"range", xo(AT_COMM_TEST), {Ok("AT^XOTEMP=?", "^XOTEMP: (-40-125)").Prefix("^XOTEMP:")}, 0, Done<XoTempInfo>},
        {"no set form", xo(AT_COMM_SET), {}, -1},
    });
    const auto input = [](HsInfo &h) { h.id = 7; h.action = 0; };
    RunRows<HsInfo>({{"handshake", [input](HsInfo &h) { input(h); return AtHs(&h); }, {Ok("AT^HS=7,0", "^HS: 88888888,1,0,A,5G100,0").Prefix("^HS")}, 0, [](HsInfo &h) {
                          h = {88888888, 0, 1, 0, "A", "5G100", 0, AT_ERRID_OK};
                          std::memset(h.pClass + 2, 0x5A, sizeof h.pClass - 2);
                          std::memset(h.pId + 6, 0x5A, sizeof h.pId - 6);
                      }, kListClass, input}});
}

TEST(AtsCommRadio, Antennas) {
    const auto ant = [](uint32_t cmdType) { return [cmdType](AntModeInfo &m) { m.nwMode = 1; m.antMode = 2; return AtAntMode(cmdType, &m); }; };
    const auto antIs = [](int32_t errorId) { return [errorId](AntModeInfo &m) { m = {1, 2, errorId}; }; };
    RunRows<AntModeInfo>({
        {"set", ant(AT_COMM_SET), {Ok("AT^ANTMODE=1,2").Prefix("")}, 0, antIs(AT_ERRID_OK), kSimple, antIs(kUntouched)},
        // The reply's fields are named ulAntEnable..dlAntIndex: nw_mode and
        // ant_mode are not among them, so the query stores only its outcome.
        {"query", ant(AT_COMM_QUERY), {Ok("AT^ANTMODE?", "^ANTMODE: 1,0,1,0").Prefix("^ANTMODE")}, 0, antIs(AT_ERRID_OK), kListClass, antIs(kUntouched)},
        {"test form", ant(AT_COMM_TEST), {}, -1, antIs(kUntouched)},
    });
    const auto input = [](SingleAntModeInfo &m) { m = {1, 0, 1, 2, m.errorId}; };
    const auto single = [input](uint32_t cmdType) { return [=](SingleAntModeInfo &m) { input(m); return AtSingleAntMode(cmdType, &m); }; };
    RunRows<SingleAntModeInfo>({
        {"set", single(AT_COMM_SET), {Ok("AT^ANTMODE=1,0,1,2")}, 0, [](SingleAntModeInfo &m) { m = {1, 0, 1, 2, AT_ERRID_OK}; }, kSimple, input},
        {"query", single(AT_COMM_QUERY), {Ok("AT^ANTMODE?", "^ANTMODE: 0,1,0,3")}, 0, [](SingleAntModeInfo &m) { m = {0, 1, 0, 3, AT_ERRID_OK}; }, kListClass, input},
    });
    const auto input3 = [](BackupAntCtrlInfo &b) { b.values[2] = 4294967295u; };
    RunRows<BackupAntCtrlInfo>({{"five values", [input3](BackupAntCtrlInfo &b) { input3(b); return AtBackupAntCtrl(&b); }, {Ok("AT^BACKUPANTCTRL=1,0,4294967295,3,4").Prefix("")}, 0,
                                 [](BackupAntCtrlInfo &b) { b = {{1, 0, 4294967295u, 3, 4}, AT_ERRID_OK}; }, kSimple, input3}},
                               BackupAntCtrlInfo{{1, 0, 2, 3, 4}, kUntouched});
}

// The boolean queries: every error class reads as locked (1), or as a failure (0).
constexpr Convention kLocked{{1}, {1}, {1}, {1}, {1}};
constexpr Convention kFalse{{0}, {0}, {0}, {0}, {0}};

// For the calls without a record: the test's record stays as it was.
template <typename Fn>
CommandCase<int32_t>::Call Bare(Fn fn) {
    return [fn](int32_t &) { return fn(); };
}

TEST(AtsCommSettings, LockAndRemoteSim) {
    RunRows<int32_t>({
        {"data lock off", Bare(AtQryDatalock), {Ok("AT^DATALOCK?", "^DATALOCK: 0").Prefix("^DATALOCK")}, 0, {}, kLocked},
        {"data lock on", Bare(AtQryDatalock), {Ok("AT^DATALOCK?", "^DATALOCK: 2")}, 1},
        {"unlock", Bare([] { return AtSetDatalock("5678"); }), {Ok("AT^DATALOCK=5678").Prefix("").Timeout(30)}, 0, {}, kFails},
        {"remote SIM on", Bare(AtQryRsim), {Ok("AT^RSIM?", "^RSIM: 1").Prefix("^RSIM")}, 0, {}, kFails},
        {"remote SIM off", Bare(AtQryRsim), {Ok("AT^RSIM?", "^RSIM: 0")}, -1},
        {"remote SIM without a blank", Bare(AtQryRsim), {Ok("AT^RSIM?", "^RSIM:1")}, -1},
        {"echo", Bare(AtMmiEcho), {Ok("AT^MMIECHO=").Prefix("")}, 0, {}, kFails},
        {"NV configuration", Bare(AtActiveNcfg), {Ok("AT^ACTIVENCFG=1")}, 0, {}, kFails},
        {"NV item 2591", Bare([] { const uint32_t value = 3000000000u; return AtSharePdpNvWr(&value); }), {Ok("AT^USERNVWR=2591,4,3000000000 0 0 0").Prefix("")}, 0, {}, kFails},
    }, 0);
}

TEST(AtsCommSettings, ProductTypeAndLogPort) {
    const auto product = [](uint32_t &t) { return AtQryProductType(&t); };
    const auto logPort = [](uint32_t &t) { return AtQryLogPort(&t); };
    RunRows<uint32_t>({
        {"product type", product, {Ok("AT^PRODTYPE?", "^PRODTYPE: 3").Prefix("^PRODTYPE")}, 1, [](uint32_t &t) { t = 3; }, kFalse},
        {"a product type above 3", product, {Ok("AT^PRODTYPE?", "^PRODTYPE: 4")}, 0},
        {"log port", logPort, {Ok("AT^LOGPORT?", "^LOGPORT: 5").Prefix("^LOGPORT")}, 1, [](uint32_t &t) { t = 5; }, kFalse},
        {"a negative log port", logPort, {Ok("AT^LOGPORT?", "^LOGPORT: -1")}, 0},
    }, kUntouched);
    const auto setPort = [](uint32_t portType, uint32_t config) { return Bare([=] { LogPortSetting s{portType, config}; return AtSetLogPort(&s); }); };
    RunRows<int32_t>({
        {"set log port", setPort(5, 1), {Ok("AT^LOGPORT=5,1").Prefix("").Timeout(30)}, 0, {}, kFails},
        {"port type 6", setPort(6, 0), {}, -1},
        {"config 2", setPort(0, 2), {}, -1},
    }, 0);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
