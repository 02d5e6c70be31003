// Radio and module settings against the scripted modem: the query, set and
// test form of each, the values read, and refused arguments.

#include "atapi/ats_comm.h"
#include "command_cases.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;
constexpr uint32_t kUntouched = 0x5A5A5A5A;

std::function<void(SettingInfo &)> Setting(uint32_t value, int32_t errorId) {
    return [=](SettingInfo &s) { s = {value, errorId}; };
}

TEST(AtsCommRadio, Settings) {
    using Fn = int32_t (*)(uint32_t, SettingInfo *);
    const auto call = [](Fn fn, uint32_t cmdType, uint32_t value = 0) {
        return [=](SettingInfo &s) {
            s.value = value;
            return fn(cmdType, &s);
        };
    };
    const auto plain = [](int32_t (*fn)(SettingInfo *), uint32_t value = 0) {
        return [=](SettingInfo &s) {
            s.value = value;
            return fn(&s);
        };
    };
    const std::string longCode(AT_CMD_STR_LEN, '9');
    const auto shlock = [](const char *code) {
        return [code](SettingInfo &s) {
            s.value = 1;
            return AtShlock(AT_COMM_SET, code, &s);
        };
    };
    // clang-format off
    RunCommandCases<SettingInfo>({
        {"RRC version query", call(AtRrcVer, AT_COMM_QUERY),
         {Ok("AT^RRCVer?", "^RRCVer: 15").Prefix("^RRCVer").Timeout(30)}, 0,
         Setting(15, AT_ERRID_OK)},
        {"RRC version set", call(AtRrcVer, AT_COMM_SET, 14), {Ok("AT^RRCVer=14").Prefix("")}, 0,
         Setting(14, AT_ERRID_OK)},
        {"work mode", call(AtSetMode, AT_COMM_QUERY), {Ok("AT^SETMODE?", "^SETMODE: 2")}, 0,
         Setting(2, AT_ERRID_OK)},
        {"work mode set refused keeps the class", call(AtSetMode, AT_COMM_SET, 1),
         {Fails("AT^SETMODE=1", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1,
         Setting(1, AT_RET_CME_ERROR)},
        {"logical channel", call(AtOpenChannel, AT_COMM_QUERY), {Ok("AT^LOPCNL?", "^LOPCNL: 1")}, 0,
         Setting(1, AT_ERRID_OK)},
        {"logical channel set", call(AtOpenChannel, AT_COMM_SET, 3), {Ok("AT^LOPCNL=3")}, 0,
         Setting(3, AT_ERRID_OK)},
        {"shell lock query", [](SettingInfo &s) { return AtShlock(AT_COMM_QUERY, "x", &s); },
         {Ok("AT^SHLOCK?", "^SHLOCK: 1").Prefix("^SHLOCK")}, 0, Setting(1, AT_ERRID_OK)},
        {"shell lock set", shlock(nullptr), {Ok("AT^SHLOCK=1")}, 0, Setting(1, AT_ERRID_OK)},
        {"shell lock set with a code, unquoted", shlock("9876"),
         {Ok("AT^SHLOCK=1,9876").Prefix("")}, 0,
         Setting(1, AT_ERRID_OK)},
        {"a code that does not fit", shlock(longCode.c_str()), {}, -1,
         Setting(1, static_cast<int32_t>(kUntouched))},
        {"IMS registration report", plain(AtCiregExecute, 2), {Ok("AT+CIREG=2").Prefix("")}, 0,
         Setting(2, AT_ERRID_OK)},
        {"IMS registration state", plain(AtCiregCheck),
         {Ok("AT+CIREG?", "+CIREG: 2,1,0").Prefix("+CIREG")},
         0, Setting(1, AT_ERRID_OK)},
        // Both families' values are named "stat": the last one stays.
        {"dial-up state", plain(AtNetregCheck),
         {Ok("AT^NDISSTATQRY?", "^NDISSTATQRY: 0,,,\"IPV4\",1,,,\"IPV6\"")
              .Prefix("^NDISSTATQRY")}, 0,
         Setting(1, AT_ERRID_OK)},
        {"functionality level", plain(AtCfunEx, 4), {Ok("AT+CFUN=4").Prefix("+CFUN:")}, 0,
         Setting(4, AT_ERRID_OK)},
        {"a query answered ERROR", call(AtRrcVer, AT_COMM_QUERY),
         {Fails("AT^RRCVer?", AT_RET_ERROR, "ERROR")},
         AT_RET_ERROR, Setting(0, AT_ERRID_UNMAPPED)},
        {"a query answered +CMS ERROR", call(AtSetMode, AT_COMM_QUERY),
         {Fails("AT^SETMODE?", AT_RET_CMS_ERROR, "+CMS ERROR: 316")}, AT_RET_CMS_ERROR,
         Setting(0, 12)},
        {"an aborted set", call(AtOpenChannel, AT_COMM_SET, 1),
         {Fails("AT^LOPCNL=1", AT_RET_ABORTED, "AT_ABORTED")}, -1, Setting(1, AT_ERRID_ABORTED)},
        {"unknown cmdType", call(AtSetMode, AT_COMM_TEST), {}, -1,
         Setting(0, static_cast<int32_t>(kUntouched))},
    }, Filled<SettingInfo>(kFill));
    // clang-format on
    for (Fn fn : {AtRrcVer, AtSetMode, AtOpenChannel}) EXPECT_EQ(fn(AT_COMM_QUERY, nullptr), -1);
    EXPECT_EQ(AtShlock(AT_COMM_SET, "1", nullptr), -1);
    EXPECT_EQ(AtCfunEx(nullptr), -1);
}

TEST(AtsCommRadio, FunctionalityLevelQuery) {
    const auto query = [](uint32_t &fun) { return AtCfunQuery(&fun); };
    // clang-format off
    RunCommandCases<uint32_t>({
        {"level", query, {Ok("AT+CFUN?", "+CFUN: 1").Prefix("+CFUN:")}, 0,
         [](uint32_t &f) { f = 1; }},
        {"a negative level is not stored", query, {Ok("AT+CFUN?", "+CFUN: -1")}, 0},
        {"an error reply passes its class", query,
         {Fails("AT+CFUN?", AT_RET_CME_ERROR, "+CME ERROR: 10")},
         AT_RET_CME_ERROR},
    }, kUntouched);
    // clang-format on
    EXPECT_EQ(AtCfunQuery(nullptr), -1);
}

TEST(AtsCommRadio, Readings) {
    // clang-format off
    RunCommandCases<ChipTempInfo>({
        {"chip temperatures", [](ChipTempInfo &t) { return AtChipTemp(&t); },
         {Ok("AT^CHIPTEMP?", "^CHIPTEMP: 412,398,405,-30,301,350,455").Prefix("^CHIPTEMP")}, 0,
         [](ChipTempInfo &t) { t = {412, 398, 405, -30, 301, 350, 455, AT_ERRID_OK}; }},
    }, Filled<ChipTempInfo>(kFill));
    const auto adc = [](uint32_t cmdType) {
        return [cmdType](AdcReadInfo &a) {
            a.channel = 2;
            return AtAdcReadEx(cmdType, &a);
        };
    };
    const auto adcIs = [](const char *value, int32_t errorId) {
        return [=](AdcReadInfo &a) {
            a.channel = 2;
            if (value != nullptr) SetText(a.value, value);
            a.errorId = errorId;
        };
    };
    RunCommandCases<AdcReadInfo>({
        {"ADC channel", adc(AT_COMM_SET),
         {Ok("AT^ADCREADEX=2", "^ADCREADEX: 1234").Prefix("^ADCREADEX")},
         0, adcIs("1234", AT_ERRID_OK)},
        {"ADC range", adc(AT_COMM_TEST), {Ok("AT^ADCREADEX=?", "^ADCREADEX: (0-3)")}, 0,
         adcIs("(0-3)", AT_ERRID_OK)},
        {"no query form", adc(AT_COMM_QUERY), {}, -1,
         adcIs(nullptr, static_cast<int32_t>(kUntouched))},
    }, Filled<AdcReadInfo>(kFill));
    const auto xo = [](uint32_t cmdType) {
        return [cmdType](XoTempInfo &x) { return AtXoTemp(cmdType, &x); };
    };
    RunCommandCases<XoTempInfo>({
        {"crystal temperature", xo(AT_COMM_QUERY),
         {Ok("AT^XOTEMP?", "^XOTEMP: -8").Prefix("^XOTEMP")}, 0,
         [](XoTempInfo &x) {
             x.crystalTemp = -8;
             x.errorId = AT_ERRID_OK;
         }},
        // The handler table names the range field "CRYSTALtemp": the range
        // field row never matches it, so only the outcome is stored.
        {"range", xo(AT_COMM_TEST), {Ok("AT^XOTEMP=?", "^XOTEMP: (-40-125)").Prefix("^XOTEMP:")}, 0,
         [](XoTempInfo &x) { x.errorId = AT_ERRID_OK; }},
        {"no set form", xo(AT_COMM_SET), {}, -1},
    }, Filled<XoTempInfo>(kFill));
    RunCommandCases<HsInfo>({
        {"handshake", [](HsInfo &h) {
             h.id = 7;
             h.action = 0;
             return AtHs(&h);
         },
         {Ok("AT^HS=7,0", "^HS: 88888888,1,0,A,5G100,0").Prefix("^HS")}, 0,
         [](HsInfo &h) {
             h = {88888888, 0, 1, 0, "A", "5G100", 0, AT_ERRID_OK};
             std::memset(h.pClass + 2, kFill, sizeof h.pClass - 2);
             std::memset(h.pId + 6, kFill, sizeof h.pId - 6);
         }},
    }, Filled<HsInfo>(kFill));
    // clang-format on
    EXPECT_EQ(AtChipTemp(nullptr), -1);
    EXPECT_EQ(AtAdcReadEx(AT_COMM_SET, nullptr), -1);
    EXPECT_EQ(AtXoTemp(AT_COMM_QUERY, nullptr), -1);
    EXPECT_EQ(AtHs(nullptr), -1);
}

TEST(AtsCommRadio, Antennas) {
    const auto ant = [](uint32_t cmdType) {
        return [cmdType](AntModeInfo &m) {
            m.nwMode = 1;
            m.antMode = 2;
            return AtAntMode(cmdType, &m);
        };
    };
    const auto single = [](uint32_t cmdType) {
        return [cmdType](SingleAntModeInfo &m) {
            m = {1, 0, 1, 2, m.errorId};
            return AtSingleAntMode(cmdType, &m);
        };
    };
    // clang-format off
    RunCommandCases<AntModeInfo>({
        {"set", ant(AT_COMM_SET), {Ok("AT^ANTMODE=1,2").Prefix("")}, 0,
         [](AntModeInfo &m) { m = {1, 2, AT_ERRID_OK}; }},
        // The reply's fields are named ulAntEnable..dlAntIndex: nw_mode and
        // ant_mode are not among them, so the query stores only its outcome.
        {"query", ant(AT_COMM_QUERY), {Ok("AT^ANTMODE?", "^ANTMODE: 1,0,1,0").Prefix("^ANTMODE")},
         0,
         [](AntModeInfo &m) { m = {1, 2, AT_ERRID_OK}; }},
        {"test form", ant(AT_COMM_TEST), {}, -1,
         [](AntModeInfo &m) { m = {1, 2, static_cast<int32_t>(kUntouched)}; }},
    }, Filled<AntModeInfo>(kFill));
    RunCommandCases<SingleAntModeInfo>({
        {"set", single(AT_COMM_SET), {Ok("AT^ANTMODE=1,0,1,2")}, 0,
         [](SingleAntModeInfo &m) { m = {1, 0, 1, 2, AT_ERRID_OK}; }},
        {"query", single(AT_COMM_QUERY), {Ok("AT^ANTMODE?", "^ANTMODE: 0,1,0,3")}, 0,
         [](SingleAntModeInfo &m) { m = {0, 1, 0, 3, AT_ERRID_OK}; }},
    }, Filled<SingleAntModeInfo>(kFill));
    RunCommandCases<BackupAntCtrlInfo>({
        {"five values", [](BackupAntCtrlInfo &b) {
             b = {{1, 0, 4294967295u, 3, 4}, b.errorId};
             return AtBackupAntCtrl(&b);
         },
         {Ok("AT^BACKUPANTCTRL=1,0,4294967295,3,4").Prefix("")}, 0,
         [](BackupAntCtrlInfo &b) { b = {{1, 0, 4294967295u, 3, 4}, AT_ERRID_OK}; }},
    }, Filled<BackupAntCtrlInfo>(kFill));
    // clang-format on
    EXPECT_EQ(AtAntMode(AT_COMM_SET, nullptr), -1);
    EXPECT_EQ(AtSingleAntMode(AT_COMM_SET, nullptr), -1);
    EXPECT_EQ(AtBackupAntCtrl(nullptr), -1);
}

}  // namespace
}  // namespace atapi::test
