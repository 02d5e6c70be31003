// Data connection: the state of connections (^APCONNST, ^NDISSTATQRY,
// ^DCONNSTAT) and the module settings that dial-up depends on (IPv6
// capability, card mode and PIN state, features, LTE attach profile).
#include <cstdlib>
#include <cstring>

#include "api/command.h"
#include "api/reply.h"
#include "atapi/ats_ndis.h"
#include "atapi/ats_security.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "platform/osa.h"
#include "service/ats_ndis_internal.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;
using atapi::ndis::Named;

constexpr char kTraceSrc[] = "atapi/src/ats_ndis";

constexpr uint32_t kStateTimeoutSec = 5;

constexpr CommandDescription kApconnstQuery =
    Reads("AT^APCONNST?", "^APCONNST", module::kConnStat).WithTimeout(kStateTimeoutSec);
constexpr CommandDescription kApconnstSet = kApconnstQuery.WithFormat("AT^APCONNST=%d");

// ^NDISSTATQRY reads the default connection with cid 1 (^APCONNST with 0).
constexpr int32_t kNdisDefaultCid = 1;
constexpr CommandDescription kNdisStatQuery =
    Reads("AT^NDISSTATQRY?", "^NDISSTATQRY", module::kConnStat).WithTimeout(kStateTimeoutSec);
constexpr CommandDescription kNdisStatSet = kNdisStatQuery.WithFormat("AT^NDISSTATQRY=%d");
constexpr CommandDescription kNdisStatTest =
    kNdisStatQuery.WithFormat("AT^NDISSTATQRY=?").WithMode(AT_PARSE_TEST);

constexpr CommandDescription kDconnStat =
    Reads("AT^DCONNSTAT?", "^DCONNSTAT:", "^DCONNSTAT", module::kPosition);
constexpr auto kDconnStatFields = FieldList(
    Field<&DconnStatEntry::cid>("cid"), Field<&DconnStatEntry::apn>("APN"),
    Field<&DconnStatEntry::ipv4Stat>("ipv4_stat"), Field<&DconnStatEntry::ipv6Stat>("ipv6_stat"),
    Field<&DconnStatEntry::dconnType>("dconn_type"),
    Field<&DconnStatEntry::etherStat>("ether_stat"));
constexpr int32_t kDconnLines = 16;

constexpr CommandDescription kIpv6Cap =
    Reads("AT^IPV6CAP?", "^IPV6CAP", module::kConnStat).WithTimeout(kStateTimeoutSec);
constexpr auto kIpv6CapFields = FieldList(Field<&Ipv6CapInfo::cfgValue>("cfg_value", 1, 11));

constexpr CommandDescription kCardMode = Reads("AT^CARDMODE", "^CARDMODE", module::kPin);
constexpr auto kCardModeFields = FieldList(Field<&CardModeInfo::simType>("sim_type", 0, 4));

constexpr CommandDescription kHfeatureStat =
    Reads("AT^HFEATURESTAT=%d", "^HFEATURESTAT", module::kFeature);
constexpr auto kHfeatureFields = FieldList(
    Field<&HfeatureStatusInfo::featureId>("feature_id"),
    Field<&HfeatureStatusInfo::value1>("value1"), Field<&HfeatureStatusInfo::value2>("value2"),
    Field<&HfeatureStatusInfo::value3>("value3"), Field<&HfeatureStatusInfo::value4>("value4"),
    Field<&HfeatureStatusInfo::value5>("value5"));

constexpr CommandDescription kLteProfileTest =
    Reads("AT^LTEPROFILE=?", "^LTEPROFILE", module::kNetwork).WithMode(AT_PARSE_TEST);
constexpr size_t kIndexRangeSize = 10;  // "first-last" and its terminator

// A state read: an error reply counts as done, an OK reply is decoded into s.
template <typename Record>
int32_t ReadState(const Command &cmd, int32_t (*decode)(char *, Record &), Record &s) {
    AT_LOG_INFO("enter");
    Reply reply(cmd);
    if (const auto done = ErrorReplyDone(reply, s.errorId)) return *done;
    if (decode(reply.Text(), s) != 0) return -1;
    s.errorId = AT_ERRID_OK;
    AT_LOG_INFO("end");
    return 0;
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

// Per-family dial-up states: a "stat" and an "err_code" apply to the family
// that the "PDP_type" behind them names; the first stat also stands for IPv4.
int32_t ReadNdisState(const AtCmdParseNode *row, NdisStatInfo &s) {
    uint32_t stat = 0;
    uint32_t errCode = 0;
    bool seen = false;
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        const char *value = node->atFieldValue;
        if (Named(node, "stat")) {
            if (CheckValidNum(value, 0, 3) != 0) {
                AT_LOG_ERR("check state error");
                return -1;
            }
            stat = static_cast<uint32_t>(SafeStrAtoi(value));
            if (!seen) s.ipv4Stat = stat;
            seen = true;
            AT_LOG_INFO("state = %d, firstStatus = %u", static_cast<int32_t>(stat), s.ipv4Stat);
        }
        if (Named(node, "err_code")) {
            errCode = static_cast<uint32_t>(SafeStrAtoi(value));
            s.errCode = errCode;
        }
        if (Named(node, "PDP_type")) {
            if (SafeStrCmp(value, "IPV4") == 0) {
                s.ipv4Stat = stat;
                s.ipv4ErrCode = errCode;
            } else if (SafeStrCmp(value, "IPV6") == 0) {
                s.ipv6Stat = stat;
                s.ipv6ErrCode = errCode;
            } else if (SafeStrCmp(value, "Ethernet") == 0) {
                s.etherStat = stat;
                s.etherErrCode = errCode;
            }
        }
    }
    return 0;
}

// The cids of every row that the test reply's "(cid)" group gave: a header
// node named "cid", then one node per cid.
int32_t ReadCidList(const AtCmdParseNode *first, NdisCidList &l) {
    for (const AtCmdParseNode *row = first; row != nullptr; row = row->nextRow) {
        if (!Named(row, "cid")) continue;
        AT_LOG_INFO("parse cid enter");
        uint32_t i = 0;
        for (const AtCmdParseNode *node = row->nextField; node != nullptr && node->atFieldValue;
             node = node->nextField) {
            if (i == NDIS_CID_LIST_MAX) {
                AT_LOG_ERR("cid list is too many");
                break;
            }
            // A cid is at most 3 characters; a longer one is cut there.
            char *slot = l.cids[i];
            if (strncpy_s(slot, sizeof l.cids[i], node->atFieldValue, sizeof l.cids[i] - 1) != 0) {
                AT_LOG_ERR("snprintf_s failed");
                return -1;
            }
            l.count = ++i;
        }
    }
    return 0;
}

// mode1 and mode2 from the first row; the index range "first-last" from
// the "indexs" group of the second, when the reply has it.
int32_t ReadLteProfile(const AtCmdParseNode *first, LteProfileRange &r) {
    for (const AtCmdParseNode *node = first->nextField; node != nullptr; node = node->nextField) {
        if (Named(node, "mode1")) r.mode1 = static_cast<uint32_t>(SafeStrAtoi(node->atFieldValue));
        if (Named(node, "mode2")) r.mode2 = static_cast<uint32_t>(SafeStrAtoi(node->atFieldValue));
    }
    const AtCmdParseNode *second = first->nextRow;
    const AtCmdParseNode *indexes = second != nullptr ? second->nextField : nullptr;
    if (indexes == nullptr || !Named(indexes, "indexs")) return 0;
    if (indexes->atFieldValue == nullptr) {
        AT_LOG_ERR("inparam is NULL");
        return -1;
    }
    char range[kIndexRangeSize];
    if (strcpy_s(range, sizeof range, indexes->atFieldValue) != 0) return -1;
    char *dash = std::strchr(range, '-');
    if (dash == nullptr) return -1;
    *dash = '\0';
    r.firstIndex = static_cast<uint32_t>(SafeStrAtoi(range));
    r.lastIndex = static_cast<uint32_t>(SafeStrAtoi(dash + 1));
    return 0;
}

}  // namespace

namespace atapi::ndis {

int32_t PppStateFromReply(char *reply, PppStateInfo &s) {
    int32_t status = AT_PARSE_OK;
    const ParseRows rows = ParseReply(kApconnstQuery, reply, &status);
    if (status != AT_PARSE_OK || rows.Get() == nullptr) return -1;
    return ReadPppState(rows.Get(), s);
}

int32_t NdisStateFromReply(char *reply, NdisStatInfo &s) {
    int32_t status = AT_PARSE_OK;
    const ParseRows rows = ParseReply(kNdisStatQuery, reply, &status);
    if (status != AT_PARSE_OK || rows.Get() == nullptr) return -1;
    return ReadNdisState(rows.Get(), s);
}

int32_t CidListFromReply(char *reply, NdisCidList &l) {
    int32_t status = AT_PARSE_OK;  // only whether rows came counts
    const ParseRows rows = ParseReply(kNdisStatTest, reply, &status);
    if (rows.Get() == nullptr) return -1;
    l.errorId = AT_ERRID_OK;
    return ReadCidList(rows.Get(), l);
}

bool DconnStatFromLine(char *line, DconnStatEntry &entry) {
    return line != nullptr && ParseFields(kDconnStat, line, kDconnStatFields, entry) == 0;
}

int32_t LteProfileFromReply(char *reply, LteProfileRange &r) {
    int32_t status = AT_PARSE_OK;  // only whether rows came counts
    const ParseRows rows = ParseReply(kLteProfileTest, reply, &status);
    if (rows.Get() == nullptr) return -1;
    r.errorId = AT_ERRID_OK;
    return ReadLteProfile(rows.Get(), r);
}

}  // namespace atapi::ndis

extern "C" {

int32_t AtPppState(uint32_t cid, PppStateInfo *s) {
    if (s == nullptr) return -1;
    return ReadState(
        cid == 0 ? Command(kApconnstQuery) : Command(kApconnstSet, static_cast<int32_t>(cid)),
        atapi::ndis::PppStateFromReply, *s);
}

int32_t AtNdisStatQryState(int32_t cid, NdisStatInfo *s) {
    if (s == nullptr) return -1;
    return ReadState(cid == kNdisDefaultCid ? Command(kNdisStatQuery) : Command(kNdisStatSet, cid),
                     atapi::ndis::NdisStateFromReply, *s);
}

int32_t AtNdisStatQryTest(NdisCidList *l) {
    if (l == nullptr) return -1;
    memset_s(l, sizeof *l, 0, sizeof *l);
    Reply reply{Command(kNdisStatTest)};
    if (const auto done = ErrorReplyDone(reply, l->errorId)) return *done;
    return atapi::ndis::CidListFromReply(reply.Text(), *l);
}

int32_t AtDconnStatList(int32_t flag, uint32_t *count, DconnStatEntry **list) {
    if (count == nullptr || list == nullptr) {
        AT_LOG_ERR("inparam is NULL");
        return -1;
    }
    if (flag != 0) return 0;  // only flag 0 queries
    ReplyLines<kDconnLines> lines;
    const int32_t ret = Command(kDconnStat).SendLines(lines, nullptr);
    if (IsCauseError(ret)) return 0;
    if (ret != 0 || lines.Count() < 1 || lines.Count() > kDconnLines) return -1;

    const auto n = static_cast<size_t>(lines.Count());
    auto *entries = static_cast<DconnStatEntry *>(std::malloc(n * sizeof(DconnStatEntry)));
    *list = entries;
    bool read = entries != nullptr;
    if (!read) AT_LOG_ERR("malloc error");
    if (read) memset_s(entries, n * sizeof *entries, 0, n * sizeof *entries);
    for (size_t i = 0; read && i < n; ++i) {
        char *line = lines[static_cast<int32_t>(i)];
        read = atapi::ndis::DconnStatFromLine(line, entries[i]);
        if (!read) {
            if (line != nullptr) AT_LOG_ERR("AtParseNodeFromBuf failed");
            AT_LOG_ERR("AtDconnParseResult failed");
        }
    }
    if (!read) {
        AT_LOG_ERR("FAILED");
        *count = 0;
        std::free(entries);
        *list = nullptr;
        return -1;
    }
    AT_LOG_INFO("SUCCESS dconNum[%d]", lines.Count());
    *count = static_cast<uint32_t>(n);
    return 0;
}

int32_t AtIpv6Cap(Ipv6CapInfo *r) {
    if (r == nullptr) return -1;
    const int32_t ret = Command(kIpv6Cap).Query(kIpv6CapFields, *r, &r->errorId);
    if (IsCauseError(ret)) AT_LOG_ERR("ret = [%d]", ret);
    if (QueryDone(ret)) return 0;
    AT_LOG_ERR("failed");
    return -1;
}

int32_t AtCardMode(CardModeInfo *r) {
    if (r == nullptr) {
        AT_LOG_ERR("Param is null");
        return -1;
    }
    return Command(kCardMode).Query(kCardModeFields, *r, &r->errorId);
}

int32_t AtCpinCheck(void *pinInfo) {
    if (pinInfo == nullptr) {
        AT_LOG_ERR("Param is null");
        return -1;
    }
    const int32_t ret = AtPinManagement(0, nullptr, nullptr, static_cast<CpinInfo *>(pinInfo));
    if (ret == -1) AT_LOG_ERR("AT return error");
    return ret;
}

int32_t AtHfeatureStatus(uint32_t featureId, HfeatureStatusInfo *h) {
    if (h == nullptr) {
        AT_LOG_ERR("no param, AT^HFEATURESTAT cmd not execute");
        return -1;
    }
    return Command(kHfeatureStat, static_cast<int32_t>(featureId))
        .Query(kHfeatureFields, *h, &h->errorId);
}

int32_t AtLteProfileTest(LteProfileRange *r) {
    if (r == nullptr) return -1;
    Reply reply{Command(kLteProfileTest)};
    if (!reply.Ok()) return reply.Result();
    if (atapi::ndis::LteProfileFromReply(reply.Text(), *r) != 0) return -1;
    AT_LOG_INFO("exit");
    return 0;
}

}  // extern "C"
