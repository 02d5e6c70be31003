// Feeds arbitrary reply text to the error mapping, the string utilities that
// take reply lines apart, and the routines that log lines masked.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "atapi/at_text.h"

namespace {

struct FreeDeleter {
    void operator()(char *p) const { std::free(p); }
};
using HeapText = std::unique_ptr<char, FreeDeleter>;

HeapText TerminatedCopy(const uint8_t *data, size_t size) {
    HeapText text(static_cast<char *>(std::malloc(size + 1)));
    if (text != nullptr) {
        if (size != 0) std::memcpy(text.get(), data, size);
        text.get()[size] = '\0';
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > UINT32_MAX - 1) return 0;
    HeapText text = TerminatedCopy(data, size);
    if (text == nullptr) return 0;
    // Lengths as the library's callers pass them: up to the first NUL.
    const auto len = static_cast<uint32_t>(std::strlen(text.get()));

    ErrorStrToErrorId(text.get());
    AtCheckAtCmd(text.get(), len);
    for (const AtRightListCmd &row : g_tdRightListCmdMap) {
        if (row.mask != nullptr) row.mask(text.get());
    }

    HeapText trimmed(static_cast<char *>(std::malloc(size_t{len} + 1)));
    if (trimmed != nullptr && len != 0) AtStringTrim(text.get(), len, trimmed.get(), len + 1);

    for (const char sep : {',', ')', '"'}) {
        AtCountSeparator(text.get(), sep);
        AtGetNextSeperator(text.get(), sep);
    }

    HeapText split = TerminatedCopy(data, size);
    if (split != nullptr) {
        const char ch = size != 0 ? static_cast<char>(data[0]) : ' ';
        SplitSpace(split.get(), len + 1, ch);
        SplitSpace(split.get(), len + 1, ' ');
    }
    return 0;
}
