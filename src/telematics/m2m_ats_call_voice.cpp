// Voice path: auto-answer, microphone and speaker mute, noise suppression,
// echo cancellation, DTMF tones, the delta table and the PCM interface.
#include <cstdlib>

#include "atapi/m2m_ats_call.h"
#include "link/at_log.h"
#include "telematics/m2m_ats_call_exchange.h"

namespace {

using namespace atapi::api;
using namespace atapi::call;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_call";

// A single value that is queried or set: S0 and the two mutes.
struct ValueCommands {
    CommandDescription query;  // without a parse prefix the whole reply is the value
    CommandDescription set;
    const char *nullMessage;
    const char *enterLog;  // value, cmdType
    const char *formatError;
};

constexpr ValueCommands kAutoAnswer{
    .query = {.format = "ATS0?"},
    .set = {.format = "ATS0=%d"},
    .nullMessage = "AT_S0 null pointer!\n",
    .enterLog = "execute ATS0 enter value = %d type = %d\n",
    .formatError = "ATS0, snprintf_s error, ret:%d\n",
};
constexpr ValueCommands kMicMute{
    .query = Reads("AT+CMUT?", nullptr, "+CMUT", module::kCall),
    .set = {.format = "AT+CMUT=%d"},
    .nullMessage = "passing mode error\n",
    .enterLog = "execute AT CMUT enter mode = %d type = %d\n",
    .formatError = "AT+CMUT, snprintf_s error, ret:%d\n",
};
constexpr ValueCommands kSpeakerMute{
    .query = Reads("AT^SMUT?", nullptr, "^SMUT", module::kCall),
    .set = {.format = "AT^SMUT=%d"},
    .nullMessage = "passing mode error\n",
    .enterLog = "execute AT SMUT enter mode = %d type = %d\n",
    .formatError = "AT^SMUT, snprintf_s error, ret:%d\n",
};

struct MuteValue {
    int32_t nValue;
};
constexpr auto kMuteFields = FieldList(Field<&MuteValue::nValue>("n_value"));

constexpr CommandDescription kNsQuery =
    Reads("AT^NSSWITCH?", "^NSSWITCH:", "^NSSWITCH", module::kCall);
constexpr CommandDescription kNsSet{.format = "AT^NSSWITCH=%d", .rspPrefix = "^NSSWITCH:"};
constexpr CommandDescription kEchoQuery =
    Reads("AT^ECHOSWITCH?", nullptr, "^ECHOSWITCH", module::kCall);
constexpr CommandDescription kEchoSet{.format = "AT^ECHOSWITCH=%d"};
constexpr auto kSwitchFields = FieldList(Field<&AtSwitchModeInfo::switchMode>("switch_mode"));

constexpr CommandDescription kEchoExQuery =
    Reads("AT^ECHOEX?", "^ECHOEX:", "^ECHOEX", module::kCall);
constexpr CommandDescription kEchoExSet{.format = "AT^ECHOEX=%d,%d,%d,%d,%d",
                                        .rspPrefix = "^ECHOEX:"};
constexpr auto kEchoExFields = FieldList(
    Field<&AtEchoExParam::enable>("enable"), Field<&AtEchoExParam::time>("time"),
    Field<&AtEchoExParam::singleLen>("single_len"), Field<&AtEchoExParam::singleDec>("single_dec"),
    Field<&AtEchoExParam::doubleDec>("double_dec"));

constexpr CommandDescription kDtmf{.format = "AT+VTS=%c,%d"};
constexpr CommandDescription kDeltaSet{.format = "AT^DELTASET=\"%s\""};

constexpr CommandDescription kCpcmQuery = Reads("AT^CPCM?", "^CPCM:", "^CPCM", module::kCall);
constexpr CommandDescription kCpcmSet{.format = "AT^CPCM=%d,%d,%d,%d,%d", .rspPrefix = "^CPCM:"};
constexpr auto kCpcmFields =
    FieldList(Field<&AtCpcmParam::mode>("mode"), Field<&AtCpcmParam::format>("format"),
              Field<&AtCpcmParam::clock>("clock"), Field<&AtCpcmParam::frame>("frame"),
              Field<&AtCpcmParam::offset>("offset"));

int32_t QueryValue(const ValueCommands &c, int32_t &value) {
    CallReply reply(Command(c.query), c.formatError);
    if (!reply.Ok()) return reply.Result();
    if (c.query.parsePrefix == nullptr) {
        if (reply.Text()[0] == '\0') {
            AT_LOG_ERR("query cmd fail!\n");
            return -1;
        }
        value = std::atoi(reply.Text());
        return 0;
    }
    MuteValue read{value};
    if (ReadFirstRow(reply, c.query, kMuteFields, read, RowPolicy::kMayBeEmpty) != 0) return -1;
    value = read.nValue;
    return 0;
}

// The inner step of S0 and the mutes; each caller reads its result its way.
int32_t QueryOrSetValue(const ValueCommands &c, int32_t cmdType, int32_t *value) {
    if (value == nullptr) {
        AT_LOG_ERR("%s", c.nullMessage);
        return -1;
    }
    AT_LOG_INFO(c.enterLog, *value, cmdType);
    switch (cmdType) {
        case kQueryForm:
            return QueryValue(c, *value);
        case kSetForm:
            return CallReply(Command(c.set, *value), c.formatError).Result();
        default:
            AT_LOG_ERR("operate value error\n");
            return -1;
    }
}

}  // namespace

extern "C" {

int32_t AtsS0(int32_t cmdType, int32_t *value) {
    return QueryOrSetValue(kAutoAnswer, cmdType, value) == 0 ? 0 : -1;
}

int32_t AtsCmut(int32_t cmdType, int32_t *mode) {
    return QueryOrSetValue(kMicMute, cmdType, mode) == -1 ? -1 : 0;
}

int32_t AtsSmut(int32_t cmdType, int32_t *mode) {
    return QueryOrSetValue(kSpeakerMute, cmdType, mode) == 0 ? 0 : -1;
}

int32_t AtsNsSwitch(int32_t cmdType, AtSwitchModeInfo *info) {
    if (info == nullptr) return -1;
    info->errorId = AT_ERRID_NOT_COMPLETED;
    if (cmdType == kQueryForm) {
        CallReply reply(Command(kNsQuery), "AT^NSSWITCH, snprintf_s error, ret:%d\n");
        return QueryOutcome(reply, kNsQuery, kSwitchFields, *info, info->errorId,
                            RowPolicy::kNeedsRow);
    }
    if (cmdType != kSetForm) return -1;
    CallReply reply(Command(kNsSet, info->switchMode), "AT^NSSWITCH, snprintf_s error, ret:%d\n");
    if (reply.Status() != 0) return reply.Status();
    const int32_t ret = SetOutcome(reply, info->errorId);
    if (reply.CauseError()) AT_LOG_ERR("NSSWITCH=%d, error\n", info->switchMode);
    return ret;
}

int32_t AtEchoSwitch(int32_t cmdType, AtSwitchModeInfo *info) {
    if (info == nullptr) return -1;
    info->errorId = AT_ERRID_NOT_COMPLETED;
    if (cmdType == kQueryForm) {
        CallReply reply(Command(kEchoQuery), "AT^ECHOSWITCH, snprintf_s error, ret:%d\n");
        const int32_t ret = QueryOutcome(reply, kEchoQuery, kSwitchFields, *info, info->errorId,
                                         RowPolicy::kNeedsRowOnly);
        if (reply.CauseError()) AT_LOG_ERR("AT^ECHOSWITCH? errorcode(%d)\n", info->errorId);
        return ret;
    }
    if (cmdType != kSetForm) {
        AT_LOG_ERR("AT^ECHOSWITCH=%d, error cmdType(%d)\n", info->switchMode, cmdType);
        return -1;
    }
    CallReply reply(Command(kEchoSet, info->switchMode),
                    "AT^ECHOSWITCH, snprintf_s error, ret:%d\n");
    const int32_t ret = SetOutcome(reply, info->errorId);
    if (reply.CauseError()) {
        AT_LOG_ERR("AT^ECHOSWITCH=%d, errorcode(%d) \n", info->switchMode, info->errorId);
    } else if (ret != 0) {
        AT_LOG_ERR("AT^ECHOSWITCH=%d, error retVal(%d)\n", info->switchMode, reply.RetVal());
    }
    return ret;
}

int32_t AtsEchoEx(int32_t cmdType, AtEchoExParam *param) {
    if (param == nullptr) return -1;
    param->errorId = AT_ERRID_NOT_COMPLETED;
    if (cmdType == kQueryForm) {
        CallReply reply(Command(kEchoExQuery), "AT^ECHOEX, snprintf_s error, ret:%d\n");
        const int32_t ret = QueryOutcome(reply, kEchoExQuery, kEchoExFields, *param, param->errorId,
                                         RowPolicy::kNeedsRow);
        if (reply.Status() == 0 && !reply.Ok()) AT_LOG_ERR("ECHOEX=%d, error\n", reply.RetVal());
        return ret;
    }
    if (cmdType != kSetForm) return -1;
    CallReply reply(Command(kEchoExSet, param->enable, param->time, param->singleLen,
                            param->singleDec, param->doubleDec),
                    "AT^ECHOEX, snprintf_s error, ret:%d\n");
    const int32_t ret = SetOutcome(reply, param->errorId);
    if (reply.CauseError()) {
        AT_LOG_ERR("ECHOEX=%d, error\n", reply.RetVal());
    } else if (ret != 0) {
        AT_LOG_ERR("ECHOEX=%d,%d,%d,%d,%d, error\n", param->enable, param->time, param->singleLen,
                   param->singleDec, param->doubleDec);
    }
    return ret;
}

int32_t AtDtmf(AtDtmfParam *param) {
    if (param == nullptr) {
        AT_LOG_ERR("AtDtmf invalid paramter,exit!\n");
        return -1;
    }
    param->errorId = AT_ERRID_NOT_COMPLETED;
    CallReply reply(Command(kDtmf, param->dtmfChar, param->duration),
                    "AT+VTS, snprintf_s error, ret:%d\n");
    SetOutcome(reply, param->errorId, Causes::kCmeOnly);
    // A +CME ERROR reply is a completed call: its id is in errorId.
    return reply.Ok() || reply.RetVal() == AT_RET_CME_ERROR ? 0 : -1;
}

int32_t AtDeltaSet(const char *delta) {
    if (delta == nullptr) {
        AT_LOG_ERR("AtDeltaSet invalid paramter,exit!\n");
        return -1;
    }
    const CallReply reply(Command(kDeltaSet, delta), "AT^DELTASET, snprintf_s error, ret:%d\n");
    return reply.Ok() ? 0 : -1;
}

int32_t AtCpcm(int32_t cmdType, AtCpcmParam *cpcmParam) {
    if (cpcmParam == nullptr) {
        AT_LOG_ERR(" AtCpcm invalid param!\n");
        return -1;
    }
    if (cmdType == kQueryForm) return AtCpcmCheck(cpcmParam);
    if (cmdType == kSetForm) return AtCpcmExecute(cpcmParam);
    AT_LOG_ERR("AtCpcm invalid cmd type\n");
    return -1;
}

int32_t AtCpcmCheck(AtCpcmParam *cpcmParam) {
    if (cpcmParam == nullptr) {
        AT_LOG_ERR("passing cpcmParam error\n");
        return -1;
    }
    cpcmParam->errorId = AT_ERRID_NOT_COMPLETED;
    CallReply reply(Command(kCpcmQuery), "AT^CPCM?, snprintf_s error, ret:%d\n");
    if (reply.Status() != 0) {
        AT_LOG_ERR("AtCpcmGetData fail\n");
        return -1;
    }
    const int32_t ret = QueryOutcome(reply, kCpcmQuery, kCpcmFields, *cpcmParam, cpcmParam->errorId,
                                     RowPolicy::kNeedsRowOnly, Causes::kCmeOnly);
    if (reply.RetVal() == AT_RET_CME_ERROR) AT_LOG_ERR("cpcm error =%d\n", cpcmParam->errorId);
    return ret;
}

int32_t AtCpcmExecute(AtCpcmParam *cpcmParam) {
    if (cpcmParam == nullptr) {
        AT_LOG_ERR("passing cpcmParam error\n");
        return -1;
    }
    cpcmParam->errorId = AT_ERRID_NOT_COMPLETED;
    CallReply reply(Command(kCpcmSet, cpcmParam->mode, cpcmParam->format, cpcmParam->clock,
                            cpcmParam->frame, cpcmParam->offset),
                    "AT^CPCM=, snprintf_s error, ret:%d\n");
    if (reply.Status() != 0) return reply.Status();
    const int32_t ret = SetOutcome(reply, cpcmParam->errorId, Causes::kCmeOnly);
    if (reply.RetVal() == AT_RET_CME_ERROR) {
        AT_LOG_ERR("cpcmParam =%d, error\n", cpcmParam->mode);
    } else if (ret != 0) {
        AT_LOG_ERR("execute at^CPCM,failed\n");
    }
    return ret;
}

}  // extern "C"
