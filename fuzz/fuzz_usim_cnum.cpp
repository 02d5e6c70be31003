// The subscriber number decoder on arbitrary reply text: the +CNUM lines cut
// apart, parsed and stored into a heap list. Input: control byte (allocation
// failure in the parse), reply text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "fuzz_checks.h"
#include "fuzz_parse_input.h"
#include "service/ats_usim_internal.h"

using atapi::fuzz::Check;
using atapi::fuzz::Terminated;

// A list comes with one to 255 entries of terminated texts; a refused reply
// leaves no list, and the count unset or 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr int32_t kUnset = -77;
    atapi::fuzz::InputReader input(data, size);
    atapi::fuzz::AllocFailure failure(input.Byte());
    atapi::fuzz::ReplyCopy report(input.Rest());
    CnumList l{nullptr, kUnset, kUnset};
    if (atapi::usim::StoreCnumLines(report.Get(), &l) != 0) {
        Check(l.entries == nullptr && (l.count == kUnset || l.count == 0));
        return 0;
    }
    Check(l.entries != nullptr && l.count >= 1 && l.count <= 255 && l.errorId == kUnset);
    for (int32_t i = 0; i < l.count; ++i) {
        Check(Terminated(l.entries[i].name) && Terminated(l.entries[i].num));
    }
    std::free(l.entries);
    return 0;
}
