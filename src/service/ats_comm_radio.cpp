// Radio settings: functionality level, registration, antennas, temperatures,
// the ADC, the handshake and the single-value module settings. Queries fill
// the caller's record from the first reply row; set forms go out without a
// reply prefix and leave their outcome in the record's errorId.
#include "api/command.h"
#include "api/setting.h"
#include "atapi/ats_comm.h"
#include "link/at_log.h"
#include "service/ats_comm_internal.h"

namespace {

using namespace atapi::api;
using atapi::comm::kFormatError;
using atapi::comm::kNonNegative;

constexpr char kTraceSrc[] = "atapi/src/ats_comm";

constexpr CommandDescription kCfunSet{.format = "AT+CFUN=%d", .rspPrefix = "+CFUN:"};
constexpr CommandDescription kCfunQuery = Reads("AT+CFUN?", "+CFUN:", "+CFUN", module::kDeviceInfo);
constexpr auto kCfunFields = FieldList(Field<&SettingInfo::value>("fun", 0, kNonNegative));

// A setting read by the query form and written by the set form ("=%d").
struct SettingCommands {
    Setting<SettingInfo, 1> forms;
    CommandDescription set;
};
consteval SettingCommands MakeSetting(const char *query, const char *set, const char *prefix,
                                      int32_t moduleId, const char *field) {
    return {{Reads(query, prefix, moduleId), kNoTest, FieldList(Field<&SettingInfo::value>(field))},
            {.format = set}};
}
constexpr SettingCommands kCireg =
    MakeSetting("AT+CIREG?", "AT+CIREG=%d", "+CIREG", module::kNetwork, "reg_info");
constexpr SettingCommands kRrcVer =
    MakeSetting("AT^RRCVer?", "AT^RRCVer=%d", "^RRCVer", module::kSysCfg, "rrcver");
constexpr SettingCommands kSetMode =
    MakeSetting("AT^SETMODE?", "AT^SETMODE=%d", "^SETMODE", module::kSysCfg, "work_mode");
constexpr SettingCommands kShlock =
    MakeSetting("AT^SHLOCK?", "AT^SHLOCK=%d", "^SHLOCK", module::kSysCfg, "State");
constexpr CommandDescription kShlockWithCode = SecretLine("AT^SHLOCK=%d,%s");
constexpr SettingCommands kOpenChannel =
    MakeSetting("AT^LOPCNL?", "AT^LOPCNL=%d", "^LOPCNL", module::kSysCfg, "mode");

constexpr CommandDescription kNetreg = Reads("AT^NDISSTATQRY?", "^NDISSTATQRY", module::kConnStat);
constexpr auto kNetregFields = FieldList(Field<&SettingInfo::value>("stat"));

constexpr CommandDescription kChipTemp = Reads("AT^CHIPTEMP?", "^CHIPTEMP", module::kChipTemp);
constexpr auto kChipTempFields =
    FieldList(Field<&ChipTempInfo::gpaTemp>("gpa_temp"), Field<&ChipTempInfo::wpaTemp>("wpa_temp"),
              Field<&ChipTempInfo::lpaTemp>("lpa_temp"), Field<&ChipTempInfo::simTemp>("sim_temp"),
              Field<&ChipTempInfo::batTemp>("bat_temp"),
              Field<&ChipTempInfo::tcxoTemp>("tcxo_temp"), Field<&ChipTempInfo::bbTemp>("bb_temp"));

constexpr CommandDescription kAdcRange = Reads("AT^ADCREADEX=?", "^ADCREADEX", module::kSysCfg);
constexpr CommandDescription kAdcRead = kAdcRange.WithFormat("AT^ADCREADEX=%d");
constexpr auto kAdcFields = FieldList(Field<&AdcReadInfo::value>("adc_value"));

constexpr CommandDescription kAntModeQuery = Reads("AT^ANTMODE?", "^ANTMODE", module::kSysCfg);
constexpr Setting kAntMode{
    kAntModeQuery, kNoTest,
    FieldList(Field<&AntModeInfo::nwMode>("nw_mode"), Field<&AntModeInfo::antMode>("ant_mode"))};
constexpr CommandDescription kAntModeSet{.format = "AT^ANTMODE=%d,%d"};
constexpr Setting kSingleAntMode{kAntModeQuery, kNoTest,
                                 FieldList(Field<&SingleAntModeInfo::ulAntEnable>("ulAntEnable"),
                                           Field<&SingleAntModeInfo::ulAntIndex>("ulAntIndex"),
                                           Field<&SingleAntModeInfo::dlAntEnable>("dlAntEnable"),
                                           Field<&SingleAntModeInfo::dlAntIndex>("dlAntIndex"))};
constexpr CommandDescription kSingleAntModeSet{.format = "AT^ANTMODE=%d,%d,%d,%d"};

constexpr CommandDescription kXoTempQuery = Reads("AT^XOTEMP?", "^XOTEMP", module::kSysCfg);
constexpr auto kXoTempFields = FieldList(Field<&XoTempInfo::crystalTemp>("CRYSTALtemp"));
constexpr CommandDescription kXoTempRange =
    Reads("AT^XOTEMP=?", "^XOTEMP:", "^XOTEMP", module::kSysCfg);
constexpr auto kXoTempRangeFields =
    FieldList(Field<&XoTempInfo::crystalTempRange>("CRYSTALtemp Range"));

constexpr CommandDescription kHs = Reads("AT^HS=%d,%d", "^HS", module::kDeviceInfo);
constexpr auto kHsFields =
    FieldList(Field<&HsInfo::id>("id"), Field<&HsInfo::protocol>("protocol"),
              Field<&HsInfo::isOffline>("IsOffline"), Field<&HsInfo::pClass>("p_class"),
              Field<&HsInfo::pId>("p_id"), Field<&HsInfo::sId>("s_id"));

constexpr CommandDescription kBackupAntCtrl{.format = "AT^BACKUPANTCTRL=%u,%u,%u,%u,%u"};

int32_t AsInt(uint32_t value) { return static_cast<int32_t>(value); }

int32_t QueryOrSet(uint32_t cmdType, const SettingCommands &c, SettingInfo *s) {
    if (s == nullptr) return -1;
    return RunForm(
        cmdType, *s, c.forms, [&c](const SettingInfo &v) { return Command(c.set, AsInt(v.value)); },
        kTraceSrc, kFormatError);
}

}  // namespace

extern "C" {

int32_t AtCfunEx(SettingInfo *s) {
    if (s == nullptr) return -1;
    AT_LOG_INFO("function %s() send Cfun(%d)", __func__, AsInt(s->value));
    return SendOrLog(kTraceSrc, kFormatError, Command(kCfunSet, AsInt(s->value)), &s->errorId);
}

int32_t AtCfunQuery(uint32_t *fun) {
    if (fun == nullptr) return -1;
    SettingInfo level{*fun, 0};
    const int32_t ret = Command(kCfunQuery).Query(kCfunFields, level, nullptr);
    *fun = level.value;
    return ret;
}

int32_t AtCiregExecute(SettingInfo *s) { return QueryOrSet(AT_COMM_SET, kCireg, s); }

int32_t AtCiregCheck(SettingInfo *s) { return QueryOrSet(AT_COMM_QUERY, kCireg, s); }

int32_t AtNetregCheck(SettingInfo *s) {
    if (s == nullptr) return -1;
    return Command(kNetreg).Query(kNetregFields, *s, &s->errorId);
}

int32_t AtChipTemp(ChipTempInfo *t) {
    if (t == nullptr) return -1;
    return Command(kChipTemp).Query(kChipTempFields, *t, &t->errorId);
}

int32_t AtAdcReadEx(uint32_t cmdType, AdcReadInfo *a) {
    if (a == nullptr) return -1;
    if (cmdType == AT_COMM_TEST) return Command(kAdcRange).Query(kAdcFields, *a, &a->errorId);
    if (cmdType == AT_COMM_SET) {
        return Command(kAdcRead, AsInt(a->channel)).Query(kAdcFields, *a, &a->errorId);
    }
    AT_LOG_ERR("cmdType error, exit");
    return -1;
}

int32_t AtAntMode(uint32_t cmdType, AntModeInfo *m) {
    if (m == nullptr) return -1;
    return RunForm(
        cmdType, *m, kAntMode,
        [](const AntModeInfo &v) {
            return Command(kAntModeSet, AsInt(v.nwMode), AsInt(v.antMode));
        },
        kTraceSrc, kFormatError);
}

int32_t AtSingleAntMode(uint32_t cmdType, SingleAntModeInfo *m) {
    if (m == nullptr) return -1;
    return RunForm(
        cmdType, *m, kSingleAntMode,
        [](const SingleAntModeInfo &v) {
            return Command(kSingleAntModeSet, AsInt(v.ulAntEnable), AsInt(v.ulAntIndex),
                           AsInt(v.dlAntEnable), AsInt(v.dlAntIndex));
        },
        kTraceSrc, kFormatError);
}

int32_t AtXoTemp(uint32_t cmdType, XoTempInfo *x) {
    if (x == nullptr) return -1;
    if (cmdType == AT_COMM_QUERY)
        return Command(kXoTempQuery).Query(kXoTempFields, *x, &x->errorId);
    if (cmdType == AT_COMM_TEST) {
        return Command(kXoTempRange).Query(kXoTempRangeFields, *x, &x->errorId);
    }
    return -1;
}

int32_t AtHs(HsInfo *h) {
    if (h == nullptr) return -1;
    return Command(kHs, AsInt(h->id), AsInt(h->action)).Query(kHsFields, *h, &h->errorId);
}

int32_t AtBackupAntCtrl(BackupAntCtrlInfo *b) {
    if (b == nullptr) return -1;
    const uint32_t *v = b->values;
    return SendOrLog(kTraceSrc, kFormatError, Command(kBackupAntCtrl, v[0], v[1], v[2], v[3], v[4]),
                     &b->errorId);
}

int32_t AtRrcVer(uint32_t cmdType, SettingInfo *s) {
    AT_LOG_INFO("enter, cmdType = %d", AsInt(cmdType));
    return QueryOrSet(cmdType, kRrcVer, s);
}

int32_t AtSetMode(uint32_t cmdType, SettingInfo *s) {
    AT_LOG_INFO("enter,cmdType = %d", AsInt(cmdType));
    const int32_t ret = QueryOrSet(cmdType, kSetMode, s);
    AT_LOG_INFO("out, ret = %d", ret);
    return ret;
}

int32_t AtShlock(uint32_t cmdType, const char *code, SettingInfo *s) {
    if (cmdType != AT_COMM_SET || code == nullptr) return QueryOrSet(cmdType, kShlock, s);
    if (s == nullptr) return -1;
    return SendOrLog(kTraceSrc, kFormatError, Command(kShlockWithCode, AsInt(s->value), code),
                     &s->errorId);
}

int32_t AtOpenChannel(uint32_t cmdType, SettingInfo *s) {
    AT_LOG_INFO("Enter");
    return QueryOrSet(cmdType, kOpenChannel, s);
}

}  // extern "C"
