// Feeds three arbitrary bytes as a PLMN id to the MCC/MNC decoder, into
// texts of every size up to 16 bytes.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "atapi/ats_usim.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 4) return 0;
    const unsigned char plmn[3] = {data[1], data[2], data[3]};
    char out[16];
    std::memset(out, 'x', sizeof out);
    const auto outSize = static_cast<int32_t>(data[0] % (sizeof out + 1));
    if (outSize > 0) out[0] = '\0';
    ExtractMccMncFromPlmnId(plmn, out, outSize);
    if (outSize > 0 && std::strlen(out) >= static_cast<size_t>(outSize)) __builtin_trap();
    return 0;
}
