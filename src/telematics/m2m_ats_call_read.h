// The reply decoders of the call module's reads, each over the text of an OK
// reply (parsed as its command's reply, written by the parse); they trust
// none of it. Reached by the fuzz targets.
#pragma once

#include <cstdint>

#include "atapi/m2m_ats_call.h"

namespace atapi::call {

// +CLCC: the calls of a reply that names CLCC into list[0..maxIndex] (a row
// each, the rows behind left out); a state above 5 is not stored. 0 also for
// a reply without a call; -1 when it does not parse or a number does not fit.
int32_t CallListFromReply(char *reply, AtsClccInfo *list, int32_t maxIndex);

// One ^CLCC line into call through the field list (number at most 40
// characters); the field parser's result.
int32_t CallExFromLine(char *line, AtsClccExInfo &call);

// +CCFC=reason,2: a forwarding rule per row into info.entries (at most 10),
// counted in info.ccfcCount; -1 when the reply does not parse or a rule is
// active (its values behind the status go into the entry's number).
int32_t ForwardingFromReply(char *reply, AtsCcfcInfo &info);

// ^TRUSTCNUM=?: the "index" value (at most 9 characters) into info.index;
// 0 also without one, -1 when the reply does not parse or the value is
// longer.
int32_t TrustRangeFromReply(char *reply, AtTrustNumInfo &info);

// ^TRUSTCNUM?: each line from a '^' on that parses fills the next of
// entries (count, at least 1) with its index and number (at most 25
// characters) until count are filled; -1 at a number that does not fit.
int32_t TrustListFromReply(char *reply, AtTrustNumEntry *entries, int32_t count);

// ^ECLMODE?: the "mode" value into mode when it is 0, 1 or 2; -1 for another
// value or a reply that parses to nothing.
int32_t EclModeFromReply(char *reply, int32_t &mode);

// ^ECLIMSCFG?: modeType and contentType into ims; the parser's code when it
// fails, -1 for a modeType without a value or beyond a long (strtol's
// ERANGE) or a content type longer than 63 characters.
int32_t ImsCfgFromReply(char *reply, AtsEclImsCfgInfo &ims);

}  // namespace atapi::call
