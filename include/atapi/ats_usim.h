/*
 * SIM file access: elementary files of the SIM read through restricted SIM
 * access (+CRSM) and decoded (ICCID, service provider name, APN control
 * list, service provider display PLMNs, MNC length, home PLMN), the
 * subscriber numbers (+CNUM), raw APDUs (+CSIM), the active SIM and the
 * card type.
 *
 * Ownership: records are the caller's and are filled in place; texts are
 * NUL-terminated within their size. Three results are allocated with malloc
 * by the library and handed to the caller: CrsmResult.response (free), the
 * entries of a CnumList (free) and a SimApnNode list (FreeApnList).
 * errorId: -2 when the module answered OK, else the id mapped from the
 * error reply.
 * Results, unless a function says otherwise: 0 on success, -1 on failure.
 *
 * The directory of a file is chosen by the card's type, asked once per
 * process (AtCardMode) and kept: a SIM reads the files under DF GSM, a USIM
 * under ADF USIM. A request's own path serves when the type is unknown or
 * has no entry for the file.
 */
#ifndef ATAPI_ATS_USIM_H
#define ATAPI_ATS_USIM_H

#include "at_types.h"

ATAPI_BEGIN_DECLS

#define AT_CRSM_READ_BINARY 176

/* One +CRSM request. fileId is the file's id as a number (0x2FE2 for the
 * ICCID). data, when set, is inserted unquoted behind p3. path is replaced
 * by AtCrsm with the directory of the file for the card's type. */
typedef struct CrsmRequest {
    int32_t command;
    int32_t fileId;
    int32_t p1;
    int32_t p2;
    int32_t p3;
    const char *data;
    const char *path;
} CrsmRequest;

/* The status words and the file content as hex digits. response is the
 * record's: AtCrsm frees an earlier one before storing the next; the caller
 * frees the last with free(). Zero the record before its first use. */
typedef struct CrsmResult {
    uint32_t sw1;
    uint32_t sw2;
    char *response;
    int32_t errorId;
} CrsmResult;

/* One APN of the SIM's APN control list; FreeApnList frees a whole list. */
typedef struct SimApnNode {
    char apn[100]; /* dotted: "internet.example.com" */
    struct SimApnNode *next;
} SimApnNode;

typedef struct CnumEntry {
    char name[90];
    char num[42];
    uint32_t type; /* 129 national, 145 international */
} CnumEntry;

/* entries is an array of count entries allocated by the library; the
 * caller frees it with free(). */
typedef struct CnumList {
    CnumEntry *entries;
    int32_t count;
    int32_t errorId;
} CnumList;

typedef struct IccidInfo {
    char iccid[64]; /* digits, filler removed */
    int32_t errorId;
} IccidInfo;

typedef struct AphPlmnInfo {
    char plmn[8]; /* MCC and MNC digits: "26201", "310260" */
    int32_t errorId;
} AphPlmnInfo;

/* A raw APDU: length is the number of hex digits in command (10..520). The
 * module's answer comes back in rspLength and response. */
typedef struct CsimInfo {
    uint32_t length;
    char command[524];
    uint32_t rspLength;
    char response[524];
    int32_t errorId;
} CsimInfo;

/* Switches SIM slot index (enable 1) on or off (enable 0). */
typedef struct HvsstRequest {
    uint32_t index;
    uint32_t enable;
    int32_t errorId;
} HvsstRequest;

#define AT_SIMSWITCH_QUERY 0u
#define AT_SIMSWITCH_SET 1u

/* The active SIM: simType is read by AT_SIMSWITCH_QUERY and sent by
 * AT_SIMSWITCH_SET. */
typedef struct SimSwitchInfo {
    uint32_t simType;
    int32_t errorId;
} SimSwitchInfo;

typedef struct CardTypeInfo {
    uint32_t cardMode; /* 1 SIM, 2 USIM */
    uint32_t hasCdma;
    uint32_t hasGsm;
    int32_t errorId;
} CardTypeInfo;

/** One +CRSM exchange; fills r's status words and response. -1 when q or r
 *  is null, no path is known, or the module refused. */
ATAPI_EXPORT int32_t AtCrsm(CrsmRequest *q, CrsmResult *r);
/** The ICCID as digits (EF ICCID, BCD with swapped nibbles, 'F' filler). */
ATAPI_EXPORT int32_t AtGetIccidByCrsm(IccidInfo *r);
/** The service provider name file (EF SPN) as the module's hex text, not
 *  decoded; -1 when it does not fit buf. */
ATAPI_EXPORT int32_t AtGetSpnByCrsm(char *buf, uint32_t size);
/** The SIM's APN control list into *head (null when the list is empty);
 *  the caller frees it with FreeApnList. */
ATAPI_EXPORT int32_t AtGetSimApn(SimApnNode **head);
/** Appends " MCCMNC" for each PLMN of the service provider display file
 *  (EF SPDI) to the NUL-terminated text out while out is shorter than size;
 *  leaves out unchanged when the file cannot be read or decoded. */
ATAPI_EXPORT void AtGetEfspdiPlmn(char *out, uint32_t size);
/** The length of the MNC (EF AD, 0..15), or -1. */
ATAPI_EXPORT int32_t AtGetMncLength(void);
/** The home PLMN: the IMSI's MCC and its MNC of the card's MNC length. */
ATAPI_EXPORT int32_t AtAphPlmnByCrsm(AphPlmnInfo *r);
/** The group identifier (EF GID1) as hex text; -1 when it does not fit. */
ATAPI_EXPORT int32_t AtGetSimGid(char *gid, uint32_t size);
/** The subscriber numbers; l->entries is the caller's to free. An error
 *  reply returns 0 with its id in errorId and no entries. */
ATAPI_EXPORT int32_t AtCnumQuery(CnumList *l);
/** Sends c->command as a raw APDU; -1 without sending unless c->length is
 *  10..520. Else the result of the list primitive (at_send.h). */
ATAPI_EXPORT int32_t AtCsim(CsimInfo *c);
/** Switches a SIM slot on or off (^HVSST). */
ATAPI_EXPORT int32_t AtHvsstSet(HvsstRequest *r);
/** AT_SIMSWITCH_QUERY reads the active SIM, AT_SIMSWITCH_SET selects it;
 *  another op returns -1. The query returns the list primitive's result. */
ATAPI_EXPORT int32_t AtSimSwitch(uint32_t op, SimSwitchInfo *s);
/** The card type and the radio families it supports. The list primitive's
 *  result. */
ATAPI_EXPORT int32_t AtCardType(CardTypeInfo *c);
/** Writes the MCC and MNC of the three BCD bytes of a PLMN id (as stored on
 *  the SIM) into out: "%03u%03u", or "%03u%02u" when the MNC's third digit
 *  is the filler F. plmn holds three bytes; nothing is written unless
 *  size is at least 2, nor when the text does not fit. */
ATAPI_EXPORT void ExtractMccMncFromPlmnId(const unsigned char *plmn, char *out, int32_t size);
/** The APN list of an EF ACL text in hex; null when it holds none or is
 *  malformed. Free the list with FreeApnList. */
ATAPI_EXPORT SimApnNode *ParseSimApn(const char *hex);
/** Frees every node of *head and sets *head to null. */
ATAPI_EXPORT void FreeApnList(SimApnNode **head);

ATAPI_END_DECLS

ATAPI_STATIC_ASSERT(offsetof(CrsmRequest, data) == (sizeof(void *) == 4 ? 20 : 24),
                    "data behind the five numbers");
ATAPI_STATIC_ASSERT(sizeof(CrsmRequest) == (sizeof(void *) == 4 ? 28 : 40),
                    "CrsmRequest is 28 bytes");
ATAPI_STATIC_ASSERT(offsetof(CrsmResult, response) == 8, "response at 8");
ATAPI_STATIC_ASSERT(offsetof(CrsmResult, errorId) == 8 + sizeof(void *), "errorId behind response");
ATAPI_STATIC_ASSERT(sizeof(CrsmResult) == (sizeof(void *) == 4 ? 16 : 24),
                    "CrsmResult is 16 bytes");
ATAPI_STATIC_ASSERT(sizeof(SimApnNode) == (sizeof(void *) == 4 ? 104 : 104 + 8),
                    "SimApnNode is 104 bytes");
ATAPI_STATIC_ASSERT(offsetof(CnumEntry, num) == 90 && offsetof(CnumEntry, type) == 132,
                    "CnumEntry: num at 90, type at 132");
ATAPI_STATIC_ASSERT(sizeof(CnumEntry) == 136, "CnumEntry is 136 bytes");
ATAPI_STATIC_ASSERT(sizeof(CnumList) == (sizeof(void *) == 4 ? 12 : 16), "CnumList is 12 bytes");
ATAPI_STATIC_ASSERT(sizeof(IccidInfo) == 68, "IccidInfo is 68 bytes");
ATAPI_STATIC_ASSERT(sizeof(AphPlmnInfo) == 12, "AphPlmnInfo is 12 bytes");
ATAPI_STATIC_ASSERT(offsetof(CsimInfo, rspLength) == 528 && sizeof(CsimInfo) == 1060,
                    "CsimInfo is 1060 bytes");
ATAPI_STATIC_ASSERT(sizeof(HvsstRequest) == 12, "HvsstRequest is 12 bytes");
ATAPI_STATIC_ASSERT(sizeof(SimSwitchInfo) == 8, "SimSwitchInfo is 8 bytes");
ATAPI_STATIC_ASSERT(sizeof(CardTypeInfo) == 16, "CardTypeInfo is 16 bytes");

#endif
