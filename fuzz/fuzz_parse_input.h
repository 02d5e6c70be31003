// Input layout shared by the parse fuzz targets: NUL-separated segments of a
// fuzz input, and owned NUL-terminated copies to hand to the parsers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "parse/at_parse_alloc.h"

namespace atapi::fuzz {

// Reads the input front to back: single bytes, then NUL-terminated segments,
// the last segment running to the end.
class InputReader {
  public:
    InputReader(const uint8_t *data, size_t size)
        : rest_(reinterpret_cast<const char *>(data), size) {}

    uint8_t Byte() {
        if (rest_.empty()) return 0;
        const auto b = static_cast<uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return b;
    }
    // The text up to the next NUL (consumed with it), or everything left.
    std::string Segment() {
        const size_t end = rest_.find('\0');
        std::string segment(rest_.substr(0, end));
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        return segment;
    }
    std::string Rest() {
        std::string rest(rest_);
        rest_ = {};
        return rest;
    }

  private:
    std::string_view rest_;
};

// One control byte decides whether an allocation of the parse layer fails:
// high bit clear, none does; set, the ((b & 0x3F) + 1)-th does.
class AllocFailure {
  public:
    explicit AllocFailure(uint8_t control) {
        if ((control & 0x80) == 0) return;
        AtParseAllocHooks hooks;
        hooks.failAt = (control & 0x3Fu) + 1;
        AtParseSetAllocHooks(&hooks);
        installed_ = true;
    }
    ~AllocFailure() {
        if (installed_) AtParseSetAllocHooks(nullptr);
    }
    AllocFailure(const AllocFailure &) = delete;
    AllocFailure &operator=(const AllocFailure &) = delete;

  private:
    bool installed_ = false;
};

// Reads every string of a result, so that the sanitizers see a bad pointer.
inline size_t TouchResult(const AtCmdParseNode *first) {
    size_t total = 0;
    for (const AtCmdParseNode *row = first; row != nullptr; row = row->nextRow) {
        for (const AtCmdParseNode *n = row; n != nullptr; n = n->nextField) {
            if (n->atFieldName != nullptr) total += std::string_view(n->atFieldName).size();
            if (n->atFieldValue != nullptr) total += std::string_view(n->atFieldValue).size();
        }
    }
    return total;
}

// The input of the reply decoder targets: a selector byte that picks one of
// decoders (and is handed on to those that take it), an allocation-failure
// control byte, then the reply text.
template <typename Decoder, size_t N>
int RunSelectedDecoder(const uint8_t *data, size_t size, const Decoder (&decoders)[N]) {
    InputReader input(data, size);
    const uint8_t selector = input.Byte();
    AllocFailure failure(input.Byte());
    const Decoder decode = decoders[selector % N];
    if constexpr (std::is_invocable_v<Decoder, uint8_t, const std::string &>) {
        decode(selector, input.Rest());
    } else {
        decode(input.Rest());
    }
    return 0;
}

}  // namespace atapi::fuzz
