// The template parser's routines (ParseCommonAtStr, ParseSoftStr,
// ParseNdisStateQueryAtStr) on arbitrary templates, prefixes and replies.
// Input: control byte (allocation failure), template NUL prefix NUL reply.
#include <cstdint>
#include <string>

#include "atapi/at_parse.h"
#include "fuzz_parse_input.h"

namespace {

struct Routine {
    AtParseFn parse;
    bool keepsReply;  // parses a copy and never writes the caller's reply
};

constexpr Routine kRoutines[] = {
    {ParseCommonAtStr, true},
    {ParseSoftStr, true},
    {ParseNdisStateQueryAtStr, false},
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    atapi::fuzz::AllocFailure failure(input.Byte());
    const std::string atTemplate = input.Segment();
    const std::string prefix = input.Segment();
    const std::string original = input.Rest();

    for (const Routine &routine : kRoutines) {
        std::string reply = original;
        AtCmdParseNode *out = nullptr;
        const int32_t status =
            routine.parse(&out, atTemplate.c_str(), reply.data(), prefix.c_str());
        atapi::fuzz::TouchResult(out);
        // A failure leaves no rows; a routine that works on a copy never writes the reply.
        if (status != AT_PARSE_OK && out != nullptr) __builtin_trap();
        if (routine.keepsReply && reply != original) __builtin_trap();
        FreeAtCmd(out);
    }
    return 0;
}
