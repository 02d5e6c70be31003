// The reply decoders of the cell monitoring reads, each over the text of an
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

}  // namespace atapi::network
