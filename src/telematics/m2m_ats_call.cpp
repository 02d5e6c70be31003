// Telematics voice calls. Each function sends one line on a record of its
// own and reads the reply's result class itself.
#include "atapi/m2m_ats_call.h"

#include "api/command.h"
#include "link/at_log.h"

namespace {

using namespace atapi::api;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_call";

constexpr CommandSpec kDial{.format = "ATD%s;"};
constexpr CommandSpec kAnswer{.format = "ATA"};
constexpr CommandSpec kHangUp{.format = "AT+CHUP"};
constexpr CommandSpec kHold{.format = "AT+CHLD=%d"};

// Exchanges cmd: 0 for an OK reply, -1 for any other class (abortMessage,
// when given, is logged for an aborted command); a failed exchange is
// handed back unchanged.
int32_t ExchangeForOk(const Command &cmd, const char *formatError,
                      const char *abortMessage = nullptr) {
    if (!cmd) {
        AT_LOG_ERR(formatError, -1);
        return -1;
    }
    OwnedSrvMsg msg;
    if (const int32_t ret = cmd.Exchange(msg); ret != 0) return ret;
    if (msg.RetVal() == AT_RET_ABORTED && abortMessage != nullptr) AT_LOG_ERR("%s", abortMessage);
    return msg.RetVal() == AT_RET_OK ? 0 : -1;
}

}  // namespace

extern "C" {

int32_t AtsD(const char *dialString) {
    if (dialString == nullptr) return -1;
    return ExchangeForOk(Command(kDial, dialString), "ATD, snprintf_s error, ret:%d\n",
                         "atd is aborted\n");
}

int32_t AtsA(void) {
    return ExchangeForOk(Command(kAnswer), "ATA, snprintf_s error, ret:%d\n", "ata is aborted\n");
}

int32_t AtsChup(void) {
    return ExchangeForOk(Command(kHangUp), "AT+CHUP, snprintf_s error, ret:%d\n");
}

int32_t AtsChld(int32_t n) {
    return ExchangeForOk(Command(kHold, n), "AT^CHLD, snprintf_s error, ret:%d\n");
}

}  // extern "C"
