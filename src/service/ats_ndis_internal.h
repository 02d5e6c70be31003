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

inline bool Named(const AtCmdParseNode *node, const char *name) {
    return SafeStrCmp(node->atFieldName, name) == 0;
}

}  // namespace atapi::ndis
