// Helpers of the parse suites: a flat view of parse results, row builders, a
// table runner for parse routines and an observer of the allocation seam.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "atapi/at_parse.h"
#include "parse/at_parse_alloc.h"
#include "parse/at_parse_rows.h"

namespace atapi::test {

using Text = std::optional<std::string>;
inline const Text kNull = std::nullopt;

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

inline const Rows kNoRows;
inline Rows OneRow(Row row) { return {std::move(row)}; }

inline Text TextOf(const char *s) { return s != nullptr ? Text(s) : kNull; }

inline Rows RowsOf(const AtCmdParseNode *first) {
    Rows rows;
    for (const AtCmdParseNode *r = first; r != nullptr; r = r->nextRow) {
        Row row;
        for (const AtCmdParseNode *n = r; n != nullptr; n = n->nextField) {
            row.push_back({TextOf(n->atFieldName), TextOf(n->atFieldValue)});
        }
        rows.push_back(row);
    }
    return rows;
}

// Rows written as text: rows split by '|', fields by ';', name and value by
// '='; "~" stands for null. "code=READY;times=~" is one row of two fields.
inline Rows R(std::string_view spec) {
    const auto text = [](std::string_view t) { return t == "~" ? kNull : Text(t); };
    Rows rows(1);
    for (size_t end = 0; !spec.empty();
         spec.remove_prefix(end == std::string_view::npos ? spec.size() : end + 1)) {
        end = std::min(spec.find(';'), spec.find('|'));
        const std::string_view field = spec.substr(0, end);
        const size_t eq = field.find('=');
        rows.back().push_back({text(field.substr(0, eq)), text(field.substr(eq + 1))});
        if (end != std::string_view::npos && spec[end] == '|') rows.emplace_back();
    }
    return rows;
}

// A group row: a header node (a name, no value), then the group's fields.
inline Row Group(const char *name, std::initializer_list<Field> fields = {}) {
    Row row{{TextOf(name), kNull}};
    row.insert(row.end(), fields);
    return row;
}

// A group row of anonymous numbered nodes first..last.
inline Row Numbers(const char *name, int first, int last) {
    Row row = Group(name);
    for (int n = first; n <= last; ++n) row.push_back({kNull, std::to_string(n)});
    return row;
}

// One row of "index_0", "index_1", ... holding values.
inline Rows IndexRow(std::initializer_list<const char *> values) {
    Row row;
    for (const char *v : values) row.push_back({"index_" + std::to_string(row.size()), v});
    return {row};
}

// "0,1,...,count-1".
inline std::string CountedList(int count) {
    std::string list;
    for (int i = 0; i < count; ++i) list += (i == 0 ? "" : ",") + std::to_string(i);
    return list;
}

// Templates of the special parsers, as the handler tables carry them.
inline constexpr char kSysCfgTemplate[] =
    "^SYSCFG:(modes),(acqorders),((band,band_name)),(roman),(srvdomain)";
inline constexpr char kSysCfgExTemplate[] =
    "^SYSCFGEX:(acqorders),((band,band_name)),(roams),(srvdomains),((lteband,lteband_name))";
inline constexpr char kLteProfileTemplate[] =
    "^LTEPROFILE:(mode1,mode2),(indexs),maximsiprefixlen,maxapnlen,maxusernamelen,"
    "maxuserpwdlen,(authtypes)";
inline constexpr char kCopsTemplate[] =
    "+COPS:(stat,long_oper,short_oper,numeric_oper,rat),,(mode_0,mode_1,mode_2,mode_3,mode_4),"
    "(format_0,format_1,format_2)";
inline constexpr char kEonsTemplate[] = "^EONS:type,plmn_id,plmn_long,plmn_short,spn_cond,spn";
inline constexpr char kCmgiTemplate[] = "^CMGI:index_0,...indexN";
inline constexpr char kCmgdTemplate[] = "+CMGD:index_0,...indexN";
inline constexpr char kCmgrTemplate[] = "+CMGR:stat,reserved,length\r\npdu";
inline constexpr char kCgasTemplate[] = "arfcn,bsic,rxlev";
inline constexpr char kCpmsTemplate[] = "+CPMS:(mem1,mem2),...";
inline constexpr char kNdisTemplate[] = "^NDISSTATQRY:(cid)";

// Owns a parse result for the duration of a test, and shows it as values.
struct Result : ParseRows {
    Rows rows() const { return RowsOf(Get()); }
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
    // The size of every allocation, in order.
    const std::vector<size_t> &Sizes() const { return sizes_; }
    // Freed blocks that still held data, with the bytes they held.
    const std::vector<std::string> &UnwipedFrees() const { return unwiped_; }

    // Nothing of the parse layer left allocated, nothing freed unwiped.
    void ExpectAllReleasedWiped() const {
        EXPECT_EQ(Live(), 0u);
        EXPECT_TRUE(unwiped_.empty()) << unwiped_.front();
    }

  private:
    static void OnAlloc(void *ctx, void *block, size_t bytes) {
        auto *self = static_cast<AllocTracker *>(ctx);
        ++self->allocations_;
        self->sizes_.push_back(bytes);
        self->live_[block] = bytes;
    }
    static void OnFree(void *ctx, void *block) {
        auto *self = static_cast<AllocTracker *>(ctx);
        auto it = self->live_.find(block);
        if (it == self->live_.end()) return;  // allocated before the tracker
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
    std::vector<size_t> sizes_;
    std::vector<std::string> unwiped_;
};

// One call of a parse routine and what it must give.
struct ParseCase {
    const char *label;
    AtParseFn parse;
    const char *atTemplate;
    std::string reply;
    const char *prefix;
    int32_t status;
    Rows rows;
};

// What a routine answers to a null template and to a reply read with a
// prefix it does not carry (the cell-list parser never looks for it).
struct RoutineCodes {
    AtParseFn parse;
    int32_t withoutTemplate;
    int32_t withoutPrefix;
};
inline constexpr int32_t kNoTemplate = AT_PARSE_NO_TEMPLATE;
inline constexpr int32_t kBad = AT_PARSE_BAD_ARG;
inline constexpr RoutineCodes kRoutineCodes[] = {
    {ParseCommonAtStr, kNoTemplate, AT_PARSE_OK},
    {ParseSoftStr, kNoTemplate, kBad},
    {ParseNdisStateQueryAtStr, kBad, kBad},
    {ParseCmgiListAtStr, kNoTemplate, kBad},
    {ParseSmsIndexListAtStr, kNoTemplate, kBad},
    {ParseSmsCmgrAtStr, kBad, AT_PARSE_OK},
    {ParseAtCgasStr, kBad, AT_PARSE_OK},
    {ParseEonsAtStr, kNoTemplate, kBad},
    {ParseSysCfgAtStr, kBad, kBad},
    {ParseSysCfgExAtStr, kBad, kBad},
    {ParseLteProfileAtStr, kBad, kBad},
    {ParseCopsAtStr, kNoTemplate, kBad},
    {ParseSmsMediaAtStr, kBad, kBad},
};

// The refusals of a case's routine, on the case's reply.
inline void ExpectRefusals(const ParseCase &c) {
    const auto codes = std::find_if(std::begin(kRoutineCodes), std::end(kRoutineCodes),
                                    [&](const RoutineCodes &r) { return r.parse == c.parse; });
    ASSERT_NE(codes, std::end(kRoutineCodes));
    std::string reply = c.reply;
    Result result;
    EXPECT_EQ(c.parse(nullptr, c.atTemplate, reply.data(), c.prefix), kBad);
    EXPECT_EQ(c.parse(result.Out(), c.atTemplate, nullptr, c.prefix), kBad);
    EXPECT_EQ(c.parse(result.Out(), c.atTemplate, reply.data(), nullptr), kBad);
    EXPECT_EQ(c.parse(result.Out(), nullptr, reply.data(), c.prefix), codes->withoutTemplate);
    EXPECT_EQ(result.Get(), nullptr);
    Result foreign;
    EXPECT_EQ(c.parse(foreign.Out(), c.atTemplate, reply.data(), "^ABSENT"), codes->withoutPrefix);
}

// Runs a case on a copy of its reply, which it returns as the call left it;
// every block must come back wiped. A case that parses to rows runs again
// with each of its allocations failing in turn: nothing may leak, and what is
// handed out is either nothing, with a failure status, or (the template
// parser only) the rows before the one that failed; and its routine must
// refuse missing arguments and foreign replies.
inline std::string ExpectParse(const ParseCase &c) {
    SCOPED_TRACE(c.label);
    std::string reply = c.reply;
    AllocTracker tracker;
    {
        Result result;
        EXPECT_EQ(c.parse(result.Out(), c.atTemplate, reply.data(), c.prefix), c.status);
        EXPECT_EQ(result.rows(), c.rows);
    }
    tracker.ExpectAllReleasedWiped();
    const uint64_t allocations =
        c.status == AT_PARSE_OK && !c.rows.empty() ? tracker.Allocations() : 0;
    if (!c.rows.empty()) ExpectRefusals(c);
    for (uint64_t failAt = 1; failAt <= allocations && allocations <= 400; ++failAt) {
        SCOPED_TRACE("failing allocation " + std::to_string(failAt));
        std::string work = c.reply;
        AllocTracker failing(failAt);
        {
            Result result;
            const int32_t status = c.parse(result.Out(), c.atTemplate, work.data(), c.prefix);
            const Rows got = result.rows();
            if (status == AT_PARSE_OK && c.parse == ParseCommonAtStr) {
                EXPECT_TRUE(!got.empty() && got.size() < c.rows.size() &&
                            std::equal(got.begin(), got.end(), c.rows.begin()));
            } else {
                EXPECT_NE(status, AT_PARSE_OK);
                EXPECT_EQ(result.Get(), nullptr);
            }
        }
        failing.ExpectAllReleasedWiped();
    }
    return reply;
}

}  // namespace atapi::test
