#include "api/reply.h"

namespace atapi::api {

std::optional<int32_t> ErrorReplyDone(Reply &reply, int32_t &errorId) {
    if (reply.Status() != 0) return reply.Status();
    if (reply.CauseError()) {
        errorId = reply.MappedErrorId();
        return 0;
    }
    if (!reply.Ok()) return -1;
    return std::nullopt;
}

int32_t SetOutcome(Reply &reply, int32_t &errorId, Causes causes) {
    if (reply.Ok()) {
        errorId = AT_ERRID_OK;
        return 0;
    }
    const bool mapped = reply.RetVal() == AT_RET_CME_ERROR ||
                        (causes == Causes::kCmeOrCms && reply.RetVal() == AT_RET_CMS_ERROR);
    if (mapped) errorId = reply.MappedErrorId();
    return -1;
}

}  // namespace atapi::api
