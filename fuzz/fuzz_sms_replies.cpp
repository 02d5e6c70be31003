// The trusted-number decoders of the SMS module on arbitrary reply text: the
// filter switches (^TNUMCTL) and the list (^TRUSTNUM). Input: selector byte
// (decoder, and for the list the number of entries), control byte
// (allocation failure in the parse), reply text.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz_checks.h"
#include "fuzz_parse_input.h"
#include "telematics/m2m_ats_sms_read.h"

namespace {

using atapi::fuzz::Check;
using atapi::fuzz::Guarded;
using atapi::fuzz::Holds;
using atapi::fuzz::ReplyCopy;

constexpr uint8_t kUnwritten = 0x5A;

// The switches are all a reply can set: errorId is the caller's.
void Switches(uint8_t, const std::string &text) {
    constexpr int32_t kUnset = -77;
    ReplyCopy reply(text);
    Guarded<TrustNumCtrl> ctrl;
    ctrl.record.errorId = kUnset;
    atapi::sms::TrustSwitchesFromReply(reply.Get(), ctrl.record);
    Check(ctrl.Intact() && ctrl.record.errorId == kUnset);
}

// The list fills exactly the caller's entries (a heap array of their
// number); each number is left as it was or ends within its array.
void List(uint8_t selector, const std::string &text) {
    ReplyCopy reply(text);
    const int32_t count = 1 + selector / 2 % 8;
    const auto entries = atapi::fuzz::HeapEntries<TrustNumEntry>(count, kUnwritten);
    atapi::sms::TrustNumListFromReply(reply.Get(), entries.get(), count);
    for (int32_t i = 0; i < count; ++i) {
        const char(&number)[sizeof TrustNumEntry::phonenum] = entries[i].phonenum;
        Check(Holds(number, kUnwritten) || atapi::fuzz::Terminated(number));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    const uint8_t selector = input.Byte();
    atapi::fuzz::AllocFailure failure(input.Byte());
    ((selector & 1) == 0 ? Switches : List)(selector, input.Rest());
    return 0;
}
