// ParseAtCmdFunc over every handler table: each row's routine meets arbitrary
// replies. Input: selector byte (module table entry and mode), control byte
// (allocation failure), row byte, prefix NUL reply. An empty prefix takes the
// prefix of the selected table's row instead, so every row is reachable.
#include <cstdint>
#include <string>

#include "atapi/at_parse.h"
#include "fuzz_parse_input.h"
#include "parse/handler_tables.h"

namespace {

const char *RowPrefix(const AtParseHandler *table, uint8_t rowByte) {
    if (table == nullptr) return nullptr;
    size_t rows = 0;
    while (table[rows].atName != nullptr) ++rows;
    return rows == 0 ? nullptr : table[rowByte % rows].atName;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    const uint8_t selector = input.Byte();
    atapi::fuzz::AllocFailure failure(input.Byte());
    const uint8_t rowByte = input.Byte();
    const AtParseModule &module = atapi::g_atParseModules[selector % atapi::kModuleCount];
    const uint32_t mode = (selector / atapi::kModuleCount) % AT_PARSE_MODE_COUNT;

    std::string prefix = input.Segment();
    if (prefix.empty()) {
        const char *rowPrefix = RowPrefix(module.handlers, rowByte);
        if (rowPrefix == nullptr) return 0;
        prefix = rowPrefix;
    }
    std::string reply = input.Rest();

    AtCmdParseNode *out = nullptr;
    ParseAtCmdFunc(&out, prefix.c_str(), reply.data(), module.moduleId, mode);
    atapi::fuzz::TouchResult(out);
    FreeAtCmd(out);
    return 0;
}
