// The module table and the internal (non-exported) handler tables.
#pragma once

#include "atapi/at_parse.h"

namespace atapi {

inline constexpr size_t kModuleCount = 32;

// Searched in order by ParseAtCmdFunc.
extern const AtParseModule g_atParseModules[kModuleCount];

}  // namespace atapi
