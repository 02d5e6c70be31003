// A hash index over the rows that a lookup walks from a table's first row to
// its end entry (run-on tables included): finding a prefix costs one pass
// over its characters and, as a rule, one comparison, and gives the first
// row of that prefix in walk order, as the walk itself would.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "atapi/at_parse.h"

namespace atapi {

class RowIndex {
  public:
    RowIndex() = default;

    // Every row from first up to the end entry.
    explicit RowIndex(const AtParseHandler *first) : first_(first) {
        for (size_t rows = 0; first[rows].atName != nullptr; ++rows) {
            if (rows == kMaxRows) {
                walkOnly_ = true;  // never met by the module table's walks
                return;
            }
            size_t slot = Hash(first[rows].atName) & kMask;
            while (slots_[slot] != 0 &&
                   std::strcmp(first[slots_[slot] - 1].atName, first[rows].atName) != 0) {
                slot = (slot + 1) & kMask;
            }
            if (slots_[slot] == 0) slots_[slot] = static_cast<uint8_t>(rows + 1);
        }
    }

    // The first row named atName in walk order; null when there is none.
    const AtParseHandler *Find(const char *atName) const {
        if (walkOnly_) return Walk(atName);
        for (size_t slot = Hash(atName) & kMask; slots_[slot] != 0; slot = (slot + 1) & kMask) {
            const AtParseHandler *row = first_ + (slots_[slot] - 1);
            if (std::strcmp(row->atName, atName) == 0) return row;
        }
        return nullptr;
    }

  private:
    static constexpr size_t kSlots = 256;
    static constexpr size_t kMask = kSlots - 1;
    // At most half the slots are taken, so every probe meets a free one.
    static constexpr size_t kMaxRows = kSlots / 2;

    static uint32_t Hash(const char *text) {
        uint32_t hash = 5381;
        for (; *text != '\0'; ++text) hash = (hash * 33) ^ static_cast<unsigned char>(*text);
        return hash ^ (hash >> 8);
    }

    const AtParseHandler *Walk(const char *atName) const {
        for (const AtParseHandler *row = first_; row->atName != nullptr; ++row) {
            if (std::strcmp(row->atName, atName) == 0) return row;
        }
        return nullptr;
    }

    const AtParseHandler *first_ = nullptr;
    bool walkOnly_ = false;
    uint8_t slots_[kSlots] = {};  // 1 + the row's offset from first_; 0: free
};

}  // namespace atapi
