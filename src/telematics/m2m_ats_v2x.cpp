// V2X sidelink commands. The reads parse under module 31, which has no
// handler table, so an OK reply ends at the parse step with -1; the module
// id is kept as the interface gives it.
#include "atapi/m2m_ats_v2x.h"

#include <cstdint>

#include "api/command.h"
#include "api/conventions.h"
#include "atapi/at_parse.h"
#include "link/at_log.h"
#include "telematics/m2m_ats_v2x_read.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;
using namespace atapi::v2x;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_v2x";
constexpr int32_t kV2xModule = 31;
constexpr uint32_t kModeLimit = 2;
constexpr int32_t kSingleReplySize = 1532;

constexpr CommandDescription kModeQuery = Reads("AT^VMODE?", nullptr, "^VMODE", kV2xModule);
constexpr CommandDescription kModeSet{.format = "AT^VMODE=%d,%d"};
constexpr CommandDescription kCbr = Reads("AT^CBR?", "^CBR:", "^CBR", kV2xModule);
constexpr CommandDescription kSync = Reads("AT^VSYNCSRC?", "^VSYNCSRC:", "^VSYNCSRC", kV2xModule);
constexpr CommandDescription kPdcp = Reads("AT^PTRRPT?", nullptr, "^PTRRPT", kV2xModule);
constexpr CommandDescription kPhy = Reads("AT^VPHYSTAT?", nullptr, "^VPHYSTAT", kV2xModule);
constexpr CommandDescription kRsrp = Reads("AT^VSNRRSRP?", nullptr, "^VSNRRSRP", kV2xModule);
constexpr CommandDescription kRssi = Reads("AT^V2XRSSI?", nullptr, "^V2XRSSI", kV2xModule);
constexpr CommandDescription kAntSwitchSet{.format = "AT^VTXANTSWITCH=%d"};
constexpr CommandDescription kAntSwitchQuery =
    Reads("AT^VTXANTSWITCH?", nullptr, "^VTXANTSWITCH", kV2xModule);
constexpr CommandDescription kTxPwrRptCfg{.format = "AT^TXPWRRPTCFG=%d,%d,%d,%u"};

// Logs the call's entry and exit around body.
template <typename Body>
int32_t Framed(const char *tag, Body body) {
    AT_LOG_INFO("[%s] enter", tag);
    const int32_t ret = body();
    if (ret == 0) {
        AT_LOG_INFO("[%s] out", tag);
    } else {
        AT_LOG_ERR("[%s] out, ret = %d", tag, ret);
    }
    return ret;
}

// Sends cmd's line on a record of its own; 0 when an OK reply came into msg.
// The mode query logs a refused reply in its own words.
enum class RetValLog { kExecution, kModeQuery };
int32_t ExchangeForOk(const Command &cmd, OwnedSrvMsg &msg,
                      RetValLog retValLog = RetValLog::kExecution) {
    if (!cmd) {
        AT_LOG_ERR("snprintf_s atCmdStr failed");
        return -1;
    }
    const int32_t ret = cmd.Exchange(msg);
    if (ret != 0) {
        AT_LOG_ERR("GetDataFromAtServer failed, ret = %d", ret);
        return -1;
    }
    if (msg.RetVal() == AT_RET_OK) return 0;
    if (retValLog == RetValLog::kModeQuery) {
        AT_LOG_ERR("VMODE query retVal = %d", msg.RetVal());
    } else {
        AT_LOG_ERR("At execution failed, ret = %d, retVal = %d", ret, msg.RetVal());
    }
    return -1;
}

int32_t SendForOk(const Command &cmd) {
    OwnedSrvMsg msg;
    return ExchangeForOk(cmd, msg);
}

// The common read: description's line exchanged, its OK reply parsed under description and
// the first row handed to read.
template <typename Read>
int32_t ReadRows(const CommandDescription &description, Read read,
                 RetValLog retValLog = RetValLog::kExecution) {
    OwnedSrvMsg msg;
    if (ExchangeForOk(Command(description), msg, retValLog) != 0) return -1;
    int32_t status = 0;
    const ParseRows rows = ParseReply(description, msg.Report(), &status);
    if (status != AT_PARSE_OK || rows.Get() == nullptr) {
        AT_LOG_ERR("ParseAtCmdFunc failed, ret = %d", status);
        return -1;
    }
    return read(rows.Get());
}

// The single-string reads: the whole reply text, parsed under description, to read.
template <typename Read>
int32_t ReadText(const char *tag, const CommandDescription &description, Read read) {
    char text[kSingleReplySize] = {};
    if (Command(description).QueryText(text, nullptr) != 0) {
        AT_LOG_ERR("[%s] AtSendAndGetSingleStrRsp failed", tag);
        return -1;
    }
    int32_t status = 0;
    const ParseRows rows = ParseReply(description, text, &status);
    if (status != AT_PARSE_OK || rows.Get() == nullptr) {
        AT_LOG_ERR("[%s] ParseAtCmdFunc failed, ret = %d", tag, status);
        return -1;
    }
    return read(rows.Get());
}

// How a read fetches its reply: as the record's reply text, or through the
// single-string primitive.
enum class Fetch { kReply, kSingleText };

// A read into *record, framed by the call's entry and exit logs: a null
// record is refused with nullLog, else the first row of description's reply
// goes to read(row, *record).
template <typename Record, typename Read>
int32_t ReadRecord(const char *tag, Record *record, const char *nullLog,
                   const CommandDescription &description, Read read, Fetch fetch = Fetch::kReply) {
    return Framed(tag, [&] {
        if (record == nullptr) {
            AT_LOG_ERR("%s", nullLog);
            return -1;
        }
        const auto readRow = [&](const AtCmdParseNode *row) { return read(row, *record); };
        return fetch == Fetch::kReply ? ReadRows(description, readRow)
                                      : ReadText(tag, description, readRow);
    });
}

int32_t SetMode(const AtsV2xModeCfgInfo &cfg) {
    constexpr char kCheckTag[] = "AtsV2xModeCheck";
    if (cfg.rat != 0) {
        AT_LOG_ERR("[%s], v2xModeCfg->rat error", kCheckTag);
        return -1;
    }
    if (static_cast<uint32_t>(cfg.mode) >= kModeLimit) {
        AT_LOG_ERR("[%s], v2xModeCfg->mode error", kCheckTag);
        return -1;
    }
    return SendForOk(Command(kModeSet, cfg.rat, cfg.mode));
}

}  // namespace

extern "C" {

int32_t AtsV2xModeCfg(int32_t cmdType, AtsV2xModeCfgInfo *v2xModeCfg) {
    constexpr char kTag[] = "AtsV2xModeCfg";
    return Framed(kTag, [&] {
        if (v2xModeCfg == nullptr) {
            AT_LOG_ERR("v2xModeCfg is NULL");
            return -1;
        }
        if (cmdType == kSetForm) return SetMode(*v2xModeCfg);
        if (cmdType != kQueryForm) {
            AT_LOG_ERR("[%s] invalid cmd type, cmdType = %d", kTag, cmdType);
            return -1;
        }
        return ReadRows(
            kModeQuery, [&](const AtCmdParseNode *row) { return ReadMode(row, *v2xModeCfg); },
            RetValLog::kModeQuery);
    });
}

int32_t AtsV2xCbrQuery(AtsV2xCbrInfo *v2xCbrInfo) {
    return ReadRecord("AtsV2xCbrQuery", v2xCbrInfo, "v2xCbrInfo is NULL", kCbr,
                      [](const AtCmdParseNode *row, AtsV2xCbrInfo &info) {
                          return AtsV2xGetCbrInfo(row, &info);
                      });
}

int32_t AtsV2xAccessSyncInfoQuery(AtsV2xSyncInfo *v2xSyncInfo) {
    return ReadRecord("AtsV2xAccessSyncInfoQuery", v2xSyncInfo, "v2xSyncInfo is NULL", kSync,
                      [](const AtCmdParseNode *row, AtsV2xSyncInfo &info) {
                          return AtsV2xGetAccessSyncInfo(row, &info);
                      });
}

int32_t AtsV2xGetPdcpPacketStats(AtsV2xPdcpPacketStat *v2xPacketStat) {
    return ReadRecord("AtsV2xGetPdcpPacketStats", v2xPacketStat, "v2xPacketStat is NULL", kPdcp,
                      ReadPdcpStats);
}

int32_t AtsV2xGetPhyPacketStats(AtsV2xPhyPacketStats *v2xPacketStats) {
    return ReadRecord("AtsV2xGetPhyPacketStats", v2xPacketStats, "v2xPacketStats is NULL", kPhy,
                      ReadPhyStats);
}

int32_t AtsV2xGetRsrp(AtsV2xRsrpInfo *v2xRsrpInfo) {
    return ReadRecord("AtsV2xGetRsrp", v2xRsrpInfo, "v2xRsrpInfo is NULL", kRsrp, ReadRsrp,
                      Fetch::kSingleText);
}

int32_t AtsV2xGetRssi(AtsV2xRssiInfo *v2xRssiInfo) {
    // A null record is logged with the RSRP query's text.
    return ReadRecord("AtsV2xGetRssi", v2xRssiInfo, "v2xRsrpInfo is NULL", kRssi, ReadRssi,
                      Fetch::kSingleText);
}

int32_t AtsV2xSetDualAntSwitch(int32_t switchValue) {
    constexpr char kTag[] = "AtsV2xSetDualAntSwitch";
    return Framed(kTag, [&] {
        if (Command(kAntSwitchSet, switchValue).Send(nullptr) != 0) {
            AT_LOG_ERR("[%s] AtSendSimpleCmd failed", kTag);
            return -1;
        }
        return 0;
    });
}

int32_t AtsV2xGetDualAntSwitch(int32_t *switchValue) {
    constexpr char kTag[] = "AtsV2xGetDualAntSwitch";
    return Framed(kTag, [&] {
        if (switchValue == nullptr) {
            AT_LOG_ERR("switchValue is NULL");
            return -1;
        }
        char text[kSingleReplySize] = {};
        if (Command(kAntSwitchQuery).QueryText(text, nullptr) != 0) {
            AT_LOG_ERR("[%s] AtSendAndGetSingleStrRsp failed", kTag);
            return -1;
        }
        const AtParamDesc mode{"mode", AT_TYPE_INT, switchValue, sizeof *switchValue, 0, 1};
        const AtCmdDesc desc = kAntSwitchQuery.Desc(nullptr);
        if (AtParseNodeFromBuf(&desc, text, &mode, 1) != 0) {
            AT_LOG_ERR("[%s] AtParseNodeFromBuf failed", kTag);
            return -1;
        }
        return 0;
    });
}

int32_t AtsV2xTxPwrRptCfgExecute(AtsV2xTxPwrRptCfg *cfg) {
    constexpr char kTag[] = "AtsV2xTxPwrRptCfgExecute";
    return Framed(kTag, [&] {
        if (cfg == nullptr) {
            AT_LOG_ERR("[%s] input params invalid", kTag);
            return -1;
        }
        return SendForOk(Command(kTxPwrRptCfg, cfg->param1, cfg->param2, cfg->param3, cfg->param4));
    });
}

}  // extern "C"
