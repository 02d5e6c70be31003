// RAII owner of a parse result under construction.
#pragma once

#include "atapi/at_parse.h"

namespace atapi {

// Owns a chain of rows and releases it with FreeAtCmd unless Release()d.
class ParseRows {
  public:
    ParseRows() = default;
    explicit ParseRows(AtCmdParseNode *first) : first_(first) {}
    ParseRows(const ParseRows &) = delete;
    ParseRows &operator=(const ParseRows &) = delete;
    ~ParseRows() { FreeAtCmd(first_); }

    AtCmdParseNode *Get() const { return first_; }
    // The slot a parse routine fills (AtCmdParseNode **out), on an owner that
    // holds no rows yet: whatever the routine leaves there is owned.
    AtCmdParseNode **Out() { return &first_; }
    // Links row (and the rows behind it) after the last row; null is ignored.
    void Append(AtCmdParseNode *row) {
        if (row != nullptr) AddLinkNode(&first_, row);
    }
    void Append(ParseRows &&rows) { Append(rows.Release()); }
    AtCmdParseNode *Release() {
        AtCmdParseNode *first = first_;
        first_ = nullptr;
        return first;
    }

  private:
    AtCmdParseNode *first_ = nullptr;
};

}  // namespace atapi
