// Special parsers of the network and system-configuration replies: cell
// lists, operator names, and the test replies made of parenthesised groups
// (modes, acquisition orders, band lists, operator lists).
#include <cstring>

#include "atapi/at_link.h"
#include "atapi/at_parse.h"
#include "atapi/at_text.h"
#include "link/at_log.h"
#include "parse/at_parse_groups.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse_network";

constexpr int32_t kMaxOperators = 1000;

// The last occurrence of needle in text, or null.
const char *LastOccurrence(const char *text, const char *needle) {
    const size_t step = std::strlen(needle) > 0 ? std::strlen(needle) : 1;
    const char *last = nullptr;
    for (const char *hit = std::strstr(text, needle); hit != nullptr;) {
        last = hit;
        if (*hit == '\0') break;  // an empty needle matched at the end
        hit = std::strstr(hit + step, needle);
    }
    return last;
}

// The reply from the prefix occurrence on, for the group test replies; null
// when an argument is missing or the reply does not carry the prefix.
const char *GroupReplyText(AtCmdParseNode **out, const char *atTemplate, const char *reply,
                           const char *prefix) {
    if (out == nullptr || atTemplate == nullptr || reply == nullptr || prefix == nullptr) {
        return nullptr;
    }
    return std::strstr(reply, prefix);
}

// The second "((" group of text: the first "((" behind the "))" that closes
// the first one; null when there is none.
const char *SecondDoubleGroup(const char *text) {
    const char *open = std::strstr(text, "((");
    const char *close = open != nullptr ? std::strstr(open, "))") : nullptr;
    return close != nullptr ? std::strstr(close + 2, "((") : nullptr;
}

// A "+COPS" test reply or template cut at its ",,": the operator groups
// before it, the mode and format lists behind it.
struct CopsParts {
    char *operators = nullptr;
    char *lists = nullptr;
};

bool SplitCopsText(char *text, CopsParts *parts) {
    char *colon = std::strchr(text, ':');
    if (colon == nullptr) return false;
    char *gap = std::strstr(colon + 1, ",,");
    if (gap == nullptr) return false;
    *gap = '\0';
    parts->operators = colon + 1;
    parts->lists = gap + 2;
    return true;
}

// One "option" row per ')'-closed group of operators (count groups).
int32_t ParseOperatorRows(atapi::ParseRows *rows, const char *names, char *operators,
                          int32_t count) {
    char *group = operators;
    for (int32_t i = 0; i < count; ++i) {
        const char *close = AtGetNextSeperator(group, ')');
        if (close == nullptr) break;
        char *next = group + (close - group);
        *next = '\0';
        atapi::AtTrimGroupText(group, std::strlen(group));

        AtCmdParseNode *header = atapi::AtParseNewNode();
        if (header == nullptr) return AT_PARSE_NO_MEMORY;
        atapi::ParseRows row(header);
        const int32_t status = ParseField(&header->nextField, names, group);
        if (status != AT_PARSE_OK) return status;
        rows->Append(row.Release());
        if (atapi::SetAtFieldName(header, "option") != 0) return AT_PARSE_NO_ENTRY;
        group = next + 1;
    }
    return AT_PARSE_OK;
}

// The "mode" row of the first list behind the ",," and the "format" row of
// the list after it; a reply without the format list is refused.
int32_t ParseCopsModeRows(atapi::ParseRows *rows, char *templateLists, char *replyLists) {
    char *templateClose = std::strchr(templateLists, ')');
    char *replyClose = std::strchr(replyLists, ')');
    if (templateClose == nullptr || replyClose == nullptr) return AT_PARSE_BAD_ARG;
    *templateClose = '\0';
    *replyClose = '\0';
    AtCmdParseNode *row = nullptr;
    if (atapi::ParseNamedGroupAtStr(&row, templateLists, replyLists, "mode") != 0) {
        return AT_PARSE_BAD_ARG;
    }
    rows->Append(row);
    if (templateClose[1] == '\0' || replyClose[1] == '\0') return AT_PARSE_BAD_ARG;
    if (atapi::ParseNamedGroupAtStr(&row, templateClose + 2, replyClose + 2, "format") != 0) {
        return AT_PARSE_BAD_ARG;
    }
    rows->Append(row);
    return AT_PARSE_OK;
}

}  // namespace

extern "C" {

int32_t ParseAtCgasStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                       const char *prefix) {
    // The template has no prefix: names and values are the whole texts.
    if (out == nullptr || atTemplate == nullptr || reply == nullptr || prefix == nullptr ||
        std::strchr(reply, ',') == nullptr) {
        return AT_PARSE_BAD_ARG;
    }
    return ParseField(out, atTemplate, reply);
}

int32_t ParseEonsAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                       const char *prefix) {
    if (out == nullptr || reply == nullptr || prefix == nullptr) return AT_PARSE_BAD_ARG;
    if (atTemplate == nullptr) return AT_PARSE_NO_TEMPLATE;
    // Earlier lines are superseded by the last one.
    const char *line = LastOccurrence(reply, prefix);
    if (line == nullptr) {
        AT_LOG_ERR("not find the at name pid = %d\n", AtsTaskGetId());
        return AT_PARSE_BAD_ARG;
    }
    const char *values = std::strchr(line, ':');
    const char *names = std::strchr(atTemplate, ':');
    if (values == nullptr || names == nullptr) return AT_PARSE_BAD_ARG;
    AtCmdParseNode *row = nullptr;
    const int32_t status = ParseField(&row, names + 1, values + 1);
    if (status != AT_PARSE_OK) return status;
    *out = row;
    return AT_PARSE_OK;
}

int32_t ParseSysCfgAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                         const char *prefix) {
    const char *text = GroupReplyText(out, atTemplate, reply, prefix);
    if (text == nullptr) return AT_PARSE_BAD_ARG;

    atapi::ParseRows rows;
    AtCmdParseNode *row = nullptr;
    if (atapi::ParseRangeNodeFromAtStr(&row, atTemplate, text, "modes") != 0) {
        return AT_PARSE_BAD_ARG;
    }
    rows.Append(row);
    // Both texts hold a '(' since the modes row was parsed from them. The
    // acquisition orders are read from the reply's first group again, so that
    // row repeats the modes: replies have always been read this way.
    const char *templateSecond = std::strchr(std::strchr(atTemplate, '(') + 1, '(');
    const char *replyFirst = std::strchr(text, '(');
    if (templateSecond == nullptr ||
        atapi::ParseRangeNodeFromAtStr(&row, templateSecond, replyFirst, "acqorders") != 0) {
        return AT_PARSE_BAD_ARG;
    }
    rows.Append(row);
    if (atapi::ParseDoubleGroupAtStr(atTemplate, text, "bandlist", &row) != 0) {
        return AT_PARSE_BAD_ARG;
    }
    rows.Append(row);
    *out = rows.Release();
    return AT_PARSE_OK;
}

int32_t ParseSysCfgExAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                           const char *prefix) {
    const char *text = GroupReplyText(out, atTemplate, reply, prefix);
    if (text == nullptr) return AT_PARSE_BAD_ARG;

    atapi::ParseRows rows;
    AtCmdParseNode *row = nullptr;
    if (atapi::ParseNodeFromAtStr(atTemplate, text, &row) != 0) return AT_PARSE_BAD_ARG;
    rows.Append(row);
    if (atapi::SetAtFieldName(row, "acqorders") != 0) return AT_PARSE_BAD_ARG;
    if (atapi::ParseDoubleGroupAtStr(atTemplate, text, "bandlist", &row) != 0) {
        return AT_PARSE_BAD_ARG;
    }
    rows.Append(row);

    // The LTE band group is optional in the reply.
    const char *replyLte = SecondDoubleGroup(text);
    if (replyLte != nullptr) {
        const char *templateLte = SecondDoubleGroup(atTemplate);
        if (templateLte == nullptr ||
            atapi::ParseDoubleGroupAtStr(templateLte, replyLte, "LTElist", &row) != 0) {
            return AT_PARSE_BAD_ARG;
        }
        rows.Append(row);
    }
    *out = rows.Release();
    return AT_PARSE_OK;
}

int32_t ParseLteProfileAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                             const char *prefix) {
    const char *text = GroupReplyText(out, atTemplate, reply, prefix);
    if (text == nullptr) return AT_PARSE_BAD_ARG;

    atapi::ParseRows rows;
    AtCmdParseNode *row = nullptr;
    if (atapi::ParseNodeFromAtStr(atTemplate, text, &row) != 0) return AT_PARSE_BAD_ARG;
    rows.Append(row);
    // The index group is the first group behind the first ')'.
    const char *templateRest = std::strchr(atTemplate, ')');
    const char *replyRest = std::strchr(text, ')');
    if (atapi::ParseNodeFromAtStr(templateRest, replyRest, &row) != 0) return AT_PARSE_BAD_ARG;
    rows.Append(row);
    *out = rows.Release();
    return AT_PARSE_OK;
}

int32_t ParseCopsAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                       const char *prefix) {
    if (out == nullptr || reply == nullptr || prefix == nullptr) return AT_PARSE_BAD_ARG;
    if (atTemplate == nullptr) return AT_PARSE_NO_TEMPLATE;
    atapi::ParseText names;
    atapi::ParseText values;
    if (atapi::SetAtParamValue(atTemplate, reply, &names, &values) != 0) return AT_PARSE_BAD_ARG;
    if (std::strstr(values.Get(), prefix) == nullptr) return AT_PARSE_BAD_ARG;
    CopsParts templateParts;
    CopsParts replyParts;
    if (!SplitCopsText(names.Get(), &templateParts) || !SplitCopsText(values.Get(), &replyParts)) {
        return AT_PARSE_BAD_ARG;
    }

    // An empty or oversized operator list gives no rows, and is no error.
    atapi::TrimTextEnds(replyParts.operators, ' ');
    atapi::AtTrimGroupText(templateParts.operators, std::strlen(templateParts.operators));
    const int32_t operatorCount = AtCountSeparator(replyParts.operators, ')');
    atapi::ParseRows rows;
    int32_t status = AT_PARSE_OK;
    if (operatorCount > 0 && operatorCount <= kMaxOperators) {
        status =
            ParseOperatorRows(&rows, templateParts.operators, replyParts.operators, operatorCount);
    }
    AT_LOG_INFO("pid = %d, the parse operator list ret = %d\n", AtsTaskGetId(), status);
    if (status != AT_PARSE_OK) return AT_PARSE_BAD_ARG;

    if (ParseCopsModeRows(&rows, templateParts.lists, replyParts.lists) != AT_PARSE_OK) {
        return AT_PARSE_BAD_ARG;
    }
    *out = rows.Release();
    return AT_PARSE_OK;
}

}  // extern "C"
