// Every row of every table reached through ParseAtCmdFunc, in every mode, with
// a reply made from the row's own template.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "atapi/at_parse.h"
#include "parse/handler_tables.h"

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;  // (name, value) of one row
using ResultPtr = std::unique_ptr<AtCmdParseNode, decltype(&FreeAtCmd)>;

constexpr char kNullText[] = "(null)";

struct Parsed {
    int32_t status;
    ResultPtr result;
};

Parsed Dispatch(int32_t module, const std::string &prefix, const std::string &reply,
                uint32_t mode) {
    std::vector<char> buffer(reply.begin(), reply.end());
    buffer.resize(std::max<size_t>(buffer.size() + 1, AT_REPORT_STR_LEN), '\0');
    AtCmdParseNode *out = nullptr;
    const int32_t status = ParseAtCmdFunc(&out, prefix.c_str(), buffer.data(), module, mode);
    return {status, ResultPtr(out, FreeAtCmd)};
}

std::string Text(const char *text) { return text == nullptr ? kNullText : text; }

std::vector<Fields> RowsOf(const AtCmdParseNode *first) {
    std::vector<Fields> rows;
    for (const AtCmdParseNode *row = first; row != nullptr; row = row->nextRow) {
        Fields fields;
        for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
            fields.emplace_back(Text(node->atFieldName), Text(node->atFieldValue));
        }
        rows.push_back(fields);
    }
    return rows;
}

std::vector<std::string> HeadersOf(const AtCmdParseNode *first) {
    std::vector<std::string> headers;
    for (const AtCmdParseNode *row = first; row != nullptr; row = row->nextRow) {
        headers.push_back(Text(row->atFieldName));
    }
    return headers;
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
    std::vector<std::string> names;
    std::string current;
    bool quoted = false;
    for (const char c : list) {
        if (c == '"') quoted = !quoted;
        if (c == ',' && !quoted) {
            names.push_back(Trim(current));
            current.clear();
        } else {
            current += c;
        }
    }
    names.push_back(Trim(current));
    return names;
}

std::string AfterFirst(const std::string &text, char c) { return text.substr(text.find(c) + 1); }

// What a modem sends for a row, and what the parse must give back.
struct Expectation {
    std::string reply;
    std::vector<Fields> rows;          // flat replies: every row, field by field
    std::vector<std::string> headers;  // group replies: the first node's name of each row
};

// One value per field, numbers and quoted texts by turns; the PDU of a
// two-line record is the last field.
Expectation FlatReply(const std::string &prefix, const std::vector<std::string> &names,
                      const std::string &lastSeparator) {
    Expectation want{prefix + ": ", {{}}, {}};
    for (size_t i = 0; i < names.size(); ++i) {
        const bool last = i + 1 == names.size();
        const std::string value = last && lastSeparator == "\r\n" ? "0891683108200805F0040D91"
                                  : i % 2 == 0                    ? std::to_string(10 + i)
                                                                  : "t" + std::to_string(i);
        if (i > 0) want.reply += last ? lastSeparator : ",";
        want.reply += i % 2 == 0 || last ? value : "\"" + value + "\"";
        want.rows[0].emplace_back(names[i], value);
    }
    return want;
}

Fields IndexList(const std::vector<std::string> &values) {
    Fields fields;
    for (size_t i = 0; i < values.size(); ++i) {
        fields.emplace_back("index_" + std::to_string(i), values[i]);
    }
    return fields;
}

Expectation ExpectationFor(AtParseFn fn, const std::string &prefix, const std::string &tmpl) {
    if (fn == ParseCommonAtStr || fn == ParseEonsAtStr) {
        // A template without ':' only tells that the line came: no rows.
        if (tmpl.find(':') == std::string::npos) return {prefix, {}, {}};
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
        return {prefix + ": 11.617.00.00.00", {{{AfterFirst(tmpl, '.'), "617.00.00.00"}}}, {}};
    }
    if (fn == ParseCmgiListAtStr) return {prefix + ": 3,7,12", {IndexList({"3", "7", "12"})}, {}};
    if (fn == ParseSmsIndexListAtStr) {
        return {prefix + ": (3,7,12),(0-4)", {IndexList({"3", "7", "12"})}, {}};
    }
    if (fn == ParseNdisStateQueryAtStr) {
        return {prefix + ": (1,2,3)",
                {{{"cid", kNullText}, {"cid", "1"}, {kNullText, "2"}, {kNullText, "3"}}},
                {}};
    }
    if (fn == ParseSysCfgAtStr) {
        return {
            prefix + ": (2-5),(0-3),((3fffffff,\"All bands\"),(400000,\"WCDMA2100\")),(0-2),(0-4)",
            {},
            {"modes", "acqorders", "bandlist", "bandlist"}};
    }
    if (fn == ParseSysCfgExAtStr) {
        return {prefix +
                    ": (\"00\",\"03\"),((2000004e80380,\"GSM850\"),(3fffffff,\"All bands\")),"
                    "(0-2),(0-4),((800c5,\"LTE_B1\"))",
                {},
                {"acqorders", "bandlist", "bandlist", "LTElist"}};
    }
    if (fn == ParseCopsAtStr) {
        return {
            prefix +
                ": (2,\"Operator A\",\"OpA\",\"46000\",7),(1,\"Operator B\",\"OpB\",\"46001\",2)"
                ",,(0,1,2,3,4),(0,1,2)",
            {},
            {"option", "option", "mode", "format"}};
    }
    if (fn == ParseLteProfileAtStr) {
        return {prefix + ": (0,1),(1,2,3),15,99,99,99,(0,1,2,3)", {}, {kNullText, kNullText}};
    }
    if (fn == ParseSmsMediaAtStr) {
        return {prefix + ": (\"SM\",\"ME\"),(\"SM\",\"ME\"),(\"SM\",\"ME\")",
                {},
                {"SmsMediaList", "SmsMediaList", "SmsMediaList"}};
    }
    ADD_FAILURE() << "no reply known for the routine of " << prefix;
    return {};
}

// The rows a lookup through a module can reach, in lookup order: the first
// row with a given prefix hides any later one.
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
    for (const AtParseModule &module : atapi::g_atParseModules) {
        for (const AtParseHandler *row : ReachableRows(module.handlers)) {
            for (uint32_t mode = 0; mode < AT_PARSE_MODE_COUNT; ++mode) {
                SCOPED_TRACE(Where(module.moduleId, row->atName, mode));
                const AtParseFn fn = row->parseFn[mode];
                if (fn == nullptr || row->atTemplate[mode] == nullptr) {
                    const Parsed got = Dispatch(module.moduleId, row->atName,
                                                std::string(row->atName) + ": 1", mode);
                    EXPECT_EQ(got.status, fn == nullptr ? AT_PARSE_BAD_MODE : AT_PARSE_NO_TEMPLATE);
                    EXPECT_EQ(got.result, nullptr);
                    continue;
                }
                const Expectation want = ExpectationFor(fn, row->atName, row->atTemplate[mode]);
                const Parsed got = Dispatch(module.moduleId, row->atName, want.reply, mode);
                ASSERT_EQ(got.status, AT_PARSE_OK) << want.reply;
                if (!want.rows.empty()) {
                    EXPECT_EQ(RowsOf(got.result.get()), want.rows) << want.reply;
                } else if (!want.headers.empty()) {
                    EXPECT_EQ(HeadersOf(got.result.get()), want.headers) << want.reply;
                } else {
                    EXPECT_EQ(got.result, nullptr);
                }
                ++parsedRows;
            }
        }
    }
    EXPECT_GT(parsedRows, 333u);  // at least one parsed mode per row of the text
}

TEST(DispatchRows, PrefixOutsideTheModule_NoEntry) {
    std::set<std::string> everyPrefix = {"+NOTACMD", "", "+creg", "^CPIN:"};
    for (const AtParseModule &module : atapi::g_atParseModules) {
        for (const AtParseHandler *row : ReachableRows(module.handlers)) {
            everyPrefix.insert(row->atName);
        }
    }
    for (const AtParseModule &module : atapi::g_atParseModules) {
        std::set<std::string> own;
        for (const AtParseHandler *row : ReachableRows(module.handlers)) own.insert(row->atName);
        for (const std::string &prefix : everyPrefix) {
            if (own.count(prefix) != 0) continue;
            const Parsed got = Dispatch(module.moduleId, prefix, prefix + ": 1", AT_PARSE_QUERY);
            EXPECT_EQ(got.status, AT_PARSE_NO_ENTRY) << Where(module.moduleId, prefix, 0);
        }
    }
}

TEST(DispatchRows, ModuleIdWithoutTable_BadArgument) {
    for (const int32_t module : {26, 29, 31, 33, 99, -1, 35, 100, 102, INT32_MIN, INT32_MAX}) {
        for (const char *prefix : {"+CREG", "^HVSST", "+ZPAS"}) {
            const Parsed got = Dispatch(module, prefix, std::string(prefix) + ": 1", 0);
            EXPECT_EQ(got.status, AT_PARSE_BAD_ARG) << Where(module, prefix, 0);
            EXPECT_EQ(got.result, nullptr);
        }
    }
}

struct Lookup {
    int32_t module;
    const char *prefix;
    uint32_t mode;
    int32_t status;
    const char *firstField;  // of the first row when parsed
};

// Lookups whose outcome depends on where a row stands, not on the row alone.
const Lookup kLookups[] = {
    {34, "+CABTSR", 0, AT_PARSE_OK, "status"},  // module 34 runs on into 32
    {34, "+ZPAS", 0, AT_PARSE_OK, "network"},   // ... and on into 101
    {32, "+ZPAS", 0, AT_PARSE_OK, "network"},   // module 32 runs on into 101
    {34, "+ZSEC", 0, AT_PARSE_OK, "sec_statue"},
    {101, "+ZPAS", 0, AT_PARSE_OK, "network"},
    {32, "^NDISDUP", 0, AT_PARSE_NO_ENTRY, nullptr},  // never backwards
    {101, "+CABTRDP", 0, AT_PARSE_NO_ENTRY, nullptr},
    {0, "+CREG", 3, AT_PARSE_OK, "stat"},  // each module's own template
    {1, "+CREG", 0, AT_PARSE_OK, "n"},
    {14, "+CREG", 0, AT_PARSE_OK, "n"},
    {0, "+CREG", 0, AT_PARSE_BAD_MODE, nullptr},
    {1, "+CREG", 3, AT_PARSE_BAD_MODE, nullptr},
    {1, "+CPMS", 0, AT_PARSE_NO_ENTRY, nullptr},
    {3, "+CPMS", 0, AT_PARSE_OK, "mem1"},
    {1, "^TRANSMODE", 0, AT_PARSE_OK, "state"},
    {14, "^HVSST", 0, AT_PARSE_OK, "index"},  // its id word says 26
    {26, "^HVSST", 0, AT_PARSE_BAD_ARG, nullptr},
    {1, "^SYSCFG", 4, AT_PARSE_BAD_MODE, nullptr},
    {1, "^SYSCFG", UINT32_MAX, AT_PARSE_BAD_MODE, nullptr},
    {0, "^HFREQINFO", 0, AT_PARSE_NO_TEMPLATE, nullptr},
    {0, "^HFREQINFO", 3, AT_PARSE_OK, "index_0"},
    {2, "+CPWD", 1, AT_PARSE_NO_TEMPLATE, nullptr},
    {2, "+CPWD", 3, AT_PARSE_BAD_MODE, nullptr},
    {7, "^CPBW", 1, AT_PARSE_BAD_MODE, nullptr},
    {3, "^CMSR", 0, AT_PARSE_BAD_MODE, nullptr},    // template without routine
    {5, "+CLIR", 0, AT_PARSE_OK, "n"},              // template of "+CLIP"
    {17, "^CGDNS", 0, AT_PARSE_OK, "cid"},          // template without '^'
    {14, "^NRFREQLOCK", 0, AT_PARSE_OK, "enable"},  // template of "^NETSELOPT"
    {14, "^SIMSQ", 0, AT_PARSE_OK, "mode"},         // blank before the first name
};

TEST(DispatchRows, LookupsThatDependOnTheTableLayout) {
    for (const Lookup &lookup : kLookups) {
        SCOPED_TRACE(Where(lookup.module, lookup.prefix, lookup.mode));
        const Parsed got = Dispatch(lookup.module, lookup.prefix,
                                    std::string(lookup.prefix) + ": 1,2,3", lookup.mode);
        EXPECT_EQ(got.status, lookup.status);
        if (lookup.firstField == nullptr) {
            EXPECT_EQ(got.result, nullptr);
            continue;
        }
        ASSERT_NE(got.result, nullptr);
        EXPECT_STREQ(got.result->atFieldName, lookup.firstField);
        EXPECT_STREQ(got.result->atFieldValue, "1");
    }
}

}  // namespace
