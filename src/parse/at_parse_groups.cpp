#include "parse/at_parse_groups.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "atapi/at_parse.h"
#include "atapi/at_text.h"
#include "link/at_log.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse_network";

// Neither end of a range group ("0-3") may lie above this number.
constexpr int kMaxRangeNumber = 128;
constexpr size_t kRangeValueSize = 16;

uint32_t TrimSize(size_t length) {
    return static_cast<uint32_t>(length < UINT32_MAX ? length + 1 : UINT32_MAX);
}

// Copy of the text between the first '(' of text and the next ')'; Get() is
// null when a bracket is missing or the copy failed.
atapi::ParseText FirstGroupInner(const char *text) {
    const char *open = std::strchr(text, '(');
    if (open == nullptr) return {};
    const char *close = std::strchr(open + 1, ')');
    if (close == nullptr) return {};
    return atapi::ParseText::Copy(
        std::string_view(open + 1, static_cast<size_t>(close - open - 1)));
}

// A header (named groupName unless null) followed by the fields of names
// paired with values.
int32_t MakeGroupRow(const char *groupName, const char *names, const char *values,
                     AtCmdParseNode **row) {
    atapi::ParseRows header(atapi::AtParseNewNode());
    if (header.Get() == nullptr) {
        AT_LOG_ERR("malloc failed\n");
        return 1;
    }
    if (groupName != nullptr && atapi::SetAtFieldName(header.Get(), groupName) != 0) return 1;
    if (ParseField(&header.Get()->nextField, names, values) != AT_PARSE_OK) return 1;
    *row = header.Release();
    return 0;
}

// The text inside the outer brackets of the first "((...))" of text, cut
// behind the first ')' of its "))"; null when there is none.
char *DoubleGroupInner(char *text) {
    char *open = std::strstr(text, "((");
    if (open == nullptr) return nullptr;
    char *close = std::strstr(open, "))");
    if (close == nullptr) return nullptr;
    close[1] = '\0';
    return open + 1;
}

// atoi without its undefined overflow: out-of-range texts clamp.
int ClampedAtoi(const char *text) {
    const long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

// A header named groupName followed by one anonymous node per number of the
// range "begin-end" (dash points at the '-' inside rangeText).
int32_t MakeRangeRow(const char *groupName, char *rangeText, char *dash, AtCmdParseNode **row) {
    *dash = '\0';
    char *beginText = rangeText;
    char *endText = dash + 1;
    atapi::TrimTextEnds(beginText, ' ');
    atapi::TrimTextEnds(endText, ' ');
    const int begin = ClampedAtoi(beginText);
    const int end = ClampedAtoi(endText);
    if (begin < 0 || begin > kMaxRangeNumber || end > kMaxRangeNumber) {
        AT_LOG_ERR("num error, beginNum is %d, endNum is %d\n", begin, end);
        return 1;
    }

    atapi::ParseRows header(atapi::AtParseNewNode());
    if (header.Get() == nullptr) {
        AT_LOG_ERR("malloc failed\n");
        return 1;
    }
    if (atapi::SetAtFieldName(header.Get(), groupName) != 0) return 1;
    AtCmdParseNode *last = header.Get();
    for (int number = begin; number <= end; ++number) {
        AtCmdParseNode *node = atapi::AtParseNewNode();
        if (node == nullptr) {
            AT_LOG_ERR("malloc failed\n");
            return 1;
        }
        last->nextField = node;
        last = node;
        node->atFieldValue = static_cast<char *>(atapi::AtParseAlloc(kRangeValueSize));
        if (node->atFieldValue == nullptr ||
            sprintf_s(node->atFieldValue, kRangeValueSize, "%d", number) < 0) {
            return 1;
        }
    }
    *row = header.Release();
    return 0;
}

}  // namespace

namespace atapi {

void TrimTextEnds(char *text, char ch) { SplitSpace(text, TrimSize(std::strlen(text)), ch); }

int32_t SetAtFieldName(AtCmdParseNode *node, const char *name) {
    if (node == nullptr || name == nullptr) {
        AT_LOG_ERR("para error\n");
        return 1;
    }
    const size_t length = std::strlen(name);
    if (length == 0) return 1;
    auto *copy = static_cast<char *>(AtParseAlloc(length + 1));
    if (copy == nullptr) {
        AT_LOG_ERR("malloc failed\n");
        return 1;
    }
    if (strncpy_s(copy, length + 1, name, length) != 0) {
        AT_LOG_ERR("strncpy_s failed\n");
        AtParseRelease(copy, length + 1);
        return 1;
    }
    AtParseFreeString(node->atFieldName);
    node->atFieldName = copy;
    return 0;
}

int32_t SetAtParamValue(const char *atTemplate, const char *reply, ParseText *templateCopy,
                        ParseText *replyCopy) {
    if (atTemplate == nullptr || reply == nullptr || templateCopy == nullptr ||
        replyCopy == nullptr) {
        return 1;
    }
    *templateCopy = ParseText::Copy(atTemplate);
    *replyCopy = ParseText::Copy(reply);
    if (templateCopy->Get() == nullptr || replyCopy->Get() == nullptr) {
        *templateCopy = ParseText();
        *replyCopy = ParseText();
        return 1;
    }
    return 0;
}

void AtTrimGroupText(char *text, size_t length) {
    if (text == nullptr || length == 0) {
        AT_LOG_ERR("para error\n");
        return;
    }
    for (const char ch : {' ', ',', ')', '('}) SplitSpace(text, TrimSize(length), ch);
}

int32_t ParseNodeFromAtStr(const char *atTemplate, const char *reply, AtCmdParseNode **row) {
    if (atTemplate == nullptr || reply == nullptr || row == nullptr) return 1;
    const ParseText names = FirstGroupInner(atTemplate);
    const ParseText values = FirstGroupInner(reply);
    if (names.Get() == nullptr || values.Get() == nullptr) return 1;
    return MakeGroupRow(nullptr, names.Get(), values.Get(), row);
}

int32_t ParseRangeNodeFromAtStr(AtCmdParseNode **row, const char *atTemplate, const char *reply,
                                const char *groupName) {
    if (row == nullptr || atTemplate == nullptr || reply == nullptr || groupName == nullptr) {
        return 1;
    }
    const ParseText names = FirstGroupInner(atTemplate);
    const ParseText values = FirstGroupInner(reply);
    if (names.Get() == nullptr || values.Get() == nullptr) return 1;
    char *dash = std::strchr(values.Get(), '-');
    if (dash == nullptr) return MakeGroupRow(groupName, names.Get(), values.Get(), row);
    return MakeRangeRow(groupName, values.Get(), dash, row);
}

int32_t ParseBandAtStr(AtCmdParseNode **rows, const char *names, char *reply,
                       const char *groupName) {
    if (rows == nullptr || names == nullptr || reply == nullptr || groupName == nullptr) {
        return AT_PARSE_BAD_ARG;
    }
    const ParseText fieldNames = ParseText::Copy(names);
    if (fieldNames.Get() == nullptr) return AT_PARSE_NO_MEMORY;
    for (const char ch : {' ', '(', ')'}) TrimTextEnds(fieldNames.Get(), ch);

    ParseRows result;
    char *cursor = reply;
    for (char *open = std::strchr(cursor, '('); open != nullptr; open = std::strchr(cursor, '(')) {
        char *close = std::strchr(open + 1, ')');
        if (close == nullptr) break;
        *close = '\0';
        cursor = close + 1;
        char *group = open + 1;
        TrimTextEnds(group, ' ');

        AtCmdParseNode *header = AtParseNewNode();
        if (header == nullptr) return AT_PARSE_NO_MEMORY;
        ParseRows row(header);
        if (ParseField(&header->nextField, fieldNames.Get(), group) != AT_PARSE_OK) {
            return AT_PARSE_NO_MEMORY;
        }
        result.Append(row.Release());
        if (SetAtFieldName(header, groupName) != 0) return AT_PARSE_NO_GROUP;
    }
    *rows = result.Release();
    return AT_PARSE_OK;
}

int32_t ParseNamedGroupAtStr(AtCmdParseNode **row, const char *templateText, const char *replyText,
                             const char *groupName) {
    if (row == nullptr || groupName == nullptr) return 1;
    ParseText names;
    ParseText values;
    if (SetAtParamValue(templateText, replyText, &names, &values) != 0) return 1;
    AtTrimGroupText(names.Get(), std::strlen(names.Get()));
    AtTrimGroupText(values.Get(), std::strlen(values.Get()));
    return MakeGroupRow(groupName, names.Get(), values.Get(), row);
}

int32_t ParseDoubleGroupAtStr(const char *atTemplate, const char *reply, const char *groupName,
                              AtCmdParseNode **rows) {
    if (groupName == nullptr || rows == nullptr) return 1;
    ParseText names;
    ParseText values;
    if (SetAtParamValue(atTemplate, reply, &names, &values) != 0) return 1;
    const char *namesInner = DoubleGroupInner(names.Get());
    char *valuesInner = DoubleGroupInner(values.Get());
    if (namesInner == nullptr || valuesInner == nullptr) return 1;
    return ParseBandAtStr(rows, namesInner, valuesInner, groupName) == AT_PARSE_OK ? 0 : 1;
}

}  // namespace atapi
