// The reply decoders of the cell monitoring and jamming detection reads, each over the text of an
// OK reply (parsed as its command's reply, written by the parse); they trust
// none of it. Reached by the fuzz targets.
#pragma once

#include <cstdint>

#include "atapi/m2m_ats_network.h"

namespace atapi::network {

// ^MONSC: the serving cell's technology, channel, cell identity and area
// code into out (cleared first, errorId AT_MONSC_ERRID_NO_SERVICE for
// "NONE"); -1 when the reply does not parse or a value does not read.
int32_t MonscResultParse(char *reply, MonscInfo &out);

// ^MONNC: up to AT_MONNC_MAX_NEIGHBORS neighbours, the newest technology
// first; 0 with none for "NONE", -1 when the reply does not parse or a line
// names no known technology.
int32_t MonncResultParse(char *reply, MonncInfo &out);

// ^JDSWITCH?, ^JDCFG?, ^EMRSSICFG?: each row's fields, read by name, into the
// entry of the row's technology (its "rat", 0..2); rows of another
// technology are left out. -1 when the reply parses to nothing.
int32_t JammingSwitchFromReply(char *reply, JammingDetectSwitchInfo &info);
int32_t JammingCfgFromReply(char *reply, JammingDetectCfgInfo &info);
int32_t EmRssiCfgFromReply(char *reply, EmRssiCfgInfo &info);

// ^EMRSSIRPT?: the "n" value into n; -1 when the reply parses to nothing.
int32_t EmRssiRptFromReply(char *reply, int32_t &n);

}  // namespace atapi::network
