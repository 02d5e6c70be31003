// Thirty replies as a modem sends them to the library's queries and reports:
// single and multi-row, short and long, quoted values with commas and
// colons, one to thirty-two fields. Shared by the native benchmark and the
// instruction-count driver so that both measure the same work.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "atapi/at_parse.h"

namespace atapi::bench {

struct SetReply {
    const char *prefix;
    int32_t moduleId;
    uint32_t mode;
    const char *text;
};

inline constexpr SetReply kReplySet[] = {
    {"+CPIN", 2, AT_PARSE_QUERY, "+CPIN: READY"},
    {"^CPIN", 2, AT_PARSE_QUERY, "^CPIN: SIM PIN,3,10,3,10,3"},
    {"+CSQ", 1, AT_PARSE_QUERY, "+CSQ: 23,99"},
    {"+CREG", 1, AT_PARSE_QUERY, "+CREG: 2,1,\"1A2B\",\"01C3D4E5\""},
    {"+CEREG", 0, AT_PARSE_REPORT, "+CEREG: 1,\"2F01\",\"0A1B2C3D\",7"},
    {"+COPS", 1, AT_PARSE_QUERY, "+COPS: 0,0,\"Acme, Mobile\",7"},
    {"+CGDCONT", 25, AT_PARSE_QUERY,
     "+CGDCONT: 1,\"IPV4V6\",\"internet.acme.example\",\"10.64.12.7\",0,0,0,0,0,0,1\r\n"
     "+CGDCONT: 2,\"IPV6\",\"ims\",\"\",0,0,0,0,1,1,0"},
    {"^CERSSI", 1, AT_PARSE_QUERY,
     "^CERSSI: 1,2,0,0,255,-92,-11,14,1,9,0,2,-91,-93,-95,-94,12,11,10,13,-88,-10,17"},
    {"^NWTIME", 0, AT_PARSE_REPORT, "^NWTIME: 24/01/01,12:30:00+32,00"},
    {"+CCLK", 14, AT_PARSE_QUERY, "+CCLK: \"24/05/17,08:15:42+08\""},
    {"^SYSINFOEX", 14, AT_PARSE_QUERY, "^SYSINFOEX: 2,3,0,1,,6,\"LTE\",101,\"LTE FDD\""},
    {"+CLCC", 5, AT_PARSE_QUERY,
     "+CLCC: 1,0,0,0,0,\"+8613800000000\",145\r\n+CLCC: 2,1,5,0,0,\"10086\",129"},
    {"^HCSQ", 14, AT_PARSE_QUERY, "^HCSQ: \"LTE\",52,48,143,27"},
    {"+CPMS", 3, AT_PARSE_QUERY, "+CPMS: \"SM\",3,50,\"SM\",3,50,\"SM\",3,50"},
    {"+CMGS", 3, AT_PARSE_SET, "+CMGS: 12"},
    {"^SIMST", 0, AT_PARSE_REPORT, "^SIMST: 1,0"},
    {"^DHCP", 21, AT_PARSE_QUERY,
     "^DHCP: 0a01a8c0,00ffffff,0101a8c0,0101a8c0,08080808,04040808,150000000,50000000"},
    {"^MONSC", 1, AT_PARSE_QUERY, "^MONSC: LTE,460,00,1850,0A1B2C3,123,2F01,-95,-10,-70,18"},
    {"^NETSCAN", 1, AT_PARSE_QUERY,
     "^NETSCAN: 1850,,,2F01,460,00,,-95,0A1B2C3,3,,123,,,,\r\n"
     "^NETSCAN: 627264,,,2F02,460,00,,-101,0A1B2C4,78,,501,1,-97,-12,9"},
    {"+CUSD", 0, AT_PARSE_REPORT, "+CUSD: 0,\"Balance: 12.50, valid until 2024-12-31\",15"},
    {"^SPN", 19, AT_PARSE_QUERY, "^SPN: 0,0,\"Acme Mobile\""},
    {"+CNUM", 14, AT_PARSE_QUERY, "+CNUM: \"Own, Voice\",\"+8613800000000\",145"},
    {"^CHIPTEMP", 30, AT_PARSE_QUERY, "^CHIPTEMP: 412,398,405,330,65535,371,452"},
    {"^DSFLOWRPT", 0, AT_PARSE_REPORT,
     "^DSFLOWRPT: 00000E2A,00000BB8,0000FA00,0000000000A1B2C3,00000000012D4F60,0003E800,"
     "000FA000"},
    {"^CEND", 0, AT_PARSE_REPORT, "^CEND: 1,125,104,16"},
    {"+CMTI", 0, AT_PARSE_REPORT, "+CMTI: \"SM\",5"},
    {"+CGACT", 1, AT_PARSE_QUERY, "+CGACT: 1,1\r\n+CGACT: 2,0\r\n+CGACT: 3,1"},
    {"^CASCELLINFO", 1, AT_PARSE_QUERY,
     "^CASCELLINFO: 0,123,-65,-95,-10,3,19850,1850,1755000,1850000,20,20"},
    {"^REJINFO", 0, AT_PARSE_REPORT, "^REJINFO: 46000,1,15,2,0,0,\"2F01\",\"00\",\"0A1B2C3D\",0"},
    {"+CLIP", 0, AT_PARSE_REPORT, "+CLIP: \"+8613800000000\",145,,,\"Alice, work\",0"},
};
inline constexpr size_t kReplySetSize = sizeof(kReplySet) / sizeof(kReplySet[0]);

// Parses one reply of the set from a work copy (some parse routines write
// into the reply), reads every field of every row and frees the result.
// Returns the number of fields read and adds the bytes read to *bytes.
inline size_t ParseReadFree(const SetReply &reply, char *work, size_t workSize, size_t *bytes) {
    const size_t len = std::strlen(reply.text);
    if (len >= workSize) std::abort();
    std::memcpy(work, reply.text, len + 1);
    AtCmdParseNode *out = nullptr;
    ParseAtCmdFunc(&out, reply.prefix, work, reply.moduleId, reply.mode);
    size_t fields = 0;
    for (const AtCmdParseNode *row = out; row != nullptr; row = row->nextRow) {
        for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
            if (node->atFieldName != nullptr) *bytes += std::strlen(node->atFieldName);
            if (node->atFieldValue != nullptr) *bytes += std::strlen(node->atFieldValue);
            ++fields;
        }
    }
    FreeAtCmd(out);
    return fields;
}

// The number of fields of the whole set; stops the program when a reply of
// the set does not parse into rows (a set that parses to nothing measures
// nothing).
inline size_t CheckedSetFields() {
    char work[AT_REPORT_STR_LEN];
    size_t fields = 0;
    size_t bytes = 0;
    for (const SetReply &reply : kReplySet) {
        const size_t got = ParseReadFree(reply, work, sizeof(work), &bytes);
        if (got == 0) {
            std::fprintf(stderr, "reply set: %s gives no rows\n", reply.prefix);
            std::exit(1);
        }
        fields += got;
    }
    return fields;
}

}  // namespace atapi::bench
