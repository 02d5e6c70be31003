// Pieces of the data-connection family shared by its source files and
// reached by its tests; none of them is exported.
#pragma once

#include <cstdint>

#include "atapi/at_text.h"
#include "atapi/ats_ndis.h"

namespace atapi::ndis {

// Writes the IPv4 address that the module reports as a little-endian 32-bit
// hex value (0100A8C0) into out as dotted decimal (192.168.0.1). Leaves out
// untouched for a null or longer than 8 characters hex; leaves the octets in
// reply order when one of them is no valid number.
void AtHexIpToDotStr(const char *hex, char out[16]);

// Fills d from the text of a ^DHCP reply; 0, or -1 when it cannot be parsed.
int32_t AtDhcpCmdOk(char *reply, DhcpInfo *d);

// The state replies, each parsed as its command's reply; they trust none of
// the text. -1 when the reply parses to nothing; the fields read before a
// failure keep their values.

// ^APCONNST: the per-family connection states (0..2); -1 for one outside.
int32_t PppStateFromReply(char *reply, PppStateInfo &s);
// ^NDISSTATQRY: the per-family dial-up states (0..3) and error codes; -1
// for a state outside.
int32_t NdisStateFromReply(char *reply, NdisStatInfo &s);
// ^NDISSTATQRY=?: the cids of its "(cid)" group, at most NDIS_CID_LIST_MAX,
// each cut to three characters; errorId set once rows came.
int32_t CidListFromReply(char *reply, NdisCidList &l);
// One ^DCONNSTAT line into entry; false when it does not parse.
bool DconnStatFromLine(char *line, DconnStatEntry &entry);
// ^LTEPROFILE=?: mode1 and mode2, and the "first-last" index range when the
// reply has one (-1 for a range without '-' or longer than 9 characters);
// errorId set once rows came.
int32_t LteProfileFromReply(char *reply, LteProfileRange &r);

inline bool Named(const AtCmdParseNode *node, const char *name) {
    return SafeStrCmp(node->atFieldName, name) == 0;
}

}  // namespace atapi::ndis
