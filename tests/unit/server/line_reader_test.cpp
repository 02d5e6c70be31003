// The modem byte stream cut into lines: how chunks, line ends, control bytes
// and over-long lines come out, in stream order.
#include "line_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace atserver::test {
namespace {

constexpr size_t kMax = LineReader::kMaxLineBytes;

// Each line as its text, or "dropped N" for an over-long one.
std::vector<std::string> Read(const std::vector<std::string> &chunks) {
    LineReader reader;
    LineReader::Output out;
    for (const std::string &chunk : chunks) reader.Feed(chunk.data(), chunk.size(), &out);
    std::vector<std::string> seen;
    for (const LineReader::Line &line : out) {
        seen.push_back(line.droppedLength > 0 ? "dropped " + std::to_string(line.droppedLength)
                                              : line.text);
    }
    return seen;
}

TEST(LineReader, CutsTheStreamIntoLinesInOrder) {
    const std::string longest(kMax, 'a');
    const std::string tooLong(kMax + 1, 'b');
    const struct {
        const char *name;
        std::vector<std::string> chunks;
        std::vector<std::string> lines;
    } cases[] = {
        {"CR LF framing, empty lines skipped", {"\r\n+X: 1\r\n\r\nOK\r\n"}, {"+X: 1", "OK"}},
        {"a line split across reads", {"\r\n+X", ": 1\r", "\nOK", "\r\n"}, {"+X: 1", "OK"}},
        {"bare CR and bare LF end lines", {"A\rB\nC\r\n"}, {"A", "B", "C"}},
        {"an unfinished line waits", {"+X: 1\r\nOK"}, {"+X: 1"}},
        {"control bytes become '?', tab stays",
         {std::string("a\0b\x01\tc\x7f\r\n", 9)},
         {"a?b?\tc?"}},
        {"the longest line is kept", {longest + "\r\n"}, {longest}},
        {"a longer one is dropped in its place",
         {"\r\n+X: 1\r\n" + tooLong + "\r\nOK\r\n"},
         {"+X: 1", "dropped " + std::to_string(kMax + 1), "OK"}},
        {"an over-long line split across reads counts all its bytes",
         {tooLong.substr(0, 100), tooLong.substr(100), "xyz\r\nOK\r\n"},
         {"dropped " + std::to_string(kMax + 4), "OK"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Read(c.chunks), c.lines);
    }
}

TEST(LineReader, ResetForgetsAPartialLine) {
    LineReader reader;
    LineReader::Output out;
    const std::string before = "+X: half" + std::string(kMax, 'c');
    reader.Feed(before.data(), before.size(), &out);
    reader.Reset();
    reader.Feed("OK\r\n", 4, &out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].text, "OK");
    EXPECT_EQ(out[0].droppedLength, 0u);
}

}  // namespace
}  // namespace atserver::test
