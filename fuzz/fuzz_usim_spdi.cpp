// Feeds arbitrary text as EF SPDI's hex to the byte conversion and the PLMN
// list decoder, appending to a text of a size taken from the input.
#include <cstddef>
#include <cstdint>
#include <string>

#include "service/ats_usim_internal.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const std::string hex(reinterpret_cast<const char *>(data) + 1, size - 1);
    unsigned char bytes[766];
    const int32_t count = atapi::usim::HexToBytes(hex.c_str(), bytes, sizeof bytes);
    if (count < 0) return 0;
    char out[64] = "";
    atapi::usim::AppendSpdiPlmns(bytes, static_cast<size_t>(count), out, 1 + data[0] % sizeof out);
    return 0;
}
