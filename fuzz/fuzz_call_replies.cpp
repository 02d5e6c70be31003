// The call module's reply decoders on arbitrary reply text: the call lists
// (+CLCC, a ^CLCC line), the forwarding rules (+CCFC), the trusted number
// range and list (^TRUSTCNUM), the eCall mode and its IMS configuration.
// Input: selector byte (decoder; for the lists also their length), control
// byte (allocation failure in the parse), reply text.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>

#include "fuzz_checks.h"
#include "fuzz_parse_input.h"
#include "telematics/m2m_ats_call_read.h"

namespace {

using atapi::fuzz::Check;
using atapi::fuzz::Guarded;
using atapi::fuzz::Holds;
using atapi::fuzz::ReplyCopy;
using atapi::fuzz::Terminated;
using namespace atapi::call;

constexpr uint8_t kUnwritten = 0x5A;
constexpr size_t kListNumberSize = 26;  // of an entry's 28 bytes
constexpr size_t kDecoderCount = 7;
constexpr size_t kCallNumberSize = 41;  // of an entry's 44 bytes

// Rows fill list[0..maxIndex] and no further; a stored state is one of 0..5
// and a number ends within its array.
void CallList(uint8_t selector, const std::string &text) {
    ReplyCopy reply(text);
    const int32_t maxIndex = selector / kDecoderCount % 8;
    const auto list = atapi::fuzz::HeapEntries<AtsClccInfo>(maxIndex + 1, kUnwritten);
    CallListFromReply(reply.Get(), list.get(), maxIndex);
    for (int32_t i = 0; i <= maxIndex; ++i) {
        const AtsClccInfo &call = list[i];
        Check(Holds(call.stat, kUnwritten) || (call.stat >= 0 && call.stat <= 5));
        Check(Holds(call.number, kUnwritten) || Terminated(call.number));
    }
}

// The number is capped at 40 characters: its last three bytes stay unwritten.
void CallExLine(uint8_t, const std::string &text) {
    ReplyCopy line(text);
    Guarded<AtsClccExInfo> call;
    std::memset(&call.record, kUnwritten, sizeof call.record);
    CallExFromLine(line.Get(), call.record);
    const char *number = call.record.number;
    Check(call.Intact());
    Check(Holds(number + kCallNumberSize, sizeof call.record.number - kCallNumberSize, kUnwritten));
    Check(Holds(number, kCallNumberSize, kUnwritten) ||
          std::memchr(number, '\0', kCallNumberSize) != nullptr);
}

void TrustRange(uint8_t, const std::string &text) {
    ReplyCopy reply(text);
    Guarded<AtTrustNumInfo> info;
    std::memset(info.record.phonenum, kUnwritten, sizeof info.record.phonenum);
    TrustRangeFromReply(reply.Get(), info.record);
    Check(info.Intact() && Holds(info.record.phonenum, kUnwritten));
}

// The list fills exactly the caller's entries (a heap array of their
// number); a number stays within its 26 bytes, the last two are never
// written.
void TrustList(uint8_t selector, const std::string &text) {
    ReplyCopy reply(text);
    const int32_t count = 1 + selector / kDecoderCount % 8;
    const auto entries = atapi::fuzz::HeapEntries<AtTrustNumEntry>(count, kUnwritten);
    TrustListFromReply(reply.Get(), entries.get(), count);
    for (int32_t i = 0; i < count; ++i) {
        const char *number = entries[i].phonenum;
        Check(Holds(number + kListNumberSize, sizeof entries[i].phonenum - kListNumberSize,
                    kUnwritten));
        Check(Holds(number, kListNumberSize, kUnwritten) ||
              std::memchr(number, '\0', kListNumberSize) != nullptr);
    }
}

// A mode is stored only when it is one the module defines.
void EclMode(uint8_t, const std::string &text) {
    constexpr int32_t kUnset = -77;
    ReplyCopy reply(text);
    int32_t mode = kUnset;
    const int32_t ret = EclModeFromReply(reply.Get(), mode);
    Check(mode == kUnset || (mode >= 0 && mode <= 2));
    Check(ret == 0 || ret == -1);
}

void ImsCfg(uint8_t, const std::string &text) {
    ReplyCopy reply(text);
    Guarded<AtsEclImsCfgInfo> ims;
    ImsCfgFromReply(reply.Get(), ims.record);
    Check(ims.Intact() && Terminated(ims.record.contentType));
}

// At most ten rules are counted; a rule's number (written from the values
// of an active rule) stays within 41 of its 44 bytes.
void Forwarding(uint8_t, const std::string &text) {
    ReplyCopy reply(text);
    Guarded<AtsCcfcInfo> info;
    std::memset(&info.record, kUnwritten, sizeof info.record);
    info.record.ccfcCount = 0;
    ForwardingFromReply(reply.Get(), info.record);
    Check(info.Intact() && info.record.ccfcCount >= 0 && info.record.ccfcCount <= 10);
    Check(Holds(info.record.number, kUnwritten));
    for (const AtsCcfcEntry &entry : info.record.entries) {
        Check(Holds(entry.number + kCallNumberSize, sizeof entry.number - kCallNumberSize,
                    kUnwritten));
        Check(Holds(entry.number, kCallNumberSize, kUnwritten) ||
              std::memchr(entry.number, '\0', kCallNumberSize) != nullptr);
    }
}

using Decoder = void (*)(uint8_t selector, const std::string &text);
constexpr Decoder kDecoders[] = {TrustRange, TrustList,  EclMode,   ImsCfg,
                                 CallList,   CallExLine, Forwarding};
static_assert(std::size(kDecoders) == kDecoderCount);

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    return atapi::fuzz::RunSelectedDecoder(data, size, kDecoders);
}
