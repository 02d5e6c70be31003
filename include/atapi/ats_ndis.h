/*
 * Data connection: dial-up (NDIS), PDP context definitions and their
 * authentication data, the addresses and router advertisement of a
 * connection, and its state.
 *
 * Ownership: every record is the caller's and is filled in place, except the
 * array that AtDconnStatList allocates; the caller releases it with free().
 * Text fields are NUL-terminated within their size, on the way in and out.
 * Passwords given to AtNdisDup and AtAuthDataHandler are read, never kept:
 * the command lines that carry them are wiped after sending. The readers of
 * authentication data return the password in the caller's record as the
 * module reports it; wiping that record is the caller's business.
 * errorId: -2 when the module answered OK, else the id mapped from the error
 * reply. Results: 0 on success, -1 on a local failure (null pointer, a line
 * that does not fit, a reply that cannot be parsed), else the non-zero code
 * of the exchange; the comment of each function says where it differs.
 */
#ifndef ATAPI_ATS_NDIS_H
#define ATAPI_ATS_NDIS_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

/* Dial-up profile (input of AtNdisDup). */
typedef struct NdisDupProfile {
    uint8_t reserved[140]; /* the caller's own bookkeeping; not read */
    uint8_t apnIsStatic;   /* 1: apn is sent; else the APN parameter stays empty */
    char apn[100];
    char username[128];
    char passwd[128];
    char authType; /* authentication preference as one character, e.g. '2' */
    uint8_t reserved2;
    uint8_t ipIsStatic; /* 1: ipAddr is sent as the last parameter */
    char ipAddr[252];
    int32_t errorId;
} NdisDupProfile;

typedef struct PdpContextInfo {
    uint32_t cid;
    char pdpType[35];
    char apn[100];
    uint8_t reserved[13];
    int32_t errorId;
    char sNssai[100]; /* S-NSSAI text; empty: none */
} PdpContextInfo;

/* Authentication data of one PDP context (^AUTHDATA). */
typedef struct AuthDataInfo {
    uint32_t cid;
    uint32_t authType; /* 0 none, 1 PAP, 2 CHAP */
    char plmn[35];
    char passwd[128];
    char username[128];
    uint8_t reserved;
    int32_t errorId;
} AuthDataInfo;

/* IPv4 addresses of a connection, as dotted-decimal text. */
typedef struct DhcpInfo {
    char ipAddr[16];
    char netMask[16];
    char gateWay[16];
    char dhcpServer[16];
    char pDns[16];
    char sDns[16];
    uint8_t reserved[40]; /* not written */
    uint64_t maxRxData;   /* bit/s */
    uint64_t maxTxData;
    int32_t errorId;
} DhcpInfo;

/* IPv6 addresses of a connection, as the module writes them. */
typedef struct DhcpV6Info {
    char ipAddr[65];
    char netMask[65];
    char gateWay[65];
    char dhcpServer[65];
    char pDns[65];
    char sDns[65];
    uint64_t maxRxData; /* bit/s */
    uint64_t maxTxData;
    int32_t errorId;
} DhcpV6Info;

/* IPv6 router advertisement of a connection. */
typedef struct ApRaInfo {
    uint32_t ipv6Mtu;
    char prefix[64];
    uint32_t preferredLifetime; /* seconds */
    uint32_t validLifetime;
    int32_t errorId;
} ApRaInfo;

/* Connection state per address family (0 down, 1 up, 2 connecting). */
typedef struct PppStateInfo {
    uint32_t reserved;
    uint32_t ipv4Status;
    uint32_t ipv6Status;
    uint32_t etherStatus;
    int32_t errorId;
} PppStateInfo;

/* Dial-up state per address family (stat 0..3) with the module's cause. */
typedef struct NdisStatInfo {
    uint32_t reserved;
    uint32_t ipv4Stat;
    uint32_t ipv6Stat;
    int32_t errorId;
    uint32_t errCode; /* the last cause reported */
    uint32_t ipv4ErrCode;
    uint32_t ipv6ErrCode;
    uint32_t etherStat;
    uint32_t etherErrCode;
} NdisStatInfo;

#define NDIS_CID_LIST_MAX 16

/* The cids that dial-up accepts, each as text of at most 3 characters. */
typedef struct NdisCidList {
    uint32_t count;
    char cids[NDIS_CID_LIST_MAX][4];
    int32_t errorId;
} NdisCidList;

/* One connection of AtDconnStatList. */
typedef struct DconnStatEntry {
    uint32_t cid;
    char apn[99];
    uint32_t ipv4Stat;
    uint32_t ipv6Stat;
    uint32_t etherStat;
    uint32_t dconnType;
    uint8_t reserved[4]; /* not written */
} DconnStatEntry;

/* Ranges that the LTE attach profile accepts. */
typedef struct LteProfileRange {
    uint32_t mode1;
    uint32_t mode2;
    uint32_t firstIndex;
    uint32_t lastIndex;
    uint8_t reserved[24]; /* not written */
    int32_t errorId;
} LteProfileRange;

typedef struct HfeatureStatusInfo {
    uint32_t featureId;
    uint32_t value1;
    uint32_t value2;
    uint32_t value3;
    uint32_t value4;
    uint32_t value5;
    int32_t errorId;
} HfeatureStatusInfo;

/* Binds a PDP context to a data channel (^CHDATA). */
typedef struct ChDataRequest {
    uint32_t cid;
    uint32_t dataChannel; /* 0: the module's default channel */
    int32_t errorId;
} ChDataRequest;

typedef struct CardModeInfo {
    uint32_t simType; /* 0..4 */
    int32_t errorId;
} CardModeInfo;

typedef struct Ipv6CapInfo {
    uint32_t cfgValue; /* 1..11 */
    int32_t errorId;
} Ipv6CapInfo;

/** Connects (connect 1) or disconnects (0) the data connection of cid. A
 *  null p sends the two-parameter form; otherwise p's APN (when apnIsStatic
 *  is 1), user name, password, authentication type and static IP address
 *  (when ipIsStatic is 1) go along. p->errorId receives the outcome. 0 or -1. */
ATAPI_EXPORT int32_t AtNdisDup(int32_t cid, int32_t connect, NdisDupProfile *p);
/** Defines the PDP context c->cid (with its S-NSSAI when one is given). */
ATAPI_EXPORT int32_t AtCgdContHandler(PdpContextInfo *c);
/** Appends the S-NSSAI parameters of c to the +CGDCONT line in cmd (a buffer
 *  of size bytes); nothing when c->sNssai is empty. 0, or -1 when it does
 *  not fit. */
ATAPI_EXPORT int32_t AtCgdContAddSingleNssai(PdpContextInfo *c, char *cmd, int32_t size);
/** The first PDP context the module reports. */
ATAPI_EXPORT int32_t AtGetCgdCont(PdpContextInfo *c);
/** The PDP context whose cid is cid; -1 when the module reports none. The
 *  record is cleared before each reply line is read: after a miss it holds
 *  the last context reported. */
ATAPI_EXPORT int32_t AtGetCgdContByCid(PdpContextInfo *c, uint32_t cid);
/** Sets the authentication data of the context a->cid. 0 or -1. */
ATAPI_EXPORT int32_t AtAuthDataHandler(AuthDataInfo *a);
/** The authentication data of the first context the module reports. */
ATAPI_EXPORT int32_t AtGetAuthData(AuthDataInfo *a);
/** The authentication data of context cid; as AtGetCgdContByCid. */
ATAPI_EXPORT int32_t AtGetAuthDataByCid(AuthDataInfo *a, uint32_t cid);
/** IPv4 addresses of the connection: cid 1 reads the default connection
 *  (AT^DHCP?). An error reply returns -1 and leaves errorId. */
ATAPI_EXPORT int32_t AtDhcp(uint32_t cid, DhcpInfo *d);
/** IPv6 addresses of the connection: cid 1 reads the default connection.
 *  0 when the module answered with the addresses, else -1. */
ATAPI_EXPORT int32_t AtDhcpV6(uint32_t cid, DhcpV6Info *d);
/** IPv6 router advertisement of the connection cid. */
ATAPI_EXPORT int32_t AtApRaInfo(uint32_t cid, ApRaInfo *r);
/** Connection state per address family: cid 0 queries all (AT^APCONNST?).
 *  An error reply returns 0 with its errorId. */
ATAPI_EXPORT int32_t AtPppState(uint32_t cid, PppStateInfo *s);
/** Dial-up state per address family: cid 1 reads the default connection
 *  (AT^NDISSTATQRY?). An error reply returns 0 with its errorId. */
ATAPI_EXPORT int32_t AtNdisStatQryState(int32_t cid, NdisStatInfo *s);
/** The cids that dial-up accepts (at most 16). The record is cleared first;
 *  an error reply returns 0 with its errorId. */
ATAPI_EXPORT int32_t AtNdisStatQryTest(NdisCidList *l);
/** The IPv6 capability setting. An error reply returns 0 with its errorId;
 *  other failures -1. */
ATAPI_EXPORT int32_t AtIpv6Cap(Ipv6CapInfo *r);
/** The type of the card in the slot (^CARDMODE). */
ATAPI_EXPORT int32_t AtCardMode(CardModeInfo *r);
/** The PIN state into pinInfo, a CpinInfo (ats_security.h); as
 *  AtPinManagement with op 0. */
ATAPI_EXPORT int32_t AtCpinCheck(void *pinInfo);
/** Binds r->cid to r->dataChannel (to the default channel when it is 0).
 *  0 or -1. */
ATAPI_EXPORT int32_t AtChData(ChDataRequest *r);
/** The status values of feature featureId. */
ATAPI_EXPORT int32_t AtHfeatureStatus(uint32_t featureId, HfeatureStatusInfo *h);
/** Every connection the module reports, as an array of *count entries that
 *  the caller frees with free(). flag must be 0: any other value returns 0
 *  at once and leaves *count and *list alone, as does an error reply (+CME
 *  or +CMS ERROR). On failure *count is 0 and *list null, or both as they
 *  were when nothing was received. */
ATAPI_EXPORT int32_t AtDconnStatList(int32_t flag, uint32_t *count, DconnStatEntry **list);
/** The modes and the index range of the LTE attach profile. 0 or -1. */
ATAPI_EXPORT int32_t AtLteProfileTest(LteProfileRange *r);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(offsetof(NdisDupProfile, apnIsStatic) == 140, "apnIsStatic at 140");
ATAPI_STATIC_ASSERT(offsetof(NdisDupProfile, authType) == 497, "authType at 497");
ATAPI_STATIC_ASSERT(offsetof(NdisDupProfile, ipAddr) == 500, "ipAddr at 500");
ATAPI_STATIC_ASSERT(sizeof(NdisDupProfile) == 756, "NdisDupProfile is 756 bytes");
ATAPI_STATIC_ASSERT(offsetof(PdpContextInfo, errorId) == 152, "errorId at 152");
ATAPI_STATIC_ASSERT(sizeof(PdpContextInfo) == 256, "PdpContextInfo is 256 bytes");
ATAPI_STATIC_ASSERT(offsetof(AuthDataInfo, username) == 171, "username at 171");
ATAPI_STATIC_ASSERT(sizeof(AuthDataInfo) == 304, "AuthDataInfo is 304 bytes");
ATAPI_STATIC_ASSERT(offsetof(DhcpInfo, maxRxData) == 136, "maxRxData at 136");
ATAPI_STATIC_ASSERT(offsetof(DhcpInfo, errorId) == 152, "errorId at 152");
ATAPI_STATIC_ASSERT(offsetof(DhcpV6Info, maxRxData) == 392, "maxRxData at 392 (aligned to 8)");
ATAPI_STATIC_ASSERT(offsetof(DhcpV6Info, errorId) == 408, "errorId at 408");
ATAPI_STATIC_ASSERT(sizeof(ApRaInfo) == 80, "ApRaInfo is 80 bytes");
ATAPI_STATIC_ASSERT(sizeof(PppStateInfo) == 20, "PppStateInfo is 20 bytes");
ATAPI_STATIC_ASSERT(offsetof(NdisStatInfo, errCode) == 16, "errCode at 16");
ATAPI_STATIC_ASSERT(sizeof(NdisStatInfo) == 36, "NdisStatInfo is 36 bytes");
ATAPI_STATIC_ASSERT(sizeof(NdisCidList) == 72, "NdisCidList is 72 bytes");
ATAPI_STATIC_ASSERT(offsetof(DconnStatEntry, ipv4Stat) == 104, "ipv4Stat at 104");
ATAPI_STATIC_ASSERT(sizeof(DconnStatEntry) == 124, "DconnStatEntry is 124 bytes");
ATAPI_STATIC_ASSERT(sizeof(LteProfileRange) == 44, "LteProfileRange is 44 bytes");
ATAPI_STATIC_ASSERT(sizeof(HfeatureStatusInfo) == 28, "HfeatureStatusInfo is 28 bytes");
ATAPI_STATIC_ASSERT(sizeof(ChDataRequest) == 12, "ChDataRequest is 12 bytes");
ATAPI_STATIC_ASSERT(sizeof(CardModeInfo) == 8, "CardModeInfo is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(Ipv6CapInfo) == 8, "Ipv6CapInfo is 8 bytes");

#endif
