// The reply decoders of the trusted-number reads, each over the text of an
// OK reply (parsed as its command's reply, written by the parse); they trust
// none of it. Reached by the fuzz targets.
#pragma once

#include <cstdint>

#include "atapi/m2m_ats_sms.h"

namespace atapi::sms {

// ^TNUMCTL?: the "status" and "voice_switch" values into ctrl; a reply that
// does not parse stores nothing.
void TrustSwitchesFromReply(char *reply, TrustNumCtrl &ctrl);

// ^TRUSTNUM?: each line from a '^' on that parses fills the next of entries
// (count, at least 1) with its index and number until count are filled; a
// number that does not fit leaves the bounded copy's result.
void TrustNumListFromReply(char *reply, TrustNumEntry *entries, int32_t count);

}  // namespace atapi::sms
