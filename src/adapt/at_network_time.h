// The network time as modules write it in their time replies
// ("24/02/28,23:30:00+04" of ^NWTIME and +CCLK, quoted or not, with or
// without a trailing ",dst"): a two-digit year of this century or a full
// one, and the zone in signed quarter hours.
#pragma once

#include <cstdint>

#include "atapi/at_time_translate.h"

namespace atapi::adapt {

// Decodes text into out (reserved members zeroed); false, and out
// untouched, when text is null or not such a time within the ranges that
// AtsUniversalTimeToLocalTime accepts.
bool DecodeNetworkTime(const char *text, AtsTimeInfo *out);

}  // namespace atapi::adapt
