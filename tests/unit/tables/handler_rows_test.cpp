// The compiled handler and module tables against handler_rows.txt, a
// transcription of every row made apart from the C tables.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
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

// Reads the file; a malformed line is reported and leaves the result empty.
std::vector<ExpectedTable> LoadExpectedTables() {
    std::ifstream file(std::string(ATAPI_TEST_DATA_DIR) + "/handler_rows.txt");
    std::vector<ExpectedTable> tables;
    std::string line;
    size_t lineNo = 0;
    auto reject = [&](const char *why) {
        ADD_FAILURE() << "handler_rows.txt:" << lineNo << ": " << why << ": " << line;
        return std::vector<ExpectedTable>{};
    };
    while (std::getline(file, line)) {
        ++lineNo;
        if (line.empty() || line[0] == '#') continue;
        const std::vector<std::string> f = SplitBars(line);
        if (f.size() == 6 && f[0] == "table") {
            ExpectedTable table;
            table.module = std::stoi(f[1]);
            table.name = f[2];
            table.rowCount = std::stoul(f[3]);
            table.ended = f[4] == "end";
            table.nextModule = table.ended ? 0 : std::stoi(f[4]);
            table.endIdWord = table.ended ? std::stol(f[5]) : 0;
            tables.push_back(table);
            continue;
        }
        if (f.size() != 8 || tables.empty()) return reject("bad line");
        ExpectedTable &table = tables.back();
        const size_t rowIndex = std::stoul(f[1]);
        const size_t mode = std::stoul(f[3]);
        if (std::stoi(f[0]) != table.module || mode >= AT_PARSE_MODE_COUNT) {
            return reject("row outside its table");
        }
        if (mode == 0) {
            if (rowIndex != table.rows.size()) return reject("rows out of order");
            table.rows.push_back({f[2], {}, f[6], std::stol(f[7])});
        } else if (rowIndex + 1 != table.rows.size() || table.rows.back().prefix != f[2]) {
            return reject("modes out of order");
        }
        table.rows.back().slots[mode] = {Unescape(f[4]), f[5]};
    }
    for (const ExpectedTable &table : tables) {
        if (table.rows.size() != table.rowCount) {
            ADD_FAILURE() << table.name << ": row count " << table.rowCount << ", rows "
                          << table.rows.size();
            return {};
        }
    }
    return tables;
}

const std::map<std::string, AtParseFn> &Routines() {
    static const std::map<std::string, AtParseFn> routines = {
        {kNull, nullptr},
        {"ParseCommonAtStr", ParseCommonAtStr},
        {"ParseSoftStr", ParseSoftStr},
        {"ParseNdisStateQueryAtStr", ParseNdisStateQueryAtStr},
        {"ParseCmgiListAtStr", ParseCmgiListAtStr},
        {"ParseSmsCmgrAtStr", ParseSmsCmgrAtStr},
        {"ParseAtCgasStr", ParseAtCgasStr},
        {"ParseEonsAtStr", ParseEonsAtStr},
        {"ParseSysCfgAtStr", ParseSysCfgAtStr},
        {"ParseSysCfgExAtStr", ParseSysCfgExAtStr},
        {"ParseLteProfileAtStr", ParseLteProfileAtStr},
        {"ParseCopsAtStr", ParseCopsAtStr},
        {"ParseSmsMediaAtStr", ParseSmsMediaAtStr},
        {"ParseSmsIndexListAtStr", ParseSmsIndexListAtStr},
    };
    return routines;
}

std::string RoutineName(AtParseFn fn) {
    for (const auto &[name, routine] : Routines()) {
        if (routine == fn) return name;
    }
    return "(unknown routine)";
}

std::string TemplateText(const char *atTemplate) {
    return atTemplate == nullptr ? std::string(kNull) : std::string(atTemplate);
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

TEST_F(HandlerRowsTest, ModuleTable_ListsEveryTableInOrder) {
    for (size_t i = 0; i < atapi::kModuleCount; ++i) {
        SCOPED_TRACE(expected_[i].name);
        EXPECT_EQ(atapi::g_atParseModules[i].moduleId, expected_[i].module);
        EXPECT_NE(atapi::g_atParseModules[i].handlers, nullptr);
    }
}

TEST_F(HandlerRowsTest, ExportedTables_AreTheModuleTablesEntries) {
    const std::map<std::string, const AtParseHandler *> exported = {
        {"g_initialReportHandlers", g_initialReportHandlers},
        {"g_networkCfgHandlers", g_networkCfgHandlers},
        {"g_sysCfgHandlers", g_sysCfgHandlers},
        {"g_pinCfgHandlers", g_pinCfgHandlers},
        {"g_smsCfgHandlers", g_smsCfgHandlers},
        {"g_phoneRecordCfgHandlers", g_phoneRecordCfgHandlers},
        {"g_spnCfgHandlers", g_spnCfgHandlers},
        {"g_profileCfgHandlers", g_profileCfgHandlers},
        {"g_ussdCfgHandlers", g_ussdCfgHandlers},
        {"g_stkMenuCfgHandlers", g_stkMenuCfgHandlers},
        {"g_stkTextCfgHandlers", g_stkTextCfgHandlers},
        {"g_stkInputCfgHandlers", g_stkInputCfgHandlers},
        {"g_stkRefreshCfgHandlers", g_stkRefreshCfgHandlers},
        {"g_stkBrowserCfgHandlers", g_stkBrowserCfgHandlers},
        {"g_stkActionCfgHandlers", g_stkActionCfgHandlers},
    };
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
    for (const ExpectedTable &table : expected_) {
        const AtParseHandler *handlers = ModuleTable(table.module);
        ASSERT_NE(handlers, nullptr) << table.name;
        for (size_t i = 0; i < table.rows.size(); ++i) {
            const ExpectedRow &want = table.rows[i];
            const AtParseHandler &got = handlers[i];
            SCOPED_TRACE(table.name + " row " + std::to_string(i) + " " + want.prefix);
            ASSERT_NE(got.atName, nullptr);
            EXPECT_STREQ(got.atName, want.prefix.c_str());
            EXPECT_EQ(got.moduleId, want.idWord);
            for (size_t mode = 0; mode < AT_PARSE_MODE_COUNT; ++mode) {
                SCOPED_TRACE("mode " + std::to_string(mode));
                EXPECT_EQ(TemplateText(got.atTemplate[mode]), want.slots[mode].atTemplate);
                ASSERT_EQ(Routines().count(want.slots[mode].routine), 1u);
                EXPECT_EQ(RoutineName(got.parseFn[mode]), want.slots[mode].routine);
            }
            const AtFreeFn wantFree = want.freeRoutine == "FreeAtCmd" ? FreeAtCmd : nullptr;
            EXPECT_TRUE(want.freeRoutine == "FreeAtCmd" || want.freeRoutine == kNull);
            EXPECT_EQ(got.freeFn, wantFree);
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
        for (size_t mode = 0; mode < AT_PARSE_MODE_COUNT; ++mode) {
            EXPECT_EQ(after.atTemplate[mode], nullptr);
            EXPECT_EQ(after.parseFn[mode], nullptr);
        }
        EXPECT_EQ(after.freeFn, nullptr);
    }
}

}  // namespace
