// ParseAtCmdFunc: argument checks, module and prefix lookup, mode selection,
// and the registration buffers.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "fixtures/trace_capture.h"
#include "parse_test_util.h"

namespace atapi::test {
namespace {

TEST(ParseAtCmdFunc, NullNameComesFirst) {
    EXPECT_EQ(ParseAtCmdFunc(nullptr, nullptr, nullptr, 2, AT_PARSE_QUERY), AT_PARSE_NO_ENTRY);
}

TEST(ParseAtCmdFunc, NullOutOrReply) {
    char reply[] = "^CPIN: READY";
    AtCmdParseNode *out = nullptr;
    EXPECT_EQ(ParseAtCmdFunc(nullptr, "^CPIN", reply, 2, AT_PARSE_QUERY), AT_PARSE_BAD_ARG);
    EXPECT_EQ(ParseAtCmdFunc(&out, "^CPIN", nullptr, 2, AT_PARSE_QUERY), AT_PARSE_BAD_ARG);
}

class UnknownModuleTest : public ::testing::TestWithParam<int32_t> {};

TEST_P(UnknownModuleTest, IsRefused) {
    char reply[] = "+CABTSR: 1";
    AtCmdParseNode *out = nullptr;
    EXPECT_EQ(ParseAtCmdFunc(&out, "+CABTSR", reply, GetParam(), AT_PARSE_QUERY), AT_PARSE_BAD_ARG);
    EXPECT_EQ(out, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Ids, UnknownModuleTest, ::testing::Values(26, 29, 31, 33, 99, -1));

struct LookupCase {
    const char *label;
    const char *atName;
    int32_t moduleId;
    uint32_t mode;
    const char *reply;
    int32_t status;
    Rows rows;
};

void PrintTo(const LookupCase &c, std::ostream *os) { *os << c.label; }

class DispatchLookupTest : public ::testing::TestWithParam<LookupCase> {};

TEST_P(DispatchLookupTest, PicksTheEntryOfTheModuleAsked) {
    const LookupCase &c = GetParam();
    std::string reply = c.reply;
    Result result;
    EXPECT_EQ(ParseAtCmdFunc(result.Out(), c.atName, reply.data(), c.moduleId, c.mode), c.status);
    EXPECT_EQ(result.rows(), c.rows);
}

INSTANTIATE_TEST_SUITE_P(
    Entries, DispatchLookupTest,
    ::testing::Values(
        LookupCase{"ReportTemplateOfModule0",
                   "+CREG",
                   0,
                   AT_PARSE_REPORT,
                   "+CREG: 1,\"00C3\",\"1A2B\"",
                   0,
                   {{{"stat", "1"}, {"lac", "00C3"}, {"ci", "1A2B"}}}},
        LookupCase{"QueryTemplateOfModule1",
                   "+CREG",
                   1,
                   AT_PARSE_QUERY,
                   "+CREG: 2,1,\"00C3\",\"1A2B\"",
                   0,
                   {{{"n", "2"}, {"stat", "1"}, {"lac", "00C3"}, {"ci", "1A2B"}}}},
        LookupCase{"RunOnIntoAnotherTable",
                   "+CABTSR",
                   34,
                   AT_PARSE_QUERY,
                   "+CABTSR: 1",
                   0,
                   {{{"status", "1"}}}},
        LookupCase{"PrefixOfAnotherModule", "+CPMS", 1, AT_PARSE_QUERY, "+CPMS: 1", -1, {}},
        LookupCase{"PrefixIsCaseSensitive", "+creg", 1, AT_PARSE_QUERY, "+creg: 1", -1, {}},
        LookupCase{"UnknownPrefix", "+NOPE", 1, AT_PARSE_QUERY, "+NOPE: 1", -1, {}},
        LookupCase{"ModeFour", "^CPIN", 2, 4, "^CPIN: READY", -3, {}},
        LookupCase{"ModeHuge", "^CPIN", 2, 0xFFFFFFFFu, "^CPIN: READY", -3, {}},
        LookupCase{"ReportModeOnCommandTable", "+CREG", 1, AT_PARSE_REPORT, "+CREG: 1", -3, {}},
        // The routine is set but the template is not: the routine says so.
        LookupCase{"SlotWithoutTemplate", "+COPS", 1, AT_PARSE_SET, "+COPS: 0", -6, {}}),
    [](const auto &info) { return std::string(info.param.label); });

TEST(ParseAtCmdFunc, LogsNameAndQueryResult) {
    TraceCapture trace;
    std::string reply = "^CPIN: READY";
    Result query;
    ASSERT_EQ(ParseAtCmdFunc(query.Out(), "^CPIN", reply.data(), 2, AT_PARSE_QUERY), 0);
    EXPECT_TRUE(trace.Contains("atName=^CPIN\n"));
    EXPECT_TRUE(trace.Contains("atName=^CPIN and ret=0\n"));

    trace.Clear();
    reply = "+CREG: 1";
    Result report;
    ASSERT_EQ(ParseAtCmdFunc(report.Out(), "+CREG", reply.data(), 0, AT_PARSE_REPORT), 0);
    EXPECT_TRUE(trace.Contains("atName=+CREG\n"));
    EXPECT_FALSE(trace.Contains("and ret="));
    for (const auto &line : trace.Lines()) {
        EXPECT_EQ(line.level, 8);
        EXPECT_EQ(line.source, "atapi/src/at_parse");
    }
}

// ---- Registration buffers ---------------------------------------------------

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
    std::vector<AtParseModule> modules(AT_REG_ENTRY_COUNT + 1, AtParseModule{7, table});

    AtParseModule twoThenZero[4] = {{1, table}, {2, table}, {}, {4, table}};
    AtsRegParseModule(twoThenZero, sizeof(twoThenZero));
    EXPECT_EQ(AtGeRegtParseTableSize(), 2u);

    AtsRegParseModule(nullptr, 16);
    EXPECT_EQ(AtGeRegtParseTableSize(), 2u) << "a null table changes nothing";

    const auto full = static_cast<uint32_t>(AT_REG_ENTRY_COUNT * sizeof(AtParseModule));
    AtsRegParseModule(modules.data(), full);
    EXPECT_EQ(AtGeRegtParseTableSize(), 100u);

    AtsRegParseModule(modules.data(), full + 1);
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
    EXPECT_EQ(registry[2].handlers, nullptr);

    const auto full = static_cast<uint32_t>(AT_REG_ENTRY_COUNT * sizeof(AtReportModule));
    std::vector<AtReportModule> many(AT_REG_ENTRY_COUNT + 1, AtReportModule{0, &marker, 0});
    AtsRegReportModule(many.data(), full);
    EXPECT_EQ(AtGeRegtReportTableSize(), 100u);
    AtsRegReportModule(many.data(), full + 1);
    EXPECT_EQ(AtGeRegtReportTableSize(), 0u);
    EXPECT_EQ(AtsGetRegReportModule(), registry);
}

}  // namespace
}  // namespace atapi::test
