// Storing the fields of a parsed reply into a caller's record through a
// parameter list (name, conversion code, destination, range).
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "atapi/at_parse.h"
#include "atapi/at_text.h"
#include "link/at_log.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_utils";

// Numeric conversions; each stores the converted value in its own width.
// The text-to-number rules are those of atoi/atol/atoll (strtol without an
// end check); narrowing keeps the low bits, as a C cast does.
template <typename Stored>
void StoreAsInt(const char *text, void *dest) {
    *static_cast<Stored *>(dest) = static_cast<Stored>(std::strtol(text, nullptr, 10));
}

void StoreAsULong(const char *text, void *dest) {
    *static_cast<uint32_t *>(dest) = static_cast<uint32_t>(std::strtoll(text, nullptr, 10));
}

void StoreAsLLong(const char *text, void *dest) {
    errno = 0;
    *static_cast<int64_t *>(dest) = std::strtoll(text, nullptr, 10);
    if (errno != 0) AT_LOG_ERR("strtoll, errCode[%d]", errno);
}

struct Converter {
    void (*store)(const char *text, void *dest);
    bool isUnsigned;  // refuses a negative minimum
};

// Indexed by conversion code; code 0 (string) is handled apart.
constexpr Converter kConverters[] = {
    {nullptr, false},              // AT_TYPE_STRING
    {StoreAsInt<int8_t>, false},   // AT_TYPE_CHAR
    {StoreAsInt<uint8_t>, true},   // AT_TYPE_UCHAR
    {StoreAsInt<int32_t>, false},  // AT_TYPE_INT
    {StoreAsInt<uint32_t>, true},  // AT_TYPE_UINT
    {StoreAsInt<int32_t>, false},  // AT_TYPE_LONG
    {StoreAsLLong, false},         // AT_TYPE_LLONG
    {StoreAsULong, true},          // AT_TYPE_ULONG
};
constexpr uint32_t kConverterCount = sizeof(kConverters) / sizeof(kConverters[0]);
static_assert(kConverterCount == AT_TYPE_ULONG + 1);

const AtParamDesc *FindParam(const char *name, const AtParamDesc *params, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        if (params[i].name != nullptr && std::strcmp(params[i].name, name) == 0) return &params[i];
    }
    return nullptr;
}

}  // namespace

extern "C" {

void AtParseNode(const AtCmdParseNode *node, const AtParamDesc *params, uint32_t paramCount) {
    if (node == nullptr || node->atFieldName == nullptr || node->atFieldValue == nullptr ||
        params == nullptr) {
        return;
    }
    const char *name = node->atFieldName;
    const char *value = node->atFieldValue;
    const AtParamDesc *param = FindParam(name, params, paramCount);
    if (param == nullptr) {
        AT_LOG_ERR("can not find [%s] in paramList", name);
        return;
    }
    if (param->dest == nullptr || param->type >= kConverterCount) return;
    const Converter &converter = kConverters[param->type];
    if (converter.isUnsigned && param->minVal < 0) {
        AT_LOG_ERR("minVal:[%lld] error", static_cast<long long>(param->minVal));
        return;
    }
    if (param->type == AT_TYPE_STRING) {
        // Truncation is accepted: the record's field is as long as it is.
        if (param->size > 1) {
            const size_t kept = strnlen(value, param->size - 1);
            auto *dest = static_cast<char *>(param->dest);
            memcpy_s(dest, param->size, value, kept);
            dest[kept] = '\0';
        }
        return;
    }
    if (AtCheckValidNum(value, param->minVal, param->maxVal) != 1) {
        AT_LOG_ERR("[%s]=[%s], out of range", name, value);
        return;
    }
    converter.store(value, param->dest);
}

int32_t AtParseNodeFromBuf(const AtCmdDesc *desc, char *replyText, const AtParamDesc *params,
                           uint32_t paramCount) {
    if (desc == nullptr || replyText == nullptr || params == nullptr ||
        desc->parsePrefix == nullptr) {
        return -1;
    }
    AtCmdParseNode *result = nullptr;
    const int32_t status =
        ParseAtCmdFunc(&result, desc->parsePrefix, replyText, desc->moduleId, desc->parseMode);
    if (status != AT_PARSE_OK || result == nullptr) {
        AT_LOG_ERR("at_cmd_parse, ret[%d]", status);
        FreeAtCmd(result);
        return -1;
    }
    // Only the first row: callers that need more rows walk the result.
    for (const AtCmdParseNode *node = result; node != nullptr; node = node->nextField) {
        AtParseNode(node, params, paramCount);
    }
    FreeAtCmd(result);
    return 0;
}

}  // extern "C"
