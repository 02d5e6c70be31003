#include "telematics/m2m_ats_call_exchange.h"

#include <cstring>

#include "atapi/at_text.h"
#include "link/at_log.h"

namespace atapi::call {

namespace {
constexpr char kTraceSrc[] = "atapi/src/m2m_ats_call";
constexpr int32_t kFormatFailed = -1;
}  // namespace

CallReply::CallReply(const api::Command &cmd, const char *formatError) : Reply(cmd) {
    if (!cmd) AT_LOG_ERR(formatError, kFormatFailed);
}

int32_t SendForOk(const api::Command &cmd, const char *formatError, const char *abortMessage) {
    const CallReply reply(cmd, formatError);
    if (reply.Aborted() && abortMessage != nullptr) AT_LOG_ERR("%s", abortMessage);
    return reply.Result();
}

void LogParseFailure() { AT_LOG_ERR("ParseAtCmdFunc falied"); }

const AtCmdParseNode *FindField(const AtCmdParseNode *row, const char *name) {
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        if (SafeStrCmp(node->atFieldName, name) == 0) return node;
    }
    return nullptr;
}

bool TextFits(const char *text, size_t capacity, const char *formatError) {
    if (std::memchr(text, '\0', capacity) != nullptr) return true;
    AT_LOG_ERR(formatError, kFormatFailed);
    return false;
}

}  // namespace atapi::call
