/*
 * Text tools: error-reply mapping, the command-class map with its masking
 * routines, and the null-safe string and number utilities.
 *
 * No function here allocates memory that the caller must free. Functions
 * that take a char * (not const) may modify the text in place, as noted.
 */
#ifndef ATAPI_AT_TEXT_H
#define ATAPI_AT_TEXT_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

/* ---- Error mapping -------------------------------------------------------- */

/** {code text, error text}; ended by a row whose text is null. */
typedef struct AtCmeErrorText {
    const char *code;
    const char *text;
} AtCmeErrorText;

ATAPI_EXPORT extern const AtCmeErrorText g_atCmeErrorTexts[77];

/** Maps "+CME ERROR: x" / "+CMS ERROR: x" to an error id (65535 if unmapped). */
ATAPI_EXPORT int32_t ErrorStrToErrorId(const char *text);
/** Case-insensitive search of needle in the first bufLen bytes of buf. */
ATAPI_EXPORT const char *AtStrcasestr(const char *buf, uint32_t bufLen, const char *needle);
/** Row id in g_tdRightListCmdMap of the first prefix found in buf, or -1. */
ATAPI_EXPORT int32_t AtCheckAtCmd(const char *buf, uint32_t bufLen);
/** Copies src without leading/trailing LF, CR and blanks; 0 ok, 1 failure. */
ATAPI_EXPORT int32_t AtStringTrim(const char *src, uint32_t srcLen, char *dst, uint32_t dstSize);

/* ---- Command-class map and masking ---------------------------------------- */

/** Logs a masked copy of a command line; 0, or 1 when no copy could be made. */
typedef int32_t (*AtCmdMaskFn)(const char *cmd);

typedef struct AtRightListCmd {
    int32_t id;
    const char *prefix;
    AtCmdMaskFn mask; /* null: the class is never logged */
} AtRightListCmd;

#define AT_RIGHT_LIST_CMD_COUNT 23
ATAPI_EXPORT extern const AtRightListCmd g_tdRightListCmdMap[AT_RIGHT_LIST_CMD_COUNT];

ATAPI_EXPORT int32_t AtCimiEncrypt(const char *cmd);
ATAPI_EXPORT int32_t AtAtdEncrypt(const char *cmd);
ATAPI_EXPORT int32_t AtCnumEncrypt(const char *cmd);
ATAPI_EXPORT int32_t AtCpbwEncrypt(const char *cmd);
ATAPI_EXPORT int32_t AtSslmngEncrypt(const char *cmd);
ATAPI_EXPORT int32_t AtNdisdupEncrypt(const char *cmd);
ATAPI_EXPORT int32_t AtSetautodialEncrypt(const char *cmd);
ATAPI_EXPORT int32_t AtIpopenEncrypt(const char *cmd);

/* ---- String utilities ----------------------------------------------------- */

/** Hex digit value; upper-cases *c in place. -1 for null. */
ATAPI_EXPORT int32_t AtCharToHex(char *c);
/** Strips leading/trailing runs of ch in place; returns the new terminator. */
ATAPI_EXPORT char *SplitSpace(char *buf, uint32_t size, char ch);
ATAPI_EXPORT uint64_t AtHexStrToUnsignedInteger(const char *s);
ATAPI_EXPORT int32_t AtCountSeparator(const char *s, char sep);
ATAPI_EXPORT const char *AtGetNextSeperator(const char *s, char sep);
ATAPI_EXPORT int32_t AtTestStrNum(const char *s);
ATAPI_EXPORT int32_t SafeStrCmp(const char *a, const char *b);
ATAPI_EXPORT int32_t SafeStrCaseCmp(const char *a, const char *b);
ATAPI_EXPORT int32_t SafeStrAtoi(const char *s);
ATAPI_EXPORT long SafeStrAtol(const char *s);
ATAPI_EXPORT int32_t AtStrMultiCaseCmp(const char *a, const char *b, uint32_t n);
/** 1 when min <= atoll(s) <= max (min == max == 0: any); else 0. */
ATAPI_EXPORT int32_t AtCheckValidNum(const char *s, int64_t minVal, int64_t maxVal);

ATAPI_END_DECLS

#endif
