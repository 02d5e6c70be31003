// ParseSoftStr and ParseNdisStateQueryAtStr on arbitrary input.
// Input: control byte (allocation failure), template NUL prefix NUL reply.
#include <cstdint>
#include <string>

#include "atapi/at_parse.h"
#include "fuzz_parse_input.h"

using ParseFn = int32_t (*)(AtCmdParseNode **, const char *, char *, const char *);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    atapi::fuzz::AllocFailure failure(input.Byte());
    const std::string atTemplate = input.Segment();
    const std::string prefix = input.Segment();
    const std::string original = input.Rest();

    for (ParseFn parse : {ParseSoftStr, ParseNdisStateQueryAtStr}) {
        std::string reply = original;  // the group parser writes into it
        AtCmdParseNode *out = nullptr;
        const int32_t status = parse(&out, atTemplate.c_str(), reply.data(), prefix.c_str());
        atapi::fuzz::TouchResult(out);
        if (status != AT_PARSE_OK && out != nullptr) __builtin_trap();
        FreeAtCmd(out);
    }
    return 0;
}
