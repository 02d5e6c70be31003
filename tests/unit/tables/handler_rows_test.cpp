// The compiled handler and module tables against handler_rows.txt, a
// transcription of every row made apart from the C tables.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "atapi/at_parse.h"
#include "parse/handler_tables.h"

namespace {

constexpr char kNull[] = "(none)";

struct ExpectedSlot {
    std::string atTemplate;  // kNull for a null template
    std::string routine;     // kNull for a null routine
};

struct ExpectedRow {
    std::string prefix;
    std::array<ExpectedSlot, AT_PARSE_MODE_COUNT> slots;
    std::string freeRoutine;
    intptr_t idWord = 0;
};

struct ExpectedTable {
    int32_t module = 0;
    std::string name;
    size_t rowCount = 0;
    bool ended = false;      // closed by an end entry
    int32_t nextModule = 0;  // when not ended: the module whose rows follow
    intptr_t endIdWord = 0;  // when ended: the end entry's module id word
    std::vector<ExpectedRow> rows;
};

std::vector<std::string> SplitBars(const std::string &line) {
    std::vector<std::string> parts;
    std::stringstream stream(line);
    std::string part;
    while (std::getline(stream, part, '|')) parts.push_back(part);
    return parts;
}

std::string Unescape(const std::string &text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        const char next = text[++i];
        out += next == 'r' ? '\r' : next == 'n' ? '\n' : next;
    }
    return out;
}

std::vector<ExpectedTable> LoadExpectedTables() {
    std::ifstream file(std::string(ATAPI_TEST_DATA_DIR) + "/handler_rows.txt");
    std::vector<ExpectedTable> tables;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> f = SplitBars(line);
        if (f.size() == 6 && f[0] == "table") {
            const bool ended = f[4] == "end";
            tables.push_back({std::stoi(f[1]),
                              f[2],
                              std::stoul(f[3]),
                              ended,
                              ended ? 0 : std::stoi(f[4]),
                              ended ? std::stol(f[5]) : 0,
                              {}});
            continue;
        }
        EXPECT_EQ(f.size(), 8u) << line;
        if (f.size() != 8 || tables.empty()) return {};
        // A row's modes follow each other, mode 0 first.
        std::vector<ExpectedRow> &rows = tables.back().rows;
        if (f[3] == "0") rows.push_back({f[2], {}, f[6], std::stol(f[7])});
        EXPECT_EQ(rows.back().prefix, f[2]) << line;
        rows.back().slots.at(std::stoul(f[3])) = {Unescape(f[4]), f[5]};
    }
    return tables;
}

// A symbol with its name.
#define NAMED(symbol) std::make_pair(#symbol, symbol)

// The routine that a name of the text stands for.
AtParseFn RoutineNamed(const std::string &name) {
    static const std::map<std::string, AtParseFn> routines = {
        NAMED(ParseCommonAtStr),      NAMED(ParseSoftStr),      NAMED(ParseNdisStateQueryAtStr),
        NAMED(ParseCmgiListAtStr),    NAMED(ParseSmsCmgrAtStr), NAMED(ParseAtCgasStr),
        NAMED(ParseEonsAtStr),        NAMED(ParseSysCfgAtStr),  NAMED(ParseSysCfgExAtStr),
        NAMED(ParseLteProfileAtStr),  NAMED(ParseCopsAtStr),    NAMED(ParseSmsMediaAtStr),
        NAMED(ParseSmsIndexListAtStr)};
    if (name == kNull) return nullptr;
    const auto it = routines.find(name);
    EXPECT_TRUE(it != routines.end()) << "unknown routine " << name;
    return it != routines.end() ? it->second : nullptr;
}

const AtParseHandler *ModuleTable(int32_t module) {
    for (const AtParseModule &entry : atapi::g_atParseModules) {
        if (entry.moduleId == module) return entry.handlers;
    }
    return nullptr;
}

class HandlerRowsTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { expected_ = LoadExpectedTables(); }
    void SetUp() override { ASSERT_EQ(expected_.size(), atapi::kModuleCount); }
    static std::vector<ExpectedTable> expected_;
};

std::vector<ExpectedTable> HandlerRowsTest::expected_;

TEST_F(HandlerRowsTest, ExportedTables_AreTheModuleTablesEntries) {
    const std::map<std::string, const AtParseHandler *> exported = {
        NAMED(g_initialReportHandlers), NAMED(g_networkCfgHandlers),
        NAMED(g_sysCfgHandlers),        NAMED(g_pinCfgHandlers),
        NAMED(g_smsCfgHandlers),        NAMED(g_phoneRecordCfgHandlers),
        NAMED(g_spnCfgHandlers),        NAMED(g_profileCfgHandlers),
        NAMED(g_ussdCfgHandlers),       NAMED(g_stkMenuCfgHandlers),
        NAMED(g_stkTextCfgHandlers),    NAMED(g_stkInputCfgHandlers),
        NAMED(g_stkRefreshCfgHandlers), NAMED(g_stkBrowserCfgHandlers),
        NAMED(g_stkActionCfgHandlers)};
    size_t found = 0;
    for (const ExpectedTable &table : expected_) {
        const auto it = exported.find(table.name);
        if (it == exported.end()) continue;
        ++found;
        EXPECT_EQ(ModuleTable(table.module), it->second) << table.name;
    }
    EXPECT_EQ(found, exported.size());
}

TEST_F(HandlerRowsTest, EveryRow_MatchesTheTranscription) {
    for (size_t t = 0; t < atapi::kModuleCount; ++t) {
        const ExpectedTable &table = expected_[t];
        ASSERT_EQ(atapi::g_atParseModules[t].moduleId, table.module) << "module table order";
        const AtParseHandler *handlers = atapi::g_atParseModules[t].handlers;
        ASSERT_NE(handlers, nullptr) << table.name;
        ASSERT_EQ(table.rows.size(), table.rowCount) << table.name;
        for (size_t i = 0; i < table.rows.size(); ++i) {
            const ExpectedRow &want = table.rows[i];
            const AtParseHandler &got = handlers[i];
            SCOPED_TRACE(table.name + " row " + std::to_string(i) + " " + want.prefix);
            ASSERT_NE(got.atName, nullptr);
            EXPECT_STREQ(got.atName, want.prefix.c_str());
            EXPECT_EQ(got.moduleId, want.idWord);
            for (size_t mode = 0; mode < AT_PARSE_MODE_COUNT; ++mode) {
                SCOPED_TRACE("mode " + std::to_string(mode));
                const ExpectedSlot &slot = want.slots[mode];
                EXPECT_EQ(got.atTemplate[mode] != nullptr ? got.atTemplate[mode] : kNull,
                          slot.atTemplate);
                EXPECT_EQ(got.parseFn[mode], RoutineNamed(slot.routine)) << slot.routine;
            }
            EXPECT_EQ(got.freeFn == FreeAtCmd ? "FreeAtCmd"
                      : got.freeFn            ? "(other)"
                                              : kNull,
                      want.freeRoutine);
        }
    }
}

TEST_F(HandlerRowsTest, EveryTable_EndsOrRunsOnAsWritten) {
    for (const ExpectedTable &table : expected_) {
        SCOPED_TRACE(table.name);
        const AtParseHandler &after = ModuleTable(table.module)[table.rowCount];
        if (!table.ended) {
            // No end entry: the next module's first row follows in memory.
            EXPECT_EQ(&after, ModuleTable(table.nextModule));
            continue;
        }
        EXPECT_EQ(after.atName, nullptr);
        EXPECT_EQ(after.moduleId, table.endIdWord);
    }
}

}  // namespace
