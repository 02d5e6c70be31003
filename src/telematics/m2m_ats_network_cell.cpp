// Cell monitoring: the serving cell (^MONSC) and the neighbour cells
// (^MONNC). The reply's positional fields mean different things per radio
// access technology; which field holds what is kept in the tables below.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "atapi/at_text.h"
#include "atapi/m2m_ats_network.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "telematics/m2m_ats_network_exchange.h"
#include "telematics/m2m_ats_network_read.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;
using atapi::call::CallReply;
using atapi::network::kRetValFailed;
using atapi::network::ReplyOutcome;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_network";

constexpr CommandDescription kMonsc = Reads("AT^MONSC", "^MONSC:", "^MONSC", module::kNetwork);
constexpr CommandDescription kMonnc = Reads("AT^MONNC", "^MONNC:", "^MONNC", module::kNetwork);

constexpr char kNoService[] = "NONE";

// ---- Serving cell -----------------------------------------------------------

// The serving-cell fields that are read, as texts (zero-filled before use).
enum Slot : size_t { kRat, kArfcn, kValue4, kValue5, kValue6, kValue7, kSlotCount };
constexpr size_t kSlotSize = 12;  // 11 characters
struct SlotName {
    const char *name;
    size_t capacity;
};
constexpr std::array<SlotName, kSlotCount> kSlots{{{"rat", 9},  // 8 characters
                                                   {"arfcn", kSlotSize},
                                                   {"value4", kSlotSize},
                                                   {"value5", kSlotSize},
                                                   {"value6", kSlotSize},
                                                   {"value7", kSlotSize}}};
using ServingTexts = std::array<std::array<char, kSlotSize>, kSlotCount>;

enum class Channel { kSigned, kUnsigned };

// Where each technology reports its channel, cell identity and area code.
struct ServingMap {
    const char *ratText;
    int32_t rat;
    Slot arfcn;
    Channel channel;
    Slot cellId;  // hexadecimal
    Slot lac;     // hexadecimal
};
constexpr std::array<ServingMap, 5> kServingMaps{{
    {"GSM", AT_CELL_RAT_GSM, kValue4, Channel::kSigned, kValue6, kValue7},
    {"WCDMA", AT_CELL_RAT_WCDMA, kArfcn, Channel::kSigned, kValue5, kValue6},
    {"TD_SCDMA", AT_CELL_RAT_TD_SCDMA, kArfcn, Channel::kSigned, kValue6, kValue7},
    {"LTE", AT_CELL_RAT_LTE, kArfcn, Channel::kSigned, kValue4, kValue6},
    {"NR", AT_CELL_RAT_NR, kArfcn, Channel::kUnsigned, kValue5, kValue7},
}};

// Hexadecimal text of at most 8 digits into *out; an empty text gives 0.
int32_t CellHexToDec(const char *text, uint32_t *out) {
    if (text == nullptr || out == nullptr) {
        AT_LOG_ERR("CellHexToDec NULL param\n");
        return -1;
    }
    const size_t len = std::strlen(text);
    if (len > 8) {
        AT_LOG_ERR("CellHexToDec, the hex is too loong, len = %u\n", static_cast<unsigned>(len));
        return -1;
    }
    uint32_t value = 0;
    for (size_t i = 0; i < len; ++i) {
        const char c = text[i];
        uint32_t digit = 0;
        if (c >= '0' && c <= '9') {
            digit = static_cast<uint32_t>(c - '0');
        } else if (c >= 'a' && c <= 'f') {
            digit = static_cast<uint32_t>(c - 'a' + 10);
        } else if (c >= 'A' && c <= 'F') {
            digit = static_cast<uint32_t>(c - 'A' + 10);
        } else {
            AT_LOG_ERR("CellHexToDec not in 0~f\n");
            return -1;
        }
        value = value * 16 + digit;
    }
    *out = value;
    return 0;
}

bool HexInto(const char *text, int32_t &member) {
    uint32_t value = 0;
    if (CellHexToDec(text, &value) != 0) return false;
    member = static_cast<int32_t>(value);
    return true;
}

bool ChannelInto(const char *text, Channel channel, int32_t &member) {
    if (channel == Channel::kSigned) {
        member = SafeStrAtoi(text);
        return true;
    }
    char *end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(text, &end, 10);
    if (errno != 0 || end == text) {
        AT_LOG_ERR("arfcn-nr str invalid: %s", text);
        return false;
    }
    member = static_cast<int32_t>(value);
    return true;
}

// The fields of the first row into texts; a value too long for its slot
// ends the walk, the copies made so far stand.
void CopyServingFields(const AtCmdParseNode *row, ServingTexts &texts) {
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        if (node->atFieldName == nullptr || node->atFieldValue == nullptr) continue;
        const auto slot = std::find_if(kSlots.begin(), kSlots.end(), [node](const SlotName &s) {
            return std::strcmp(s.name, node->atFieldName) == 0;
        });
        if (slot == kSlots.end()) continue;
        char *dest = texts[static_cast<size_t>(slot - kSlots.begin())].data();
        const errno_t ret =
            strncpy_s(dest, slot->capacity, node->atFieldValue, std::strlen(node->atFieldValue));
        if (ret != 0) {
            AT_LOG_ERR("string copy fail, ret = %d\n", ret);
            return;
        }
    }
}

int32_t MonscResultConfig(const ServingTexts &texts, MonscInfo &out) {
    AT_LOG_INFO("MonscResultConfig Enter\n");
    out = MonscInfo{};
    out.errorId = AT_ERRID_NOT_COMPLETED;
    const char *ratText = texts[kRat].data();
    if (std::strcmp(ratText, kNoService) == 0) {
        out.errorId = AT_MONSC_ERRID_NO_SERVICE;
        AT_LOG_ERR("MonscResultConfig, RAT is NONE\n");
        return -1;
    }
    const auto map = std::find_if(
        kServingMaps.begin(), kServingMaps.end(),
        [ratText](const ServingMap &m) { return std::strcmp(m.ratText, ratText) == 0; });
    if (map == kServingMaps.end()) {
        AT_LOG_ERR("MonscResultConfig, invalid RAT\n");
        return -1;
    }
    out.rat = map->rat;
    const bool mapped = ChannelInto(texts[map->arfcn].data(), map->channel, out.arfcn) &&
                        HexInto(texts[map->cellId].data(), out.cellId) &&
                        HexInto(texts[map->lac].data(), out.lac);
    if (!mapped) {
        AT_LOG_ERR("MonscResultConfig, failed.\n");
        return -1;
    }
    AT_LOG_INFO("MonscResultConfig out, success\n");
    return 0;
}

// ---- Neighbour cells --------------------------------------------------------

// Which field of a neighbour line holds each technology's channel.
struct NeighborMap {
    const char *ratText;
    int32_t rat;
    const char *channelField;
};
constexpr std::array<NeighborMap, 5> kNeighborMaps{{
    {"GSM", AT_CELL_RAT_GSM, "value2"},
    {"WCDMA", AT_CELL_RAT_WCDMA, "value1"},
    {"TD_SCDMA", AT_CELL_RAT_TD_SCDMA, "value1"},
    {"LTE", AT_CELL_RAT_LTE, "value1"},
    {"NR", AT_CELL_RAT_NR, "value1"},
}};
// The order in which the technologies fill the list: the newest first.
constexpr std::array<int32_t, 5> kSelectOrder{AT_CELL_RAT_NR, AT_CELL_RAT_LTE, AT_CELL_RAT_TD_SCDMA,
                                              AT_CELL_RAT_WCDMA, AT_CELL_RAT_GSM};

struct Bucket {
    uint32_t count = 0;
    std::array<MonncNeighbor, AT_MONNC_MAX_NEIGHBORS> cells{};
};
using Buckets = std::array<Bucket, kNeighborMaps.size()>;

const char *FieldValue(const AtCmdParseNode *row, const char *name) {
    const AtCmdParseNode *node = atapi::call::FindField(row, name);
    return node == nullptr ? nullptr : node->atFieldValue;
}

enum class LineRead { kStored, kNoNeighbors, kFailed };

LineRead MonncResultConfig(const AtCmdParseNode *row, Buckets &buckets) {
    char ratText[9] = {};
    const char *rat = FieldValue(row, "rat");
    if (rat != nullptr) {
        const errno_t ret = strncpy_s(ratText, sizeof ratText, rat, std::strlen(rat));
        if (ret != 0) {
            AT_LOG_ERR("string copy falied. ret = %d\n", ret);
            return LineRead::kFailed;
        }
    }
    if (std::strcmp(ratText, kNoService) == 0) return LineRead::kNoNeighbors;
    AT_LOG_INFO("MonncResultConfig Enter\n");
    const auto map = std::find_if(
        kNeighborMaps.begin(), kNeighborMaps.end(),
        [&ratText](const NeighborMap &m) { return std::strcmp(m.ratText, ratText) == 0; });
    if (map == kNeighborMaps.end()) {
        AT_LOG_ERR("MonncResultConfig, invalid rat(%s)\n", ratText);
        return LineRead::kFailed;
    }
    Bucket &bucket = buckets[static_cast<size_t>(map->rat)];
    if (bucket.count < AT_MONNC_MAX_NEIGHBORS) {
        bucket.cells[bucket.count++] = {map->rat, SafeStrAtoi(FieldValue(row, map->channelField))};
    }
    AT_LOG_INFO("MonncResultConfig out, success\n");
    return LineRead::kStored;
}

void MonncResultSelect(const Buckets &buckets, MonncInfo &out) {
    AT_LOG_INFO("MonncResultSelect Enter\n");
    out = MonncInfo{};
    for (const int32_t rat : kSelectOrder) {
        const Bucket &bucket = buckets[static_cast<size_t>(rat)];
        if (bucket.count == 0) continue;
        const uint32_t remain = AT_MONNC_MAX_NEIGHBORS - out.count;
        const uint32_t take = std::min(bucket.count, remain);
        std::copy_n(bucket.cells.begin(), take, out.neighbors + out.count);
        out.count += take;
        if (take == remain) {
            AT_LOG_INFO("MonncResultSelect neighborList full, ret:%d\n", 0);
            break;
        }
        AT_LOG_INFO("MonncResultSelect neighborList, ret:%d, remainCnt:%u\n", 0, remain - take);
    }
    AT_LOG_INFO("MonncResultSelect out, success\n");
}

}  // namespace

namespace atapi::network {

int32_t MonscResultParse(char *reply, MonscInfo &out) {
    AT_LOG_INFO("MonscResultParse Enter\n");
    ServingTexts texts{};
    out = MonscInfo{};
    out.errorId = AT_ERRID_NOT_COMPLETED;
    {
        int32_t status = 0;
        const ParseRows rows = ParseReply(kMonsc, reply, &status);
        if (rows.Get() == nullptr) {
            AT_LOG_ERR("MonscResultParse, ParseAtCmdFunc failed result is NULL\n");
            return -1;
        }
        CopyServingFields(rows.Get(), texts);
    }
    const int32_t ret = MonscResultConfig(texts, out);
    if (ret != 0) {
        AT_LOG_ERR("MonscResultParse, MonscResultConfig falied ret = %d\n", ret);
        return -1;
    }
    AT_LOG_INFO("MonscResultParse out, success\n");
    return 0;
}

int32_t MonncResultParse(char *reply, MonncInfo &out) {
    AT_LOG_INFO("MonncResultParse Enter\n");
    Buckets buckets{};
    {
        int32_t status = 0;
        const ParseRows rows = ParseReply(kMonnc, reply, &status);
        if (rows.Get() == nullptr) {
            AT_LOG_ERR("MonncResultParse, ParseAtCmdFunc failed result is NULL\n");
            return -1;
        }
        for (const AtCmdParseNode *row = rows.Get(); row != nullptr; row = row->nextRow) {
            const LineRead read = MonncResultConfig(row, buckets);
            if (read == LineRead::kFailed) return -1;
            if (read == LineRead::kNoNeighbors) {
                out = MonncInfo{};
                AT_LOG_INFO("MonncResultParse NONE neighbor list, success out\n");
                return 0;
            }
        }
    }
    MonncResultSelect(buckets, out);
    AT_LOG_INFO("MonncResultParse out, success\n");
    return 0;
}

}  // namespace atapi::network

extern "C" {

int32_t AtGetMonsc(MonscInfo *out) {
    AT_LOG_INFO("AtGetMonsc Enter\n");
    if (out == nullptr) {
        AT_LOG_ERR("AtGetMonsc invalid paramter\n");
        return -1;
    }
    out->errorId = AT_ERRID_NOT_COMPLETED;
    CallReply reply(Command(kMonsc), "MONSC snprintf_s ret:%d\n");
    int32_t ret = ReplyOutcome(reply, "AtGetMonsc", kRetValFailed);
    if (ret == 0) {
        ret = atapi::network::MonscResultParse(reply.Text(), *out);
        if (ret == 0) {
            out->errorId = AT_ERRID_OK;
        } else {
            AT_LOG_ERR("AtGetMonsc, MonscResultParse falied ret = %d\n", ret);
        }
    }
    AT_LOG_INFO("AtGetMonsc out,ret = %d\n", ret);
    return ret;
}

int32_t AtGetMonnc(MonncInfo *out) {
    AT_LOG_INFO("AtGetMonnc Enter\n");
    if (out == nullptr) {
        AT_LOG_ERR("AtGetMonnc invalid paramter\n");
        return -1;
    }
    CallReply reply(Command(kMonnc), "MONNC, snprintf_s ret:%d\n");
    int32_t ret = ReplyOutcome(reply, "AtGetMonnc", kRetValFailed);
    if (ret == 0) {
        ret = atapi::network::MonncResultParse(reply.Text(), *out);
        if (ret != 0) AT_LOG_ERR("AtGetMonnc, MonncResultParse falied ret = %d\n", ret);
    }
    AT_LOG_INFO("AtGetMonnc out,ret = %d\n", ret);
    return ret;
}

}  // extern "C"
