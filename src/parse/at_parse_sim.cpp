// Special parsers of the message-storage test replies: the storage media
// lists and the list of stored message indexes.
#include <cstring>

#include "atapi/at_parse.h"
#include "link/at_log.h"
#include "parse/at_parse_alloc.h"
#include "parse/at_parse_groups.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse_sim";

// A heap copy of text through strcpy_s, so that a failed copy is told apart
// from a failed allocation.
enum class CopyResult { kOk, kNoMemory, kCopyFailed };

CopyResult CopyText(const char *text, atapi::ParseText *copy) {
    *copy = atapi::ParseText(std::strlen(text) + 1);
    if (copy->Get() == nullptr) return CopyResult::kNoMemory;
    if (strcpy_s(copy->Get(), copy->Size(), text) != 0) return CopyResult::kCopyFailed;
    return CopyResult::kOk;
}

}  // namespace

extern "C" {

int32_t ParseSmsMediaAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                           const char *prefix) {
    if (out == nullptr || atTemplate == nullptr || reply == nullptr || prefix == nullptr) {
        return AT_PARSE_BAD_ARG;
    }
    char *text = std::strstr(reply, prefix);
    if (text == nullptr) return AT_PARSE_BAD_ARG;
    atapi::ParseText names;
    const CopyResult copied = CopyText(atTemplate, &names);
    if (copied != CopyResult::kOk) {
        if (copied == CopyResult::kCopyFailed) AT_LOG_ERR("strcpy_s failed\n");
        return AT_PARSE_NO_MEMORY;
    }

    // The field names are those of the template's first group.
    char *namesOpen = std::strchr(names.Get(), '(');
    char *namesClose = namesOpen != nullptr ? std::strchr(namesOpen, ')') : nullptr;
    char *groups = std::strchr(text, '(');
    if (namesClose == nullptr || groups == nullptr) return AT_PARSE_BAD_ARG;
    namesClose[1] = '\0';
    AtCmdParseNode *rows = nullptr;
    if (atapi::ParseBandAtStr(&rows, namesOpen, groups, "SmsMediaList") != AT_PARSE_OK) {
        return AT_PARSE_BAD_ARG;
    }
    *out = rows;
    return AT_PARSE_OK;
}

int32_t ParseSmsIndexListAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                               const char *prefix) {
    if (out == nullptr || reply == nullptr || prefix == nullptr) return AT_PARSE_BAD_ARG;
    if (atTemplate == nullptr) return AT_PARSE_NO_TEMPLATE;
    if (std::strstr(reply, prefix) == nullptr) return AT_PARSE_BAD_ARG;
    atapi::ParseText list;
    const CopyResult copied = CopyText(reply, &list);
    if (copied != CopyResult::kOk) {
        return copied == CopyResult::kNoMemory ? AT_PARSE_NO_MEMORY : AT_PARSE_BAD_ARG;
    }

    // Only the first list (the stored indexes) is kept: "prefix: 1,2,5".
    char *colon = std::strchr(list.Get(), ':');
    char *listEnd = colon != nullptr ? std::strstr(colon + 1, "),") : nullptr;
    if (listEnd == nullptr) return AT_PARSE_BAD_ARG;
    *listEnd = '\0';
    char *open = std::strchr(list.Get(), '(');
    if (open != nullptr) *open = ' ';
    for (const char ch : {' ', ')', '('}) atapi::TrimTextEnds(list.Get(), ch);
    return ParseCmgiListAtStr(out, atTemplate, list.Get(), prefix);
}

}  // extern "C"
