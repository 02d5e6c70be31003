// Data connection: dial-up, PDP context definitions and their authentication
// data, and the data channel of a context.
#include "atapi/ats_ndis.h"

#include <cstring>

#include "api/command.h"
#include "link/at_log.h"
#include "platform/bounded.h"

namespace {

using namespace atapi::api;

constexpr char kTraceSrc[] = "atapi/src/ats_ndis";
constexpr char kFormatFailed[] = "snprintf_s failed";

// Lines that carry a password wait 30 s, as every secret line does.
constexpr uint32_t kSecretTimeoutSec = 30;

// Dial-up. Without a profile only the cid and the connect flag go out; with
// one, the APN parameter stays empty (not "") unless the profile's APN is
// static, and a static IP address is the last parameter.
constexpr CommandDescription kNdisDupBare =
    SecretLine("AT^NDISDUP=%d,%d", "^NDISDUP", kSecretTimeoutSec);
constexpr CommandDescription kNdisDupApnIp =
    kNdisDupBare.WithFormat("AT^NDISDUP=%d,%d,\"%s\",\"%s\",\"%s\",%c,\"%s\"");
constexpr CommandDescription kNdisDupApn =
    kNdisDupBare.WithFormat("AT^NDISDUP=%d,%d,\"%s\",\"%s\",\"%s\",%c");
constexpr CommandDescription kNdisDupNoApn =
    kNdisDupBare.WithFormat("AT^NDISDUP=%d,%d,,\"%s\",\"%s\",%c");
constexpr CommandDescription kNdisDupIp =
    kNdisDupBare.WithFormat("AT^NDISDUP=%d,%d,,\"%s\",\"%s\",%c,\"%s\"");

constexpr CommandDescription kCgdcontSet{.format = "AT+CGDCONT=%d,\"%s\",\"%s\"",
                                         .rspPrefix = "+CGDCONT"};
// After the APN: an empty quoted PDP address and thirteen empty parameters,
// so that the S-NSSAI is the 18th of 22 parameters.
constexpr char kNssaiTail[] = ",\"\",,,,,,,,,,,,,,\"%s\",,,,";

constexpr CommandDescription kCgdcontQuery = Reads("AT+CGDCONT?", "+CGDCONT", module::kPdpContext);
constexpr auto kCgdcontFields =
    FieldList(Field<&PdpContextInfo::cid>("cid"), Field<&PdpContextInfo::pdpType>("PDP_type"),
              Field<&PdpContextInfo::apn>("APN"));

constexpr CommandDescription kAuthDataSet =
    SecretLine("AT^AUTHDATA=%d,%d,\"%s\",\"%s\",\"%s\"", "^AUTHDATA", kSecretTimeoutSec);
constexpr CommandDescription kAuthDataQuery = Reads("AT^AUTHDATA?", "^AUTHDATA", module::kAuthData);
constexpr auto kAuthDataFields =
    FieldList(Field<&AuthDataInfo::cid>("cid"), Field<&AuthDataInfo::authType>("Auth_type"),
              Field<&AuthDataInfo::plmn>("PLMN"), Field<&AuthDataInfo::passwd>("passwd"),
              Field<&AuthDataInfo::username>("username"));

constexpr CommandDescription kChDataBind{.format = "AT^CHDATA=%d,%d", .rspPrefix = "^CHDATA"};
constexpr CommandDescription kChDataDefault{.format = "AT^CHDATA=%d", .rspPrefix = "^CHDATA"};

// What the by-cid readers log, as each has always logged it.
struct ByCidLog {
    const char *countName;    // "<countName>[<count>]"
    const char *parseFailed;  // a line that could not be read
    const char *found;
};
constexpr ByCidLog kCgdcontByCidLog{"pdpNum", "AtCgactParseResult failed",
                                    "get cid cgdcont SUCCESS"};
constexpr ByCidLog kAuthDataByCidLog{"dataNum", "AtGetAuthDataParseResult failed",
                                     "get cid AuthData SUCCESS"};

// Reads every line of the query's reply into record, cleared before each
// line, until one carries the wanted cid: 0 then, else -1 with the record
// holding the last line read.
template <int32_t Capacity, typename Record, size_t N>
int32_t ReadByCid(const CommandDescription &query, const Fields<Record, N> &fields, Record &record,
                  uint32_t cid, const ByCidLog &log) {
    ReplyLines<Capacity> lines;
    if (Command(query).SendLines(lines, nullptr) != 0) return -1;
    if (lines.Count() == 0 || lines.Count() > lines.kCapacity) {
        AT_LOG_ERR("failed");
        return -1;
    }
    for (int32_t i = 0; i < lines.Count(); ++i) {
        memset_s(&record, sizeof record, 0, sizeof record);
        const bool parsed =
            lines[i] != nullptr && ParseFields(query, lines[i], fields, record) == 0;
        if (!parsed) {
            if (lines[i] != nullptr) AT_LOG_ERR("failed");
            AT_LOG_ERR("%s", log.parseFailed);
            AT_LOG_ERR("failed");
            return -1;
        }
        if (record.cid == cid) {
            AT_LOG_INFO("%s", log.found);
            AT_LOG_INFO("%s[%d]", log.countName, lines.Count());
            return 0;
        }
    }
    AT_LOG_ERR("%s[%d]", log.countName, lines.Count());
    return -1;
}

int32_t DialUp(int32_t cid, int32_t connect, NdisDupProfile &p) {
    const bool apn = p.apnIsStatic == 1;
    const bool ip = p.ipIsStatic == 1;
    if (apn && ip) {
        return SendOrLog(
            kTraceSrc, kFormatFailed,
            Command(kNdisDupApnIp, cid, connect, p.apn, p.username, p.passwd, p.authType, p.ipAddr),
            &p.errorId);
    }
    if (apn) {
        return SendOrLog(
            kTraceSrc, kFormatFailed,
            Command(kNdisDupApn, cid, connect, p.apn, p.username, p.passwd, p.authType),
            &p.errorId);
    }
    if (ip) {
        return SendOrLog(
            kTraceSrc, kFormatFailed,
            Command(kNdisDupIp, cid, connect, p.username, p.passwd, p.authType, p.ipAddr),
            &p.errorId);
    }
    return SendOrLog(kTraceSrc, kFormatFailed,
                     Command(kNdisDupNoApn, cid, connect, p.username, p.passwd, p.authType),
                     &p.errorId);
}

}  // namespace

extern "C" {

int32_t AtNdisDup(int32_t cid, int32_t connect, NdisDupProfile *p) {
    if (p == nullptr) {
        AT_LOG_INFO("profile is NULL");
        return SendOrLog(kTraceSrc, kFormatFailed, Command(kNdisDupBare, cid, connect), nullptr);
    }
    AT_LOG_INFO("apnIsStatic:[%u], ipIsStatic:[%u]", p->apnIsStatic, p->ipIsStatic);
    return DialUp(cid, connect, *p);
}

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
    return ReadByCid<8>(kCgdcontQuery, kCgdcontFields, *c, cid, kCgdcontByCidLog);
}

int32_t AtAuthDataHandler(AuthDataInfo *a) {
    if (a == nullptr) {
        AT_LOG_ERR("authData is NULL");
        return -1;
    }
    return SendOrLog(kTraceSrc, kFormatFailed,
                     Command(kAuthDataSet, static_cast<int32_t>(a->cid),
                             static_cast<int32_t>(a->authType), a->plmn, a->passwd, a->username),
                     &a->errorId);
}

int32_t AtGetAuthData(AuthDataInfo *a) {
    if (a == nullptr) {
        AT_LOG_ERR("Param is null");
        return -1;
    }
    return Command(kAuthDataQuery).Query(kAuthDataFields, *a, &a->errorId);
}

int32_t AtGetAuthDataByCid(AuthDataInfo *a, uint32_t cid) {
    AT_LOG_INFO("in");
    if (a == nullptr) return -1;
    return ReadByCid<32>(kAuthDataQuery, kAuthDataFields, *a, cid, kAuthDataByCidLog);
}

int32_t AtChData(ChDataRequest *r) {
    if (r == nullptr) return -1;
    const int32_t cid = static_cast<int32_t>(r->cid);
    const int32_t ret =
        r->dataChannel != 0
            ? Command(kChDataBind, cid, static_cast<int32_t>(r->dataChannel)).Send(&r->errorId)
            : Command(kChDataDefault, cid).Send(&r->errorId);
    return ret == 0 ? 0 : -1;
}

}  // extern "C"
