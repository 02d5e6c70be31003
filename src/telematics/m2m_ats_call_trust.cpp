// Trusted special call numbers (^TRUSTCNUM): storing one, reading the index
// range and reading the list.
#include <cstdlib>
#include <cstring>

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

constexpr int32_t kOpStore = 1;
constexpr int32_t kOpRange = 2;
constexpr char kTrustFormatError[] = "AT^TRUSTCNUM, snprintf_s ret:%d\n";

constexpr CommandDescription kTrustStore{.format = "AT^TRUSTCNUM=%u,\"%s\""};
constexpr CommandDescription kTrustRange =
    Reads("AT^TRUSTCNUM=?", nullptr, "^TRUSTCNUM", module::kSysCfg).WithMode(AT_PARSE_TEST);
constexpr CommandDescription kTrustList =
    Reads("AT^TRUSTCNUM?", nullptr, "^TRUSTCNUM", module::kSysCfg);
constexpr size_t kIndexTextSize = 10;
constexpr size_t kListPhonenumSize = 26;  // of the entry's 28 bytes

enum class LineRead { kStored, kNothing, kFailed };

// One "^TRUSTCNUM" line, starting at its '^', into entry.
LineRead ReadTrustedLine(char *line, AtTrustNumEntry &entry) {
    int32_t status = 0;
    const ParseRows rows = ParseReply(kTrustList, line, &status);
    if (status != AT_PARSE_OK || rows.Get() == nullptr) return LineRead::kNothing;
    const AtCmdParseNode *index = FindField(rows.Get(), "index");
    if (index != nullptr && index->atFieldValue != nullptr) {
        entry.index = static_cast<uint32_t>(SafeStrAtoi(index->atFieldValue));
    }
    const AtCmdParseNode *phonenum = FindField(rows.Get(), "phonenum");
    if (phonenum != nullptr && phonenum->atFieldValue != nullptr) {
        const errno_t ret = strncpy_s(entry.phonenum, kListPhonenumSize, phonenum->atFieldValue,
                                      std::strlen(phonenum->atFieldValue));
        if (ret != 0) {
            AT_LOG_ERR("AtTrustSpecialNumParse, strncpy_s ret:%d\n", ret);
            return LineRead::kFailed;
        }
    }
    return LineRead::kStored;
}

}  // namespace

namespace atapi::call {

int32_t TrustRangeFromReply(char *reply, AtTrustNumInfo &info) {
    int32_t status = 0;
    const ParseRows rows = ParseReply(kTrustRange, reply, &status);
    if (status != AT_PARSE_OK) {
        LogParseFailure();
        return -1;
    }
    const AtCmdParseNode *index = FindField(rows.Get(), "index");
    if (index == nullptr || index->atFieldValue == nullptr) return 0;
    char text[kIndexTextSize];
    const errno_t ret =
        strncpy_s(text, sizeof text, index->atFieldValue, std::strlen(index->atFieldValue));
    if (ret != 0) {
        AT_LOG_ERR("AT^TRUSTCNUM=?, strncpy_s ret:%d\n", ret);
        return -1;
    }
    info.index = static_cast<uint32_t>(std::strtoul(text, nullptr, 10));
    AT_LOG_INFO("AT^TRUSTCNUM=? trustNumInfo->index=%u\n", info.index);
    return 0;
}

int32_t TrustListFromReply(char *reply, AtTrustNumEntry *entries, int32_t count) {
    int32_t filled = 0;
    for (char *line = std::strchr(reply, '^'); line != nullptr; line = std::strchr(line + 1, '^')) {
        const LineRead read = ReadTrustedLine(line, entries[filled]);
        if (read == LineRead::kFailed) return -1;
        if (read == LineRead::kNothing) continue;
        if (++filled == count) {
            AT_LOG_INFO("trustNumList->count is enough, break the while.\n");
            break;
        }
    }
    return 0;
}

}  // namespace atapi::call

extern "C" {

int32_t AtTrustSpecialNum(int32_t operation, AtTrustNumInfo *trustNumInfo) {
    if (trustNumInfo == nullptr) {
        AT_LOG_ERR("[AtTrustSpecialNum] param in is null\n");
        return -1;
    }
    trustNumInfo->errorId = AT_ERRID_NOT_COMPLETED;
    if (operation == kOpStore) {
        if (!TextFits(trustNumInfo->phonenum, kTrustFormatError)) return -1;
        CallReply reply(Command(kTrustStore, trustNumInfo->index, trustNumInfo->phonenum),
                        kTrustFormatError);
        if (reply.Status() != 0) return reply.Status();
        return SetOutcome(reply, trustNumInfo->errorId);
    }
    if (operation != kOpRange) return -1;
    CallReply reply(Command(kTrustRange), kTrustFormatError);
    if (reply.Status() != 0) return reply.Status();
    if (SetOutcome(reply, trustNumInfo->errorId) != 0) return -1;
    return TrustRangeFromReply(reply.Text(), *trustNumInfo);
}

int32_t AtTrustSpecialNumList(AtTrustNumList *trustNumList) {
    if (trustNumList == nullptr || trustNumList->entries == nullptr) {
        AT_LOG_ERR("AtTrustSpecialNumList param in is null\n");
        return -1;
    }
    if (trustNumList->count < 1) {
        AT_LOG_ERR("AtTrustSpecialNumList trustNumList->count param in is null\n");
        return -1;
    }
    trustNumList->errorId = AT_ERRID_NOT_COMPLETED;
    CallReply reply(Command(kTrustList), kTrustFormatError);
    if (reply.Status() != 0) return reply.Status();
    if (SetOutcome(reply, trustNumList->errorId) != 0) return -1;
    return TrustListFromReply(reply.Text(), trustNumList->entries, trustNumList->count);
}

}  // extern "C"
