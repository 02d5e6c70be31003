// Send primitives: fill an AtSrvMsg, exchange it, classify the result class,
// map error replies to error ids and hand the reply text on.
//
// Three result conventions coexist on purpose (see at_send.h): callers of the
// list and multi-line calls test the positive result class of an error reply.

#include <algorithm>
#include <climits>
#include <cstring>

#include "api/conventions.h"
#include "api/srv_msg_owner.h"
#include "atapi/at_link.h"
#include "atapi/at_parse.h"
#include "atapi/at_send.h"
#include "atapi/at_text.h"
#include "link/at_lib_state.h"
#include "link/at_log.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_utils";

void SetErrCode(int32_t *errCode, int32_t value) {
    if (errCode != nullptr) *errCode = value;
}

int32_t ToTimeout(uint32_t timeoutSec) {
    return static_cast<int32_t>(std::min<uint32_t>(timeoutSec, INT32_MAX));
}

using atapi::api::IsCauseError;
using atapi::api::OwnedSrvMsg;

// Result of the simple calls for a delivered reply; the error text is not
// mapped here, unlike the other calls.
int32_t AtCheckRspRetVal(const int32_t *retVal, int32_t *errCode) {
    switch (*retVal) {
        case AT_RET_OK:
            SetErrCode(errCode, AT_ERRID_OK);
            return 0;
        case AT_RET_CME_ERROR:
        case AT_RET_CMS_ERROR:
            AT_LOG_ERR("cme or cms error, errCode[%d]", *retVal);
            SetErrCode(errCode, *retVal);
            return -1;
        case AT_RET_ABORTED:
            AT_LOG_ERR("AT_ABORTED");
            SetErrCode(errCode, AT_ERRID_ABORTED);
            return -1;
        default:
            AT_LOG_ERR("other error, errCode[%d]", *retVal);
            return -1;
    }
}

// Fills msg and exchanges it with atserver: 0 when a reply arrived, else the
// call's failure result (-1).
int32_t Exchange(OwnedSrvMsg &msg, const char *cmd, const char *prefix, uint32_t multiRsp,
                 uint32_t timeoutSec) {
    if (AtInitCommonMsgHandler(msg.Get(), cmd, prefix, multiRsp, ToTimeout(timeoutSec)) != 0) {
        return -1;
    }
    const int32_t ret = GetDataFromAtServer(msg.Get());
    if (ret != 0) AT_LOG_ERR("GetDataFromAtServer error, ret[%d]", ret);
    return ret;
}

// The record is wiped on the way out, so the secure form needs nothing more.
int32_t SendSimple(const char *cmd, const char *prefix, int32_t *errCode, uint32_t timeoutSec) {
    if (cmd == nullptr) return -1;
    OwnedSrvMsg msg;
    const int32_t ret = Exchange(msg, cmd, prefix, 0, timeoutSec);
    const int32_t retVal = msg.RetVal();
    return ret == 0 ? AtCheckRspRetVal(&retVal, errCode) : ret;
}

// The answer of a single-string query: the text after the first ':' when a
// prefix was given, else the whole text; null when the ':' is missing.
const char *SingleAnswer(char *report, const char *prefix) {
    if (prefix == nullptr || *prefix == '\0') return report;
    char *colon = std::strchr(report, ':');
    return colon != nullptr ? colon + 1 : nullptr;
}

}  // namespace

extern "C" {

int32_t AtInitCommonMsgHandler(AtSrvMsg *msg, const char *cmd, const char *prefix,
                               uint32_t multiRsp, int32_t timeoutSec) {
    if (msg == nullptr || cmd == nullptr) return -1;
    memset_s(msg, sizeof *msg, 0, sizeof *msg);
    msg->mtype = atapi::CurrentTid();
    msg->reqType = AT_REQ_COMMAND;
    msg->reserved2 = 0;
    msg->multiRsp = multiRsp;
    msg->timeoutSec = timeoutSec;
    if (prefix != nullptr && strcpy_s(msg->sndRcvMsg.sMsg.atName, AT_NAME_LEN, prefix) != 0) {
        return -1;
    }
    return strcpy_s(msg->sndRcvMsg.sMsg.atCmdStr, AT_CMD_STR_LEN, cmd) == 0 ? 0 : -1;
}

int32_t AtSendSimpleCmd(const char *cmd, const char *prefix, int32_t *errCode) {
    return AtSendSimpleCmdSpecialTimeout(cmd, prefix, errCode, AT_DEFAULT_TIMEOUT_SEC);
}

int32_t AtSendSimpleCmdSpecialTimeout(const char *cmd, const char *prefix, int32_t *errCode,
                                      uint32_t timeoutSec) {
    return SendSimple(cmd, prefix, errCode, timeoutSec);
}

int32_t AtSendSimpleSecCmd(const char *cmd, const char *prefix, int32_t *errCode,
                           uint32_t timeoutSec) {
    return SendSimple(cmd, prefix, errCode, timeoutSec);
}

int32_t AtSendAndGetSingleStrRsp(const char *cmd, const char *prefix, char *out, int32_t outSize,
                                 int32_t *errCode) {
    const char *const desc[2] = {cmd, prefix};
    return AtSendAndGetSingleStrRspSpecialTimeout(desc, out, outSize, errCode,
                                                  AT_DEFAULT_TIMEOUT_SEC);
}

int32_t AtSendAndGetSingleStrRspSpecialTimeout(const char *const desc[2], char *out,
                                               int32_t outSize, int32_t *errCode,
                                               uint32_t timeoutSec) {
    if (desc == nullptr || desc[0] == nullptr || out == nullptr) return -1;
    OwnedSrvMsg msg;
    if (const int32_t ret = Exchange(msg, desc[0], desc[1], 0, timeoutSec); ret != 0) return ret;
    char *report = msg.Report();
    const int32_t retVal = msg.RetVal();
    if (IsCauseError(retVal)) {
        AT_LOG_ERR("cme or cms error, errCode[%d]", retVal);
        SetErrCode(errCode, ErrorStrToErrorId(report));
        return -1;
    }
    if (retVal != AT_RET_OK) {
        AT_LOG_ERR("GetDataFromAtServer error, ret[%d]", 0);
        return -1;
    }
    SetErrCode(errCode, AT_ERRID_OK);
    SplitSpace(report, AT_REPORT_STR_LEN, '\n');
    const char *answer = SingleAnswer(report, desc[1]);
    int32_t result = -1;
    if (answer != nullptr && outSize > 0) {
        const auto size = static_cast<size_t>(outSize);
        result = snprintf_s(out, size, size - 1, "%s", answer) < 0 ? -1 : 0;
    }
    return result;
}

int32_t AtSendMultiCmd(const char *const desc[2], char *lines[], int32_t *count, int32_t *errCode,
                       uint32_t timeoutSec) {
    if (desc == nullptr || lines == nullptr || count == nullptr || desc[0] == nullptr) return -1;
    OwnedSrvMsg msg;
    if (const int32_t ret = Exchange(msg, desc[0], desc[1], 1, timeoutSec); ret != 0) return ret;
    const int32_t retVal = msg.RetVal();
    if (retVal == AT_RET_OK) {
        GetSubstring(msg.Report(), lines, count, desc[1]);
        SetErrCode(errCode, AT_ERRID_OK);
        return 0;
    }
    if (IsCauseError(retVal)) {
        SetErrCode(errCode, ErrorStrToErrorId(msg.Report()));
        return retVal;
    }
    return -1;
}

int32_t AtSendAndGetListRsp(const AtCmdDesc *desc, AtParamDesc *rows, uint32_t rowCount,
                            int32_t *errCode) {
    return AtSendAndGetListRspSpecialTimeout(desc, rows, rowCount, errCode, AT_DEFAULT_TIMEOUT_SEC);
}

int32_t AtSendAndGetListRspSpecialTimeout(const AtCmdDesc *desc, AtParamDesc *rows,
                                          uint32_t rowCount, int32_t *errCode,
                                          uint32_t timeoutSec) {
    constexpr uint32_t kMaxRows = 256;
    if (desc == nullptr || desc->cmd == nullptr || rows == nullptr || rowCount < 1 ||
        rowCount > kMaxRows) {
        return -1;
    }
    OwnedSrvMsg msg;
    if (AtInitCommonMsgHandler(msg.Get(), desc->cmd, desc->rspPrefix, 0, ToTimeout(timeoutSec)) !=
        0) {
        return -1;
    }
    const int32_t ret = GetDataFromAtServer(msg.Get());
    AT_LOG_INFO("start get data from atserver, ret is %d", ret);
    if (ret != 0) {
        AT_LOG_ERR("GetDataFromAtServer ret[%d],msg.sndRcvMsg.rMsg.atReportStr[%s]", ret,
                   msg.Report());
        return -1;
    }
    const int32_t retVal = msg.RetVal();
    if (retVal == AT_RET_OK) {
        SetErrCode(errCode, AT_ERRID_OK);
        return AtParseNodeFromBuf(desc, msg.Report(), rows, rowCount);
    }
    AT_LOG_ERR("GetDataFromAtServer failed, retval[%d], msg.sndRcvMsg.rMsg.atReportStr[%s]", retVal,
               msg.Report());
    SetErrCode(errCode, ErrorStrToErrorId(msg.Report()));
    return retVal;
}

int32_t AtNetworkSendMultiCmd(const AtCmdDesc *desc, AtCmdParseNode **out, int32_t *errCode,
                              uint32_t timeoutSec) {
    if (desc == nullptr || out == nullptr) return -1;
    OwnedSrvMsg msg;
    if (Exchange(msg, desc->cmd, desc->rspPrefix, 0, timeoutSec) != 0) return -1;
    const int32_t retVal = msg.RetVal();
    if (retVal == AT_RET_OK) {
        *out = nullptr;
        const int32_t status =
            ParseAtCmdFunc(out, desc->parsePrefix, msg.Report(), desc->moduleId, desc->parseMode);
        if (status != 0 || *out == nullptr) return -1;
        SetErrCode(errCode, AT_ERRID_OK);
        return 0;
    }
    if (IsCauseError(retVal)) {
        SetErrCode(errCode, ErrorStrToErrorId(msg.Report()));
        return retVal;
    }
    if (retVal == AT_RET_ABORTED) {
        SetErrCode(errCode, AT_ERRID_ABORTED);
        return AT_RET_ABORTED;
    }
    return -1;
}

}  // extern "C"
