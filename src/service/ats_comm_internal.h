// Pieces of the device identity and radio settings family shared by its
// source files and reached by its tests; none of them is exported.
#pragma once

#include <cstdint>

#include "api/command.h"

namespace atapi::comm {

// The accepted range of the fields read as non-negative 32-bit numbers.
inline constexpr int64_t kNonNegative = 2147483647;

// Sends a line without reply data through the simple primitive (the secure
// one for a secret); -1 with "snprintf_s error" when the line was not built.
int32_t SendSet(const api::Command &cmd, int32_t *errorId);

// Forgets the published versions so that the next AtVersion asks the
// module. For tests only: no AtVersion may run at the same time.
void ResetVersionCache();

}  // namespace atapi::comm
