// Helpers of the parse suites: a flat view of parse results and an observer
// of the parse layer's allocation seam.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "atapi/at_parse.h"
#include "parse/at_parse_alloc.h"

namespace atapi::test {

using Text = std::optional<std::string>;

struct Field {
    Text name;
    Text value;
    bool operator==(const Field &) const = default;
};
using Row = std::vector<Field>;
using Rows = std::vector<Row>;

inline std::ostream &operator<<(std::ostream &os, const Field &f) {
    return os << "{" << (f.name ? "\"" + *f.name + "\"" : "null") << ", "
              << (f.value ? "\"" + *f.value + "\"" : "null") << "}";
}

inline Text TextOf(const char *s) { return s != nullptr ? Text(s) : std::nullopt; }

inline Row RowOf(const AtCmdParseNode *first) {
    Row row;
    for (const AtCmdParseNode *n = first; n != nullptr; n = n->nextField) {
        row.push_back({TextOf(n->atFieldName), TextOf(n->atFieldValue)});
    }
    return row;
}

inline Rows RowsOf(const AtCmdParseNode *first) {
    Rows rows;
    for (const AtCmdParseNode *r = first; r != nullptr; r = r->nextRow) rows.push_back(RowOf(r));
    return rows;
}

// Owns a parse result for the duration of a test.
struct Result {
    AtCmdParseNode *first = nullptr;
    Result() = default;
    Result(const Result &) = delete;
    Result &operator=(const Result &) = delete;
    ~Result() { FreeAtCmd(first); }
    AtCmdParseNode **Out() { return &first; }
    Rows rows() const { return RowsOf(first); }
};

// Watches every block of the parse layer while in scope: live blocks, the
// number of allocations, and blocks freed while still holding a non-zero
// byte. Optionally fails the n-th allocation.
class AllocTracker {
  public:
    explicit AllocTracker(uint64_t failAt = 0) {
        AtParseAllocHooks hooks;
        hooks.ctx = this;
        hooks.onAlloc = &AllocTracker::OnAlloc;
        hooks.onFree = &AllocTracker::OnFree;
        hooks.failAt = failAt;
        AtParseSetAllocHooks(&hooks);
    }
    ~AllocTracker() { AtParseSetAllocHooks(nullptr); }
    AllocTracker(const AllocTracker &) = delete;
    AllocTracker &operator=(const AllocTracker &) = delete;

    size_t Live() const { return live_.size(); }
    uint64_t Allocations() const { return allocations_; }
    uint64_t Frees() const { return frees_; }
    // Freed blocks that still held data, with the bytes they held.
    const std::vector<std::string> &UnwipedFrees() const { return unwiped_; }

  private:
    static void OnAlloc(void *ctx, void *block, size_t bytes) {
        auto *self = static_cast<AllocTracker *>(ctx);
        ++self->allocations_;
        self->live_[block] = bytes;
    }
    static void OnFree(void *ctx, void *block) {
        auto *self = static_cast<AllocTracker *>(ctx);
        auto it = self->live_.find(block);
        if (it == self->live_.end()) return;  // allocated before the tracker
        ++self->frees_;
        const auto *bytes = static_cast<const unsigned char *>(block);
        for (size_t i = 0; i < it->second; ++i) {
            if (bytes[i] != 0) {
                self->unwiped_.emplace_back(reinterpret_cast<const char *>(bytes), it->second);
                break;
            }
        }
        self->live_.erase(it);
    }

    std::map<void *, size_t> live_;
    uint64_t allocations_ = 0;
    uint64_t frees_ = 0;
    std::vector<std::string> unwiped_;
};

}  // namespace atapi::test
