// One row of nodes from a names text and a values text given as spans of a
// longer text (a template behind its ':', one row of a reply): nothing is
// copied but the node strings themselves.
#pragma once

#include <cstdint>
#include <string_view>

#include "atapi/at_parse.h"

namespace atapi {

// ParseField on spans: the same nodes, names, values and status codes.
// out must not be null.
int32_t ParseFieldSpans(AtCmdParseNode **out, std::string_view names, std::string_view values);

}  // namespace atapi
