// Voice path settings: the PCM sampling frequency, the microphone gain and
// the voice mode.
#include "atapi/m2m_ats_voice_call.h"

#include <cstdlib>
#include <cstring>

#include "atapi/at_text.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "telematics/m2m_ats_call_exchange.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;
using atapi::call::CallReply;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_voice_call";

constexpr CommandDescription kPcmfrQuery = Reads("AT^PCMFR?", "^PCMFR:", "^PCMFR", module::kCall);
constexpr CommandDescription kPcmfrSet{.format = "AT^PCMFR=\"%s\"", .rspPrefix = "^PCMFR:"};
constexpr char kPcmfrFormatError[] = "AT^PCMFR, snprintf_s ret:%d\n";

constexpr CommandDescription kCmicQuery = Reads("AT+CMIC?", nullptr, "+CMIC", module::kCall);
constexpr CommandDescription kCmicSet{.format = "AT+CMIC=%d"};

constexpr CommandDescription kVmSet{.format = "AT^VMSET=%d"};

// The pcm_frq fields of an OK query reply into info.
int32_t ReadPcmFrq(CallReply &reply, PcmFrqInfo &info) {
    int32_t status = 0;
    const ParseRows rows = reply.Parse(kPcmfrQuery, &status);
    if (status != AT_PARSE_OK || rows.Get() == nullptr) return -1;
    for (const AtCmdParseNode *node = rows.Get(); node != nullptr; node = node->nextField) {
        if (SafeStrCmp(node->atFieldName, "pcm_frq") != 0 || node->atFieldValue == nullptr) {
            continue;
        }
        const char *value = node->atFieldValue;
        if (strncpy_s(info.pcmFrq, sizeof info.pcmFrq, value, std::strlen(value)) != 0) return -1;
    }
    info.errorId = AT_ERRID_OK;
    return 0;
}

// The level fields of an OK query reply into level; a reply that does not
// parse leaves it.
void ReadLevel(CallReply &reply, int32_t &level) {
    int32_t status = 0;
    const ParseRows rows = reply.Parse(kCmicQuery, &status);
    if (status != AT_PARSE_OK) return;
    ForEachField(rows.Get(), [&level](const char *name, const char *value) {
        if (SafeStrCmp(name, "level") == 0) level = std::atoi(value);
    });
}

}  // namespace

extern "C" {

int32_t AtPcmfr(uint32_t op, PcmFrqInfo *info) {
    AT_LOG_INFO("Enter AT_PCMFR");
    if (info == nullptr) return -1;
    info->errorId = AT_ERRID_NOT_COMPLETED;
    if (op != AT_VOICE_QUERY && op != AT_VOICE_SET) return -1;
    const bool set = op == AT_VOICE_SET;
    if (set && !atapi::call::TextFits(info->pcmFrq, kPcmfrFormatError)) return -1;
    CallReply reply(set ? Command(kPcmfrSet, info->pcmFrq) : Command(kPcmfrQuery),
                    kPcmfrFormatError);
    if (reply.Status() != 0) return reply.Status();
    if (reply.Ok() && !set) return ReadPcmFrq(reply, *info);
    const int32_t ret = atapi::call::SetOutcome(reply, info->errorId);
    if (reply.CauseError()) AT_LOG_INFO("PCMFR=%d, error\n", info->errorId);
    return ret;
}

int32_t AtCmic(int32_t op, int32_t *level) {
    if (level == nullptr) {
        AT_LOG_ERR("AT_CMIC passing value error\n");
        return -1;
    }
    AT_LOG_INFO("value = %d type = %d\n", *level, op);
    if (op != AT_VOICE_QUERY && op != AT_VOICE_SET) {
        AT_LOG_ERR("operate value error\n");
        return -1;
    }
    const bool set = op == AT_VOICE_SET;
    CallReply reply(set ? Command(kCmicSet, *level) : Command(kCmicQuery), "retNum %d\n");
    if (reply.Status() != 0) {
        AT_LOG_INFO("execute AT CMIC finish\n");
        return reply.Status();
    }
    if (!reply.Ok()) return -1;
    if (!set) ReadLevel(reply, *level);
    return 0;
}

int32_t AtVmSet(uint32_t type) {
    if (type > AT_VOICE_MODE_MAX) {
        AT_LOG_ERR("cmdType error\n");
        return -1;
    }
    AT_LOG_INFO("type = %d\n", static_cast<int>(type));
    CallReply reply(Command(kVmSet, static_cast<int>(type)), "retNum %d\n");
    if (reply.Status() != 0) {
        AT_LOG_ERR("execute AT VMSET finish\n");
        return reply.Status();
    }
    return reply.Ok() ? 0 : -1;
}

}  // extern "C"
