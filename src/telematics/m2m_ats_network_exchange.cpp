#include "telematics/m2m_ats_network_exchange.h"

#include "link/at_log.h"

namespace atapi::network {

namespace {
constexpr char kTraceSrc[] = "atapi/src/m2m_ats_network";
}

int32_t ReplyOutcome(const call::CallReply &reply, const char *name, const char *retValFormat) {
    if (reply.Status() != 0) {
        AT_LOG_ERR("%s, GetDataFromAtServer falied ret = %d\n", name, reply.Status());
        return reply.Status();
    }
    if (!reply.Ok()) {
        AT_LOG_ERR(retValFormat, name, reply.RetVal());
        return -1;
    }
    return 0;
}

}  // namespace atapi::network
