// ParseAtCmdFunc's codes, and the registration buffers. Every row of the
// compiled tables is walked by the tables suite.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "parse/handler_tables.h"
#include "parse/row_index.h"
#include "parse_test_util.h"

namespace atapi::test {
namespace {

TEST(ParseAtCmdFunc, Codes) {
    struct Case {
        const char *label;
        const char *atName;
        const char *reply;  // null: no reply buffer
        bool withOut;
        int32_t moduleId;
        uint32_t mode;
        int32_t status;
    };
    const Case cases[] = {
        {"NullNameComesFirst", nullptr, nullptr, false, 2, AT_PARSE_QUERY, AT_PARSE_NO_ENTRY},
        {"NullOut", "^CPIN", "^CPIN: READY", false, 2, AT_PARSE_QUERY, AT_PARSE_BAD_ARG},
        {"NullReply", "^CPIN", nullptr, true, 2, AT_PARSE_QUERY, AT_PARSE_BAD_ARG},
        {"PrefixOfAnotherModule", "+CPMS", "+CPMS: 1", true, 1, AT_PARSE_QUERY, AT_PARSE_NO_ENTRY},
        {"PrefixIsCaseSensitive", "+creg", "+creg: 1", true, 1, AT_PARSE_QUERY, AT_PARSE_NO_ENTRY},
        {"ModeFour", "^CPIN", "^CPIN: READY", true, 2, 4, AT_PARSE_BAD_MODE},
        {"ModeWithoutRoutine", "+CREG", "+CREG: 1", true, 1, AT_PARSE_REPORT, AT_PARSE_BAD_MODE},
        // The routine is set but the template is not: the routine says so.
        {"ModeWithoutTemplate", "+COPS", "+COPS: 0", true, 1, AT_PARSE_SET, AT_PARSE_NO_TEMPLATE},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        std::vector<char> reply;
        if (c.reply != nullptr) reply.assign(c.reply, c.reply + std::strlen(c.reply) + 1);
        Result result;
        EXPECT_EQ(ParseAtCmdFunc(c.withOut ? result.Out() : nullptr, c.atName,
                                 c.reply != nullptr ? reply.data() : nullptr, c.moduleId, c.mode),
                  c.status);
        EXPECT_EQ(result.Get(), nullptr);
    }
}

TEST(ParseAtCmdFunc, ParsesWithTheModulesTemplate) {
    char reply[] = "+CREG: 2,1,\"00C3\",\"1A2B\"";
    Result result;
    ASSERT_EQ(ParseAtCmdFunc(result.Out(), "+CREG", reply, 1, AT_PARSE_QUERY), AT_PARSE_OK);
    EXPECT_EQ(result.rows(), (Rows{{{"n", "2"}, {"stat", "1"}, {"lac", "00C3"}, {"ci", "1A2B"}}}));
}

// The first row of a name in walk order, as ParseAtCmdFunc looked rows up
// before it had an index.
const AtParseHandler *Walk(const AtParseHandler *first, const char *atName) {
    for (const AtParseHandler *row = first; row->atName != nullptr; ++row) {
        if (std::strcmp(row->atName, atName) == 0) return row;
    }
    return nullptr;
}

TEST(RowIndex, FindsWhatTheWalkFinds) {
    std::vector<const char *> names = {"", "+", "+CRE", "+CREGX", "^ABSENT"};
    for (const AtParseModule &module : g_atParseModules) {
        for (const AtParseHandler *row = module.handlers; row->atName != nullptr; ++row) {
            names.push_back(row->atName);
        }
    }
    // 90 names three times over and more: from row 180 on, each name twice
    // (the first wins); from row 0, a walk too long for the index.
    std::vector<std::string> rowNames;
    for (int i = 0; i < 300; ++i) rowNames.push_back("+R" + std::to_string(i % 90));
    std::vector<AtParseHandler> rows(rowNames.size() + 1, AtParseHandler{});
    for (size_t i = 0; i < rowNames.size(); ++i) rows[i].atName = rowNames[i].c_str();
    names.insert(names.end(), {"+R0", "+R89", "+R90"});

    std::vector<const AtParseHandler *> firsts = {rows.data(), rows.data() + 180};
    for (const AtParseModule &module : g_atParseModules) firsts.push_back(module.handlers);
    for (const AtParseHandler *first : firsts) {
        const auto index = std::make_unique<RowIndex>(first);
        for (const char *name : names) EXPECT_EQ(index->Find(name), Walk(first, name)) << name;
    }
}

class RegistryTest : public ::testing::Test {
  protected:
    void TearDown() override {
        const AtParseModule none{};
        AtsRegParseModule(&none, 0);
        AtsRegReportModule(&none, 0);
    }
};

TEST_F(RegistryTest, ParseRegistryCountsLeadingEntries) {
    const AtParseHandler table[1] = {};
    std::vector<AtParseModule> many(AT_REG_ENTRY_COUNT + 1, AtParseModule{7, table});
    const auto full = static_cast<uint32_t>(AT_REG_ENTRY_COUNT * sizeof(AtParseModule));

    AtParseModule twoThenZero[4] = {{1, table}, {2, table}, {}, {4, table}};
    AtsRegParseModule(twoThenZero, sizeof(twoThenZero));
    EXPECT_EQ(AtGeRegtParseTableSize(), 2u);
    AtsRegParseModule(nullptr, 16);
    EXPECT_EQ(AtGeRegtParseTableSize(), 2u) << "a null table changes nothing";
    AtsRegParseModule(many.data(), full);
    EXPECT_EQ(AtGeRegtParseTableSize(), 100u);
    AtsRegParseModule(many.data(), full + 1);
    EXPECT_EQ(AtGeRegtParseTableSize(), 0u) << "an oversized table leaves the buffer zeroed";
    AtsRegParseModule(twoThenZero, sizeof(AtParseModule));
    EXPECT_EQ(AtGeRegtParseTableSize(), 1u) << "registering replaces";
}

TEST_F(RegistryTest, ReportRegistryIsReturnedInPlace) {
    int marker = 0;
    const AtReportModule entries[2] = {{11, &marker, 12}, {21, &marker, 22}};
    AtsRegReportModule(entries, sizeof(entries));
    EXPECT_EQ(AtGeRegtReportTableSize(), 2u);
    AtReportModule *registry = AtsGetRegReportModule();
    ASSERT_NE(registry, nullptr);
    EXPECT_EQ(std::memcmp(registry, entries, sizeof(entries)), 0);

    std::vector<AtReportModule> many(AT_REG_ENTRY_COUNT + 1, AtReportModule{0, &marker, 0});
    const auto full = static_cast<uint32_t>(AT_REG_ENTRY_COUNT * sizeof(AtReportModule));
    AtsRegReportModule(many.data(), full);
    EXPECT_EQ(AtGeRegtReportTableSize(), 100u);
    AtsRegReportModule(many.data(), full + 1);
    EXPECT_EQ(AtGeRegtReportTableSize(), 0u);
    EXPECT_EQ(AtsGetRegReportModule(), registry);
}

}  // namespace
}  // namespace atapi::test
