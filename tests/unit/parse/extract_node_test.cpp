// AtParseNode and AtParseNodeFromBuf: storing named fields into a record.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include "fixtures/trace_capture.h"
#include "parse_test_util.h"

namespace atapi::test {
namespace {

constexpr unsigned char kPreset = 0xA5;
using Bytes = std::array<unsigned char, 16>;

Bytes Preset() {
    Bytes b;
    b.fill(kPreset);
    return b;
}

// What a store of `width` bytes of `value` leaves in a preset buffer.
template <typename T>
Bytes Stored(T value) {
    Bytes b = Preset();
    std::memcpy(b.data(), &value, sizeof(value));
    return b;
}

struct NumberCase {
    const char *label;
    uint32_t type;
    const char *value;
    int64_t minVal;
    int64_t maxVal;
    Bytes expected;
    const char *log;  // a line that must be logged, or null for none
};

void PrintTo(const NumberCase &c, std::ostream *os) { *os << c.label; }

AtCmdParseNode Node(const char *name, const char *value) {
    return AtCmdParseNode{const_cast<char *>(name), const_cast<char *>(value), nullptr, nullptr};
}

class AtParseNodeNumberTest : public ::testing::TestWithParam<NumberCase> {};

TEST_P(AtParseNodeNumberTest, ConvertsChecksAndStoresItsWidth) {
    const NumberCase &c = GetParam();
    TraceCapture trace;
    Bytes dest = Preset();
    const AtParamDesc param{"f", c.type, dest.data(), sizeof(dest), c.minVal, c.maxVal};
    const AtCmdParseNode node = Node("f", c.value);
    AtParseNode(&node, &param, 1);
    EXPECT_EQ(dest, c.expected);
    if (c.log != nullptr) {
        EXPECT_TRUE(trace.Contains(c.log)) << trace.All();
    } else {
        EXPECT_EQ(trace.All(), "");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Codes, AtParseNodeNumberTest,
    ::testing::Values(
        NumberCase{"CharInRange", AT_TYPE_CHAR, "-5", -10, 10, Stored<int8_t>(-5), nullptr},
        NumberCase{"CharKeepsLowBits", AT_TYPE_CHAR, "200", 0, 0, Stored<int8_t>(-56), nullptr},
        NumberCase{"UcharOutOfRange", AT_TYPE_UCHAR, "300", 0, 255, Preset(),
                   "[f]=[300], out of range"},
        NumberCase{"UcharUncheckedTruncates", AT_TYPE_UCHAR, "300", 0, 0, Stored<uint8_t>(44),
                   nullptr},
        NumberCase{"UcharNegativeMinimum", AT_TYPE_UCHAR, "3", -1, 5, Preset(),
                   "minVal:[-1] error"},
        NumberCase{"IntNotANumberRefused", AT_TYPE_INT, "abc", 1, 10, Preset(),
                   "[f]=[abc], out of range"},
        NumberCase{"IntNotANumberUnchecked", AT_TYPE_INT, "abc", 0, 0, Stored<int32_t>(0), nullptr},
        NumberCase{"IntLowerBound", AT_TYPE_INT, "-200", -200, 0, Stored<int32_t>(-200), nullptr},
        NumberCase{"IntAboveUpperBound", AT_TYPE_INT, "11", 1, 10, Preset(),
                   "[f]=[11], out of range"},
        NumberCase{"IntEmptyRangeRefused", AT_TYPE_INT, "5", 10, 1, Preset(),
                   "[f]=[5], out of range"},
        NumberCase{"UintFullWidth", AT_TYPE_UINT, "4294967295", 0, 0, Stored<uint32_t>(4294967295u),
                   nullptr},
        NumberCase{"UintNegativeMinimum", AT_TYPE_UINT, "1", -1, 0, Preset(), "minVal:[-1] error"},
        NumberCase{"LongStoresFourBytes", AT_TYPE_LONG, "-7", -10, 10, Stored<int32_t>(-7),
                   nullptr},
        NumberCase{"LlongStoresEightBytes", AT_TYPE_LLONG, "-9000000000", -9000000000LL, 0,
                   Stored<int64_t>(-9000000000LL), nullptr},
        NumberCase{"LlongNegativeMinimumAllowed", AT_TYPE_LLONG, "-1", -5, 5, Stored<int64_t>(-1),
                   nullptr},
        NumberCase{"LlongOverflowLogsErrno", AT_TYPE_LLONG, "99999999999999999999", 0, 0,
                   Stored<int64_t>(INT64_MAX), "strtoll, errCode[34]"},
        NumberCase{"UlongKeepsLowBits", AT_TYPE_ULONG, "4294967297", 0, 0, Stored<uint32_t>(1u),
                   nullptr},
        NumberCase{"UlongNegativeMinimum", AT_TYPE_ULONG, "1", -3, 3, Preset(),
                   "minVal:[-3] error"},
        NumberCase{"UnknownCodeIgnored", 8, "1", 0, 0, Preset(), nullptr}),
    [](const auto &info) { return std::string(info.param.label); });

struct StringCase {
    const char *label;
    uint32_t size;
    const char *value;
    std::string expected;  // the first 8 bytes of the destination
};

void PrintTo(const StringCase &c, std::ostream *os) { *os << c.label; }

class AtParseNodeStringTest : public ::testing::TestWithParam<StringCase> {};

TEST_P(AtParseNodeStringTest, CopiesWithinSize) {
    const StringCase &c = GetParam();
    char dest[8];
    std::memset(dest, '#', sizeof(dest));
    const AtParamDesc param{"s", AT_TYPE_STRING, dest, c.size, 0, 0};
    const AtCmdParseNode node = Node("s", c.value);
    AtParseNode(&node, &param, 1);
    EXPECT_EQ(std::string(dest, sizeof(dest)), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, AtParseNodeStringTest,
    ::testing::Values(StringCase{"SizeOneStoresNothing", 1, "abc", "########"},
                      StringCase{"SizeZeroStoresNothing", 0, "abc", "########"},
                      StringCase{"Truncated", 4, "abcde", std::string("abc\0####", 8)},
                      StringCase{"Fits", 8, "READY", std::string("READY\0##", 8)},
                      StringCase{"Empty", 8, "", std::string("\0#######", 8)}),
    [](const auto &info) { return std::string(info.param.label); });

TEST(AtParseNode, FirstEntryOfANameWins) {
    int32_t first = -1, second = -1, unnamed = -1;
    const AtParamDesc params[] = {
        {nullptr, AT_TYPE_INT, &unnamed, 4, 0, 0},
        {"times", AT_TYPE_INT, &first, 4, 0, 0},
        {"times", AT_TYPE_INT, &second, 4, 0, 0},
    };
    const AtCmdParseNode node = Node("times", "3");
    AtParseNode(&node, params, 3);
    EXPECT_EQ(unnamed, -1);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(second, -1);
}

TEST(AtParseNode, SkipsWhatCannotBeStored) {
    TraceCapture trace;
    int32_t value = -1;
    const AtParamDesc params[] = {{"a", AT_TYPE_INT, &value, 4, 0, 0},
                                  {"b", AT_TYPE_INT, nullptr, 4, 0, 0}};
    const AtCmdParseNode noValue = Node("a", nullptr);
    const AtCmdParseNode noName = Node(nullptr, "1");
    const AtCmdParseNode inert = Node("b", "1");
    const AtCmdParseNode unknown = Node("zz", "1");
    AtParseNode(nullptr, params, 2);
    AtParseNode(&noValue, params, 2);
    AtParseNode(&noName, params, 2);
    AtParseNode(&inert, params, 2);
    AtParseNode(&unknown, nullptr, 2);
    EXPECT_EQ(trace.All(), "");
    AtParseNode(&unknown, params, 2);
    EXPECT_EQ(trace.All(), "can not find [zz] in paramList");
    EXPECT_EQ(value, -1);
}

// ---- Through the dispatcher -------------------------------------------------

struct PinRecord {
    char code[16];
    int32_t times;
    uint8_t pukTimes;
    int32_t untouched;
};

class AtParseNodeFromBufTest : public ::testing::Test {
  protected:
    PinRecord record{{}, -1, 0xEE, -1};
    const AtParamDesc params[3] = {
        {"code", AT_TYPE_STRING, record.code, sizeof(record.code), 0, 0},
        {"times", AT_TYPE_INT, &record.times, 4, 0, 10},
        {"puk_times", AT_TYPE_UCHAR, &record.pukTimes, 1, 0, 10},
    };
    AtCmdDesc desc{"AT^CPIN?", "^CPIN", "^CPIN", AT_PARSE_QUERY, 2};
};

TEST_F(AtParseNodeFromBufTest, FillsFromTheFirstRowOnly) {
    AllocTracker tracker;
    char reply[] = "^CPIN: SIM PIN,3,10,3,10,3\r\n^CPIN: READY,9,9,9,9,9";
    EXPECT_EQ(AtParseNodeFromBuf(&desc, reply, params, 3), 0);
    EXPECT_STREQ(record.code, "SIM PIN");
    EXPECT_EQ(record.times, 3);
    EXPECT_EQ(record.pukTimes, 10);
    EXPECT_EQ(record.untouched, -1);
    EXPECT_EQ(tracker.Live(), 0u);
    EXPECT_TRUE(tracker.UnwipedFrees().empty());
}

TEST_F(AtParseNodeFromBufTest, FieldFailuresDoNotFailTheCall) {
    char reply[] = "^CPIN: READY,11";
    EXPECT_EQ(AtParseNodeFromBuf(&desc, reply, params, 3), 0);
    EXPECT_STREQ(record.code, "READY");
    EXPECT_EQ(record.times, -1) << "11 is out of range";
}

TEST_F(AtParseNodeFromBufTest, FailsWhenNothingWasParsed) {
    TraceCapture trace;
    char otherPrefix[] = "+CPIN: READY";
    EXPECT_EQ(AtParseNodeFromBuf(&desc, otherPrefix, params, 3), -1);
    EXPECT_TRUE(trace.Contains("at_cmd_parse, ret[0]"));

    char reply[] = "^CPIN: READY";
    desc.moduleId = 31;
    EXPECT_EQ(AtParseNodeFromBuf(&desc, reply, params, 3), -1);
    EXPECT_TRUE(trace.Contains("at_cmd_parse, ret[-2]"));
    EXPECT_EQ(record.times, -1);
}

TEST_F(AtParseNodeFromBufTest, RefusesNullArguments) {
    char reply[] = "^CPIN: READY";
    EXPECT_EQ(AtParseNodeFromBuf(nullptr, reply, params, 3), -1);
    EXPECT_EQ(AtParseNodeFromBuf(&desc, nullptr, params, 3), -1);
    EXPECT_EQ(AtParseNodeFromBuf(&desc, reply, nullptr, 3), -1);
    desc.parsePrefix = nullptr;
    EXPECT_EQ(AtParseNodeFromBuf(&desc, reply, params, 3), -1);
    EXPECT_EQ(record.code[0], '\0');
}

}  // namespace
}  // namespace atapi::test
