// The template parser: replies of the shape "<prefix>: v1,v2,..." (one row per
// prefix occurrence), and the two small special forms beside it.
#include "atapi/at_parse.h"

#include <cstring>
#include <string_view>

#include "link/at_log.h"
#include "parse/at_parse_alloc.h"
#include "parse/at_parse_fields.h"
#include "parse/at_parse_rows.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse";

// True when text begins with prefix: most replies do, and then the prefix is
// known to occur without a search.
bool StartsWith(const char *text, const char *prefix) {
    while (*prefix != '\0' && *prefix == *text) ++prefix, ++text;
    return *prefix == '\0';
}

// Parses the rows of a reply behind its first ':' (replyColon) with the
// field names behind the template's first ':'. Rows are appended to *out,
// which is null. The reply is read in place: each row is the span up to the
// next prefix.
int32_t ParseEveryRow(AtCmdParseNode **out, std::string_view names, const char *replyColon,
                      const char *prefix) {
    const char *cursor = replyColon + 1;
    AtCmdParseNode **tail = out;
    for (;;) {
        // A row ends where the next prefix occurrence starts, even inside a value.
        const char *next = std::strstr(cursor, prefix);
        const std::string_view values =
            next != nullptr ? std::string_view(cursor, static_cast<size_t>(next - cursor))
                            : std::string_view(cursor);
        AtCmdParseNode *row = nullptr;
        const int32_t status = atapi::ParseFieldSpans(&row, names, values);
        if (status != AT_PARSE_OK) return tail != out ? AT_PARSE_OK : status;
        *tail = row;
        tail = &row->nextRow;
        if (next == nullptr) return AT_PARSE_OK;
        // Values may hold ':'; only a prefix occurrence moves the cursor.
        const char *colon = std::strchr(next, ':');
        if (colon == nullptr) return AT_PARSE_OK;
        cursor = colon + 1;
    }
}

}  // namespace

extern "C" {

int32_t ParseCommonAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                         const char *prefix) {
    if (out == nullptr || reply == nullptr || prefix == nullptr) return AT_PARSE_BAD_ARG;
    if (atTemplate == nullptr) return AT_PARSE_NO_TEMPLATE;

    // A reply without the prefix, or either text without ':', is not an
    // error: the caller learns that the line came, and gets no rows.
    if (!StartsWith(reply, prefix) && std::strstr(reply, prefix) == nullptr) return AT_PARSE_OK;
    const char *namesColon = std::strchr(atTemplate, ':');
    const char *replyColon = std::strchr(reply, ':');
    if (namesColon == nullptr || replyColon == nullptr) return AT_PARSE_OK;

    *out = nullptr;
    return ParseEveryRow(out, namesColon + 1, replyColon, prefix);
}

int32_t ParseSoftStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                     const char *prefix) {
    if (reply == nullptr || prefix == nullptr || out == nullptr) {
        AT_LOG_ERR("para error\n");
        return AT_PARSE_BAD_ARG;
    }
    if (atTemplate == nullptr) return AT_PARSE_NO_TEMPLATE;
    if (std::strstr(reply, prefix) == nullptr) return AT_PARSE_BAD_ARG;
    const char *replyDot = std::strchr(reply, '.');
    const char *templateDot = std::strchr(atTemplate, '.');
    if (replyDot == nullptr || templateDot == nullptr) return AT_PARSE_BAD_ARG;

    AtCmdParseNode *node = atapi::AtParseNewNode();
    if (node == nullptr) return AT_PARSE_NO_MEMORY;
    node->atFieldName = atapi::AtParseStrDup(templateDot + 1);
    node->atFieldValue = atapi::AtParseStrDup(replyDot + 1);
    if (node->atFieldName == nullptr || node->atFieldValue == nullptr) {
        FreeAtCmdParseNode(node);
        return AT_PARSE_NO_MEMORY;
    }
    *out = node;
    return AT_PARSE_OK;
}

int32_t ParseNdisStateQueryAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                 const char *prefix) {
    if (out == nullptr || atTemplate == nullptr || reply == nullptr || prefix == nullptr) {
        return AT_PARSE_BAD_ARG;
    }
    char *occurrence = std::strstr(reply, prefix);
    if (occurrence == nullptr) return AT_PARSE_BAD_ARG;

    const char *namesOpen = std::strchr(atTemplate, '(');
    const char *namesClose = namesOpen != nullptr ? std::strchr(namesOpen, ')') : nullptr;
    char *valuesOpen = std::strchr(occurrence, '(');
    char *valuesClose = valuesOpen != nullptr ? std::strchr(valuesOpen, ')') : nullptr;
    if (namesClose == nullptr || valuesClose == nullptr) return AT_PARSE_BAD_ARG;
    *valuesClose = '\0';

    AtCmdParseNode *header = atapi::AtParseNewNode();
    if (header == nullptr) return AT_PARSE_BAD_ARG;
    atapi::ParseRows row(header);
    header->atFieldName = atapi::AtParseStrDup("cid");
    if (header->atFieldName == nullptr) return AT_PARSE_BAD_ARG;
    const std::string_view names(namesOpen + 1, static_cast<size_t>(namesClose - namesOpen - 1));
    if (atapi::ParseFieldSpans(&header->nextField, names, valuesOpen + 1) != AT_PARSE_OK) {
        return AT_PARSE_BAD_ARG;
    }
    *out = row.Release();
    return AT_PARSE_OK;
}

}  // extern "C"
