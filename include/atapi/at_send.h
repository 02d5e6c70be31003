/*
 * Send primitives: one AT command line out, its outcome back.
 *
 * Error-id output (errCode): -2 when the reply was OK, 315 when the command
 * was aborted, otherwise as each call documents; a null errCode is allowed.
 * Result conventions differ by call and are part of the interface:
 *  - simple and single-string calls return 0 or -1;
 *  - AtSendMultiCmd, AtSendAndGetListRsp* and AtNetworkSendMultiCmd return
 *    the positive result class (3, 4, 5, 14) of an error reply and -1 for
 *    transport or argument failures.
 * Lines returned by AtSendMultiCmd are heap strings released with
 * ReleaseSubstring; rows returned by AtNetworkSendMultiCmd are released with
 * FreeAtCmd.
 */
#ifndef ATAPI_AT_SEND_H
#define ATAPI_AT_SEND_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

#define AT_DEFAULT_TIMEOUT_SEC 30

/** Zeroes *msg and fills the header, prefix and command line. 0 or -1. */
ATAPI_EXPORT int32_t AtInitCommonMsgHandler(AtSrvMsg *msg, const char *cmd, const char *prefix,
                                            uint32_t multiRsp, int32_t timeoutSec);

ATAPI_EXPORT int32_t AtSendSimpleCmd(const char *cmd, const char *prefix, int32_t *errCode);
ATAPI_EXPORT int32_t AtSendSimpleCmdSpecialTimeout(const char *cmd, const char *prefix,
                                                   int32_t *errCode, uint32_t timeoutSec);
/** As AtSendSimpleCmdSpecialTimeout; the request record is wiped afterwards. */
ATAPI_EXPORT int32_t AtSendSimpleSecCmd(const char *cmd, const char *prefix, int32_t *errCode,
                                        uint32_t timeoutSec);

ATAPI_EXPORT int32_t AtSendAndGetSingleStrRsp(const char *cmd, const char *prefix, char *out,
                                              int32_t outSize, int32_t *errCode);
/** desc[0] = command line, desc[1] = prefix (may be null). */
ATAPI_EXPORT int32_t AtSendAndGetSingleStrRspSpecialTimeout(const char *const desc[2], char *out,
                                                            int32_t outSize, int32_t *errCode,
                                                            uint32_t timeoutSec);
ATAPI_EXPORT int32_t AtSendMultiCmd(const char *const desc[2], char *lines[], int32_t *count,
                                    int32_t *errCode, uint32_t timeoutSec);

ATAPI_EXPORT int32_t AtSendAndGetListRsp(const AtCmdDesc *desc, AtParamDesc *rows,
                                         uint32_t rowCount, int32_t *errCode);
ATAPI_EXPORT int32_t AtSendAndGetListRspSpecialTimeout(const AtCmdDesc *desc, AtParamDesc *rows,
                                                       uint32_t rowCount, int32_t *errCode,
                                                       uint32_t timeoutSec);
ATAPI_EXPORT int32_t AtNetworkSendMultiCmd(const AtCmdDesc *desc, AtCmdParseNode **out,
                                           int32_t *errCode, uint32_t timeoutSec);

ATAPI_END_DECLS

#endif
