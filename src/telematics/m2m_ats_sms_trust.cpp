// Trusted numbers: the filter that lets only trusted numbers through for SMS
// and voice calls (^TNUMCTL), and the list of those numbers (^TRUSTNUM).
#include <cstring>

#include "atapi/at_text.h"
#include "atapi/m2m_ats_sms.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "telematics/m2m_ats_call_exchange.h"
#include "telematics/m2m_ats_sms_read.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;
using atapi::call::CallReply;
using atapi::call::SetOutcome;

constexpr char kTraceSrc[] = "atapi/src/m2m_ats_sms";

constexpr CommandDescription kCtrlSet{.format = "AT^TNUMCTL=%d,%d,0"};
constexpr CommandDescription kCtrlQuery =
    Reads("AT^TNUMCTL?", nullptr, "^TNUMCTL", module::kSysCfg);
constexpr char kCtrlFormatError[] = "TNUMCTL snprintf_s ret:%d\n";
constexpr CommandDescription kList = Reads("AT^TRUSTNUM?", nullptr, "^TRUSTNUM", module::kSysCfg);
constexpr size_t kPhonenumSize = sizeof(TrustNumEntry::phonenum);

// The line starting at its '^' into entry; false when it parses to nothing.
// A number that does not fit leaves phonenum as the bounded copy left it.
bool ReadLine(char *line, TrustNumEntry &entry) {
    int32_t status = 0;
    const ParseRows rows = ParseReply(kList, line, &status);
    if (rows.Get() == nullptr) return false;
    for (const AtCmdParseNode *node = rows.Get(); node != nullptr; node = node->nextField) {
        const char *name = node->atFieldName;
        const char *value = node->atFieldValue;
        if (name == nullptr || value == nullptr) continue;
        if (SafeStrCmp(name, "index") == 0) {
            entry.index = SafeStrAtoi(value);
        } else if (SafeStrCmp(name, "phonenum") == 0) {
            const errno_t ret = strncpy_s(entry.phonenum, kPhonenumSize, value, std::strlen(value));
            if (ret != 0) {
                AT_LOG_ERR("trustNumList strncpy_s ret: %d.\n", ret);
                break;
            }
        }
    }
    return true;
}

}  // namespace

namespace atapi::sms {

void TrustSwitchesFromReply(char *reply, TrustNumCtrl &ctrl) {
    int32_t status = 0;  // a failed parse reads as no fields
    const ParseRows rows = ParseReply(kCtrlQuery, reply, &status);
    ForEachField(rows.Get(), [&ctrl](const char *name, const char *value) {
        if (SafeStrCmp(name, "status") == 0) {
            ctrl.smsSwitch = SafeStrAtoi(value);
            AT_LOG_INFO("AT^TNUMCTL? sms_switch=%d\n", ctrl.smsSwitch);
        } else if (SafeStrCmp(name, "voice_switch") == 0) {
            ctrl.voiceSwitch = SafeStrAtoi(value);
            AT_LOG_INFO("AT^TNUMCTL? voice_switch=%d\n", ctrl.voiceSwitch);
        } else {
            AT_LOG_DETAIL("do not care.\n");
        }
    });
}

void TrustNumListFromReply(char *reply, TrustNumEntry *entries, int32_t count) {
    int32_t filled = 0;
    for (char *line = std::strchr(reply, '^'); line != nullptr; line = std::strchr(line + 1, '^')) {
        if (!ReadLine(line, entries[filled])) continue;
        if (++filled == count) {
            AT_LOG_INFO("trustNumList->count is enough, break the while.\n");
            break;
        }
    }
}

}  // namespace atapi::sms

extern "C" {

int32_t AtTrustNumCtrl(uint32_t op, TrustNumCtrl *ctrl) {
    if (ctrl == nullptr) {
        AT_LOG_ERR("[AtTrustNumCtrl] param in is null\n");
        return -1;
    }
    if (op != AT_TRUSTNUM_SET && op != AT_TRUSTNUM_QUERY) return -1;
    CallReply reply(op == AT_TRUSTNUM_SET ? Command(kCtrlSet, ctrl->smsSwitch, ctrl->voiceSwitch)
                                          : Command(kCtrlQuery),
                    kCtrlFormatError);
    if (reply.Status() != 0) {
        AT_LOG_ERR("GetDataFromAtServer fail.\n");
        return -1;
    }
    if (SetOutcome(reply, ctrl->errorId) != 0) return -1;
    if (op == AT_TRUSTNUM_QUERY) atapi::sms::TrustSwitchesFromReply(reply.Text(), *ctrl);
    return 0;
}

int32_t AtTrustNumList(TrustNumList *list) {
    if (list == nullptr || list->entries == nullptr) {
        AT_LOG_ERR("[at_trustnum_test] param in is null\n");
        return -1;
    }
    if (list->count <= 0) {
        AT_LOG_ERR("[at_trustnum_test] trustNumList->count param in is null\n");
        return -1;
    }
    CallReply reply(Command(kList), "TRUSTNUM, snprintf_s ret:%d\n");
    if (reply.Status() != 0 || SetOutcome(reply, list->errorId) != 0) return -1;
    atapi::sms::TrustNumListFromReply(reply.Text(), list->entries, list->count);
    return 0;
}

}  // extern "C"
