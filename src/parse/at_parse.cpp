// The template parser: replies of the shape "<prefix>: v1,v2,..." (one row per
// prefix occurrence), and the two small special forms beside it.
#include "atapi/at_parse.h"

#include <cstring>

#include "link/at_log.h"
#include "parse/at_parse_alloc.h"
#include "parse/at_parse_rows.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse";

// Parses the rows of reply (a work copy) behind its first ':' with the field
// names behind the template's first ':'. Rows are appended to *out.
int32_t ParseEveryRow(AtCmdParseNode **out, const char *names, char *reply, const char *prefix) {
    char *colon = std::strchr(reply, ':');
    char *cursor = colon + 1;
    bool haveRow = false;
    for (;;) {
        // A row ends where the next prefix occurrence starts, even inside a value.
        char *next = std::strstr(cursor, prefix);
        char saved = '\0';
        if (next != nullptr) {
            saved = *next;
            *next = '\0';
        }
        AtCmdParseNode *row = nullptr;
        const int32_t status = ParseField(&row, names, cursor);
        if (status != AT_PARSE_OK) return haveRow ? AT_PARSE_OK : status;
        AddLinkNode(out, row);
        haveRow = true;
        if (next == nullptr) return AT_PARSE_OK;
        *next = saved;
        // Values may hold ':'; only a prefix occurrence moves the cursor.
        colon = std::strchr(next, ':');
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
    atapi::ParseText templateCopy = atapi::ParseText::Copy(atTemplate);
    atapi::ParseText replyCopy = atapi::ParseText::Copy(reply);
    if (templateCopy.Get() == nullptr || replyCopy.Get() == nullptr) return AT_PARSE_BAD_ARG;

    // A reply without the prefix, or either text without ':', is not an
    // error: the caller learns that the line came, and gets no rows.
    if (std::strstr(replyCopy.Get(), prefix) == nullptr) return AT_PARSE_OK;
    const char *namesColon = std::strchr(templateCopy.Get(), ':');
    if (namesColon == nullptr || std::strchr(replyCopy.Get(), ':') == nullptr) return AT_PARSE_OK;

    *out = nullptr;
    return ParseEveryRow(out, namesColon + 1, replyCopy.Get(), prefix);
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

    atapi::ParseText templateCopy = atapi::ParseText::Copy(atTemplate);
    if (templateCopy.Get() == nullptr) return AT_PARSE_BAD_ARG;
    char *namesOpen = std::strchr(templateCopy.Get(), '(');
    char *namesClose = namesOpen != nullptr ? std::strchr(namesOpen, ')') : nullptr;
    char *valuesOpen = std::strchr(occurrence, '(');
    char *valuesClose = valuesOpen != nullptr ? std::strchr(valuesOpen, ')') : nullptr;
    if (namesClose == nullptr || valuesClose == nullptr) return AT_PARSE_BAD_ARG;
    *namesClose = '\0';
    *valuesClose = '\0';

    AtCmdParseNode *header = atapi::AtParseNewNode();
    if (header == nullptr) return AT_PARSE_BAD_ARG;
    atapi::ParseRows row(header);
    header->atFieldName = atapi::AtParseStrDup("cid");
    if (header->atFieldName == nullptr) return AT_PARSE_BAD_ARG;
    if (ParseField(&header->nextField, namesOpen + 1, valuesOpen + 1) != AT_PARSE_OK) {
        return AT_PARSE_BAD_ARG;
    }
    *out = row.Release();
    return AT_PARSE_OK;
}

}  // extern "C"
