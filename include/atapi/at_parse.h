/*
 * Response parsing: the dispatcher and registries, the template parser, the
 * special parsers, the handler tables and the extraction of typed values.
 *
 * Ownership: a parse routine stores in *out the first node of its first row;
 * the caller owns that result and releases it with FreeAtCmd, which wipes
 * every string before freeing it. Parse routines may write into the reply
 * buffer they are given; callers must not reuse a reply after parsing it.
 * Handler and module tables are constant and shared by all threads.
 */
#ifndef ATAPI_AT_PARSE_H
#define ATAPI_AT_PARSE_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

/* ---- Dispatcher and registries ------------------------------------------- */

/** Parses reply with the handler of (moduleId, atName) in the given mode.
 *  *out is not initialised by the dispatcher: set it to null first. */
ATAPI_EXPORT int32_t ParseAtCmdFunc(AtCmdParseNode **out, const char *atName, char *replyText,
                                    int32_t moduleId, uint32_t mode);

#define AT_REG_ENTRY_COUNT 100
ATAPI_EXPORT void AtsRegParseModule(const AtParseModule *table, uint32_t byteCount);
ATAPI_EXPORT uint32_t AtGeRegtParseTableSize(void);
ATAPI_EXPORT void AtsRegReportModule(const void *table, uint32_t byteCount);
ATAPI_EXPORT AtReportModule *AtsGetRegReportModule(void);
ATAPI_EXPORT uint32_t AtGeRegtReportTableSize(void);

/* ---- Template parser ------------------------------------------------------ */

ATAPI_EXPORT int32_t ParseCommonAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                      const char *prefix);
ATAPI_EXPORT int32_t ParseSoftStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                  const char *prefix);
ATAPI_EXPORT int32_t ParseNdisStateQueryAtStr(AtCmdParseNode **out, const char *atTemplate,
                                              char *reply, const char *prefix);
/** Builds one row from a names text and a values text. */
ATAPI_EXPORT int32_t ParseField(AtCmdParseNode **out, const char *names, const char *values);
/** Quote-aware comma split with trimming; pieces are heap strings. */
ATAPI_EXPORT int32_t AtConstParse(char **pieces, uint32_t capacity, const char *text,
                                  uint32_t *outCount);
/** Links one row, taking ownership of the strings; null on failure. */
ATAPI_EXPORT AtCmdParseNode *GreatLinkListAt(char **names, char **values, uint32_t count);
ATAPI_EXPORT void AddLinkNode(AtCmdParseNode **head, AtCmdParseNode *row);
/** Wipes and frees one node and its strings. */
ATAPI_EXPORT void FreeAtCmdParseNode(AtCmdParseNode *node);
/** Wipes and frees a whole result; null is allowed. */
ATAPI_EXPORT void FreeAtCmd(AtCmdParseNode *first);
/** Cuts buffer into heap pieces that each start at an occurrence of needle.
 *  *count: capacity on entry, pieces stored on return. */
ATAPI_EXPORT void GetSubstring(const char *buffer, char **pieces, int32_t *count,
                               const char *needle);
ATAPI_EXPORT void ReleaseSubstring(char **pieces, int32_t count);

/* ---- Special parsers ------------------------------------------------------ */

ATAPI_EXPORT int32_t ParseCmgiListAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                        const char *prefix);
ATAPI_EXPORT int32_t ParseSmsCmgrAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                       const char *prefix);
ATAPI_EXPORT int32_t ParseAtCgasStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                    const char *prefix);
ATAPI_EXPORT int32_t ParseEonsAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                    const char *prefix);
ATAPI_EXPORT int32_t ParseSysCfgAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                      const char *prefix);
ATAPI_EXPORT int32_t ParseSysCfgExAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                        const char *prefix);
ATAPI_EXPORT int32_t ParseLteProfileAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                          const char *prefix);
ATAPI_EXPORT int32_t ParseCopsAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                    const char *prefix);
ATAPI_EXPORT int32_t ParseSmsMediaAtStr(AtCmdParseNode **out, const char *atTemplate, char *reply,
                                        const char *prefix);
ATAPI_EXPORT int32_t ParseSmsIndexListAtStr(AtCmdParseNode **out, const char *atTemplate,
                                            char *reply, const char *prefix);

/* ---- Node extraction ------------------------------------------------------ */

/** Parses reply under desc and stores the first row's fields through params.
 *  0 on success, -1 when nothing could be parsed. */
ATAPI_EXPORT int32_t AtParseNodeFromBuf(const AtCmdDesc *desc, char *replyText,
                                        const AtParamDesc *params, uint32_t paramCount);
/** Stores one node through the first parameter entry of the same name. */
ATAPI_EXPORT void AtParseNode(const AtCmdParseNode *node, const AtParamDesc *params,
                              uint32_t paramCount);

/* ---- Exported handler tables ---------------------------------------------- */

ATAPI_EXPORT extern const AtParseHandler g_initialReportHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_networkCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_sysCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_pinCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_smsCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_phoneRecordCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_spnCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_profileCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_ussdCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_stkMenuCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_stkTextCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_stkInputCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_stkRefreshCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_stkBrowserCfgHandlers[];
ATAPI_EXPORT extern const AtParseHandler g_stkActionCfgHandlers[];

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(sizeof(AtParseModule) == 2 * sizeof(void *), "AtParseModule layout");

#endif
