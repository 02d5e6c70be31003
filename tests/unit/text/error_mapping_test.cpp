// Error replies to error ids: numeric and text causes, CME and CMS, and the
// replies that cannot be mapped.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "atapi/at_text.h"
#include "fixtures/trace_capture.h"

namespace {

constexpr int32_t kUnmapped = 65535;

struct MapCase {
    const char *text;
    int32_t id;
};

class ErrorStrToErrorIdTest : public testing::TestWithParam<MapCase> {};

TEST_P(ErrorStrToErrorIdTest, MapsReply) {
    EXPECT_EQ(ErrorStrToErrorId(GetParam().text), GetParam().id) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    SimFailuresShareOneId, ErrorStrToErrorIdTest,
    testing::Values(MapCase{"+CME ERROR: 10", 13}, MapCase{"+CME ERROR: SIM not inserted", 13},
                    MapCase{"+CMS ERROR: 310", 13}, MapCase{"+CME ERROR: 13", 13},
                    MapCase{"+CMS ERROR: 313", 13}, MapCase{"+CME ERROR: 11", 11},
                    MapCase{"+CMS ERROR: 311", 11}, MapCase{"+CME ERROR: SIM PUK required", 12},
                    MapCase{"+CMS ERROR: 316", 12}, MapCase{"+CME ERROR: 14", 314},
                    MapCase{"+CMS ERROR: 314", 314}, MapCase{"+CME ERROR: 16", -3},
                    MapCase{"+CME ERROR: incorrect password", -3}));

INSTANTIATE_TEST_SUITE_P(
    KnownFormUnknownCause, ErrorStrToErrorIdTest,
    testing::Values(MapCase{"+CME ERROR: 3", -1},  // a text code without an id row
                    MapCase{"+CME ERROR: operation not allowed", -1},
                    MapCase{"+CME ERROR:", -1},      // empty cause reads as code 0
                    MapCase{"+CME ERROR:    ", -1},  // blanks only: empty too
                    MapCase{"+CME ERROR: 0", -1}, MapCase{"+CME ERROR: 275", -1},
                    MapCase{"+CME ERROR: 297", -1}, MapCase{"+CMS ERROR: 500", -1},
                    MapCase{"+CMS ERROR: 312", -1}, MapCase{"+CMS ERROR:", -1},
                    MapCase{"+CMS ERROR: 10", -1}));  // CME numbers mean nothing as CMS

INSTANTIATE_TEST_SUITE_P(
    Unmapped, ErrorStrToErrorIdTest,
    testing::Values(MapCase{"ERROR", kUnmapped}, MapCase{"NO CARRIER", kUnmapped},
                    MapCase{"+CME ERROR: sim not inserted", kUnmapped},  // case-sensitive
                    MapCase{"+CMS ERROR: unknown", kUnmapped},  // CMS causes are numbers only
                    MapCase{"+CME ERROR: -5", kUnmapped}, MapCase{"+CME ERROR: 1 0", kUnmapped},
                    MapCase{"+CME ERROR: 10:11", kUnmapped},  // cut at the first colon
                    MapCase{"CME ERROR: 10", kUnmapped}, MapCase{"+cme error: 10", kUnmapped},
                    MapCase{"+CME ERROR 10", kUnmapped}, MapCase{"", kUnmapped},
                    MapCase{":", kUnmapped}, MapCase{"+CME ERROR: \t10", kUnmapped}));

INSTANTIATE_TEST_SUITE_P(
    CauseFormatting, ErrorStrToErrorIdTest,
    testing::Values(MapCase{"+CME ERROR:   11   ", 11}, MapCase{"\r\n+CME ERROR: 10", 13},
                    MapCase{"+CME ERROR:SIM busy", 314}, MapCase{"+CME ERROR: 010", 13},
                    MapCase{"+CME ERROR:  SIM not inserted  ", 13}, MapCase{"+CMS ERROR:310", 13}));

TEST(ErrorStrToErrorId, NullIsUnmapped) { EXPECT_EQ(ErrorStrToErrorId(nullptr), kUnmapped); }

TEST(ErrorStrToErrorId, CauseRangeKeepsItsNumber) {
    for (int code = 276; code <= 296; ++code) {
        const std::string text = "+CME ERROR: " + std::to_string(code);
        EXPECT_EQ(ErrorStrToErrorId(text.c_str()), code) << text;
    }
}

TEST(CmeErrorTexts, TableShapeAndKnownRows) {
    ASSERT_EQ(std::size(g_atCmeErrorTexts), 77U);
    EXPECT_EQ(g_atCmeErrorTexts[76].text, nullptr);
    for (size_t i = 0; i < 76; ++i) {
        ASSERT_NE(g_atCmeErrorTexts[i].code, nullptr) << i;
        ASSERT_NE(g_atCmeErrorTexts[i].text, nullptr) << i;
    }
    EXPECT_STREQ(g_atCmeErrorTexts[0].code, "0");
    EXPECT_STREQ(g_atCmeErrorTexts[0].text, "phone failure");
    EXPECT_STREQ(g_atCmeErrorTexts[8].code, "10");
    EXPECT_STREQ(g_atCmeErrorTexts[8].text, "SIM not inserted");
    EXPECT_STREQ(g_atCmeErrorTexts[11].code, "17");  // PIN2/PUK2 come before 13
    EXPECT_STREQ(g_atCmeErrorTexts[74].code, "65287");
    EXPECT_STREQ(g_atCmeErrorTexts[74].text, "another SPN query operation still not finished ");
    EXPECT_STREQ(g_atCmeErrorTexts[75].code, "65288");
    EXPECT_STREQ(g_atCmeErrorTexts[75].text, "NV item inactive");
}

// A cause given as text maps like its number. The one text that ends in a
// blank cannot match: the cause is trimmed before the lookup.
TEST(CmeErrorTexts, EveryTextMapsLikeItsCode) {
    for (const AtCmeErrorText *row = g_atCmeErrorTexts; row->text != nullptr; ++row) {
        const std::string byText = std::string("+CME ERROR: ") + row->text;
        const std::string byCode = std::string("+CME ERROR: ") + row->code;
        const bool endsInBlank = byText.back() == ' ';
        const int32_t expected = endsInBlank ? kUnmapped : ErrorStrToErrorId(byCode.c_str());
        EXPECT_EQ(ErrorStrToErrorId(byText.c_str()), expected) << byText;
    }
    EXPECT_EQ(ErrorStrToErrorId("+CME ERROR: 65287"), -1);
}

struct LogCase {
    const char *text;
    std::vector<std::string> lines;
};

class ErrorStrToErrorIdLogTest : public testing::TestWithParam<LogCase> {};

TEST_P(ErrorStrToErrorIdLogTest, LogsEachStep) {
    atapi::test::TraceCapture capture;
    ErrorStrToErrorId(GetParam().text);
    std::vector<std::string> texts;
    for (const auto &line : capture.Lines()) {
        EXPECT_EQ(line.source, "atapi/src/at_lib");
        texts.push_back(line.text);
    }
    EXPECT_EQ(texts, GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, ErrorStrToErrorIdLogTest,
    testing::Values(
        LogCase{"+CME ERROR: 10",
                {"in\n", "parse error str to id\n", "cme error id is 10\n", "out, ret is 13\n"}},
        LogCase{"+CME ERROR: SIM busy",
                {"in\n", "parse error str to id\n", "cme error id is 14\n", "out, ret is 314\n"}},
        LogCase{"+CMS ERROR: 311",
                {"in\n", "parse error str to id\n", "cms error id is 311\n", "out, ret is 11\n"}},
        LogCase{"+CMS ERROR: unknown", {"in\n", "parse error str to id\n", "other type\n"}},
        LogCase{"ERROR", {"in\n"}}, LogCase{nullptr, {"in\n"}}));

}  // namespace
