// Voice calls: dial, answer, hang up, hold/multiparty and the two call lists.
#include "atapi/m2m_ats_call.h"

#include <climits>
#include <cstdlib>
#include <cstring>

#include "atapi/at_text.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "telematics/m2m_ats_call_exchange.h"
#include "telematics/m2m_ats_call_read.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;
using atapi::call::CallReply;
using atapi::call::SendForOk;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_call";

constexpr CommandDescription kDial{.format = "ATD%s;"};
constexpr CommandDescription kAnswer{.format = "ATA"};
constexpr CommandDescription kHangUp{.format = "AT+CHUP"};
constexpr CommandDescription kHold{.format = "AT+CHLD=%d"};

constexpr CommandDescription kCallList = Reads("AT+CLCC", "+CLCC", module::kCall);
constexpr int32_t kCallListMaxIndex = 20;  // inclusive: 21 entries
constexpr uint32_t kMaxCallStat = 5;
constexpr size_t kMaxNumberChars = 40;
constexpr auto kCallFields =
    FieldList(Field<&AtsClccInfo::idx>("idx"), Field<&AtsClccInfo::dir>("dir"),
              Field<&AtsClccInfo::mode>("mode"), Field<&AtsClccInfo::mpty>("mpty"),
              Field<&AtsClccInfo::type>("type"));

constexpr char kCallListExTag[] = "AtsClccEx";
constexpr CommandDescription kCallListEx = Reads("AT^CLCC?", "^CLCC:", "^CLCC", module::kCall);
constexpr int32_t kCallListExLines = 7;
constexpr uint32_t kCallExNumberSize = 41;  // 40 characters and the terminator
constexpr auto kCallExFields = FieldList(
    Field<&AtsClccExInfo::idx>("idx", 0, INT32_MAX), Field<&AtsClccExInfo::dir>("dir", 0, 1),
    Field<&AtsClccExInfo::state>("state", 0, 5), Field<&AtsClccExInfo::mode>("mode", 0, INT32_MAX),
    Field<&AtsClccExInfo::mpty>("mpty", 0, 1),
    Field<&AtsClccExInfo::voiceDomain>("voice_domain", 0, 1),
    Field<&AtsClccExInfo::callType>("call_type", 0, INT32_MAX),
    Field<&AtsClccExInfo::isEconference>("isEconference", 0, 1),
    Capped(Field<&AtsClccExInfo::number>("number"), kCallExNumberSize),
    Field<&AtsClccExInfo::type>("type", 0, INT32_MAX));

// One call of the list. A state above 5 is not stored; a number that does
// not fit fails the list.
bool ReadCall(const AtCmdParseNode *row, AtsClccInfo &call) {
    const auto params = Bind(kCallFields, call);
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        const char *value = node->atFieldValue;
        if (node->atFieldName == nullptr || value == nullptr) continue;
        if (SafeStrCmp(node->atFieldName, "stat") == 0) {
            const int32_t stat = std::atoi(value);
            if (static_cast<uint32_t>(stat) <= kMaxCallStat) {
                call.stat = stat;
            } else {
                AT_LOG_ERR("[%s] get callStat failed, callStat is %d\n",
                           "AtsClccParseFieldNameStat", stat);
            }
        } else if (SafeStrCmp(node->atFieldName, "number") == 0) {
            if (snprintf_s(call.number, sizeof call.number, kMaxNumberChars, "%s", value) < 0) {
                return false;
            }
        } else {
            AtParseNode(node, params.data(), params.size());
        }
    }
    return true;
}

int32_t ReadCallList(AtsClccInfo *list, int32_t maxIndex) {
    CallReply reply(Command(kCallList), "AT+CLCC, snprintf_s error, ret:%d\n");
    if (reply.Aborted()) AT_LOG_ERR("at+clcc is aborted\n");
    if (!reply.Ok()) return reply.Result();
    return atapi::call::CallListFromReply(reply.Text(), list, maxIndex);
}

}  // namespace

namespace atapi::call {

int32_t CallListFromReply(char *reply, AtsClccInfo *list, int32_t maxIndex) {
    if (std::strstr(reply, "CLCC") == nullptr) return 0;  // no call
    int32_t status = 0;
    const ParseRows rows = ParseReply(kCallList, reply, &status);
    if (status != AT_PARSE_OK) {
        AT_LOG_ERR("ParseAtCmdFunc falied");
        return -1;
    }
    // maxIndex is the last index filled, not a count.
    int32_t i = 0;
    for (const AtCmdParseNode *row = rows.Get(); row != nullptr && maxIndex >= i;
         row = row->nextRow) {
        if (!ReadCall(row, list[i])) return -1;
        ++i;
    }
    return 0;
}

int32_t CallExFromLine(char *line, AtsClccExInfo &call) {
    return ParseFields(kCallListEx, line, kCallExFields, call);
}

}  // namespace atapi::call

extern "C" {

int32_t AtsD(const char *dialString) {
    if (dialString == nullptr) return -1;
    return SendForOk(Command(kDial, dialString), "ATD, snprintf_s error, ret:%d\n",
                     "atd is aborted\n");
}

int32_t AtsA(void) {
    return SendForOk(Command(kAnswer), "ATA, snprintf_s error, ret:%d\n", "ata is aborted\n");
}

int32_t AtsChup(void) { return SendForOk(Command(kHangUp), "AT+CHUP, snprintf_s error, ret:%d\n"); }

int32_t AtsChld(int32_t n) {
    return SendForOk(Command(kHold, n), "AT^CHLD, snprintf_s error, ret:%d\n");
}

int32_t AtsClcc(AtsClccInfo *list, int32_t maxIndex) {
    if (list == nullptr) {
        AT_LOG_ERR("param passing is NULL\n");
        return -1;
    }
    if (maxIndex > kCallListMaxIndex) {
        AT_LOG_ERR("param len passing error\n");
        return -1;
    }
    return ReadCallList(list, maxIndex) == -1 ? -1 : 0;
}

int32_t AtsClccEx(AtsClccExInfo *list, int32_t count) {
    if (list == nullptr) {
        AT_LOG_ERR("%s param error", kCallListExTag);
        return -1;
    }
    if (count > kCallListExLines) {
        AT_LOG_ERR("%s list count error", kCallListExTag);
        return -1;
    }
    ReplyLines<kCallListExLines> lines;
    if (const int32_t ret = Command(kCallListEx).SendLines(lines, nullptr); ret != 0) {
        AT_LOG_ERR("[%s] AtSendMultiCmd error ret = %d", kCallListExTag, ret);
        return -1;
    }
    AT_LOG_INFO("[%s] clccNum = %d", kCallListExTag, lines.Count());
    for (int32_t i = 0; i < count && i < lines.Count(); ++i) {
        if (lines[i] == nullptr || lines[i][0] == '\0') break;
        if (const int32_t ret = atapi::call::CallExFromLine(lines[i], list[i]); ret != 0) {
            AT_LOG_ERR("[%s] AtParseNodeFromBuf error", kCallListExTag);
            AT_LOG_ERR("[%s] AtsClccCmdParse error ret = %d", kCallListExTag, ret);
            return -1;
        }
    }
    return 0;
}

}  // extern "C"
