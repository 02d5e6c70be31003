// Every row of every table reached through ParseAtCmdFunc, in every mode, with
// a reply made from the row's own template.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "parse/handler_tables.h"
#include "unit/parse/parse_test_util.h"

namespace atapi::test {
namespace {

struct Parsed {
    int32_t status;
    Rows rows;
};

// The reply in a buffer of the size the library hands to the parser.
Parsed Dispatch(int32_t module, const std::string &prefix, const std::string &reply,
                uint32_t mode) {
    std::vector<char> buffer(reply.begin(), reply.end());
    buffer.resize(std::max<size_t>(buffer.size() + 1, AT_REPORT_STR_LEN), '\0');
    Result result;
    const int32_t status =
        ParseAtCmdFunc(result.Out(), prefix.c_str(), buffer.data(), module, mode);
    return {status, result.rows()};
}

// As the field splitter trims: runs of LF, then CR, then space, then quote.
std::string Trim(std::string text) {
    for (const char c : {'\n', '\r', ' ', '"'}) {
        const size_t begin = text.find_first_not_of(c);
        if (begin == std::string::npos) return "";
        text = text.substr(begin, text.find_last_not_of(c) - begin + 1);
    }
    return text;
}

// Field names of a template's field list: commas outside quotes separate.
std::vector<std::string> NamesOf(const std::string &list) {
    std::vector<std::string> names(1);
    bool quoted = false;
    for (const char c : list) {
        if (c == '"') quoted = !quoted;
        if (c == ',' && !quoted) {
            names.emplace_back();
        } else {
            names.back() += c;
        }
    }
    std::transform(names.begin(), names.end(), names.begin(), Trim);
    return names;
}

std::string AfterFirst(const std::string &text, char c) { return text.substr(text.find(c) + 1); }

// What a modem sends for a row, and what the parse must give back (null:
// the routine's parse suite says what; here it must succeed).
struct Expectation {
    std::string reply;
    std::optional<Rows> rows;
};

// One value per field, numbers and quoted texts by turns; the PDU of a
// two-line record is the last field.
Expectation FlatReply(const std::string &prefix, const std::vector<std::string> &names,
                      const std::string &lastSeparator) {
    Expectation want{prefix + ": ", Rows(1)};
    for (size_t i = 0; i < names.size(); ++i) {
        const bool last = i + 1 == names.size();
        const std::string value = last && lastSeparator == "\r\n" ? "0891683108200805F0040D91"
                                  : i % 2 == 0                    ? std::to_string(10 + i)
                                                                  : "t" + std::to_string(i);
        if (i > 0) want.reply += last ? lastSeparator : ",";
        want.reply += i % 2 == 0 || last ? value : "\"" + value + "\"";
        (*want.rows)[0].push_back({names[i], value});
    }
    return want;
}

// Replies, behind the prefix, of the routines whose reply does not follow the
// template's names.
const std::pair<AtParseFn, const char *> kFixedReplies[] = {
    {ParseCmgiListAtStr, ": 3,7,12"},
    {ParseSmsIndexListAtStr, ": (3,7,12),(0-4)"},
    {ParseNdisStateQueryAtStr, ": (1,2,3)"},
    {ParseSysCfgAtStr, ": (2-5),(0-3),((3fffffff,\"All bands\"),(400000,\"W2100\")),(0-2),(0-4)"},
    {ParseSysCfgExAtStr,
     ": (\"00\",\"03\"),((3fffffff,\"All bands\")),(0-2),(0-4),((800c5,\"B1\"))"},
    {ParseCopsAtStr,
     ": (2,\"A\",\"A\",\"46000\",7),(1,\"B\",\"B\",\"46001\",2),,(0,1,2,3,4),(0,1,2)"},
    {ParseLteProfileAtStr, ": (0,1),(1,2,3),15,99,99,99,(0,1,2,3)"},
    {ParseSmsMediaAtStr, ": (\"SM\",\"ME\"),(\"SM\",\"ME\"),(\"SM\")"},
};

Expectation ExpectationFor(AtParseFn fn, const std::string &prefix, const std::string &tmpl) {
    if (fn == ParseCommonAtStr || fn == ParseEonsAtStr) {
        // A template without ':' only tells that the line came: no rows.
        if (tmpl.find(':') == std::string::npos) return {prefix, kNoRows};
        return FlatReply(prefix, NamesOf(AfterFirst(tmpl, ':')), ",");
    }
    if (fn == ParseSmsCmgrAtStr) {
        std::string names = AfterFirst(tmpl, ':');
        names.replace(names.find("\r\n"), 2, ",");
        return FlatReply(prefix, NamesOf(names), "\r\n");
    }
    if (fn == ParseAtCgasStr) {
        Expectation want = FlatReply("", NamesOf(tmpl), ",");
        want.reply.erase(0, 2);  // the list has no prefix
        return want;
    }
    if (fn == ParseSoftStr) {
        return {prefix + ": 11.617.0", OneRow({{AfterFirst(tmpl, '.'), "617.0"}})};
    }
    for (const auto &[routine, body] : kFixedReplies) {
        if (routine == fn) return {prefix + body, std::nullopt};
    }
    ADD_FAILURE() << "no reply known for the routine of " << prefix;
    return {};
}

// The rows a lookup through a module can reach, in lookup order (a table
// without an end entry runs on into the next): the first row with a given
// prefix hides any later one.
std::vector<const AtParseHandler *> ReachableRows(const AtParseHandler *table) {
    std::vector<const AtParseHandler *> rows;
    std::set<std::string> seen;
    for (const AtParseHandler *row = table; row->atName != nullptr; ++row) {
        if (seen.insert(row->atName).second) rows.push_back(row);
    }
    return rows;
}

std::string Where(int32_t module, const std::string &prefix, uint32_t mode) {
    return "module " + std::to_string(module) + " " + prefix + " mode " + std::to_string(mode);
}

TEST(DispatchRows, EveryReachableRow_ParsesInEveryModeAsTheRowSays) {
    size_t parsedRows = 0;
    for (const AtParseModule &module : g_atParseModules) {
        for (const AtParseHandler *row : ReachableRows(module.handlers)) {
            for (uint32_t mode = 0; mode < AT_PARSE_MODE_COUNT; ++mode) {
                SCOPED_TRACE(Where(module.moduleId, row->atName, mode));
                const AtParseFn fn = row->parseFn[mode];
                if (fn == nullptr || row->atTemplate[mode] == nullptr) {
                    const Parsed got = Dispatch(module.moduleId, row->atName,
                                                std::string(row->atName) + ": 1", mode);
                    EXPECT_EQ(got.status, fn == nullptr ? AT_PARSE_BAD_MODE : AT_PARSE_NO_TEMPLATE);
                    EXPECT_EQ(got.rows, kNoRows);
                    continue;
                }
                const Expectation want = ExpectationFor(fn, row->atName, row->atTemplate[mode]);
                const Parsed got = Dispatch(module.moduleId, row->atName, want.reply, mode);
                ASSERT_EQ(got.status, AT_PARSE_OK) << want.reply;
                if (want.rows) {
                    EXPECT_EQ(got.rows, *want.rows) << want.reply;
                }
                ++parsedRows;
            }
        }
    }
    EXPECT_GT(parsedRows, 333u);  // at least one parsed mode per row of the text
}

// Ids without a table, among them those the command families pass (31 for V2X).
TEST(DispatchRows, ModuleIdWithoutTable_BadArgument) {
    for (const int32_t module : {26, 29, 31, 33, 35, 99, 100, 102, -1, INT32_MIN, INT32_MAX}) {
        const Parsed got = Dispatch(module, "+CREG", "+CREG: 1", AT_PARSE_QUERY);
        EXPECT_EQ(got.status, AT_PARSE_BAD_ARG) << module;
        EXPECT_EQ(got.rows, kNoRows);
    }
}

}  // namespace
}  // namespace atapi::test
