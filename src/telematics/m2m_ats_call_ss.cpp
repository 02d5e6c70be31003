// Supplementary services: calling line presentation and restriction, call
// waiting, call forwarding and service notifications.
#include <cstdlib>

#include "atapi/at_text.h"
#include "atapi/m2m_ats_call.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "telematics/m2m_ats_call_exchange.h"
#include "telematics/m2m_ats_call_read.h"

namespace {

using namespace atapi::api;
using namespace atapi::call;
using atapi::ParseRows;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_call";

// The value that sends "=" alone.
constexpr int32_t kNoValue = 16;

constexpr CommandDescription kClipSet{.format = "AT+CLIP=%d"};
constexpr CommandDescription kClipExSet{.format = "AT^CLIP=%d"};
constexpr CommandDescription kClipExSetEmpty{.format = "AT^CLIP="};
constexpr char kClir[] = "+CLIR";
constexpr CommandDescription kClirSet{.format = "AT%s=%d"};
constexpr CommandDescription kClirSetEmpty{.format = "AT%s="};
constexpr char kClipFormatError[] = "AT+CLIP, snprintf_s error, ret:%d\n";
constexpr char kClirFormatError[] = "AT+CLIR, snprintf_s error, ret:%d\n";
constexpr char kClipExFormatError[] = "AtClipEx, snprintf_s ret:%d\n";

// A presentation query (+CLIP, +CLIR, ^CLIP) and how its failures are told.
struct PresentationQuery {
    CommandDescription description;
    const char *retValError;    // takes the reply's class
    const char *abortMessage;   // null: an abort is told as another class
    const char *exchangeError;  // null: a failed exchange is not logged here
};
constexpr PresentationQuery kClipQuery{
    .description = Reads("AT+CLIP?", "+CLIP:", "+CLIP", module::kCall),
    .retValError = "CLIP query retVal =%d error\n",
    .abortMessage = "at+clip? is aborted\n",
    .exchangeError = nullptr,
};
constexpr PresentationQuery kClirQuery{
    .description = Reads("AT%s?", "+CLIR:", "+CLIR", module::kCall),
    .retValError = "CLIR query retVal =%d error\n",
    .abortMessage = nullptr,
    .exchangeError = nullptr,
};
constexpr PresentationQuery kClipExQuery{
    .description = Reads("AT^CLIP?", "^CLIP:", "^CLIP", module::kCall),
    .retValError = "^CLIP query retVal =%d error\n",
    .abortMessage = nullptr,
    .exchangeError = "AtClipQueryEx, GetDataFromAtServer falied ,ret = %d\n",
};
constexpr auto kClipFields =
    FieldList(Field<&AtClipClirInfo::n>("n"), Field<&AtClipClirInfo::m>("m"));

// Call-waiting operations (AtsCcwaInfo::mode on input).
constexpr int32_t kCcwaDisable = 0;
constexpr int32_t kCcwaEnable = 1;
constexpr int32_t kCcwaQueryClass = 2;
constexpr int32_t kCcwaRead = 3;
constexpr int32_t kCcwaPresentation = 4;
constexpr int32_t kCcwaNoValue = kNoValue;
constexpr size_t kCcwaEntries = 8;
constexpr char kCcwaFormatError[] = "AT^CCWA, snprintf_s error, ret:%d\n";

constexpr CommandDescription kCcwaSet{.format = "AT+CCWA=1,%d,%d"};
constexpr CommandDescription kCcwaClasses = Reads("AT+CCWA=1,2,", nullptr, "+CCWA", module::kCall);
constexpr CommandDescription kCcwaQuery{.format = "AT+CCWA?"};
constexpr CommandDescription kCcwaPresent{.format = "AT+CCWA=%d"};
constexpr CommandDescription kCcwaExSet{.format = "AT^CCWA=1,%d,%d"};
constexpr CommandDescription kCcwaExClasses =
    Reads("AT^CCWA=1,2,", nullptr, "^CCWA", module::kCall);
constexpr CommandDescription kCcwaExQuery =
    Reads("AT^CCWA?", "^CCWA:", "^CCWA", module::kCcwaReport);
constexpr CommandDescription kCcwaExPresent{.format = "AT^CCWA=%d"};
constexpr CommandDescription kCcwaExEmpty{.format = "AT^CCWA="};
constexpr auto kCcwaEntryFields =
    FieldList(Field<&AtsCcwaEntry::status>("status"), Field<&AtsCcwaEntry::classx>("class"));

constexpr char kSetCcwaiTag[] = "AtsSetCcwai";
constexpr char kGetCcwaiTag[] = "AtsGetCcwai";
constexpr CommandDescription kCcwaiSet{.format = "AT^CCWAI=%d,%d"};
constexpr CommandDescription kCcwaiQuery = Reads("AT^CCWAI?", "^CCWAI:", "^CCWAI", module::kCall);
constexpr auto kCcwaiFields = FieldList(Field<&AtsCcwaiInfo::mode>("mode", 0, 1),
                                        Field<&AtsCcwaiInfo::ctrlModeRead>("ctrl_mode", 0, 1));

constexpr int32_t kCcfcQueryMode = 2;
constexpr size_t kCcfcEntries = 10;
constexpr size_t kMaxNumberChars = 40;
constexpr char kCcfcFormatError[] = "AT^CCFC, snprintf_s error, ret:%d\n";
constexpr CommandDescription kCcfcQuery = Reads("AT+CCFC=%d,%d", nullptr, "+CCFC", module::kCall);
constexpr CommandDescription kCcfcSet{.format = "AT+CCFC=%d,%d,\"%s\",%d,%d,,,"};
constexpr CommandDescription kCcfcSetTime{.format = "AT+CCFC=%d,%d,\"%s\",%d,%d,,,%d"};

constexpr CommandDescription kCssn{.format = "AT+CSSN=%d,%d"};

int32_t QueryPresentation(const PresentationQuery &q, const Command &cmd, AtClipClirInfo *info) {
    if (info == nullptr) return -1;
    CallReply reply(cmd, "snprintf_s falied");
    if (reply.Status() != 0) {
        if (q.exchangeError != nullptr) AT_LOG_ERR(q.exchangeError, reply.Status());
        return reply.Status();
    }
    if (reply.Aborted() && q.abortMessage != nullptr) {
        AT_LOG_ERR("%s", q.abortMessage);
        return -1;
    }
    if (!reply.Ok()) {
        AT_LOG_ERR(q.retValError, reply.RetVal());
        return -1;
    }
    int32_t status = 0;
    const ParseRows rows = reply.Parse(q.description, &status);
    if (status != AT_PARSE_OK) {
        LogParseFailure();
        return -1;
    }
    if (rows.Get() == nullptr) {
        AT_LOG_ERR("in CLIP query, at_parse_result is NULL\n");
        return -1;
    }
    StoreRow(rows.Get(), kClipFields, *info);
    return 0;
}

// Operation 2: one status and class per reply row, at most 8.
int32_t QueryWaitingClasses(const CommandDescription &description, AtsCcwaInfo &info,
                            const char *noRowError) {
    CallReply reply(Command(description), kCcwaFormatError);
    if (!reply.Ok()) return reply.Result();
    int32_t status = 0;
    const ParseRows rows = reply.Parse(description, &status);
    if (rows.Get() == nullptr && noRowError != nullptr) AT_LOG_ERR("%s", noRowError);
    size_t filled = 0;
    for (const AtCmdParseNode *row = rows.Get(); row != nullptr && filled < kCcwaEntries;
         row = row->nextRow) {
        StoreRow(row, kCcwaEntryFields, info.entries[filled]);
        ++filled;
        ++info.ccwaCount;
    }
    return 0;
}

// Operation 3 of the extended form: the presentation read back into mode.
int32_t ReadWaitingPresentation(AtsCcwaInfo &info) {
    CallReply reply(Command(kCcwaExQuery), kCcwaFormatError);
    if (!reply.Ok()) return reply.Result();
    int32_t status = 0;
    const ParseRows rows = reply.Parse(kCcwaExQuery, &status);
    const AtCmdParseNode *n = FindField(rows.Get(), "n");
    if (n == nullptr || n->atFieldValue == nullptr) return 0;
    info.mode = std::atoi(n->atFieldValue);
    ++info.ccwaCount;
    AT_LOG_INFO("At server query config_info->ccwaCount = %d, config_info->mode = %d\n",
                info.ccwaCount, info.mode);
    return 0;
}

int32_t StandardWaiting(AtsCcwaInfo &info) {
    switch (info.mode) {
        case kCcwaDisable:
        case kCcwaEnable:
            return SendForOk(Command(kCcwaSet, info.mode, info.classx), kCcwaFormatError);
        case kCcwaQueryClass:
            return QueryWaitingClasses(kCcwaClasses, info, "Execute AT+CCWA at commond error \n");
        case kCcwaRead:
            return SendForOk(Command(kCcwaQuery), kCcwaFormatError);
        case kCcwaPresentation:
            return SendForOk(Command(kCcwaPresent, info.n), kCcwaFormatError);
        default:
            return -1;
    }
}

int32_t ExtendedWaiting(AtsCcwaInfo &info) {
    switch (info.mode) {
        case kCcwaDisable:
        case kCcwaEnable:
            return SendForOk(Command(kCcwaExSet, info.mode, info.classx), kCcwaFormatError);
        case kCcwaQueryClass:
            return QueryWaitingClasses(kCcwaExClasses, info, nullptr);
        case kCcwaRead:
            return ReadWaitingPresentation(info);
        case kCcwaPresentation:
            return SendForOk(Command(kCcwaExPresent, info.n), kCcwaFormatError);
        case kCcwaNoValue:
            return SendForOk(Command(kCcwaExEmpty), kCcwaFormatError);
        default:
            AT_LOG_ERR("at cmd error \n");
            return -1;
    }
}

// One forwarding rule. Only a rule with status 0 reads cleanly: from the
// status of an active rule on, the row's values go into number and end the
// query as failed, so a query succeeds only when every rule is inactive.
bool ReadForwarding(const AtCmdParseNode *row, AtsCcfcEntry &entry) {
    bool active = false;
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        const char *value = node->atFieldValue;
        if (value == nullptr) continue;
        if (SafeStrCmp(node->atFieldName, "status") == 0) {
            entry.status = std::atoi(value);
            active = entry.status != 0;
        } else if (SafeStrCmp(node->atFieldName, "class") == 0) {
            entry.classx = std::atoi(value);
        }
        if (active && SafeStrCmp(node->atFieldName, "number") != 0) {
            snprintf_s(entry.number, sizeof entry.number, kMaxNumberChars, "%s", value);
            return false;
        }
    }
    return true;
}

int32_t QueryForwarding(AtsCcfcInfo &info) {
    CallReply reply(Command(kCcfcQuery, info.reason, info.mode), kCcfcFormatError);
    if (!reply.Ok()) return reply.Result();
    return atapi::call::ForwardingFromReply(reply.Text(), info);
}

int32_t Forwarding(AtsCcfcInfo &info) {
    if (info.mode == kCcfcQueryMode) return QueryForwarding(info);
    if (!TextFits(info.number, kCcfcFormatError)) return -1;
    if (info.time == 0) {
        return SendForOk(
            Command(kCcfcSet, info.reason, info.mode, info.number, info.type, info.classx),
            kCcfcFormatError);
    }
    return SendForOk(Command(kCcfcSetTime, info.reason, info.mode, info.number, info.type,
                             info.classx, info.time),
                     kCcfcFormatError);
}

}  // namespace

namespace atapi::call {

int32_t ForwardingFromReply(char *reply, AtsCcfcInfo &info) {
    int32_t status = 0;
    const ParseRows rows = ParseReply(kCcfcQuery, reply, &status);
    if (status != AT_PARSE_OK) {
        LogParseFailure();
        return -1;
    }
    size_t filled = 0;
    for (const AtCmdParseNode *row = rows.Get(); row != nullptr && filled < kCcfcEntries;
         row = row->nextRow) {
        if (!ReadForwarding(row, info.entries[filled])) return -1;
        ++filled;
        ++info.ccfcCount;
    }
    return 0;
}

}  // namespace atapi::call

extern "C" {

int32_t AtsClip(int32_t value) {
    return SendForOk(Command(kClipSet, value), kClipFormatError, "at+clip is aborted\n");
}

int32_t AtClipQuery(AtClipClirInfo *info) {
    return QueryPresentation(kClipQuery, Command(kClipQuery.description), info);
}

int32_t AtClir(int32_t value) {
    if (value == kNoValue) return SendForOk(Command(kClirSetEmpty, kClir), kClirFormatError);
    return SendForOk(Command(kClirSet, kClir, value), kClirFormatError);
}

int32_t AtClirQuery(AtClipClirInfo *info) {
    return QueryPresentation(kClirQuery, Command(kClirQuery.description, kClir), info);
}

int32_t AtClipEx(int32_t value) {
    if (value == kNoValue) {
        return SendForOk(Command(kClipExSetEmpty), kClipExFormatError, "at^clip is aborted\n");
    }
    return SendForOk(Command(kClipExSet, value), kClipExFormatError, "at^clip is aborted\n");
}

int32_t AtClipQueryEx(AtClipClirInfo *info) {
    return QueryPresentation(kClipExQuery, Command(kClipExQuery.description), info);
}

int32_t AtsCcwa(AtsCcwaInfo *info) {
    if (info == nullptr) return -1;
    return StandardWaiting(*info) == -1 ? -1 : 0;
}

int32_t AtCcwaEx(AtsCcwaInfo *info) {
    if (info == nullptr) return -1;
    return ExtendedWaiting(*info);
}

int32_t AtsSetCcwai(AtsCcwaiInfo *info) {
    if (info == nullptr) {
        AT_LOG_ERR("%s param is NULL", kSetCcwaiTag);
        return -1;
    }
    const Command cmd(kCcwaiSet, info->mode, info->ctrlMode);
    if (!cmd) {
        AT_LOG_ERR("%s, snprintf_s error\n", kSetCcwaiTag);
        return -1;
    }
    if (cmd.Send(nullptr) != 0) {
        AT_LOG_ERR("[%s] AtSendSimpleCmd failed", kSetCcwaiTag);
        return -1;
    }
    return 0;
}

int32_t AtsGetCcwai(AtsCcwaiInfo *info) {
    if (info == nullptr) {
        AT_LOG_ERR("%s param is NULL", kGetCcwaiTag);
        return -1;
    }
    if (const int32_t ret = Command(kCcwaiQuery).Query(kCcwaiFields, *info, nullptr); ret != 0) {
        AT_LOG_ERR("[%s] AtSendAndGetListRsp failed, ret = %d", kGetCcwaiTag, ret);
        return -1;
    }
    return 0;
}

int32_t AtsCcfc(AtsCcfcInfo *info) {
    if (info == nullptr) {
        AT_LOG_ERR("param in ccfc is NULL\n");
        return -1;
    }
    return Forwarding(*info) == -1 ? -1 : 0;
}

int32_t AtsCssn(AtsCssnInfo *info) {
    if (info == nullptr) {
        AT_LOG_ERR("AT cssn is NULL\n");
        return -1;
    }
    return SendForOk(Command(kCssn, info->n, info->m), "AT^CSSN, snprintf_s error, ret:%d\n");
}

}  // extern "C"
