#include "telematics/m2m_ats_v2x_read.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "atapi/at_text.h"
#include "link/at_log.h"
#include "platform/bounded.h"

namespace atapi::v2x {

namespace {

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_v2x";
constexpr char kPhyTag[] = "AtsV2xGetPhyPacketStats";
constexpr char kRssiTag[] = "AtsV2xGetRssi";
constexpr char kRsrpTag[] = "AtsV2xGetRsrp";
constexpr size_t kRsrpTextSize = 1532;

template <typename Record, typename Value>
struct NamedField {
    const char *name;
    Value Record::*member;
};

constexpr NamedField<AtsV2xPdcpPacketStat, int32_t> kPdcpFields[] = {
    {"tx_bytes", &AtsV2xPdcpPacketStat::txBytes},
    {"rx_bytes", &AtsV2xPdcpPacketStat::rxBytes},
    {"tx_packets", &AtsV2xPdcpPacketStat::txPackets},
    {"rx_packets", &AtsV2xPdcpPacketStat::rxPackets},
};
constexpr NamedField<AtsV2xPhyPacketStats, uint32_t> kPhyFields[] = {
    {"FirSADecSucSum", &AtsV2xPhyPacketStats::firSaDecSucSum},
    {"SecSADecSucSum", &AtsV2xPhyPacketStats::secSaDecSucSum},
    {"TwiSADecSucSum", &AtsV2xPhyPacketStats::twiSaDecSucSum},
    {"ULPackSum", &AtsV2xPhyPacketStats::ulPackSum},
    {"DLPackSum", &AtsV2xPhyPacketStats::dlPackSum},
    {"DSPVersion", &AtsV2xPhyPacketStats::dspVersion},
};
constexpr NamedField<AtsV2xRssiInfo, int32_t> kRssiFields[] = {
    {"DAMainRSSIMax", &AtsV2xRssiInfo::daMainRssiMax},
    {"DADiversityRSSIMax", &AtsV2xRssiInfo::daDiversityRssiMax},
};

// The log lines of a counter walk.
struct WalkTexts {
    const char *invalid;  // a node without a name or value
    const char *noMatch;  // a name of no field; may take the tag
    const char *tag;
};
constexpr WalkTexts kPdcpTexts{"atParseResult Invalid.", "not match.", ""};
constexpr WalkTexts kPhyTexts{"[%s] atParseResult Invalid.", "[%s] no match", kPhyTag};
constexpr WalkTexts kRssiTexts{"[%s] atParseResult Invalid.", "[%s] no match", kRssiTag};

int Convert(const char *text, int32_t &out) { return ToSigned(text, out); }
int Convert(const char *text, uint32_t &out) { return ToUnsigned(text, out); }

// Every node must carry a name and a value; the value is converted before
// its name is looked at, so a bad number fails even under an unknown name.
template <typename Record, typename Value, size_t N>
int32_t StoreCounters(const AtCmdParseNode *row, const NamedField<Record, Value> (&fields)[N],
                      const WalkTexts &texts, Record &record) {
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        if (node->atFieldName == nullptr || node->atFieldValue == nullptr) {
            AT_LOG_ERR(texts.invalid, texts.tag);
            return -1;
        }
        Value value{};
        const int err = Convert(node->atFieldValue, value);
        if (err != 0) {
            AT_LOG_ERR("errno = %d", err);
            return -1;
        }
        bool matched = false;
        for (const auto &field : fields) {
            if (SafeStrCmp(node->atFieldName, field.name) == 0) {
                record.*field.member = value;
                matched = true;
                break;
            }
        }
        if (!matched) AT_LOG_ERR(texts.noMatch, texts.tag);
    }
    return 0;
}

bool IsNamed(const AtCmdParseNode *node, const char *name) {
    return SafeStrCmp(node->atFieldName, name) == 0;
}

}  // namespace

int ToSigned(const char *text, int32_t &out) {
    errno = 0;
    const long value = std::strtol(text, nullptr, 10);
    if (errno != 0) return errno;
    if (value < INT32_MIN || value > INT32_MAX) return ERANGE;
    out = static_cast<int32_t>(value);
    return 0;
}

int ToUnsigned(const char *text, uint32_t &out) {
    errno = 0;
    const unsigned long value = std::strtoul(text, nullptr, 10);
    if (errno != 0) return errno;
    // A negative text comes back as its wrapped magnitude.
    const bool negative = text[std::strspn(text, " \t\n\v\f\r")] == '-';
    const unsigned long long magnitude = negative ? 0UL - value : value;
    if (magnitude > UINT32_MAX) return ERANGE;
    out = static_cast<uint32_t>(value);
    return 0;
}

int32_t ReadMode(const AtCmdParseNode *row, AtsV2xModeCfgInfo &info) {
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        if (!IsNamed(node, "mode") || node->atFieldValue == nullptr) continue;
        const int err = ToSigned(node->atFieldValue, info.mode);
        if (err != 0) {
            AT_LOG_ERR("[%s] strtol failed, errno = %d", "AtsV2xModeCfg", err);
            return -1;
        }
    }
    return 0;
}

int32_t ReadPdcpStats(const AtCmdParseNode *row, AtsV2xPdcpPacketStat &stat) {
    return StoreCounters(row, kPdcpFields, kPdcpTexts, stat);
}

int32_t ReadPhyStats(const AtCmdParseNode *row, AtsV2xPhyPacketStats &stats) {
    return StoreCounters(row, kPhyFields, kPhyTexts, stats);
}

int32_t ReadRssi(const AtCmdParseNode *row, AtsV2xRssiInfo &info) {
    return StoreCounters(row, kRssiFields, kRssiTexts, info);
}

int32_t ReadRsrp(const AtCmdParseNode *first, AtsV2xRsrpInfo &info) {
    if (first == nullptr || first->atFieldValue == nullptr || first->nextRow == nullptr) {
        AT_LOG_ERR("[%s] lastNode error.", kRsrpTag);
        return -1;
    }
    int32_t resultCount = 0;
    if (ToSigned(first->atFieldValue, resultCount) != 0 || resultCount <= 0) {
        AT_LOG_ERR("[%s] resultMsgNum error.", kRsrpTag);
        return -1;
    }
    const AtCmdParseNode *values = first->nextRow;
    if (values->atFieldValue == nullptr) {
        AT_LOG_ERR("[%s] atFieldValue is NULL.", kRsrpTag);
        return -1;
    }
    char text[kRsrpTextSize];
    if (strcpy_s(text, sizeof text, values->atFieldValue) != 0) {
        AT_LOG_ERR("[%s] strncpy_s error", kRsrpTag);
        return -1;
    }
    const char *tokens[ATS_V2X_RSRP_NUM] = {};
    uint32_t count = 0;
    char *save = nullptr;
    for (char *token = strtok_r(text, " ", &save); token != nullptr;
         token = strtok_r(nullptr, " ", &save)) {
        if (count < ATS_V2X_RSRP_NUM) tokens[count] = token;
        ++count;
    }
    if (count != ATS_V2X_RSRP_NUM) {
        AT_LOG_ERR("[%s] rsrp result count error. count:%u", kRsrpTag, count);
        return -1;
    }
    for (uint32_t i = 0; i < ATS_V2X_RSRP_NUM; ++i) {
        const int err = ToSigned(tokens[i], info.values[i]);
        if (err != 0) {
            AT_LOG_ERR("errno = %d", err);
            return -1;
        }
    }
    return 0;
}

}  // namespace atapi::v2x

extern "C" {

int32_t AtsV2xGetCbrInfo(const AtCmdParseNode *list, AtsV2xCbrInfo *v2xCbrInfo) {
    using namespace atapi::v2x;
    if (list == nullptr || v2xCbrInfo == nullptr) {
        AT_LOG_ERR("Parameter is NULL");
        return -1;
    }
    for (const AtCmdParseNode *node = list; node != nullptr; node = node->nextField) {
        int32_t *dest = nullptr;
        if (IsNamed(node, "cbr-pssch")) {
            if (node->atFieldValue == nullptr) {
                AT_LOG_ERR("cbr-pssch is NULL");
                return -1;
            }
            dest = &v2xCbrInfo->cbrPssch;
        } else if (IsNamed(node, "cbr-pscch") && node->atFieldValue != nullptr) {
            dest = &v2xCbrInfo->cbrPscch;
        } else {
            continue;
        }
        const int err = ToSigned(node->atFieldValue, *dest);
        if (err != 0) {
            AT_LOG_ERR("errno = %d", err);
            return -1;
        }
        if (dest == &v2xCbrInfo->cbrPscch) v2xCbrInfo->cbrPscchValid = 1;
    }
    return 0;
}

int32_t AtsV2xGetAccessSyncInfo(const AtCmdParseNode *list, AtsV2xSyncInfo *v2xSyncInfo) {
    using namespace atapi::v2x;
    if (list == nullptr || v2xSyncInfo == nullptr) {
        AT_LOG_ERR("Parameter is NULL");
        return -1;
    }
    static constexpr NamedField<AtsV2xSyncInfo, int32_t> kSyncFields[] = {
        {"source", &AtsV2xSyncInfo::source},
        {"state", &AtsV2xSyncInfo::state},
        {"earfcn", &AtsV2xSyncInfo::earfcn},
    };
    for (const AtCmdParseNode *node = list; node != nullptr; node = node->nextField) {
        if (node->atFieldName == nullptr || node->atFieldValue == nullptr) continue;
        for (const auto &field : kSyncFields) {
            if (!IsNamed(node, field.name)) continue;
            const int err = ToSigned(node->atFieldValue, v2xSyncInfo->*field.member);
            if (err != 0) {
                AT_LOG_ERR("errno = %d", err);
                return -1;
            }
        }
    }
    return 0;
}

}  // extern "C"
