// Module settings read as one value or written as one line: data lock,
// remote SIM, product type, log port, NV configuration. Their results
// follow each command's own convention (see ats_comm.h).
#include <cstring>

#include "api/command.h"
#include "atapi/at_text.h"
#include "atapi/ats_comm.h"
#include "link/at_log.h"
#include "service/ats_comm_internal.h"

namespace {

using namespace atapi::api;
using atapi::comm::kFormatError;

constexpr char kTraceSrc[] = "atapi/src/ats_comm";

constexpr CommandDescription kDatalockQuery{.format = "AT^DATALOCK?", .rspPrefix = "^DATALOCK"};
constexpr CommandDescription kDatalockSet{.format = "AT^DATALOCK=%s", .secrecy = Secrecy::kSecret};
constexpr CommandDescription kRsimQuery{.format = "AT^RSIM?", .rspPrefix = "^RSIM"};
constexpr CommandDescription kMmiEcho{.format = "AT^MMIECHO="};
constexpr CommandDescription kActiveNcfg{.format = "AT^ACTIVENCFG=1"};
constexpr CommandDescription kSharePdpNvWr{.format = "AT^USERNVWR=2591,4,%u 0 0 0"};

// A value that a boolean query accepts, and how its refusal names it.
struct BoundedValue {
    CommandDescription query;
    int32_t max;  // accepted: 0..max
    const char *name;
};
constexpr BoundedValue kProductType{
    {.format = "AT^PRODTYPE?", .rspPrefix = "^PRODTYPE"}, 3, "prodType"};
constexpr BoundedValue kLogPortType{
    {.format = "AT^LOGPORT?", .rspPrefix = "^LOGPORT"}, 5, "portType"};
constexpr CommandDescription kLogPortSet{.format = "AT^LOGPORT=%d,%d"};
constexpr uint32_t kMaxLogPortConfig = 1;

// The single answers here are a number or a flag behind the reply prefix.
constexpr size_t kAnswerSize = 32;

// 1 with *out set when the queried value is within 0..max, else 0.
int32_t QueryBounded(const BoundedValue &b, uint32_t *out) {
    if (out == nullptr) {
        AT_LOG_ERR("Param Invalid");
        return 0;
    }
    char answer[kAnswerSize];
    if (Command(b.query).QueryText(answer, nullptr) != 0) {
        AT_LOG_ERR("AtSendAndGetSingleStrRsp failed");
        return 0;
    }
    const int32_t value = SafeStrAtoi(answer);
    if (value < 0 || value > b.max) {
        AT_LOG_ERR("portType is invalid. %s = %d", b.name, value);
        return 0;
    }
    *out = static_cast<uint32_t>(value);
    return 1;
}

}  // namespace

extern "C" {

int32_t AtQryDatalock(void) {
    char answer[kAnswerSize];
    if (Command(kDatalockQuery).QueryText(answer, nullptr) != 0) return 1;  // locked unless known
    return SafeStrAtoi(answer) != 0 ? 1 : 0;
}

int32_t AtSetDatalock(const char *code) {
    if (code == nullptr) return -1;
    return SendOrLog(kTraceSrc, kFormatError, Command(kDatalockSet, code), nullptr);
}

int32_t AtQryRsim(void) {
    char answer[kAnswerSize];
    if (Command(kRsimQuery).QueryText(answer, nullptr) != 0) return -1;
    // The answer keeps the blank behind the ':' (" 1").
    return std::strlen(answer) >= 2 && answer[1] == '1' ? 0 : -1;
}

int32_t AtMmiEcho(void) { return SendOrLog(kTraceSrc, kFormatError, Command(kMmiEcho), nullptr); }

int32_t AtQryProductType(uint32_t *t) { return QueryBounded(kProductType, t); }

int32_t AtQryLogPort(uint32_t *t) { return QueryBounded(kLogPortType, t); }

int32_t AtSetLogPort(LogPortSetting *s) {
    if (s == nullptr) {
        AT_LOG_ERR("para error");
        return -1;
    }
    const auto portType = static_cast<int32_t>(s->portType);
    const auto config = static_cast<int32_t>(s->config);
    if (s->portType > static_cast<uint32_t>(kLogPortType.max) || s->config > kMaxLogPortConfig) {
        AT_LOG_ERR("logPortInfo invalid. portType = %d, config = %d", portType, config);
        return -1;
    }
    return SendOrLog(kTraceSrc, kFormatError, Command(kLogPortSet, portType, config), nullptr);
}

int32_t AtActiveNcfg(void) {
    return SendOrLog(kTraceSrc, kFormatError, Command(kActiveNcfg), nullptr);
}

int32_t AtSharePdpNvWr(const uint32_t *v) {
    if (v == nullptr) return -1;
    return SendOrLog(kTraceSrc, kFormatError, Command(kSharePdpNvWr, *v), nullptr);
}

}  // extern "C"
