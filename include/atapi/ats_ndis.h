/*
 * Data connection: PDP context definitions and the state of a connection.
 *
 * Ownership: every record is the caller's and is filled in place.
 * errorId: -2 when the module answered OK, else the id mapped from the
 * error reply.
 */
#ifndef ATAPI_ATS_NDIS_H
#define ATAPI_ATS_NDIS_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

typedef struct PdpContextInfo {
    uint32_t cid;
    char pdpType[35];
    char apn[100];
    uint8_t reserved[13];
    int32_t errorId;
    char sNssai[100]; /* S-NSSAI text; empty: none */
} PdpContextInfo;

typedef struct PppStateInfo {
    uint32_t reserved;
    uint32_t ipv4Status;
    uint32_t ipv6Status;
    uint32_t etherStatus;
    int32_t errorId;
} PppStateInfo;

/** Defines the PDP context c->cid (with its S-NSSAI when one is given). */
ATAPI_EXPORT int32_t AtCgdContHandler(PdpContextInfo *c);
/** Appends the S-NSSAI parameters of c to the +CGDCONT line in cmd (a buffer
 *  of size bytes); nothing when c->sNssai is empty. 0, or -1 when it does
 *  not fit. */
ATAPI_EXPORT int32_t AtCgdContAddSingleNssai(PdpContextInfo *c, char *cmd, int32_t size);
/** The first PDP context the module reports. */
ATAPI_EXPORT int32_t AtGetCgdCont(PdpContextInfo *c);
/** The PDP context whose cid is cid; -1 when the module reports none. */
ATAPI_EXPORT int32_t AtGetCgdContByCid(PdpContextInfo *c, uint32_t cid);
/** Connection state per address family: cid 0 queries all (AT^APCONNST?).
 *  An error reply returns 0 with its errorId. */
ATAPI_EXPORT int32_t AtPppState(uint32_t cid, PppStateInfo *s);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(offsetof(PdpContextInfo, errorId) == 152, "errorId at 152");
ATAPI_STATIC_ASSERT(sizeof(PdpContextInfo) == 256, "PdpContextInfo is 256 bytes");
ATAPI_STATIC_ASSERT(sizeof(PppStateInfo) == 20, "PppStateInfo is 20 bytes");

#endif
