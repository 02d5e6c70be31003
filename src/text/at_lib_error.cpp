// Maps the final line of an error reply ("+CME ERROR: 10", "+CME ERROR: SIM
// not inserted", "+CMS ERROR: 310") to the library's error id, in two steps:
// decode the line into {report type, numeric cause}, then look the cause up.
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <span>

#include "atapi/at_text.h"
#include "link/at_log.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_lib";

constexpr int32_t kUnmappedId = 65535;
constexpr int32_t kUnknownCauseId = -1;

struct CodeToId {
    int32_t code;
    int32_t id;
};

// Searched in this order; a code not listed maps to kUnknownCauseId.
constexpr CodeToId kCmeCodeToId[] = {
    {10, 13},
    {13, 13},
    {11, 11},
    {12, 12},
    {16, -3},
    {30, 30},
    {14, 314},
    {4, 4},
    {100, 100},
    // Causes 276..296 keep their number.
    {276, 276},
    {277, 277},
    {278, 278},
    {279, 279},
    {280, 280},
    {281, 281},
    {282, 282},
    {283, 283},
    {284, 284},
    {285, 285},
    {286, 286},
    {287, 287},
    {288, 288},
    {289, 289},
    {290, 290},
    {291, 291},
    {292, 292},
    {293, 293},
    {294, 294},
    {295, 295},
    {296, 296},
};
static_assert(std::size(kCmeCodeToId) == 30);

// The same failures share an id whether the module reports them as CME or CMS.
constexpr CodeToId kCmsCodeToId[] = {
    {310, 13}, {313, 13}, {311, 11}, {316, 12}, {314, 314},
};

int32_t LookUp(std::span<const CodeToId> rows, int32_t code) {
    for (const CodeToId &row : rows) {
        if (row.code == code) return row.id;
    }
    return kUnknownCauseId;
}

enum class ReportType { kUnparsed, kOther, kCme, kCms };

struct DecodedError {
    ReportType type;
    int32_t code;
};

// The CME code of a cause given as text, or nullptr when the text is unknown.
const char *CmeCodeOfText(const char *cause) {
    for (const AtCmeErrorText *row = g_atCmeErrorTexts; row->text != nullptr; ++row) {
        if (std::strcmp(row->text, cause) == 0) return row->code;
    }
    return nullptr;
}

struct FreeDeleter {
    void operator()(char *p) const { std::free(p); }
};

DecodedError DecodeErrorReply(const char *text) {
    std::unique_ptr<char, FreeDeleter> copy(strdup(text));
    if (copy == nullptr) return {ReportType::kUnparsed, 0};
    char *colon = std::strchr(copy.get(), ':');
    if (colon == nullptr) return {ReportType::kUnparsed, 0};

    *colon = '\0';
    const char *head = copy.get();
    char *cause = colon + 1;
    SplitSpace(cause, static_cast<uint32_t>(std::strlen(cause) + 1), ' ');
    AT_LOG_INFO("parse error str to id\n");

    // An empty cause counts as the number 0.
    const bool numericCause = AtTestStrNum(cause) == 0;
    if (std::strstr(head, "+CME") != nullptr) {
        const char *code = numericCause ? cause : CmeCodeOfText(cause);
        if (code != nullptr) return {ReportType::kCme, std::atoi(code)};
    }
    if (std::strstr(head, "+CMS") != nullptr && numericCause) {
        return {ReportType::kCms, std::atoi(cause)};
    }
    return {ReportType::kOther, 0};
}

}  // namespace

extern "C" {

// clang-format off
constexpr AtCmeErrorText g_atCmeErrorTexts[] = {
    {"0", "phone failure"},
    {"1", "no connection to phone"},
    {"2", "phone adaptor link reserved"},
    {"3", "operation not allowed"},
    {"4", "operation not supported"},
    {"5", "PH-SIM PIN required"},
    {"6", "PH-FSIM PIN required"},
    {"7", "PH-FSIM PUK required"},
    {"10", "SIM not inserted"},
    {"11", "SIM PIN required"},
    {"12", "SIM PUK required"},
    {"17", "SIM PIN2 required"},
    {"18", "SIM PUK2 required"},
    {"13", "SIM failure"},
    {"14", "SIM busy"},
    {"15", "SIM wrong"},
    {"269", "SIM2 not inserted"},
    {"265", "SIM2 PIN required"},
    {"266", "SIM2 PUK required"},
    {"267", "SIM2 PIN2 required"},
    {"268", "SIM2 PUK2 required"},
    {"270", "SIM2 failure"},
    {"271", "SIM2 busy"},
    {"272", "SIM2 wrong"},
    {"16", "incorrect password"},
    {"20", "memory full"},
    {"21", "invalid index"},
    {"22", "not found"},
    {"23", "memory failure"},
    {"24", "text string too long"},
    {"25", "invalid characters in text string"},
    {"26", "dial string too long"},
    {"27", "invalid characters in dial string"},
    {"30", "no network service"},
    {"31", "network timeout"},
    {"32", "network not allowed - emergency calls only"},
    {"40", "network personalization PIN required"},
    {"41", "network personalization PUK required"},
    {"42", "network subset personalization PIN required"},
    {"43", "network subset personalization PUK required"},
    {"44", "service provider personalization PIN required"},
    {"45", "service provider personalization PUK required"},
    {"46", "corporate personalization PIN required"},
    {"47", "corporate personalization PUK required"},
    {"100", "unknown"},
    {"103", "Illegal MESSAGE"},
    {"106", "Illegal ME"},
    {"107", "GPRS services not allowed"},
    {"111", "PLMN not allowed"},
    {"112", "Location area not allowed"},
    {"113", "Roaming not allowed in this location area"},
    {"132", "service option not supported"},
    {"133", "requested service option not subscribed"},
    {"134", "service option temporarily out of order"},
    {"148", "unspecified GPRS error"},
    {"149", "PDP authentication failure"},
    {"150", "invalid mobile class"},
    {"257", "network rejected request"},
    {"258", "retry operation"},
    {"259", "invalid deflected to number"},
    {"260", "deflected to own number"},
    {"261", "unknown subscriber"},
    {"262", "service not available"},
    {"263", "unknown class specified"},
    {"264", "unknown network message"},
    {"275", "invalid parameter combination"},
    {"273", "minimum TFTs per PDP address violated"},
    {"274", "TFT precedence index not unique"},
    {"65280", "call index error"},
    {"65281", "Call state error"},
    {"65282", "System state error"},
    {"65284", "SPN file wrong"},
    {"65285", "SPN file access denied"},
    {"65286", "SPN file not exist"},
    {"65287", "another SPN query operation still not finished "},
    {"65288", "NV item inactive"},
    {nullptr, nullptr},
};
// clang-format on

int32_t ErrorStrToErrorId(const char *text) {
    AT_LOG_INFO("in\n");
    if (text == nullptr) return kUnmappedId;

    const DecodedError decoded = DecodeErrorReply(text);
    int32_t id = kUnmappedId;
    switch (decoded.type) {
        case ReportType::kUnparsed:
            return kUnmappedId;
        case ReportType::kOther:
            AT_LOG_INFO("other type\n");
            return kUnmappedId;
        case ReportType::kCme:
            AT_LOG_INFO("cme error id is %d\n", decoded.code);
            id = LookUp(kCmeCodeToId, decoded.code);
            break;
        case ReportType::kCms:
            AT_LOG_INFO("cms error id is %d\n", decoded.code);
            id = LookUp(kCmsCodeToId, decoded.code);
            break;
    }
    AT_LOG_INFO("out, ret is %d\n", id);
    return id;
}

}  // extern "C"

namespace {

// The array's bound comes from the public declaration, so a missing row would
// be zero-filled silently: check that exactly the last row ends the table.
constexpr bool CmeTextTableIsComplete() {
    constexpr size_t kRows = std::size(g_atCmeErrorTexts);
    for (size_t i = 0; i + 1 < kRows; ++i) {
        if (g_atCmeErrorTexts[i].code == nullptr || g_atCmeErrorTexts[i].text == nullptr) {
            return false;
        }
    }
    return kRows == 77 && g_atCmeErrorTexts[kRows - 1].text == nullptr;
}
static_assert(CmeTextTableIsComplete());

}  // namespace
