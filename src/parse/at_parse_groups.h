// Building blocks of the special parsers: rows made of parenthesised groups
// ("(a,b)", "((x,y),(x,y))", ranges "2-5") under a header node whose name is
// the group name and whose value is null. All return 0 on success; the group
// routines return 1 on any failure and release what they built.
#pragma once

#include <cstddef>
#include <cstdint>

#include "atapi/at_types.h"
#include "parse/at_parse_alloc.h"
#include "parse/at_parse_rows.h"

namespace atapi {

// Removes the leading and trailing runs of ch from text, in place.
void TrimTextEnds(char *text, char ch);

// Names node with a heap copy of name: 0, or 1 on failure (logged, except
// for an empty name).
int32_t SetAtFieldName(AtCmdParseNode *node, const char *name);

// Working copies of a template and a reply: 0, or 1 with both copies empty.
int32_t SetAtParamValue(const char *atTemplate, const char *reply, ParseText *templateCopy,
                        ParseText *replyCopy);

// Trims blanks, commas, ')' and '(' (in that order) from both ends of text in
// place; length is strlen(text).
void AtTrimGroupText(char *text, size_t length);

// One row: an anonymous header whose fields pair the first "(...)" group of
// the template with the first "(...)" group of the reply.
int32_t ParseNodeFromAtStr(const char *atTemplate, const char *reply, AtCmdParseNode **row);

// As ParseNodeFromAtStr with the header named groupName; a reply group "a-b"
// becomes one anonymous node per number from a to b.
int32_t ParseRangeNodeFromAtStr(AtCmdParseNode **row, const char *atTemplate, const char *reply,
                                const char *groupName);

// One row named groupName per "(...)" group of reply, each paired with the
// field names of names. Cuts reply in place. 0, -2 bad argument, -4 naming
// failed, -5 out of memory or a group that could not be split.
int32_t ParseBandAtStr(AtCmdParseNode **rows, const char *names, char *reply,
                       const char *groupName);

// One row named groupName from two group texts, each cleaned with
// AtTrimGroupText first.
int32_t ParseNamedGroupAtStr(AtCmdParseNode **row, const char *templateText, const char *replyText,
                             const char *groupName);

// The rows of the first "((...),(...))" group of reply, named groupName and
// paired with the field names of the first such group of the template.
int32_t ParseDoubleGroupAtStr(const char *atTemplate, const char *reply, const char *groupName,
                              AtCmdParseNode **rows);

}  // namespace atapi
