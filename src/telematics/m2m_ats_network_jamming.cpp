// Jamming detection (^JDSWITCH, ^JDCFG) and RSSI reports (^EMRSSIRPT,
// ^EMRSSICFG): four set/get pairs. The get functions read every row by
// field name into the entry of the row's technology.
#include <array>

#include "atapi/at_text.h"
#include "atapi/m2m_ats_network.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "telematics/m2m_ats_network_exchange.h"
#include "telematics/m2m_ats_network_read.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;
using atapi::call::CallReply;
using atapi::network::kRetValFailed;
using atapi::network::ReplyOutcome;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_network";
// The level of the log line for a row of an unknown technology.
constexpr int kTraceWarning = 4;

consteval CommandDescription NetworkQuery(const char *format, const char *rspPrefix,
                                          const char *parsePrefix) {
    return Reads(format, rspPrefix, parsePrefix, module::kNetwork);
}
constexpr CommandDescription kSwitchSet{.format = "AT^JDSWITCH=%d"};
constexpr CommandDescription kSwitchQuery = NetworkQuery("AT^JDSWITCH?", "^JDSWITCH:", "^JDSWITCH");
constexpr CommandDescription kCfgQuery = NetworkQuery("AT^JDCFG?", "^JDCFG:", "^JDCFG");
constexpr CommandDescription kRptSet{.format = "AT^EMRSSIRPT=%d"};
constexpr CommandDescription kRptQuery = NetworkQuery("AT^EMRSSIRPT?", "^EMRSSIRPT:", "^EMRSSIRPT");
constexpr CommandDescription kRssiCfgSet{.format = "AT^EMRSSICFG=%d,%d"};
constexpr CommandDescription kRssiCfgQuery =
    NetworkQuery("AT^EMRSSICFG?", "^EMRSSICFG:", "^EMRSSICFG");

// The threshold line of each technology: GSM takes two values.
struct CfgLine {
    CommandDescription description;
    const char *formatError;
};
constexpr std::array<CfgLine, AT_JAMMING_RAT_COUNT> kCfgLines{{
    {{.format = "AT^JDCFG=%d,%d,%d"}, "jamming detect rat gsm snprintf_s fail, ret:%d\n"},
    {{.format = "AT^JDCFG=%d,%d,%d,%d,%d"}, "jamming detect rat wcdma snprintf_s fail, ret:%d\n"},
    {{.format = "AT^JDCFG=%d,%d,%d,%d,%d"}, "jamming detect rat lte snprintf_s fail, ret:%d\n"},
}};

bool KnownRat(int32_t rat) { return rat >= 0 && rat < AT_JAMMING_RAT_COUNT; }

constexpr char kRetValError[] = "%s, GetDataFromAtServer retVal = %d error\n";

int32_t Set(const Command &cmd, const char *name, const char *formatError) {
    const CallReply reply(cmd, formatError);
    const int32_t ret = ReplyOutcome(reply, name, kRetValError);
    AT_LOG_INFO("%s out,ret = %d\n", name, ret);
    return ret;
}

// A template field and the entry member it fills.
template <typename Entry>
struct EntryField {
    const char *name;
    int32_t Entry::*member;
};

constexpr std::array<EntryField<JammingDetectSwitchEntry>, 2> kSwitchFields{{
    {"rat", &JammingDetectSwitchEntry::rat},
    {"mode", &JammingDetectSwitchEntry::mode},
}};
constexpr std::array<EntryField<JammingDetectCfg>, 5> kCfgFields{{
    {"rat", &JammingDetectCfg::rat},
    {"value1", &JammingDetectCfg::value1},
    {"value2", &JammingDetectCfg::value2},
    {"value3", &JammingDetectCfg::value3},
    {"value4", &JammingDetectCfg::value4},
}};
constexpr std::array<EntryField<EmRssiCfg>, 2> kRssiFields{{
    {"rat", &EmRssiCfg::rat},
    {"rssi_thresh", &EmRssiCfg::rssiThresh},
}};

// How one get function reads its rows and what it logs.
struct RowReader {
    const char *parseName;      // prefix of its logs
    const char *copyError;      // a failed copy into the output slot
    const char *invalidRatLog;  // an unknown rat; null: skipped silently
};

constexpr RowReader kSwitchReader{"JammingDetectSwitchResultParse",
                                  "JammingDetectSwitchGetModes copy fail, ret:%d.\n", nullptr};
constexpr RowReader kCfgReader{"JammingDetectCfgResultParse", "JammingDetectGetGsmInfo ret:%d\n",
                               nullptr};
constexpr RowReader kRssiReader{"EmrssicfgResultParse", "EmrssicfgResultParse, ret:%d\n",
                                "EmrssicfgResultParse, invalid rat(%d)\n"};

template <typename Entry, size_t N>
int32_t ReadByRat(char *reply, const CommandDescription &description,
                  const std::array<EntryField<Entry>, N> &fields, const RowReader &reader,
                  Entry (&out)[AT_JAMMING_RAT_COUNT]) {
    int32_t status = 0;
    const ParseRows rows = ParseReply(description, reply, &status);
    if (rows.Get() == nullptr) {
        AT_LOG_ERR("%s, ParseAtCmdFunc failed result is NULL\n", reader.parseName);
        return -1;
    }
    for (const AtCmdParseNode *row = rows.Get(); row != nullptr; row = row->nextRow) {
        Entry entry{};
        ForEachField(row, [&entry, &fields](const char *name, const char *value) {
            for (const EntryField<Entry> &field : fields) {
                if (SafeStrCmp(name, field.name) == 0) entry.*field.member = SafeStrAtoi(value);
            }
        });
        if (!KnownRat(entry.rat)) {
            if (reader.invalidRatLog != nullptr)
                AT_LOG(kTraceWarning, reader.invalidRatLog, entry.rat);
            continue;
        }
        const errno_t ret = memcpy_s(&out[entry.rat], sizeof(Entry), &entry, sizeof entry);
        if (ret != 0) AT_LOG_ERR(reader.copyError, ret);
    }
    AT_LOG_INFO("%s out, success\n", reader.parseName);
    return 0;
}

// A get function's exchange and the decoding of its OK reply, with its out
// log.
template <typename Record>
int32_t Get(const char *name, const CommandDescription &description, const char *retValFormat,
            int32_t (*decode)(char *reply, Record &record), Record &record) {
    CallReply reply(Command(description), "snprintf_s fail, ret:%d\n");
    int32_t ret = ReplyOutcome(reply, name, retValFormat);
    if (ret == 0) ret = decode(reply.Text(), record);
    AT_LOG_INFO("%s out,ret = %d\n", name, ret);
    return ret;
}

bool Refused(const void *record, const char *name) {
    AT_LOG_INFO("%s Enter\n", name);
    if (record != nullptr) return false;
    AT_LOG_ERR("%s invalid paramter\n", name);
    return true;
}

}  // namespace

namespace atapi::network {

int32_t JammingSwitchFromReply(char *reply, JammingDetectSwitchInfo &info) {
    return ReadByRat(reply, kSwitchQuery, kSwitchFields, kSwitchReader, info.entry);
}

int32_t JammingCfgFromReply(char *reply, JammingDetectCfgInfo &info) {
    return ReadByRat(reply, kCfgQuery, kCfgFields, kCfgReader, info.cfg);
}

int32_t EmRssiCfgFromReply(char *reply, EmRssiCfgInfo &info) {
    return ReadByRat(reply, kRssiCfgQuery, kRssiFields, kRssiReader, info.cfg);
}

int32_t EmRssiRptFromReply(char *reply, int32_t &n) {
    int32_t status = 0;
    const ParseRows rows = ParseReply(kRptQuery, reply, &status);
    if (rows.Get() == nullptr) {
        AT_LOG_ERR("AtGetEmRssiRpt, ParseAtCmdFunc failed result is NULL\n");
        return -1;
    }
    ForEachField(rows.Get(), [&n](const char *name, const char *value) {
        if (SafeStrCmp(name, "n") == 0) n = SafeStrAtoi(value);
    });
    return 0;
}

}  // namespace atapi::network

extern "C" {

int32_t AtSetJammingDetctSwitch(uint32_t mode) {
    const auto value = static_cast<int32_t>(mode);
    AT_LOG_INFO("AtSetJammingDetctSwitch Enter, mode = %d\n", value);
    return Set(Command(kSwitchSet, value), "AtSetJammingDetctSwitch",
               "AT^JDSWITCH snprintf_s fail, ret:%d\n");
}

int32_t AtGetJammingDetectSwitch(JammingDetectSwitchInfo *info) {
    if (Refused(info, "AtGetJammingDetectSwitch")) return -1;
    return Get("AtGetJammingDetectSwitch", kSwitchQuery, kRetValError,
               atapi::network::JammingSwitchFromReply, *info);
}

int32_t AtSetJammingDetectCfg(const JammingDetectCfg *cfg) {
    if (Refused(cfg, "AtSetJammingDetectCfg")) return -1;
    if (!KnownRat(cfg->rat)) {
        AT_LOG_ERR("AtSetJammingDetectCfg out, invalid rat(%d)\n", cfg->rat);
        return -1;
    }
    const CfgLine &line = kCfgLines[static_cast<size_t>(cfg->rat)];
    AT_LOG_DETAIL("AtSetJammingDetectCfg, rat = %d\n", cfg->rat);
    // GSM's format takes the first three arguments only.
    return Set(
        Command(line.description, cfg->rat, cfg->value1, cfg->value2, cfg->value3, cfg->value4),
        "AtSetJammingDetectCfg", line.formatError);
}

int32_t AtGetJammingDetectCfg(JammingDetectCfgInfo *info) {
    if (Refused(info, "AtGetJammingDetectCfg")) return -1;
    return Get("AtGetJammingDetectCfg", kCfgQuery, kRetValError,
               atapi::network::JammingCfgFromReply, *info);
}

int32_t AtSetEmRssiRpt(uint32_t mode) {
    const auto value = static_cast<int32_t>(mode);
    AT_LOG_INFO("AtSetEmRssiRpt Enter, mode = %d\n", value);
    return Set(Command(kRptSet, value), "AtSetEmRssiRpt", "AT^EMRSSIRPT snprintf_s fail, ret:%d\n");
}

int32_t AtGetEmRssiRpt(int32_t *n) {
    if (Refused(n, "AtGetEmRssiRpt")) return -1;
    return Get("AtGetEmRssiRpt", kRptQuery, kRetValError, atapi::network::EmRssiRptFromReply, *n);
}

int32_t AtSetEmRssiCfg(const EmRssiCfg *cfg) {
    if (Refused(cfg, "AtSetEmRssiCfg")) return -1;
    return Set(Command(kRssiCfgSet, cfg->rat, cfg->rssiThresh), "AtSetEmRssiCfg",
               "AT^EMRSSICFG snprintf_s fail, ret:%d\n");
}

int32_t AtGetEmRssiCfg(EmRssiCfgInfo *info) {
    if (Refused(info, "AtGetEmRssiCfg")) return -1;
    return Get("AtGetEmRssiCfg", kRssiCfgQuery, kRetValFailed, atapi::network::EmRssiCfgFromReply,
               *info);
}

}  // extern "C"
