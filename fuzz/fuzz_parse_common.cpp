// ParseCommonAtStr on arbitrary templates, prefixes and replies.
// Input: control byte (allocation failure), template NUL prefix NUL reply.
#include <cstdint>
#include <string>

#include "atapi/at_parse.h"
#include "fuzz_parse_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    atapi::fuzz::AllocFailure failure(input.Byte());
    const std::string atTemplate = input.Segment();
    const std::string prefix = input.Segment();
    const std::string original = input.Rest();
    std::string reply = original;

    AtCmdParseNode *out = nullptr;
    const int32_t status = ParseCommonAtStr(&out, atTemplate.c_str(), reply.data(), prefix.c_str());
    atapi::fuzz::TouchResult(out);
    // The caller's reply is never written, and a failure leaves no rows.
    if (reply != original || (status != AT_PARSE_OK && out != nullptr)) __builtin_trap();
    FreeAtCmd(out);
    return 0;
}
