// Feeds arbitrary text as EF AD's hex to the MNC length decoder, whose
// answer is one hex digit or -1.
#include <cstddef>
#include <cstdint>
#include <string>

#include "service/ats_usim_internal.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string hex(reinterpret_cast<const char *>(data), size);
    const int32_t length = atapi::usim::MncLengthFromAd(hex.c_str());
    if (length < -1 || length > 15) __builtin_trap();
    return 0;
}
