// How the command functions read the result of a send primitive. The
// conventions differ on purpose between families; each is written once here.
#pragma once

#include <cstdint>

#include "atapi/at_types.h"

namespace atapi::api {

// The cmdType values of the functions that query, set or test one setting.
inline constexpr int32_t kQueryForm = 0;
inline constexpr int32_t kSetForm = 1;
inline constexpr int32_t kTestForm = 2;

// An error reply that carries a cause: +CME ERROR or +CMS ERROR.
constexpr bool IsCauseError(int32_t retVal) {
    return retVal == AT_RET_CME_ERROR || retVal == AT_RET_CMS_ERROR;
}

// A query through the list or multi-line primitive that counts an error
// reply with a cause, its id stored, as done.
constexpr bool QueryDone(int32_t ret) { return ret == 0 || IsCauseError(ret); }

// A set through the simple primitive that looks at the stored error id: the
// primitive stores the class of an error reply with a cause, which counts as
// done.
constexpr bool SetDone(int32_t ret, int32_t storedId) { return ret == 0 || IsCauseError(storedId); }

}  // namespace atapi::api
