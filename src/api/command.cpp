#include "api/command.h"

#include <algorithm>
#include <climits>

#include "atapi/at_link.h"
#include "platform/trace.h"

namespace atapi::api {

int32_t Command::Send(int32_t *errorId) const {
    if (!formatted_) return -1;
    if (description_.secrecy == Secrecy::kSecret) {
        return AtSendSimpleSecCmd(line_.Text(), description_.rspPrefix, errorId,
                                  description_.timeoutSec);
    }
    return AtSendSimpleCmdSpecialTimeout(line_.Text(), description_.rspPrefix, errorId,
                                         description_.timeoutSec);
}

int32_t SendOrLog(const char *traceSrc, const char *formatFailed, const Command &cmd,
                  int32_t *errorId) {
    if (!cmd) {
        UMO_TRACE_PrintInfo(traceSrc, __LINE__, 0, "atserver", TRACE_LEVEL_ERROR, "%s",
                            formatFailed);
        return -1;
    }
    return cmd.Send(errorId);
}

int32_t Command::QueryText(char *out, int32_t outSize, int32_t *errorId) const {
    if (!formatted_) return -1;
    const char *const desc[2] = {line_.Text(), description_.rspPrefix};
    return AtSendAndGetSingleStrRspSpecialTimeout(desc, out, outSize, errorId,
                                                  description_.timeoutSec);
}

int32_t Command::Exchange(OwnedSrvMsg &msg, uint32_t multiRsp) const {
    if (!formatted_) return -1;
    const auto timeout =
        static_cast<int32_t>(std::min<uint32_t>(description_.timeoutSec, INT32_MAX));
    if (AtInitCommonMsgHandler(msg.Get(), line_.Text(), description_.rspPrefix, multiRsp,
                               timeout) != 0) {
        return -1;
    }
    return GetDataFromAtServer(msg.Get());
}

ParseRows ParseReply(const CommandDescription &description, char *text, int32_t *status) {
    AtCmdParseNode *first = nullptr;
    *status = ParseAtCmdFunc(&first, description.parsePrefix, text, description.moduleId,
                             description.parseMode);
    return ParseRows(first);
}

}  // namespace atapi::api
