/*
 * Server link: the queues, events and exchange by which a caller's thread
 * hands an AtSrvMsg to atserver and gets the reply back.
 *
 * Every record passed in is owned by the caller. No function here keeps a
 * pointer after it returns. All functions may be called from any thread.
 */
#ifndef ATAPI_AT_LINK_H
#define ATAPI_AT_LINK_H

#include <pthread.h>

#include "at_types.h"

ATAPI_BEGIN_DECLS

/* ---- Exchange ------------------------------------------------------------ */

/** Sends *msg to atserver and, unless reqType is 6..8, waits for its reply,
 *  which is copied over *msg. 0 on success, -1 otherwise (reason logged). */
ATAPI_EXPORT int32_t GetDataFromAtServer(AtSrvMsg *msg);
/** The exchange proper, without resolving the server first. */
ATAPI_EXPORT int32_t ReadDataFromAtSrvProc(AtSrvMsg *msg);
/** Resolves the server's pid and both queue ids (waits for the ready flag). */
ATAPI_EXPORT void AtserverMsgInit(void);
/** Forgets the server's pid so that the next exchange resolves it again. */
ATAPI_EXPORT void AtMicResetAtsTaskId(void);
/** 0 when the server's pid is known, else -1. */
ATAPI_EXPORT int32_t CheckAtsId(void);
/** Non-blocking send of the whole record; errno goes to *retCode on failure. */
ATAPI_EXPORT int32_t SendToMsgQueue(int32_t qid, AtSrvMsg *msg, int32_t *retCode);
/** Waits up to msg->timeoutSec for the reply of type msg->mtype. */
ATAPI_EXPORT int32_t ReadFromMsgQueue(int32_t qid, AtSrvMsg *msg, int32_t checkSeq,
                                      int32_t *retCode);
/** Withdraws, without waiting, every message of type mtype from the queue. */
ATAPI_EXPORT void ClearMsgFromQueue(int32_t qid, int32_t mtype);
/** Logs a query command line; set commands are never logged. */
ATAPI_EXPORT void AtReadCmdFromMsgQueue(const char *cmd);

/* ---- Abort request and readiness wait ------------------------------------ */

/** Sends an abort (6) or clear (7, 8) request carrying cmd (or "AT"). */
ATAPI_EXPORT int32_t AtAbortAndClearAllCommand(uint32_t reqType, const char *cmd, uint32_t cmdLen);
/** 0 when atserver's ready flag exists, else -1. */
ATAPI_EXPORT int32_t CheckAtServerReady(void);
/** Waits (about 30 s at most) for the ready flag, then returns atserver's pid. */
ATAPI_EXPORT int32_t M2mGetAtsTaskId(void);

/* ---- Queue clearing and trace switch ------------------------------------- */

/** Answers every waiting request with "ERROR" and asks the server to abort. */
ATAPI_EXPORT int32_t ClearAllAtCommandsInQueue(void);
/** Switches the modem trace on (1) or off (0). */
ATAPI_EXPORT int32_t AtTraceOn(uint32_t on);

/* ---- Message queues -------------------------------------------------------
 * Every buffer starts with a 4-byte message type; lengths include it.
 * Send and delete return 1/0; create, receive and lookup return an id or
 * length, or -1. */

ATAPI_EXPORT int AtsMsgQueueCreate(int projId, uint32_t maxMsgs, uint32_t msgSize);
ATAPI_EXPORT int AtsMsgQueueDelete(int qid);
ATAPI_EXPORT int AtsMsgQueueSend(int qid, void *msg, uint32_t length);
ATAPI_EXPORT int AtsMsgQueueRecv(int qid, void *msg, uint32_t length, int timeoutMs);
ATAPI_EXPORT int AtsMsgQueueNum(int qid);
ATAPI_EXPORT int AtsMsgQueueExCreate(int projId, uint32_t maxMsgs, uint32_t msgSize);
ATAPI_EXPORT int AtsMsgQueueExDelete(int qid);
ATAPI_EXPORT int AtsMsgQueueExNum(int qid);
ATAPI_EXPORT int AtsMsgQueueExSend(int qid, void *msg, uint32_t length, int block);
ATAPI_EXPORT int AtsMsgQueueExRecv(int qid, void *msg, uint32_t length, int timeoutMs,
                                   long msgType);
ATAPI_EXPORT int AtsGetMsgQueueId(int projId);

/* ---- Tasks and events ---------------------------------------------------- */

typedef struct AtsEventMap {
    int32_t event;
    int32_t signal;
} AtsEventMap;

/** {event, signal} pairs, ended by {-1, -1}. */
ATAPI_EXPORT extern const AtsEventMap g_atsEventMaps[5];

ATAPI_EXPORT uint32_t AtsStrlen(const char *s);
ATAPI_EXPORT int32_t AtsTaskGetId(void);
ATAPI_EXPORT int32_t AtsTaskExist(int32_t id);
ATAPI_EXPORT int32_t AtsTaskNameToId(const char *name);
ATAPI_EXPORT int32_t AtsEventInit(uint32_t mask);
ATAPI_EXPORT int32_t AtsEventSend(int32_t pid, uint32_t event);
ATAPI_EXPORT int32_t AtsEventRecv(uint32_t mask, int32_t seconds, uint32_t *event);
ATAPI_EXPORT int32_t AtsElapse(void);
ATAPI_EXPORT void AtsSleep(uint32_t ms);
ATAPI_EXPORT int32_t AtsPostNotify(uint32_t a, uint32_t b, uint32_t c, uint32_t d);
ATAPI_EXPORT int32_t AtsPostNotifyExt(uint32_t a, uint32_t b, uint32_t c, uint32_t d);
ATAPI_EXPORT int32_t AtsEventThreadInit(uint32_t mask);
ATAPI_EXPORT int32_t AtsEventThreadSend(pthread_t thread, uint32_t event);
ATAPI_EXPORT int32_t AtsEventThreadRecv(uint32_t mask, uint32_t *event);
ATAPI_EXPORT int32_t AtsThreadEventInit(uint32_t mask);
ATAPI_EXPORT int32_t AtsThreadEventSend(pthread_t thread, uint32_t event);
ATAPI_EXPORT int32_t AtsThreadEventRecv(uint32_t mask, uint32_t *event);

ATAPI_END_DECLS

#endif
