// Splitting a names text and a values text into one row of nodes.
#include <algorithm>
#include <cstring>

#include "atapi/at_parse.h"
#include "atapi/at_text.h"
#include "link/at_log.h"
#include "parse/at_parse_alloc.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse";

// A row never holds more fields than this.
constexpr uint32_t kMaxFieldsPerRow = 1000;

// Trimmed ends, in this order: a value keeps the blanks inside its quotes.
constexpr char kTrimOrder[] = {'\n', '\r', ' ', '"'};

// A heap copy of one field, trimmed at both ends. Whatever trimming moved
// out of the text is zeroed, so that wiping the string over its length
// clears the whole block.
char *TrimmedFieldCopy(const char *field, size_t len) {
    char *piece = atapi::AtParseStrDup(std::string_view(field, len));
    if (piece == nullptr) return nullptr;
    const size_t blockSize = len + 1;
    for (char ch : kTrimOrder) SplitSpace(piece, static_cast<uint32_t>(blockSize), ch);
    const size_t kept = std::strlen(piece);
    if (kept < len) memset_s(piece + kept, blockSize - kept, 0, blockSize - kept);
    return piece;
}

void ReleasePieces(char **pieces, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        atapi::AtParseFreeString(pieces[i]);
        pieces[i] = nullptr;
    }
}

uint32_t FieldCount(const char *text) {
    return 1U + static_cast<uint32_t>(std::max(AtCountSeparator(text, ','), 0));
}

}  // namespace

extern "C" {

int32_t AtConstParse(char **pieces, uint32_t capacity, const char *text, uint32_t *outCount) {
    if (pieces == nullptr || text == nullptr || outCount == nullptr) return AT_PARSE_NO_ENTRY;
    // The appended comma closes the last field; inside an unclosed quote it
    // does not, and the last field is lost.
    const size_t len = std::strlen(text);
    atapi::ParseText work(len + 2);
    if (work.Get() == nullptr) return AT_PARSE_NO_MEMORY;
    if (sprintf_s(work.Get(), work.Size(), "%s,", text) < 0) return AT_PARSE_NO_ENTRY;

    uint32_t stored = 0;
    bool inQuotes = false;
    const char *fieldStart = work.Get();
    for (const char *p = work.Get(); *p != '\0'; ++p) {
        if (*p == '"') inQuotes = !inQuotes;
        if (*p != ',' || inQuotes) continue;
        if (stored == capacity) break;
        char *piece = TrimmedFieldCopy(fieldStart, static_cast<size_t>(p - fieldStart));
        if (piece == nullptr) {
            ReleasePieces(pieces, stored);
            return AT_PARSE_NO_ENTRY;
        }
        pieces[stored++] = piece;
        fieldStart = p + 1;
    }
    *outCount = stored;
    return AT_PARSE_OK;
}

AtCmdParseNode *GreatLinkListAt(char **names, char **values, uint32_t count) {
    if (names == nullptr || values == nullptr) {
        AT_LOG_ERR("the modeName or modeValue is NULL\n");
        return nullptr;
    }
    if (count > kMaxFieldsPerRow) {
        AT_LOG_ERR("the modeNumber out of range, modeNumber is %d\n", static_cast<int>(count));
        return nullptr;
    }
    AtCmdParseNode *first = nullptr;
    AtCmdParseNode **link = &first;
    for (uint32_t i = 0; i < count; ++i) {
        AtCmdParseNode *node = atapi::AtParseNewNode();
        if (node == nullptr) {
            // The strings stay with the caller: release the bare nodes only.
            while (first != nullptr) {
                AtCmdParseNode *next = first->nextField;
                atapi::AtParseRelease(first, sizeof(*first));
                first = next;
            }
            AT_LOG_ERR("malloc failed\n");
            return nullptr;
        }
        node->atFieldName = names[i];
        node->atFieldValue = values[i];
        *link = node;
        link = &node->nextField;
    }
    return first;
}

int32_t ParseField(AtCmdParseNode **out, const char *names, const char *values) {
    if (names == nullptr) return AT_PARSE_NO_ENTRY;
    if (values == nullptr || out == nullptr) {
        AT_LOG_ERR("the atValueStr or result is NULL\n");
        return AT_PARSE_BAD_ARG;
    }
    const uint32_t count = std::max(FieldCount(names), FieldCount(values));
    atapi::ParseStringArray nameArray(count);
    atapi::ParseStringArray valueArray(count);
    if (nameArray.Get() == nullptr || valueArray.Get() == nullptr) return AT_PARSE_NO_MEMORY;

    uint32_t stored = 0;
    int32_t status = AtConstParse(nameArray.Get(), count, names, &stored);
    if (status == AT_PARSE_OK) status = AtConstParse(valueArray.Get(), count, values, &stored);
    if (status != AT_PARSE_OK) return status;

    AtCmdParseNode *row = GreatLinkListAt(nameArray.Get(), valueArray.Get(), count);
    if (row == nullptr) return AT_PARSE_BAD_ARG;
    nameArray.DisownStrings();
    valueArray.DisownStrings();
    *out = row;
    return AT_PARSE_OK;
}

}  // extern "C"
