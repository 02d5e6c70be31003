// GetSubstring: cutting a multi-line reply at each occurrence of a prefix.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fixtures/trace_capture.h"
#include "parse_test_util.h"

namespace atapi::test {
namespace {

std::vector<std::string> Cut(const std::string &buffer, int32_t capacity, const char *needle,
                             int32_t *stored = nullptr) {
    std::vector<char *> pieces(static_cast<size_t>(std::max(capacity, 1)), nullptr);
    int32_t count = capacity;
    GetSubstring(buffer.c_str(), pieces.data(), &count, needle);
    std::vector<std::string> out(pieces.begin(), pieces.begin() + count);
    ReleaseSubstring(pieces.data(), count);
    for (char *p : pieces) EXPECT_EQ(p, nullptr) << "ReleaseSubstring clears the entries";
    if (stored != nullptr) *stored = count;
    return out;
}

const char kTwoContexts[] = "+CGDCONT: 1,\"IP\",\"a\"\r\n+CGDCONT: 2,\"IP\",\"b\"";

TEST(GetSubstring, OnePiecePerOccurrence) {
    EXPECT_EQ(
        Cut(kTwoContexts, 8, "+CGDCONT"),
        (std::vector<std::string>{"+CGDCONT: 1,\"IP\",\"a\"\r\n", "+CGDCONT: 2,\"IP\",\"b\""}));
}

TEST(GetSubstring, FirstPieceStartsAtTheBuffer) {
    EXPECT_EQ(Cut("noise\r\n+CPIN: READY", 8, "+CPIN"),
              (std::vector<std::string>{"noise\r\n", "+CPIN: READY"}));
}

TEST(GetSubstring, StopsAtCapacity) {
    EXPECT_EQ(Cut(kTwoContexts, 1, "+CGDCONT"),
              (std::vector<std::string>{"+CGDCONT: 1,\"IP\",\"a\"\r\n"}));
    int32_t stored = -1;
    EXPECT_TRUE(Cut(kTwoContexts, 0, "+CGDCONT", &stored).empty());
    EXPECT_EQ(stored, 0);
}

TEST(GetSubstring, PieceLimitIs1531Characters) {
    TraceCapture trace;
    const std::string fits = "+X" + std::string(1529, 'a');
    EXPECT_EQ(Cut(fits + "+X: b", 8, "+X"), (std::vector<std::string>{fits, "+X: b"}));
    EXPECT_FALSE(trace.Contains("len too long\n"));

    // The second piece is one character too long: the first is kept.
    const std::string tooLong = "+X" + std::string(1530, 'a');
    EXPECT_EQ(Cut("+X: a\r\n" + tooLong, 8, "+X"), (std::vector<std::string>{"+X: a\r\n"}));
    EXPECT_EQ(trace.Count("len too long\n"), 1u);
}

TEST(GetSubstring, EmptyNeedleCutsCharacters) {
    EXPECT_EQ(Cut("abc", 8, ""), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(GetSubstring, NullArguments) {
    char *pieces[2] = {};
    int32_t count = 2;
    GetSubstring(nullptr, pieces, &count, "+X");
    EXPECT_EQ(count, 0);
    count = 2;
    GetSubstring("+X: 1", nullptr, &count, "+X");
    EXPECT_EQ(count, 0);
    count = 2;
    GetSubstring("+X: 1", pieces, &count, nullptr);
    EXPECT_EQ(count, 0);
    count = 2;
    GetSubstring("", pieces, &count, "+X");
    EXPECT_EQ(count, 0);
    GetSubstring("+X: 1", pieces, nullptr, "+X");
    EXPECT_EQ(pieces[0], nullptr);
    ReleaseSubstring(nullptr, 2);
}

}  // namespace
}  // namespace atapi::test
