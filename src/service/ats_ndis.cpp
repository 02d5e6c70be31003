// Data connection: PDP context definitions and connection state.
#include "atapi/ats_ndis.h"

#include <cstring>

#include "api/command.h"
#include "atapi/at_text.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "platform/osa.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;

constexpr char kTraceSrc[] = "atapi/src/ats_ndis";

constexpr CommandSpec kCgdcontSet{.format = "AT+CGDCONT=%d,\"%s\",\"%s\"", .rspPrefix = "+CGDCONT"};
// After the APN: an empty quoted PDP address and thirteen empty parameters,
// so that the S-NSSAI is the 18th of 22 parameters.
constexpr char kNssaiTail[] = ",\"\",,,,,,,,,,,,,,\"%s\",,,,";

constexpr CommandSpec kCgdcontQuery{.format = "AT+CGDCONT?",
                                    .rspPrefix = "+CGDCONT",
                                    .parsePrefix = "+CGDCONT",
                                    .moduleId = module::kPdpContext};
constexpr auto kCgdcontFields =
    FieldList(Field<&PdpContextInfo::cid>("cid"), Field<&PdpContextInfo::pdpType>("PDP_type"),
              Field<&PdpContextInfo::apn>("APN"));

constexpr uint32_t kStateTimeoutSec = 5;
constexpr CommandSpec kApconnstQuery{.format = "AT^APCONNST?",
                                     .rspPrefix = "^APCONNST",
                                     .parsePrefix = "^APCONNST",
                                     .moduleId = module::kConnStat,
                                     .timeoutSec = kStateTimeoutSec};
constexpr CommandSpec kApconnstSet{.format = "AT^APCONNST=%d",
                                   .rspPrefix = "^APCONNST",
                                   .parsePrefix = "^APCONNST",
                                   .moduleId = module::kConnStat,
                                   .timeoutSec = kStateTimeoutSec};

bool Named(const AtCmdParseNode *node, const char *name) {
    return SafeStrCmp(node->atFieldName, name) == 0;
}

// Per-family connection states: each "status" value applies to the family
// named by the field behind it; the first one also stands for IPv4.
int32_t ReadPppState(const AtCmdParseNode *row, PppStateInfo &s) {
    uint32_t current = 0;
    bool seen = false;
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        if (Named(node, "status")) {
            if (CheckValidNum(node->atFieldValue, 0, 2) != 0) {
                AT_LOG_ERR("check state error");
                return -1;
            }
            current = static_cast<uint32_t>(SafeStrAtoi(node->atFieldValue));
            if (!seen) s.ipv4Status = current;
            seen = true;
            AT_LOG_INFO("state = %d, firstStatus = %u", static_cast<int32_t>(current),
                        s.ipv4Status);
        }
        if (Named(node, "IPV4")) s.ipv4Status = current;
        if (Named(node, "IPV6")) s.ipv6Status = current;
        if (Named(node, "Ethernet")) s.etherStatus = current;
    }
    return 0;
}

}  // namespace

extern "C" {

int32_t AtCgdContAddSingleNssai(PdpContextInfo *c, char *cmd, int32_t size) {
    if (c == nullptr || cmd == nullptr || size <= 0) return -1;
    if (c->sNssai[0] == '\0') return 0;
    if (!AppendFormat(cmd, static_cast<size_t>(size), kNssaiTail, c->sNssai)) {
        AT_LOG_ERR("copy singleNssai return error");
        return -1;
    }
    AT_LOG_INFO("end");
    return 0;
}

int32_t AtCgdContHandler(PdpContextInfo *c) {
    if (c == nullptr) {
        AT_LOG_ERR("pdpCont is NULL");
        return -1;
    }
    Command cmd(kCgdcontSet, static_cast<int32_t>(c->cid), c->pdpType, c->apn);
    if (!cmd) {
        AT_LOG_ERR("snprintf_s failed");
        return -1;
    }
    const bool tailed = cmd.EditLine([c](char *line, size_t capacity) {
        return AtCgdContAddSingleNssai(c, line, static_cast<int32_t>(capacity)) == 0;
    });
    return tailed ? cmd.Send(&c->errorId) : -1;
}

int32_t AtGetCgdCont(PdpContextInfo *c) {
    if (c == nullptr) {
        AT_LOG_ERR("Param is null");
        return -1;
    }
    return Command(kCgdcontQuery).Query(kCgdcontFields, *c, &c->errorId);
}

int32_t AtGetCgdContByCid(PdpContextInfo *c, uint32_t cid) {
    AT_LOG_INFO("in");
    if (c == nullptr) return -1;
    ReplyLines<8> lines;
    if (Command(kCgdcontQuery).SendLines(lines, nullptr) != 0) return -1;
    if (lines.Count() == 0 || lines.Count() > lines.kCapacity) {
        AT_LOG_ERR("failed");
        return -1;
    }
    for (int32_t i = 0; i < lines.Count(); ++i) {
        memset_s(c, sizeof *c, 0, sizeof *c);
        const bool parsed =
            lines[i] != nullptr && ParseFields(kCgdcontQuery, lines[i], kCgdcontFields, *c) == 0;
        if (!parsed) {
            if (lines[i] != nullptr) AT_LOG_ERR("failed");
            AT_LOG_ERR("AtCgactParseResult failed");
            AT_LOG_ERR("failed");
            return -1;
        }
        if (c->cid == cid) {
            AT_LOG_INFO("get cid cgdcont SUCCESS");
            AT_LOG_INFO("pdpNum[%d]", lines.Count());
            return 0;
        }
    }
    AT_LOG_ERR("pdpNum[%d]", lines.Count());
    return -1;
}

int32_t AtPppState(uint32_t cid, PppStateInfo *s) {
    if (s == nullptr) return -1;
    AT_LOG_INFO("enter");
    const Command cmd =
        cid == 0 ? Command(kApconnstQuery) : Command(kApconnstSet, static_cast<int32_t>(cid));
    OwnedSrvMsg msg;
    if (const int32_t ret = cmd.Exchange(msg); ret != 0) return ret;
    if (msg.RetVal() == AT_RET_CME_ERROR || msg.RetVal() == AT_RET_CMS_ERROR) {
        s->errorId = ErrorStrToErrorId(msg.Report());
        return 0;
    }
    if (msg.RetVal() != AT_RET_OK) return -1;
    int32_t status = 0;
    const ParseRows rows = ParseReply(kApconnstQuery, msg.Report(), &status);
    if (status != AT_PARSE_OK || rows.Get() == nullptr) return -1;
    if (ReadPppState(rows.Get(), *s) != 0) return -1;
    s->errorId = AT_ERRID_OK;
    AT_LOG_INFO("end");
    return 0;
}

}  // extern "C"
