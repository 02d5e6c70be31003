// Pieces of the device control family reached by its tests; not exported.
#pragma once

#include <cstdint>

#include "atapi/at_types.h"
#include "atapi/ats_device.h"

namespace atapi::device {

// The notification by which a valid NR band class is announced.
inline constexpr uint32_t kBandNotifyModule = 14;
inline constexpr uint32_t kBandNotifyId = 14055;

// One "^HFREQINFO" line's fields (switch, sysmode, then seven values per
// band) into a band list stored in r by its sysmode (6 LTE, 7 NR; another
// sysmode is logged and dropped). 0, or -1 with nothing stored.
int32_t ParseHfreqInfoResult(const AtCmdParseNode *fields, HfreqInfoResult *r);

// The text of a ^HFREQINFO reply (behind the first prefix's ':', the lines
// that follow with theirs) cut into its lines, each parsed and read as above
// into r; -1 at the first line that does not parse or read (lines read before
// stay stored).
int32_t HfreqFromReport(const char *report, HfreqInfoResult *r);

}  // namespace atapi::device
