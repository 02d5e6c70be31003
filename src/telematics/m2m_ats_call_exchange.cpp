#include "telematics/m2m_ats_call_exchange.h"

#include <cstring>

#include "atapi/at_text.h"
#include "link/at_log.h"

namespace atapi::call {

namespace {
constexpr char kTraceSrc[] = "atapi/src/m2m_ats_call";
constexpr int32_t kFormatFailed = -1;
}  // namespace

CallReply::CallReply(const api::Command &cmd, const char *formatError) : status_(-1) {
    if (!cmd) {
        AT_LOG_ERR(formatError, kFormatFailed);
        return;
    }
    status_ = cmd.Exchange(msg_);
}

int32_t CallReply::MappedErrorId() { return ErrorStrToErrorId(msg_.Report()); }

int32_t SendForOk(const api::Command &cmd, const char *formatError, const char *abortMessage) {
    const CallReply reply(cmd, formatError);
    if (reply.Aborted() && abortMessage != nullptr) AT_LOG_ERR("%s", abortMessage);
    return reply.Result();
}

void LogParseFailure() { AT_LOG_ERR("ParseAtCmdFunc falied"); }

int32_t SetOutcome(CallReply &reply, int32_t &errorId, Causes causes) {
    if (reply.Ok()) {
        errorId = AT_ERRID_OK;
        return 0;
    }
    const bool mapped = reply.RetVal() == AT_RET_CME_ERROR ||
                        (causes == Causes::kCmeOrCms && reply.RetVal() == AT_RET_CMS_ERROR);
    if (mapped) errorId = reply.MappedErrorId();
    return -1;
}

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
