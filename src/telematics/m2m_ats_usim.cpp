// SIM extensions: the SIM state, the eUICC identifier and restricted SIM
// access with the caller's own path. None of them maps error texts.
#include "atapi/m2m_ats_usim.h"

#include <cstdlib>
#include <cstring>

#include "atapi/at_link.h"
#include "atapi/at_send.h"
#include "atapi/at_text.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "telematics/m2m_ats_call_exchange.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;
using atapi::call::CallReply;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_usim";

constexpr uint32_t kQueryTimeoutSec = 5;
constexpr int32_t kCrsmTimeoutSec = 30;

constexpr CommandDescription kSimSq =
    Reads("AT^SIMSQ?", "^SIMSQ:", "^SIMSQ", module::kSysCfg).WithTimeout(kQueryTimeoutSec);
constexpr CommandDescription kEuiccId =
    Reads("AT^ESIMEID?", nullptr, "^ESIMEID", module::kSysCfg).WithTimeout(kQueryTimeoutSec);
constexpr CommandDescription kCrsmReply = Reads(nullptr, nullptr, "+CRSM", module::kSysCfg);

struct QueryLogs {
    const char *formatError;
    const char *aborted;  // may name the command with %s
};
constexpr QueryLogs kSimSqLogs{"AtSimSqQuery snprintf_s, ret:%d\n", "%s cmd is aborted\n"};
constexpr QueryLogs kEuiccIdLogs{"AtEuiccIdQuery snprintf_s, ret%d\n", "eid query cmd is aborted."};

// Sends one of the two queries and hands the first row of its OK reply to
// read(row); -1 when no row came, or the failed exchange's own result.
template <typename Read>
int32_t RunQuery(const CommandDescription &description, const QueryLogs &logs, Read read) {
    const Command cmd(description);
    CallReply reply(cmd, logs.formatError);
    if (reply.Status() != 0) {
        if (cmd)
            AT_LOG_ERR("GetDataFromAtServer: %s error, ret = %d\n", cmd.Line(), reply.Status());
        return reply.Status();
    }
    if (reply.Aborted()) {
        AT_LOG_ERR(logs.aborted, cmd.Line());
        return -1;
    }
    if (!reply.Ok()) {
        AT_LOG_ERR("GetDataFromAtServer:  %s failed, msgBuf.sndRcvMsg.rMsg.retVal = %d\n",
                   cmd.Line(), reply.RetVal());
        return -1;
    }
    int32_t status = 0;
    const ParseRows rows = reply.Parse(description, &status);
    if (rows.Get() == nullptr) {
        AT_LOG_ERR("SIMSQ parse result is Null\n");
        return -1;
    }
    return read(rows.Get());
}

// The +CRSM line: the STATUS command alone, any other with all its fields.
// A line that does not fit is cut and sent as it is.
void FormatCrsm(const CrsmPidReq &q, char (&line)[AT_CMD_STR_LEN]) {
    int ret = 0;
    if (q.command == AT_CRSM_STATUS) {
        ret = snprintf_s(line, sizeof line, sizeof line - 1, "AT+CRSM=%d", q.command);
    } else {
        ret = snprintf_s(line, sizeof line, sizeof line - 1, "AT+CRSM=%d,%d,%d,%d,%d,\"%s\",\"%s\"",
                         q.command, q.fileId, q.p1, q.p2, q.p3, q.data != nullptr ? q.data : "",
                         q.pathId != nullptr ? q.pathId : "");
    }
    if (ret < 0) AT_LOG_ERR("AtCrsmPidSetMsgBufInfo snprintf_s, ret%d\n", ret);
}

// A heap copy of text into r->response; a block already stored there stays
// the caller's even when the copy fails.
bool SaveResponse(const char *text, CrsmPidResult &r) {
    const size_t length = std::strlen(text);
    r.response = static_cast<char *>(std::malloc(length + 1));
    if (r.response == nullptr) {
        AT_LOG_ERR("crsmResult->response malloc error!\n");
        return false;
    }
    const errno_t ret = strncpy_s(r.response, length + 1, text, length);
    if (ret != 0) {
        AT_LOG_ERR("CrsmResultSaveResponse strncpy_s ret: %d!\n", ret);
        return false;
    }
    return true;
}

// The first row of an OK +CRSM reply into r.
int32_t ReadCrsm(char *text, CrsmPidResult &r) {
    int32_t status = 0;
    const ParseRows rows = ParseReply(kCrsmReply, text, &status);
    bool ok = rows.Get() != nullptr;
    if (!ok) {
        AT_LOG_ERR("CRSM parse result is Null\n");
    } else {
        r.errorId = AT_ERRID_OK;
        for (const AtCmdParseNode *node = rows.Get(); ok && node != nullptr;
             node = node->nextField) {
            const char *name = node->atFieldName;
            const char *value = node->atFieldValue;
            if (name == nullptr || value == nullptr) continue;
            if (SafeStrCmp(name, "sw1") == 0) {
                r.sw1 = SafeStrAtoi(value);
            } else if (SafeStrCmp(name, "sw2") == 0) {
                r.sw2 = SafeStrAtoi(value);
            } else if (SafeStrCmp(name, "response") == 0) {
                ok = SaveResponse(value, r);
            }
        }
    }
    if (ok) return 0;
    AT_LOG_ERR("CrsmResultParse failed, ret = %d\n", -1);
    return -1;
}

}  // namespace

extern "C" {

int32_t AtSimSqQuery(SimSqInfo *r) {
    if (r == nullptr) {
        AT_LOG_ERR("Input param is null!\n");
        return -1;
    }
    return RunQuery(kSimSq, kSimSqLogs, [r](const AtCmdParseNode *row) {
        ForEachField(row, [r](const char *name, const char *value) {
            if (SafeStrCmp(name, "mode") == 0) {
                r->mode = SafeStrAtoi(value);
            } else if (SafeStrCmp(name, "sim_status") == 0) {
                r->simStatus = SafeStrAtoi(value);
            }
        });
        return 0;
    });
}

int32_t AtEuiccIdQuery(char *eid) {
    if (eid == nullptr) {
        AT_LOG_ERR("Input param is null!\n");
        return -1;
    }
    return RunQuery(kEuiccId, kEuiccIdLogs, [eid](const AtCmdParseNode *row) {
        int32_t result = 0;
        ForEachField(row, [eid, &result](const char *name, const char *value) {
            if (result != 0 || SafeStrCmp(name, "ESIMEID") != 0) return;
            const errno_t ret = strncpy_s(eid, AT_EUICC_ID_SIZE, value, std::strlen(value));
            if (ret != 0) {
                AT_LOG_ERR("copy euiccid fail, ret:%d!\n", ret);
                result = -1;
            }
        });
        return result;
    });
}

int32_t AtCrsmPid(const CrsmPidReq *q, CrsmPidResult *r) {
    if (q == nullptr || r == nullptr) return -1;
    char line[AT_CMD_STR_LEN] = {};
    FormatCrsm(*q, line);
    OwnedSrvMsg msg;
    int32_t ret = AtInitCommonMsgHandler(msg.Get(), line, nullptr, 0, kCrsmTimeoutSec);
    if (ret == 0) ret = GetDataFromAtServer(msg.Get());
    if (ret != 0) {
        AT_LOG_ERR("GetDataFromAtServer: %s error, ret = %d\n", line, ret);
        return ret;
    }
    if (msg.RetVal() != AT_RET_OK) {
        AT_LOG_ERR("CRSM error, ret=%d\n", msg.RetVal());
        return -1;
    }
    return ReadCrsm(msg.Report(), *r);
}

}  // extern "C"
