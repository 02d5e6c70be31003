// Device identity: IMSI, IMEI, serial number, manufacturer, model and the
// physical numbers, SIM authentication and the download-mode request.
#include <cstring>

#include "api/command.h"
#include "atapi/at_text.h"
#include "atapi/ats_comm.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "service/ats_comm_internal.h"

namespace {

using namespace atapi::api;
using atapi::comm::kNonNegative;

constexpr char kTraceSrc[] = "atapi/src/ats_comm";

constexpr CommandDescription kCimi{.format = "AT+CIMI"};
constexpr CommandDescription kCgsn{.format = "AT+CGSN"};
constexpr CommandDescription kSn{.format = "AT^SN", .rspPrefix = "^SN:"};
constexpr CommandDescription kCgmi{.format = "AT+CGMI", .timeoutSec = 5};
constexpr CommandDescription kCgmm{.format = "AT+CGMM"};
constexpr CommandDescription kAuthVer{.format = "AT^AUTHVER?", .rspPrefix = "^AUTHVER:"};

constexpr CommandDescription kPhyNum{.format = "AT^PHYNUM?", .rspPrefix = "^PHYNUM"};

constexpr CommandDescription kUiccAuth =
    Reads("AT^UICCAUTH=%d,%s,%s", "^UICCAUTH:", "^UICCAUTH", module::kNetwork);
constexpr auto kUiccAuthFields =
    FieldList(Field<&UiccAuthInfo::result>("result", 0, kNonNegative),
              Field<&UiccAuthInfo::res>("res"), Field<&UiccAuthInfo::ck>("ck"),
              Field<&UiccAuthInfo::ik>("ik"), Field<&UiccAuthInfo::auts>("auts"));

constexpr char kDownloadPrefix[] = "download mode result):";
constexpr CommandDescription kDownloadMode{.format = "AT+ZCDRUN=G", .rspPrefix = kDownloadPrefix};
constexpr CommandDescription kDownloadValue{.format = "AT+ZCDRUN=%d", .rspPrefix = kDownloadPrefix};
constexpr uint32_t kDownloadModeOnly = 0;
constexpr uint32_t kDownloadWithValue = 1;
constexpr size_t kDownloadAnswerSize = 32;

int32_t QueryIdentity(const CommandDescription &description, IdentityText *r) {
    if (r == nullptr) return -1;
    return Command(description).QueryText(r->text, &r->errorId);
}

}  // namespace

namespace atapi::comm {

bool StorePhyNumLine(const char *line, char (&out)[kPhyNumLineSize]) {
    const char *colon = line != nullptr ? std::strchr(line, ':') : nullptr;
    if (colon == nullptr) return false;
    const char *text = colon + 1 + std::strspn(colon + 1, " ");
    return strncpy_s(out, sizeof out, text, std::strcspn(text, "\r\n")) == 0;
}

}  // namespace atapi::comm

extern "C" {

int32_t AtImsi(IdentityText *r) { return QueryIdentity(kCimi, r); }

int32_t AtImei(IdentityText *r) { return QueryIdentity(kCgsn, r); }

int32_t AtSn(IdentityText *r) { return QueryIdentity(kSn, r); }

int32_t AtCgmi(IdentityText *r) { return QueryIdentity(kCgmi, r); }

int32_t AtAuthVer(IdentityText *r) { return QueryIdentity(kAuthVer, r); }

int32_t AtCgsn(ImeiShort *r) {
    if (r == nullptr) return -1;
    const int32_t ret = Command(kCgsn).QueryText(r->imei, &r->errorId);
    if (ret == 0) r->valid = 1;
    return ret;
}

int32_t AtCgmm(IdentityText *r) {
    if (r == nullptr) return -1;
    char model[AT_REPORT_STR_LEN];
    if (const int32_t ret = Command(kCgmm).QueryText(model, &r->errorId); ret != 0) return ret;
    return strcpy_s(r->text, sizeof r->text, model) == 0 ? 0 : -1;
}

int32_t AtQryPhyNum(PhyNumList *l) {
    if (l == nullptr) {
        AT_LOG_ERR("input param error");
        return -1;
    }
    ReplyLines<AT_PHYNUM_MAX_LINES> lines;
    if (const int32_t ret = Command(kPhyNum).SendLines(lines, &l->errorId); ret != 0) return ret;
    for (int32_t i = 0; i < lines.Count(); ++i) {
        if (!atapi::comm::StorePhyNumLine(lines[i], l->lines[i])) return -1;
    }
    l->count = static_cast<uint32_t>(lines.Count());
    return 0;
}

int32_t AtUiccAuth(int32_t op, UiccAuthInfo *a) {
    (void)op;  // every request is an authentication
    AT_LOG_INFO("Enter");
    if (a == nullptr || strnlen(a->rand, sizeof a->rand) == sizeof a->rand ||
        strnlen(a->autn, sizeof a->autn) == sizeof a->autn) {
        return -1;
    }
    const int32_t ret = Command(kUiccAuth, static_cast<int32_t>(a->authType), a->rand, a->autn)
                            .Query(kUiccAuthFields, *a, &a->errorId);
    AT_LOG_INFO("out, ret = %d", ret);
    return ret;
}

int32_t AtZteDownload(DownloadRequest *r) {
    if (r == nullptr) return -1;
    char answer[kDownloadAnswerSize];
    int32_t ret = -1;
    if (r->mode == kDownloadModeOnly) {
        ret = Command(kDownloadMode).QueryText(answer, &r->errorId);
    } else if (r->mode == kDownloadWithValue) {
        ret =
            Command(kDownloadValue, static_cast<int32_t>(r->value)).QueryText(answer, &r->errorId);
    }
    if (ret == 0) r->result = static_cast<uint32_t>(SafeStrAtoi(answer));
    return ret;
}

}  // extern "C"
