// Feeds arbitrary text as EF ICCID's hex to the ICCID decoder, into buffers
// of every size up to the record's.
#include <cstddef>
#include <cstdint>
#include <string>

#include "service/ats_usim_internal.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const std::string hex(reinterpret_cast<const char *>(data) + 1, size - 1);
    char out[64];
    atapi::usim::IccidFromBcd(hex.c_str(), out, 1 + data[0] % sizeof out);
    return 0;
}
