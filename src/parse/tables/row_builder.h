// Builders that keep each handler-table row on one readable line:
//   kRows.Row("^CPIN", Q("^CPIN:code,times"), S(), T())
// Q/S/T/R fill the query, set, test and report slot. A slot built without a
// template keeps its routine (the routine then reports the missing template);
// a slot never named stays empty (the mode is unsupported).
#pragma once

#include <cstdint>

#include "atapi/at_parse.h"

namespace atapi::tables {

struct ModeSlot {
    uint32_t mode;
    const char *atTemplate;
    AtParseFn parseFn;
};

constexpr ModeSlot Q(const char *atTemplate = nullptr, AtParseFn parseFn = ParseCommonAtStr) {
    return {AT_PARSE_QUERY, atTemplate, parseFn};
}
constexpr ModeSlot S(const char *atTemplate = nullptr, AtParseFn parseFn = ParseCommonAtStr) {
    return {AT_PARSE_SET, atTemplate, parseFn};
}
constexpr ModeSlot T(const char *atTemplate = nullptr, AtParseFn parseFn = ParseCommonAtStr) {
    return {AT_PARSE_TEST, atTemplate, parseFn};
}
constexpr ModeSlot R(const char *atTemplate = nullptr, AtParseFn parseFn = ParseCommonAtStr) {
    return {AT_PARSE_REPORT, atTemplate, parseFn};
}

// Makes the rows of one table; the id goes into each row's module id word.
class RowMaker {
  private:
    // Defined ahead of its callers: clang evaluates the constexpr rows eagerly.
    template <typename... Slots>
    constexpr AtParseHandler Make(const char *atName, AtFreeFn freeFn, Slots... slots) const {
        AtParseHandler row{};
        row.atName = atName;
        row.moduleId = moduleId_;
        row.freeFn = freeFn;
        ((row.atTemplate[slots.mode] = slots.atTemplate, row.parseFn[slots.mode] = slots.parseFn),
         ...);
        return row;
    }

    intptr_t moduleId_;

  public:
    explicit constexpr RowMaker(intptr_t moduleId) : moduleId_(moduleId) {}

    template <typename... Slots>
    constexpr AtParseHandler Row(const char *atName, Slots... slots) const {
        return Make(atName, FreeAtCmd, slots...);
    }

    // A row whose results the table does not say how to release.
    template <typename... Slots>
    constexpr AtParseHandler RowNoFree(const char *atName, Slots... slots) const {
        return Make(atName, nullptr, slots...);
    }

    // Closes a table: the lookup stops at the first null prefix.
    constexpr AtParseHandler End() const { return Make(nullptr, nullptr); }
};

}  // namespace atapi::tables
