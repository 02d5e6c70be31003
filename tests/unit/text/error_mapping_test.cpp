// Error replies to error ids: numeric and text causes, CME and CMS, and the
// replies that cannot be mapped.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "atapi/at_text.h"

namespace {

constexpr int32_t kUnmapped = 65535;

// Failures share one id whether reported as CME number, CME text or CMS
// number. Blanks around the cause are trimmed, nothing else is; texts are
// case-sensitive; CMS causes are numbers only and CME numbers mean nothing as
// CMS causes; an empty cause reads as code 0.
TEST(ErrorStrToErrorId, MapsReplies) {
    struct Case {
        int32_t id;
        std::vector<const char *> texts;
    };
    const Case cases[] = {
        {13,
         {"+CME ERROR: 10", "+CME ERROR: SIM not inserted", "+CMS ERROR: 310", "+CME ERROR: 13",
          "+CMS ERROR: 313", "\r\n+CME ERROR: 010"}},
        {11, {"+CME ERROR: 11", "+CMS ERROR: 311", "+CME ERROR:   11   "}},
        {12, {"+CME ERROR: SIM PUK required", "+CMS ERROR: 316"}},
        {314, {"+CME ERROR: 14", "+CMS ERROR: 314", "+CME ERROR:SIM busy"}},
        {-3, {"+CME ERROR: 16", "+CME ERROR: incorrect password"}},
        {30, {"+CME ERROR: 30"}},
        {4, {"+CME ERROR: 4"}},
        {100, {"+CME ERROR: 100"}},
        {-1,
         {"+CME ERROR: 3", "+CME ERROR: operation not allowed", "+CME ERROR: 275",
          "+CME ERROR: 297", "+CME ERROR:", "+CME ERROR:    ", "+CMS ERROR: 312",
          "+CMS ERROR:", "+CMS ERROR: 10"}},
        {kUnmapped,
         {nullptr, "", ":", "ERROR", "NO CARRIER", "+CME ERROR: sim not inserted",
          "+CMS ERROR: unknown", "+CME ERROR: -5", "+CME ERROR: 1 0", "+CME ERROR: 10:11",
          "+CME ERROR: \t10", "+cme error: 10", "+CME ERROR 10"}},
    };
    for (const Case &c : cases) {
        for (const char *text : c.texts) {
            EXPECT_EQ(ErrorStrToErrorId(text), c.id) << (text != nullptr ? text : "(null)");
        }
    }
}

TEST(ErrorStrToErrorId, CauseRangeKeepsItsNumber) {
    for (int code = 276; code <= 296; ++code) {
        const std::string text = "+CME ERROR: " + std::to_string(code);
        EXPECT_EQ(ErrorStrToErrorId(text.c_str()), code) << text;
    }
}

// A cause given as text maps like its number. The one text that ends in a
// blank cannot match: the cause is trimmed before the lookup.
TEST(CmeErrorTexts, EveryTextMapsLikeItsCode) {
    size_t rows = 0;
    for (const AtCmeErrorText *row = g_atCmeErrorTexts; row->text != nullptr; ++row, ++rows) {
        const std::string byText = std::string("+CME ERROR: ") + row->text;
        const std::string byCode = std::string("+CME ERROR: ") + row->code;
        const int32_t expected =
            byText.back() == ' ' ? kUnmapped : ErrorStrToErrorId(byCode.c_str());
        EXPECT_EQ(ErrorStrToErrorId(byText.c_str()), expected) << byText;
    }
    EXPECT_EQ(rows, 76u);
}

}  // namespace
