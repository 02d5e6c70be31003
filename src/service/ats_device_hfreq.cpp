// High-frequency information: the bands and channels in use, one reply line
// per radio technology, read into malloc'ed band lists that the caller
// frees. NR band classes are checked and announced as they are read.
#include <cstdlib>
#include <memory>

#include "api/command.h"
#include "atapi/at_link.h"
#include "atapi/ats_device.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "platform/osa.h"
#include "service/ats_comm_internal.h"
#include "service/ats_device_internal.h"

namespace {

using namespace atapi::api;

constexpr char kTraceSrc[] = "atapi/src/ats_device";

constexpr CommandDescription kHfreqSet{.format = "AT^HFREQINFO=%d"};
constexpr CommandDescription kHfreqQuery = Reads("AT^HFREQINFO?", "^HFREQINFO", module::kNetwork);
constexpr char kLinePrefix[] = "^HFREQINFO";
constexpr int32_t kMaxLines = 16;  // a line per technology; carrier lists stay on their line
constexpr size_t kPrefixedSize = AT_REPORT_STR_LEN + sizeof "^HFREQINFO: ";

constexpr int32_t kSysmodeLte = 6;
constexpr int32_t kSysmodeNr = 7;
constexpr int32_t kBandFields = 7;  // per band, behind switch and sysmode

// NR band classes the module may name: 1..86 and four millimetre-wave
// bands (259 is not among them).
bool IsNrBandClass(int32_t band) {
    return (band >= 1 && band <= 86) || band == 257 || band == 258 || band == 260 || band == 261;
}

struct ListFree {
    void operator()(HfreqBandInfo *list) const { HfreqInfoFree(list); }
};
using BandList = std::unique_ptr<HfreqBandInfo, ListFree>;

HfreqBandInfo *NewBand(int32_t hfreqSwitch, int32_t sysmode) {
    auto *band = static_cast<HfreqBandInfo *>(std::malloc(sizeof(HfreqBandInfo)));
    if (band != nullptr) *band = HfreqBandInfo{hfreqSwitch, sysmode, 0, 0, 0, 0, 0, 0, 0, nullptr};
    return band;
}

// The k-th value of a band, in the order of the reply.
int32_t *BandField(HfreqBandInfo &band, int32_t k) {
    int32_t *const fields[kBandFields] = {&band.bandClass, &band.dlFcn,  &band.dlFreq, &band.dlBw,
                                          &band.ulFcn,     &band.ulFreq, &band.ulBw};
    return fields[k];
}

void StoreBandClass(HfreqBandInfo &band, int32_t value) {
    if (band.sysmode != kSysmodeNr) {
        band.bandClass = value;
    } else if (IsNrBandClass(value)) {
        band.bandClass = value;
        AtsPostNotify(atapi::device::kBandNotifyModule, atapi::device::kBandNotifyId,
                      static_cast<uint32_t>(value), 0);
    } else {
        band.bandClass = 0;
        AT_LOG_ERR("5G band class error");
    }
}

void Store(BandList list, HfreqBandInfo *&slot) {
    HfreqInfoFree(slot);  // a technology reported twice keeps its last line
    slot = list.release();
}

int32_t QueryBands(HfreqInfoResult *r) {
    char report[AT_REPORT_STR_LEN];
    if (Command(kHfreqQuery).QueryText(report, nullptr) != 0) return -1;
    return atapi::device::HfreqFromReport(report, r);
}

}  // namespace

namespace atapi::device {

int32_t HfreqFromReport(const char *report, HfreqInfoResult *r) {
    char prefixed[kPrefixedSize];
    if (sprintf_s(prefixed, sizeof prefixed, "^HFREQINFO: %s", report) < 0) return -1;
    ReplyLines<kMaxLines> lines;
    int32_t count = kMaxLines;
    GetSubstring(prefixed, lines.Slots(), &count, kLinePrefix);
    lines.SetCount(count);
    AT_LOG_INFO("Number=[%d], report=[%s]", count, prefixed);
    for (int32_t i = 0; i < count; ++i) {
        AT_LOG_INFO("begin cnum parse [%s], i= [%d]", lines[i], i);
        int32_t status = 0;
        const atapi::ParseRows rows = ParseReply(kHfreqQuery, lines[i], &status);
        if (rows.Get() == nullptr) {
            AT_LOG_ERR("ParseAtCmdFunc error");
            return -1;
        }
        if (ParseHfreqInfoResult(rows.Get(), r) != 0) return -1;
    }
    return 0;
}

int32_t ParseHfreqInfoResult(const AtCmdParseNode *fields, HfreqInfoResult *r) {
    if (fields == nullptr || r == nullptr) return -1;
    BandList list;
    HfreqBandInfo *band = nullptr;
    int32_t j = 0;
    for (const AtCmdParseNode *node = fields; node != nullptr; node = node->nextField, ++j) {
        const char *value = node->atFieldValue;
        if (value == nullptr) {
            AT_LOG_ERR("input error");
            return -1;
        }
        AT_LOG_DETAIL("the j= [%d], the point1->atFieldName = [%s], point1->atFieldValue = [%s]", j,
                      node->atFieldName != nullptr ? node->atFieldName : "", value);
        if (j == 0) {
            if (CheckValidNum(value, 0, 1) != 0) {
                AT_LOG_ERR("hfreqswitch is incorrect");
                return -1;
            }
            list.reset(band = NewBand(std::atoi(value), 0));
            if (band == nullptr) return -1;
            continue;
        }
        if (j == 1) {
            band->sysmode = std::atoi(value);
            continue;
        }
        const int32_t k = (j - 2) % kBandFields;
        if (k == 0 && j > 2) {
            band->next = NewBand(band->hfreqSwitch, band->sysmode);
            if (band->next == nullptr) return -1;
            band = band->next;
            AT_LOG_INFO("tempNext malloc OK, the next freqInfo begin");
        }
        if (k == 0) {
            StoreBandClass(*band, std::atoi(value));
        } else {
            *BandField(*band, k) = std::atoi(value);
        }
    }
    const int32_t sysmode = band->sysmode;
    if (sysmode == kSysmodeLte) {
        Store(std::move(list), r->lteList);
    } else if (sysmode == kSysmodeNr) {
        Store(std::move(list), r->nrList);
    } else {
        AT_LOG_ERR("the sysmode = [%d] not support", sysmode);
    }
    return 0;
}

}  // namespace atapi::device

extern "C" {

void HfreqInfoFree(HfreqBandInfo *list) {
    while (list != nullptr) {
        HfreqBandInfo *next = list->next;
        std::free(list);
        list = next;
    }
}

void HfreqInfoExFree(HfreqInfoResult *r) {
    if (r == nullptr) return;
    HfreqInfoFree(r->lteList);
    HfreqInfoFree(r->nrList);
    r->lteList = nullptr;
    r->nrList = nullptr;
}

int32_t AtHfreqInfo(uint32_t op, int32_t value, HfreqInfoResult *r) {
    if (op == AT_DEVICE_SET)
        return SendOrLog(kTraceSrc, atapi::comm::kFormatError, Command(kHfreqSet, value), nullptr);
    if (r == nullptr) {
        AT_LOG_ERR("para is error");
        return -1;
    }
    *r = HfreqInfoResult{nullptr, nullptr};
    if (QueryBands(r) != 0) {
        HfreqInfoExFree(r);
        return -1;
    }
    return 0;
}

int32_t AtHfreqHandle(uint32_t op, const int32_t *in, HfreqInfoResult *out) {
    if (op != AT_DEVICE_QUERY && op != AT_DEVICE_SET) {
        AT_LOG_ERR("invalid type %d", static_cast<int32_t>(op));
        return -1;
    }
    if ((op == AT_DEVICE_SET && in == nullptr) || (op == AT_DEVICE_QUERY && out == nullptr)) {
        AT_LOG_ERR("para is error");
        return -1;
    }
    return AtHfreqInfo(op, op == AT_DEVICE_SET ? *in : 0, out);
}

}  // extern "C"
