// eCall: the mode, eCall over IMS, the in-band modem configuration, the MSD,
// and start, push, stop and abort. The library keeps no eCall state: each
// command stands alone and the caller drives the sequence.
#include <cerrno>
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

constexpr CommandDescription kModeQuery =
    Reads("AT^ECLMODE?", "^ECLMODE:", "^ECLMODE", module::kCall);
constexpr CommandDescription kModeSet{.format = "AT^ECLMODE=%d"};
constexpr uint32_t kModeCount = 3;  // the module reports 0, 1 or 2

constexpr CommandDescription kImsQuery =
    Reads("AT^ECLIMSCFG?", nullptr, "^ECLIMSCFG", module::kCall);
constexpr CommandDescription kImsSet{.format = "AT^ECLIMSCFG=%d"};
constexpr CommandDescription kImsSetContent{.format = "AT^ECLIMSCFG=%d,\"%s\""};
constexpr int32_t kImsWithContent = 1;
constexpr char kImsFormatError[] = "AT^ECLIMSCFG=, snprintf_s ret:%d";

// A command of the call sequence and its log lines.
struct EclCommand {
    CommandDescription description;
    const char *enterLog;
    const char *finishLog;  // takes the result
    const char *formatError;
};
constexpr EclCommand kMsd{{.format = "AT^ECLMSD=\"%s\""},
                          "execute AT^ECLMSD enter\n",
                          "execute AT^ECLMSD finish\n",
                          "snprintf_s falied"};
constexpr EclCommand kCfg{{.format = "AT^ECLCFG=%d,%d,%d"},
                          "execute AT^ECLCFG enter\n",
                          "execute AT^ECLCFG finish\n",
                          "snprintf_s falied"};
constexpr EclCommand kStart{{.format = "AT^ECLSTART=%d,%d,\"%s\",%d"},
                            "execute AT^ECLSTART enter\n",
                            "execute AT^ECLSTART finish\n",
                            "snprintf_s falied"};
constexpr EclCommand kPush{{.format = "AT^ECLPUSH"},
                           "execute AT_Ecl_Push enter\n",
                           "execute AT_Ecl_Push finish ret = [%d]\n",
                           "AT^ECLPUSH, snprintf_s error, ret:%d\n"};
constexpr EclCommand kStop{{.format = "AT^ECLSTOP"},
                           "execute AT^ECLSTOP enter\n",
                           "execute AT^ECLSTOP finish ret = [%d]\n",
                           "snprintf_s falied"};
constexpr EclCommand kAbort{{.format = "AT^ECLABORT"},
                            "execute AtEcalllAbort enter\n",
                            "execute AtEcalllAbort finish ret = [%d]\n",
                            "AT^ECLABORT, snprintf_s ret:%d\n"};

// Sends one command of the sequence: 0 and errorId (when given) -2 for OK, a
// failed exchange's own code, else -1 with errorId as it was.
int32_t SendEcl(const EclCommand &c, const Command &cmd, int32_t *errorId) {
    const CallReply reply(cmd, c.formatError);
    const int32_t ret = reply.Result();
    if (ret == 0 && errorId != nullptr) *errorId = AT_ERRID_OK;
    AT_LOG_INFO(c.finishLog, ret);
    return ret;
}

int32_t CheckMode(int32_t &mode) {
    CallReply reply(Command(kModeQuery), "AtEcallModeCheck, snprintf_s error\n");
    if (reply.Status() != 0) {
        AT_LOG_ERR("AtEclModeCheck, GetDataFromAtServer falied ,ret = %d\n", reply.Status());
        return -1;
    }
    if (!reply.Ok()) {
        AT_LOG_ERR("AtEclModeCheck, rmsg.retVal =%d error\n", reply.RetVal());
        return -1;
    }
    return EclModeFromReply(reply.Text(), mode);
}

// The set form takes any value: only the query checks the range.
int32_t ExecuteMode(int32_t mode) {
    CallReply reply(Command(kModeSet, mode), "AtEclModeExecute, snprintf_s error\n");
    if (reply.Status() != 0) {
        AT_LOG_ERR("AtEclMode GetDataFromAtServer failed ret = %d\n", reply.Status());
        return -1;
    }
    if (!reply.Ok()) {
        AT_LOG_ERR("AtEclModeExecute, rmsg.retVal = %d error\n", reply.RetVal());
        return -1;
    }
    return 0;
}

int32_t SetImsCfg(const AtsEclImsCfgInfo &ims) {
    if (ims.modeType != kImsWithContent) {
        return CallReply(Command(kImsSet, ims.modeType), kImsFormatError).Ok() ? 0 : -1;
    }
    if (!TextFits(ims.contentType, kImsFormatError)) return -1;
    return CallReply(Command(kImsSetContent, ims.modeType, ims.contentType), kImsFormatError).Ok()
               ? 0
               : -1;
}

// A parser failure gives the parser's own code.
int32_t QueryImsCfg(AtsEclImsCfgInfo &ims) {
    CallReply reply(Command(kImsQuery), "AT^ECLIMSCFG?, snprintf_s ret:%d");
    if (reply.Status() != 0) return -1;
    if (!reply.Ok()) {
        AT_LOG_ERR("ECLIMSCFG? query retVal = %d", reply.RetVal());
        return -1;
    }
    return ImsCfgFromReply(reply.Text(), ims);
}

}  // namespace

namespace atapi::call {

int32_t EclModeFromReply(char *reply, int32_t &mode) {
    int32_t status = 0;
    const ParseRows rows = ParseReply(kModeQuery, reply, &status);
    if (rows.Get() == nullptr) {
        AT_LOG_ERR("AtEclModeCheck, at_parse_result is NULL\n");
        return -1;
    }
    int32_t ret = 0;
    const AtCmdParseNode *node = FindField(rows.Get(), "mode");
    if (node != nullptr && node->atFieldValue != nullptr) {
        const int32_t value = std::atoi(node->atFieldValue);
        if (static_cast<uint32_t>(value) >= kModeCount) {
            AT_LOG_ERR("AtEclModeCheck, mode value(%d) is invalid\n", value);
            ret = -1;
        } else {
            mode = value;
        }
    }
    AT_LOG_INFO("AtEclModeCheck out, ret = %d\n", ret);
    return ret;
}

int32_t ImsCfgFromReply(char *reply, AtsEclImsCfgInfo &ims) {
    int32_t status = 0;
    const ParseRows rows = ParseReply(kImsQuery, reply, &status);
    if (status != AT_PARSE_OK) {
        AT_LOG_ERR("AtsEclImsCfgQueryCmdParse, ParseAtCmdFunc failed, ret = %d", status);
        return status;
    }
    for (const AtCmdParseNode *node = rows.Get(); node != nullptr; node = node->nextField) {
        const char *value = node->atFieldValue;
        if (SafeStrCmp(node->atFieldName, "modeType") == 0) {
            if (value == nullptr) {
                AT_LOG_ERR("modeType is NULL");
                return -1;
            }
            errno = 0;
            ims.modeType = static_cast<int32_t>(std::strtol(value, nullptr, 10));
            if (errno != 0) {
                AT_LOG_ERR("AtsEclImsCfgQueryCmdParse, strtol failed, errno = %d", errno);
                return -1;
            }
        } else if (SafeStrCmp(node->atFieldName, "contentType") == 0) {
            if (value == nullptr) {  // no content type: the rest is not read
                AT_LOG_INFO("parseTmp->atFieldValue = %s\n", "(null)");
                return 0;
            }
            const errno_t ret =
                strncpy_s(ims.contentType, sizeof ims.contentType, value, std::strlen(value));
            if (ret != 0) {
                AT_LOG_ERR("AT^ECLIMSCFG?, strncpy_s ret:%d", ret);
                return -1;
            }
        }
    }
    return 0;
}

}  // namespace atapi::call

extern "C" {

int32_t AtEclMode(int32_t cmdType, int32_t *mode) {
    if (mode == nullptr) {
        AT_LOG_ERR("AtEclMode NULL mode\n");
        return -1;
    }
    if (cmdType == kQueryForm) return CheckMode(*mode);
    if (cmdType == kSetForm) return ExecuteMode(*mode);
    AT_LOG_ERR("AtEclMode invalid cmd type\n");
    return -1;
}

int32_t AtsEclImsCfg(int32_t cmdType, AtsEclImsCfgInfo *imsData) {
    if (imsData == nullptr) {
        AT_LOG_ERR("AtsEclImsCfg NULL imsData");
        return -1;
    }
    if (cmdType == kSetForm) return SetImsCfg(*imsData);
    if (cmdType == kQueryForm) return QueryImsCfg(*imsData) == 0 ? 0 : -1;
    AT_LOG_ERR("AtsEclImsCfg invalid cmd type, cmdType = %d", cmdType);
    return -1;
}

int32_t AtsEclMsd(AtsEclMsdInfo *msdInfo) {
    if (msdInfo == nullptr) return -1;
    if (msdInfo->msd == nullptr) {
        AT_LOG_ERR("msdInfo null");
        return -1;
    }
    AT_LOG_INFO("%s", kMsd.enterLog);
    const Command cmd(kMsd.description, msdInfo->msd);
    if (cmd) {
        AT_LOG_INFO("config_information == %s == %u\n", cmd.Line(),
                    static_cast<unsigned>(std::strlen(cmd.Line())));
    }
    return SendEcl(kMsd, cmd, &msdInfo->errorId);
}

int32_t AtsEclCfg(AtsEclCfgInfo *cfgInfo) {
    if (cfgInfo == nullptr) return -1;
    AT_LOG_INFO("%s", kCfg.enterLog);
    return SendEcl(kCfg,
                   Command(kCfg.description, cfgInfo->param1, cfgInfo->param2, cfgInfo->param3),
                   &cfgInfo->errorId);
}

int32_t AtsEclStart(AtsEclStartInfo *startInfo) {
    if (startInfo == nullptr) return -1;
    AT_LOG_INFO("%s", kStart.enterLog);
    if (!TextFits(startInfo->number, kStart.formatError)) return -1;
    return SendEcl(kStart,
                   Command(kStart.description, startInfo->param1, startInfo->param2,
                           startInfo->number, startInfo->param4),
                   &startInfo->errorId);
}

int32_t AtsEclPush(void) {
    AT_LOG_INFO("%s", kPush.enterLog);
    return SendEcl(kPush, Command(kPush.description), nullptr);
}

int32_t AtsEclStop(void) {
    AT_LOG_INFO("%s", kStop.enterLog);
    return SendEcl(kStop, Command(kStop.description), nullptr);
}

int32_t AtEcalllAbort(void) {
    AT_LOG_INFO("%s", kAbort.enterLog);
    return SendEcl(kAbort, Command(kAbort.description), nullptr);
}

}  // extern "C"
