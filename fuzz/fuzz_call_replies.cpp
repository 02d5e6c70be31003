// The call module's reply decoders on arbitrary reply text: the trusted
// number range and list (^TRUSTCNUM), the eCall mode and its IMS
// configuration. Input: selector byte (decoder; for the list also the number
// of entries), control byte (allocation failure in the parse), reply text.
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
constexpr size_t kDecoderCount = 4;

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
    const auto entries = std::make_unique<AtTrustNumEntry[]>(static_cast<size_t>(count));
    std::memset(entries.get(), kUnwritten, sizeof(AtTrustNumEntry) * static_cast<size_t>(count));
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

using Decoder = void (*)(uint8_t selector, const std::string &text);
constexpr Decoder kDecoders[] = {TrustRange, TrustList, EclMode, ImsCfg};
static_assert(std::size(kDecoders) == kDecoderCount);

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    const uint8_t selector = input.Byte();
    atapi::fuzz::AllocFailure failure(input.Byte());
    kDecoders[selector % kDecoderCount](selector, input.Rest());
    return 0;
}
