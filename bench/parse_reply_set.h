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
#include <string_view>
#include <vector>

#include "atapi/at_parse.h"

namespace atapi::bench {

// One reply: the values of each row, rows apart by '|'; the modem sends
// them as "<prefix>: <values>" lines.
struct SetReply {
    const char *prefix;
    int32_t moduleId;
    uint32_t mode;
    const char *rows;
};

// Modes by their first letter, so that each reply reads as one row.
inline constexpr uint32_t Q = AT_PARSE_QUERY;
inline constexpr uint32_t S = AT_PARSE_SET;
inline constexpr uint32_t R = AT_PARSE_REPORT;

// clang-format off
inline constexpr SetReply kReplySet[] = {
    {"+CPIN", 2, Q, "READY"},
    {"^CPIN", 2, Q, "SIM PIN,3,10,3,10,3"},
    {"+CSQ", 1, Q, "23,99"},
    {"+CREG", 1, Q, "2,1,\"1A2B\",\"01C3D4E5\""},
    {"+CEREG", 0, R, "1,\"2F01\",\"0A1B2C3D\",7"},
    {"+COPS", 1, Q, "0,0,\"Acme, Mobile\",7"},
    {"+CGDCONT", 25, Q, "1,\"IPV4V6\",\"internet.acme.example\",\"10.64.12.7\",0,0,0,0,0,0,1|2,\"IPV6\",\"ims\",\"\",0,0,0,0,1,1,0"},
    {"^CERSSI", 1, Q, "1,2,0,0,255,-92,-11,14,1,9,0,2,-91,-93,-95,-94,12,11,10,13,-88,-10,17"},
    {"^NWTIME", 0, R, "24/01/01,12:30:00+32,00"},
    {"+CCLK", 14, Q, "\"24/05/17,08:15:42+08\""},
    {"^SYSINFOEX", 14, Q, "2,3,0,1,,6,\"LTE\",101,\"LTE FDD\""},
    {"+CLCC", 5, Q, "1,0,0,0,0,\"+8613800000000\",145|2,1,5,0,0,\"10086\",129"},
    {"^HCSQ", 14, Q, "\"LTE\",52,48,143,27"},
    {"+CPMS", 3, Q, "\"SM\",3,50,\"SM\",3,50,\"SM\",3,50"},
    {"+CMGS", 3, S, "12"},
    {"^SIMST", 0, R, "1,0"},
    {"^DHCP", 21, Q, "0a01a8c0,00ffffff,0101a8c0,0101a8c0,08080808,04040808,150000000,50000000"},
    {"^MONSC", 1, Q, "LTE,460,00,1850,0A1B2C3,123,2F01,-95,-10,-70,18"},
    {"^NETSCAN", 1, Q, "1850,,,2F01,460,00,,-95,0A1B2C3,3,,123,,,,|627264,,,2F02,460,00,,-101,0A1B2C4,78,,501,1,-97,-12,9"},
    {"+CUSD", 0, R, "0,\"Balance: 12.50, valid until 2024-12-31\",15"},
    {"^SPN", 19, Q, "0,0,\"Acme Mobile\""},
    {"+CNUM", 14, Q, "\"Own, Voice\",\"+8613800000000\",145"},
    {"^CHIPTEMP", 30, Q, "412,398,405,330,65535,371,452"},
    {"^DSFLOWRPT", 0, R, "00000E2A,00000BB8,0000FA00,0000000000A1B2C3,00000000012D4F60,0003E800,000FA000"},
    {"^CEND", 0, R, "1,125,104,16"},
    {"+CMTI", 0, R, "\"SM\",5"},
    {"+CGACT", 1, Q, "1,1|2,0|3,1"},
    {"^CASCELLINFO", 1, Q, "0,123,-65,-95,-10,3,19850,1850,1755000,1850000,20,20"},
    {"^REJINFO", 0, R, "46000,1,15,2,0,0,\"2F01\",\"00\",\"0A1B2C3D\",0"},
    {"+CLIP", 0, R, "\"+8613800000000\",145,,,\"Alice, work\",0"},
};
// clang-format on
inline constexpr size_t kReplySetSize = sizeof(kReplySet) / sizeof(kReplySet[0]);

// The text the modem sends for reply: one "<prefix>: <values>" line per row.
inline std::string ReplyText(const SetReply &reply) {
    std::string text;
    std::string_view rows = reply.rows;
    for (size_t bar = 0; bar != std::string_view::npos; rows.remove_prefix(bar + 1)) {
        bar = rows.find('|');
        if (!text.empty()) text += "\r\n";
        text.append(reply.prefix).append(": ").append(rows.substr(0, bar));
        if (bar == std::string_view::npos) break;
    }
    return text;
}

// The texts of the set, in its order, built once.
inline const std::vector<std::string> &ReplyTexts() {
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> all;
        for (const SetReply &reply : kReplySet) all.push_back(ReplyText(reply));
        return all;
    }();
    return texts;
}

// Parses reply i of the set from a work copy (some parse routines write into
// the reply), reads every field of every row and frees the result. Returns
// the number of fields read and adds the bytes read to *bytes.
inline size_t ParseReadFree(size_t i, char *work, size_t workSize, size_t *bytes) {
    const SetReply &reply = kReplySet[i];
    const std::string &text = ReplyTexts()[i];
    if (text.size() >= workSize) std::abort();
    std::memcpy(work, text.c_str(), text.size() + 1);
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
    for (size_t i = 0; i < kReplySetSize; ++i) {
        const size_t got = ParseReadFree(i, work, sizeof(work), &bytes);
        if (got == 0) {
            std::fprintf(stderr, "reply set: %s gives no rows\n", kReplySet[i].prefix);
            std::exit(1);
        }
        fields += got;
    }
    return fields;
}

}  // namespace atapi::bench
