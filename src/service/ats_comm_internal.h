// Pieces of the device identity and radio settings family shared by its
// source files and reached by its tests; none of them is exported.
#pragma once

#include <cstdint>

#include "api/command.h"

namespace atapi::comm {

// The accepted range of the fields read as non-negative 32-bit numbers.
inline constexpr int64_t kNonNegative = 2147483647;

// What the settings log when a line was not built.
inline constexpr char kFormatError[] = "snprintf_s error";

// Forgets the published versions so that the next AtVersion asks the
// module. For tests only: no AtVersion may run at the same time.
void ResetVersionCache();

}  // namespace atapi::comm
