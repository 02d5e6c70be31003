// GetSubstring on arbitrary buffers and needles.
// Input: control byte (allocation failure), capacity byte, needle NUL buffer.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "atapi/at_parse.h"
#include "fuzz_parse_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    atapi::fuzz::AllocFailure failure(input.Byte());
    const int32_t capacity = input.Byte() % 40;
    const std::string needle = input.Segment();
    const std::string buffer = input.Rest();

    std::vector<char *> pieces(static_cast<size_t>(capacity) + 1, nullptr);
    int32_t count = capacity;
    GetSubstring(buffer.c_str(), pieces.data(), &count, needle.c_str());
    if (count < 0 || count > capacity) __builtin_trap();

    // The pieces are consecutive cuts of the buffer, each within the limit.
    std::string joined;
    for (int32_t i = 0; i < count; ++i) {
        const size_t len = std::strlen(pieces[i]);
        if (len + 1 > AT_REPORT_STR_LEN) __builtin_trap();
        joined.append(pieces[i], len);
    }
    if (std::string_view(buffer.c_str()).substr(0, joined.size()) != joined) __builtin_trap();
    ReleaseSubstring(pieces.data(), count);
    return 0;
}
