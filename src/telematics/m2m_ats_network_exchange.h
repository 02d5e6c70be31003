// The reply check every command of the network module makes after its
// exchange, with the module's log lines.
#pragma once

#include <cstdint>

#include "telematics/m2m_ats_call_exchange.h"

namespace atapi::network {

// "%s, GetDataFromAtServer failed retVal = %d\n": the form most reads log
// for a reply that is not OK.
inline constexpr char kRetValFailed[] = "%s, GetDataFromAtServer failed retVal = %d\n";

// 0 for an OK reply. A failed exchange logs "<name>, GetDataFromAtServer
// falied ret = ..." and gives its own result; any other reply class logs
// retValFormat (taking name and the class) and gives -1.
int32_t ReplyOutcome(const call::CallReply &reply, const char *name, const char *retValFormat);

}  // namespace atapi::network
