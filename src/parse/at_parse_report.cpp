// Special parsers for lists of unknown length ("index_0", "index_1", ...)
// and for the two-line SMS records whose second line is the PDU.
#include <cstring>

#include "atapi/at_parse.h"
#include "atapi/at_text.h"
#include "link/at_log.h"
#include "parse/at_parse_alloc.h"
#include "parse/at_parse_groups.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse_report";

constexpr int32_t kMaxListValues = 1000;
constexpr size_t kIndexNameSize = 20;

// One row of count values split from list, named "index_0", "index_1", ...
int32_t BuildIndexRow(AtCmdParseNode **out, const char *list, uint32_t count) {
    atapi::ParseStringArray names(count);
    atapi::ParseStringArray values(count);
    if (names.Get() == nullptr || values.Get() == nullptr) return AT_PARSE_NO_MEMORY;
    uint32_t stored = 0;
    if (AtConstParse(values.Get(), count, list, &stored) != AT_PARSE_OK) return AT_PARSE_NO_MEMORY;
    for (uint32_t i = 0; i < count; ++i) {
        char *name = static_cast<char *>(atapi::AtParseAlloc(kIndexNameSize));
        if (name == nullptr) return AT_PARSE_NO_MEMORY;
        names.Get()[i] = name;
        if (sprintf_s(name, kIndexNameSize, "%s%d", "index_", static_cast<int>(i)) < 0) {
            return AT_PARSE_BAD_ARG;
        }
    }
    AtCmdParseNode *row = GreatLinkListAt(names.Get(), values.Get(), count);
    if (row == nullptr) return AT_PARSE_NO_MEMORY;
    names.DisownStrings();
    values.DisownStrings();
    *out = row;
    return AT_PARSE_OK;
}

// Turns the first line break of text into ", " so that the next line becomes
// the last field; false when text has no line break.
bool JoinFirstLineBreak(char *text) {
    char *lineBreak = std::strstr(text, "\r\n");
    if (lineBreak == nullptr) return false;
    lineBreak[0] = ',';
    lineBreak[1] = ' ';
    return true;
}

}  // namespace

extern "C" {

int32_t ParseCmgiListAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                           const char *prefix) {
    if (out == nullptr || reply == nullptr || prefix == nullptr) return AT_PARSE_BAD_ARG;
    if (atTemplate == nullptr) return AT_PARSE_NO_TEMPLATE;
    if (std::strstr(reply, prefix) == nullptr) return AT_PARSE_BAD_ARG;
    char *colon = std::strchr(reply, ':');
    if (colon == nullptr) return AT_PARSE_NO_GROUP;

    // The list is trimmed in the caller's buffer.
    char *list = colon + 1;
    atapi::TrimTextEnds(list, ' ');
    const int32_t commas = AtCountSeparator(list, ',');
    const int32_t count = commas < INT32_MAX ? commas + 1 : INT32_MAX;
    // Logged whether in range or not: the message is kept as it always read.
    AT_LOG_INFO("the parseNumber out of range, parseNumber is %d\n", count);
    if (count > kMaxListValues) return AT_PARSE_BAD_ARG;
    return BuildIndexRow(out, list, static_cast<uint32_t>(count));
}

int32_t ParseSmsCmgrAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                          const char *prefix) {
    if (out == nullptr || atTemplate == nullptr || reply == nullptr || prefix == nullptr) {
        return AT_PARSE_BAD_ARG;
    }
    const atapi::ParseText names = atapi::ParseText::Copy(atTemplate);
    if (names.Get() == nullptr) return AT_PARSE_BAD_ARG;
    if (!JoinFirstLineBreak(names.Get())) {
        AT_LOG_ERR("nameStr is NULL\n");
        return AT_PARSE_NO_ENTRY;
    }
    const atapi::ParseText values = atapi::ParseText::Copy(reply);
    if (values.Get() == nullptr || !JoinFirstLineBreak(values.Get())) return AT_PARSE_BAD_ARG;
    return ParseCommonAtStr(out, names.Get(), values.Get(), prefix);
}

}  // extern "C"
