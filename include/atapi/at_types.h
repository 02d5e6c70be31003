/*
 * Records shared by every family of the atapi interface.
 *
 * Ownership: every record here is owned by the caller unless a function's
 * comment says otherwise. Parse results (AtCmdParseNode rows) are heap blocks
 * owned by whoever received them and are released with FreeAtCmd.
 */
#ifndef ATAPI_AT_TYPES_H
#define ATAPI_AT_TYPES_H

#include <stddef.h>
#include <stdint.h>

#include "atapi_export.h"

ATAPI_BEGIN_DECLS

/* ---- Request and reply record exchanged with atserver ------------------ */

#define AT_NAME_LEN 64
#define AT_CMD_STR_LEN 1540
#define AT_REPORT_STR_LEN 1532
#define AT_SRV_MSG_SIZE 1636
#define AT_SRV_MSG_PAYLOAD 1632

/* Request types (reqType). */
#define AT_REQ_COMMAND 0u
#define AT_REQ_ABORT 6u
#define AT_REQ_CLEAR 7u
#define AT_REQ_CLEAR_ALL 8u

/* Final result classes (rMsg.retVal). */
#define AT_RET_OK 2
#define AT_RET_CME_ERROR 3
#define AT_RET_CMS_ERROR 4
#define AT_RET_ERROR 5
#define AT_RET_ABORTED 14

/* Error ids stored in errorId fields. */
#define AT_ERRID_OK (-2)
#define AT_ERRID_NOT_COMPLETED (-3)
#define AT_ERRID_UNKNOWN_CAUSE (-1)
#define AT_ERRID_ABORTED 315
#define AT_ERRID_UNMAPPED 65535

typedef struct AtSrvSndMsg {
    char atName[AT_NAME_LEN];      /* expected response prefix, may be empty */
    char atCmdStr[AT_CMD_STR_LEN]; /* the complete command line */
} AtSrvSndMsg;

typedef struct AtSrvRcvMsg {
    char atName[AT_NAME_LEN];            /* echoed from the request */
    char atReportStr[AT_REPORT_STR_LEN]; /* reply text */
    int32_t retVal;                      /* final result class */
    int32_t atReportLen;                 /* strlen of atReportStr */
} AtSrvRcvMsg;

typedef union AtSrvMsgBody {
    AtSrvSndMsg sMsg;
    AtSrvRcvMsg rMsg;
} AtSrvMsgBody;

typedef struct AtSrvMsg {
    int32_t mtype;    /* kernel thread id of the requester */
    uint32_t reqType; /* AT_REQ_* */
    uint32_t reserved1;
    uint32_t reserved2;
    uint32_t seq;       /* stamped by the exchange, echoed by the server */
    uint32_t multiRsp;  /* 1 when the caller splits the reply into lines */
    int32_t timeoutSec; /* how long the client waits */
    AtSrvMsgBody sndRcvMsg;
    uint32_t reserved3;
} AtSrvMsg;

/* ---- Parse records ------------------------------------------------------ */

/* Parse modes: index into AtParseHandler.atTemplate and parseFn. */
enum {
    AT_PARSE_QUERY = 0,
    AT_PARSE_SET = 1,
    AT_PARSE_TEST = 2,
    AT_PARSE_REPORT = 3,
    AT_PARSE_MODE_COUNT = 4
};

/* One parsed field. Both strings are heap blocks owned by the node. */
typedef struct AtCmdParseNode {
    char *atFieldName;
    char *atFieldValue;
    struct AtCmdParseNode *nextRow;
    struct AtCmdParseNode *nextField;
} AtCmdParseNode;

/* A parse routine: (out result, template, reply text, response prefix). */
typedef int32_t (*AtParseFn)(AtCmdParseNode **out, const char *atTemplate, char *reply,
                             const char *prefix);
typedef void (*AtFreeFn)(AtCmdParseNode *first);

/* One handler-table entry; eleven pointer-sized words. */
typedef struct AtParseHandler {
    const char *atName;
    intptr_t moduleId;
    const char *atTemplate[AT_PARSE_MODE_COUNT];
    AtParseFn parseFn[AT_PARSE_MODE_COUNT];
    AtFreeFn freeFn;
} AtParseHandler;

/* One module-table entry. */
typedef struct AtParseModule {
    int32_t moduleId;
    const AtParseHandler *handlers;
} AtParseModule;

/* One report-registry entry; only the second word has a meaning here. */
typedef struct AtReportModule {
    uintptr_t word0;
    const void *handlers;
    uintptr_t word2;
} AtReportModule;

/* Parse return codes. */
#define AT_PARSE_OK 0
#define AT_PARSE_NO_ENTRY (-1)
#define AT_PARSE_BAD_ARG (-2)
#define AT_PARSE_BAD_MODE (-3)
#define AT_PARSE_NO_GROUP (-4)
#define AT_PARSE_NO_MEMORY (-5)
#define AT_PARSE_NO_TEMPLATE (-6)

/* ---- Value extraction --------------------------------------------------- */

enum {
    AT_TYPE_STRING = 0,
    AT_TYPE_CHAR = 1,
    AT_TYPE_UCHAR = 2,
    AT_TYPE_INT = 3,
    AT_TYPE_UINT = 4,
    AT_TYPE_LONG = 5,
    AT_TYPE_LLONG = 6,
    AT_TYPE_ULONG = 7
};

/* Parameter-list entry: where a named template field is stored. */
typedef struct AtParamDesc {
    const char *name;
    uint32_t type;
    void *dest;
    uint32_t size;
    int64_t minVal;
    int64_t maxVal;
} AtParamDesc;

/* Command descriptor of the list and multi-line send primitives. */
typedef struct AtCmdDesc {
    const char *cmd;
    const char *rspPrefix;
    const char *parsePrefix;
    uint32_t parseMode;
    int32_t moduleId;
} AtCmdDesc;

ATAPI_END_DECLS

#ifdef __cplusplus
#define ATAPI_STATIC_ASSERT static_assert
#else
#define ATAPI_STATIC_ASSERT _Static_assert
#endif

ATAPI_STATIC_ASSERT(sizeof(AtSrvMsg) == AT_SRV_MSG_SIZE, "AtSrvMsg is 1636 bytes");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, reqType) == 4, "reqType at 4");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, seq) == 16, "seq at 16");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, multiRsp) == 20, "multiRsp at 20");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, timeoutSec) == 24, "timeoutSec at 24");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, sndRcvMsg) == 28, "sndRcvMsg at 28");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, sndRcvMsg.sMsg.atCmdStr) == 92, "atCmdStr at 92");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, sndRcvMsg.rMsg.atReportStr) == 92, "atReportStr at 92");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, sndRcvMsg.rMsg.retVal) == 1624, "retVal at 1624");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, sndRcvMsg.rMsg.atReportLen) == 1628, "atReportLen at 1628");
ATAPI_STATIC_ASSERT(offsetof(AtSrvMsg, reserved3) == 1632, "reserved3 at 1632");
ATAPI_STATIC_ASSERT(sizeof(AtCmdParseNode) == 4 * sizeof(void *), "four words");
ATAPI_STATIC_ASSERT(sizeof(AtParseHandler) == 11 * sizeof(void *), "eleven words");
ATAPI_STATIC_ASSERT(sizeof(AtReportModule) == 3 * sizeof(void *), "three words");
ATAPI_STATIC_ASSERT(sizeof(AtCmdDesc) == (sizeof(void *) == 4 ? 20 : 32), "AtCmdDesc layout");
ATAPI_STATIC_ASSERT(sizeof(AtParamDesc) == (sizeof(void *) == 4 ? 32 : 48), "AtParamDesc layout");

#endif
