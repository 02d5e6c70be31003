// Device control settings and reports: each a query of one reply row into
// the caller's record and, for the settings, a set form built from the
// record. The module's tables give ^WAKEUPCFG, ^CURC, ^TRUSTNUM, ^THERMFUN,
// ^SETWDTIME and ^THERMSTATE a template in the test slot only, so their
// query forms parse in test mode too.
#include "atapi/ats_device.h"

#include <cstdint>
#include <cstring>

#include "api/command.h"
#include "api/setting.h"
#include "atapi/at_text.h"
#include "link/at_log.h"
#include "platform/osa.h"
#include "platform/shell.h"
#include "platform/trace.h"
#include "service/ats_comm_internal.h"

namespace {

using namespace atapi::api;
using atapi::comm::kFormatError;

constexpr char kTraceSrc[] = "atapi/src/ats_device";

constexpr char kParamIsNull[] = "param is null";
constexpr char kParamInIsNull[] = "param in is null";

consteval CommandDescription Read(const char *format, const char *prefix,
                                  uint32_t mode = AT_PARSE_TEST) {
    return Reads(format, prefix, module::kSysCfg).WithMode(mode);
}

constexpr Setting kWakeup{
    Read("AT^WAKEUPCFG?", "^WAKEUPCFG"), Read("AT^WAKEUPCFG=?", "^WAKEUPCFG"),
    FieldList(Field<&WakeupCfgInfo::wakeupSwitch>("switch"),
              Field<&WakeupCfgInfo::channel>("channel"), Field<&WakeupCfgInfo::source>("source"))};
constexpr CommandDescription kWakeupSet{.format = "AT^WAKEUPCFG=%u,%u,%u"};

constexpr Setting kCurc{Read("AT^CURC?", "^CURC"), Read("AT^CURC=?", "^CURC"),
                        FieldList(Field<&CurcInfo::mode>("mode"))};
constexpr CommandDescription kCurcSet{.format = "AT^CURC=%u"};

constexpr Setting kTrustNum{Read("AT^TRUSTNUM=?", "^TRUSTNUM"), kNoTest,
                            FieldList(Field<&TrustNumInfo::index>("index"))};
constexpr CommandDescription kTrustNumSet{.format = "AT^TRUSTNUM=%u,\"%s\""};

constexpr Setting kThermFun{Read("AT^THERMFUN?", "^THERMFUN"), kNoTest,
                            FieldList(Field<&ThermFunInfo::thermSwitch>("switch"))};
constexpr CommandDescription kThermFunSet{.format = "AT^THERMFUN=%d"};

constexpr Setting kWatchdog{Read("AT^SETWDTIME?", "^SETWDTIME"), kNoTest,
                            FieldList(Field<&WatchdogInfo::watchdogTime>("watchdog_time"))};
constexpr CommandDescription kWatchdogSet{.format = "AT^SETWDTIME=%u"};

constexpr CommandDescription kSkuQuery = Reads("AT^SKU?", "^SKU:", "^SKU", module::kNetwork);
constexpr auto kSkuFields = FieldList(Field<&SkuInfo::n>("n"), Field<&SkuInfo::simlock>("simlock"));
constexpr CommandDescription kSkuSet{.format = "AT^SKU=%d"};
constexpr uint32_t kSkuMax = 2;

constexpr CommandDescription kThermState = Read("AT^THERMSTATE?", "^THERMSTATE");
constexpr auto kThermStateFields = FieldList(Field<&ThermStateInfo::state>("state"));
constexpr CommandDescription kBatteryState = Read("AT^APBATLVL", "^APBATLVL", AT_PARSE_QUERY);
constexpr auto kBatteryStateFields =
    FieldList(Field<&BatteryStateInfo::batterylvl>("batterylvl"),
              Field<&BatteryStateInfo::chargerState>("chargerState"));
constexpr CommandDescription kBatteryInfo = Read("AT+CBC", "+CBC", AT_PARSE_QUERY);
constexpr auto kBatteryInfoFields =
    FieldList(Field<&BatteryInfo::bcs>("bcs"), Field<&BatteryInfo::bcl>("bcl"));
constexpr CommandDescription kAntenna = Read("AT^ANQUERY?", "^ANQUERY", AT_PARSE_QUERY);
constexpr auto kAntennaFields =
    FieldList(Field<&AntennaInfo::rscp>("rscp"), Field<&AntennaInfo::ecio>("ecio"),
              Field<&AntennaInfo::antennaLevel>("antenna_level"));

constexpr CommandDescription kFactoryReset{.format = "AT&F"};
constexpr CommandDescription kNvBackup{.format = "AT^NVBACKUP"};
constexpr CommandDescription kNvBackupbk{.format = "AT^NVBACKUPBK"};
constexpr CommandDescription kNvRstStts{.format = "AT^NVRSTSTTS", .rspPrefix = "^NVRSTSTTS"};
constexpr size_t kNumberAnswerSize = 32;

constexpr CommandDescription kGodLoad{.format = "AT^GODLOAD", .rspPrefix = "^GODLOAD"};
constexpr char kRebootLog[] = "rebootcms";
constexpr char kRebootReason[] = "echo -n \"update\" > /proc/mbb_reb/reason";

// The query or test form of setting s into r, or set(*r) for AT_DEVICE_SET.
template <typename Record, size_t N, typename MakeSet>
int32_t Handle(uint32_t op, Record *r, const Setting<Record, N> &s, MakeSet set,
               const char *nullText) {
    if (r == nullptr) {
        AT_LOG_ERR("%s", nullText);
        return -1;
    }
    return RunForm(op, *r, s, set, kTraceSrc, kFormatError);
}

// A report without a set form.
template <typename Record, size_t N>
int32_t Report(const CommandDescription &description, const Fields<Record, N> &fields, Record *r) {
    if (r == nullptr) {
        AT_LOG_ERR("%s", kParamIsNull);
        return -1;
    }
    return Command(description).Query(fields, *r, &r->errorId);
}

int32_t AsInt(uint32_t value) { return static_cast<int32_t>(value); }

// Whether number can stand between the quotes of a command line: no quote,
// no line end or other control character.
bool IsQuotable(const char *number) {
    for (const char *p = number; *p != '\0'; ++p) {
        if (*p == '"' || static_cast<unsigned char>(*p) < ' ') return false;
    }
    return true;
}

int32_t AtNvFunc(const CommandDescription &description) {
    if (Command(description).Send(nullptr) != 0) {
        AT_LOG_ERR("error occurred in AtNvFunc");
        return -1;
    }
    return 0;
}

}  // namespace

extern "C" {

int32_t AtSkuHandle(uint32_t op, const uint32_t *in, SkuInfo *out) {
    if (op == AT_DEVICE_SET && in != nullptr) {
        if (*in > kSkuMax) {
            AT_LOG_ERR("SKU command overflow");
            return -1;
        }
        return SendOrLog(kTraceSrc, kFormatError, Command(kSkuSet, AsInt(*in)), nullptr) == 0 ? 0
                                                                                              : -1;
    }
    if (op == AT_DEVICE_QUERY && out != nullptr) {
        return Command(kSkuQuery).Query(kSkuFields, *out, &out->errorId);
    }
    AT_LOG_ERR("%s", kParamIsNull);
    return -1;
}

int32_t AtWakeupHandle(uint32_t op, WakeupCfgInfo *r) {
    return Handle(
        op, r, kWakeup,
        [](const WakeupCfgInfo &w) {
            return Command(kWakeupSet, w.wakeupSwitch, w.channel, w.source);
        },
        kParamInIsNull);
}

int32_t AtCurcHandle(uint32_t op, CurcInfo *r) {
    return Handle(
        op, r, kCurc, [](const CurcInfo &c) { return Command(kCurcSet, c.mode); }, kParamInIsNull);
}

int32_t AtTrustNum(uint32_t op, const char *number, TrustNumInfo *r) {
    if (op == AT_DEVICE_SET && number == nullptr) {
        AT_LOG_ERR("%s", kParamInIsNull);
        return -1;
    }
    if (op == AT_DEVICE_SET && !IsQuotable(number)) {
        AT_LOG_ERR("trusted number is invalid");
        return -1;
    }
    return Handle(
        op, r, kTrustNum,
        [number](const TrustNumInfo &t) { return Command(kTrustNumSet, t.index, number); },
        kParamInIsNull);
}

int32_t AtThermFun(uint32_t op, ThermFunInfo *r) {
    AT_LOG_INFO("passing type is = %d", AsInt(op));
    return Handle(
        op, r, kThermFun,
        [](const ThermFunInfo &t) { return Command(kThermFunSet, AsInt(t.thermSwitch)); },
        kParamIsNull);
}

int32_t AtSetWatchDogTime(uint32_t op, WatchdogInfo *r) {
    AT_LOG_INFO("passing type is = %d", AsInt(op));
    return Handle(
        op, r, kWatchdog,
        [](const WatchdogInfo &w) { return Command(kWatchdogSet, w.watchdogTime); }, kParamIsNull);
}

int32_t AtThermState(ThermStateInfo *r) { return Report(kThermState, kThermStateFields, r); }

int32_t AtQueryBatteryState(BatteryStateInfo *r) {
    return Report(kBatteryState, kBatteryStateFields, r);
}

int32_t AtQueryBatteryInfo(BatteryInfo *r) { return Report(kBatteryInfo, kBatteryInfoFields, r); }

int32_t AtNetworkInfo(AntennaInfo *r) { return Report(kAntenna, kAntennaFields, r); }

int32_t AtFactoryReset(void) { return Command(kFactoryReset).Send(nullptr); }

int32_t AtNvBackup(void) { return AtNvFunc(kNvBackup); }

int32_t AtNvBackupbk(void) { return AtNvFunc(kNvBackupbk); }

int32_t AtNvRstStts(NvRestoreState *r) {
    if (r == nullptr) {
        AT_LOG_ERR("para is NULL");
        return -1;
    }
    char answer[kNumberAnswerSize];
    if (Command(kNvRstStts).QueryText(answer, &r->errorId) != 0) return -1;
    // The answer keeps the blank behind the ':'.
    const char *digits = answer + std::strspn(answer, " ");
    if (CheckValidNum(digits, INT32_MIN, INT32_MAX) != 0) return -1;
    r->state = SafeStrAtoi(digits);
    return 0;
}

int32_t AtGodLoad(void) {
    mlog_print(kRebootLog, TRACE_LEVEL_INFO, "reboot type 0x5\n");
    (void)PlatformSystem(kRebootReason);  // the reason is a hint; download mode goes ahead
    return Command(kGodLoad).Send(nullptr);
}

}  // extern "C"
