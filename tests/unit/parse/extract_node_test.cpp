// AtParseNode and AtParseNodeFromBuf: storing named fields into a record.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

#include "parse_test_util.h"

namespace atapi::test {
namespace {

using Bytes = std::array<unsigned char, 16>;

Bytes Preset() {
    Bytes b;
    b.fill(0xA5);
    return b;
}

// A preset buffer after a store of value (a number, or a text with its terminator).
template <typename T>
Bytes Stored(T value) {
    Bytes b = Preset();
    if constexpr (std::is_same_v<T, const char *>) {
        std::memcpy(b.data(), value, std::strlen(value) + 1);
    } else {
        std::memcpy(b.data(), &value, sizeof(value));
    }
    return b;
}

AtCmdParseNode Node(const char *name, const char *value) {
    return AtCmdParseNode{const_cast<char *>(name), const_cast<char *>(value), nullptr, nullptr};
}

TEST(AtParseNode, ConvertsChecksAndStoresItsWidth) {
    struct Case {
        const char *label;
        uint32_t type;
        const char *value;
        uint32_t size;
        int64_t minVal;
        int64_t maxVal;
        Bytes expected;
    };
    const Case cases[] = {
        {"CharInRange", AT_TYPE_CHAR, "-5", 16, -10, 10, Stored<int8_t>(-5)},
        {"CharUncheckedKeepsLowBits", AT_TYPE_CHAR, "200", 16, 0, 0, Stored<int8_t>(-56)},
        {"UcharOutOfRange", AT_TYPE_UCHAR, "300", 16, 0, 255, Preset()},
        {"UcharUncheckedTruncates", AT_TYPE_UCHAR, "300", 16, 0, 0, Stored<uint8_t>(44)},
        {"UcharNegativeMinimum", AT_TYPE_UCHAR, "3", 16, -1, 5, Preset()},
        {"IntNotANumberUncheckedIsZero", AT_TYPE_INT, "abc", 16, 0, 0, Stored<int32_t>(0)},
        // atol rules: a 32-bit long saturates where a 64-bit one keeps every bit.
        {"UintFullWidth", AT_TYPE_UINT, "4294967295", 16, 0, 0,
         Stored<uint32_t>(sizeof(long) == 4 ? 2147483647u : 4294967295u)},
        {"UintNegativeMinimum", AT_TYPE_UINT, "1", 16, -1, 0, Preset()},
        {"LongStoresFourBytes", AT_TYPE_LONG, "-7", 16, -10, 10, Stored<int32_t>(-7)},
        {"LlongStoresEightBytes", AT_TYPE_LLONG, "-9000000000", 16, -9000000000LL, 0,
         Stored<int64_t>(-9000000000LL)},
        {"LlongNegativeMinimumAllowed", AT_TYPE_LLONG, "-1", 16, -5, 5, Stored<int64_t>(-1)},
        {"LlongOverflowSaturates", AT_TYPE_LLONG, "99999999999999999999", 16, 0, 0,
         Stored<int64_t>(INT64_MAX)},
        {"UlongKeepsLowBits", AT_TYPE_ULONG, "4294967297", 16, 0, 0, Stored<uint32_t>(1u)},
        {"UlongNegativeMinimum", AT_TYPE_ULONG, "1", 16, -3, 3, Preset()},
        {"UnknownCodeIgnored", 8, "1", 16, 0, 0, Preset()},
        {"StringFits", AT_TYPE_STRING, "READY", 16, 0, 0, Stored("READY")},
        {"StringTruncated", AT_TYPE_STRING, "abcde", 4, 0, 0, Stored("abc")},
        {"StringSizeOneStoresNothing", AT_TYPE_STRING, "abc", 1, 0, 0, Preset()},
    };
    for (const Case &c : cases) {
        Bytes dest = Preset();
        const AtParamDesc param{"f", c.type, dest.data(), c.size, c.minVal, c.maxVal};
        const AtCmdParseNode node = Node("f", c.value);
        AtParseNode(&node, &param, 1);
        EXPECT_EQ(dest, c.expected) << c.label;
    }
}

TEST(AtParseNode, FirstEntryOfTheNameOnlyAndNothingUnstorable) {
    int32_t unnamed = -1, first = -1, second = -1;
    const AtParamDesc params[] = {{nullptr, AT_TYPE_INT, &unnamed, 4, 0, 0},
                                  {"times", AT_TYPE_INT, &first, 4, 0, 0},
                                  {"times", AT_TYPE_INT, &second, 4, 0, 0},
                                  {"inert", AT_TYPE_INT, nullptr, 4, 0, 0}};
    const AtCmdParseNode times = Node("times", "3");
    AtParseNode(&times, params, 4);
    EXPECT_EQ(unnamed, -1);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(second, -1);

    first = -1;
    for (const AtCmdParseNode &node :
         {Node("times", nullptr), Node(nullptr, "1"), Node("inert", "1"), Node("unknown", "1")}) {
        AtParseNode(&node, params, 4);
    }
    AtParseNode(nullptr, params, 4);
    AtParseNode(&times, nullptr, 4);
    EXPECT_EQ(first, -1);
    EXPECT_EQ(unnamed, -1);
}

struct PinRecord {
    char code[16];
    int32_t times;
    uint8_t pukTimes;
};

class AtParseNodeFromBufTest : public ::testing::Test {
  protected:
    PinRecord record{{}, -1, 0xEE};
    const AtParamDesc params[3] = {
        {"code", AT_TYPE_STRING, record.code, sizeof(record.code), 0, 0},
        {"times", AT_TYPE_INT, &record.times, 4, 0, 10},
        {"puk_times", AT_TYPE_UCHAR, &record.pukTimes, 1, 0, 10},
    };
    AtCmdDesc desc{"AT^CPIN?", "^CPIN", "^CPIN", AT_PARSE_QUERY, 2};
};

// A field out of range does not fail the call; later rows are never read.
TEST_F(AtParseNodeFromBufTest, FillsFromTheFirstRowOnly) {
    AllocTracker tracker;
    char reply[] = "^CPIN: SIM PIN,11,10,3,10,3\r\n^CPIN: READY,9,9,9,9,9";
    EXPECT_EQ(AtParseNodeFromBuf(&desc, reply, params, 3), 0);
    EXPECT_STREQ(record.code, "SIM PIN");
    EXPECT_EQ(record.times, -1);
    EXPECT_EQ(record.pukTimes, 10);
    tracker.ExpectAllReleasedWiped();
}

TEST_F(AtParseNodeFromBufTest, FailsWhenNothingWasParsed) {
    char reply[] = "^CPIN: READY";
    char otherPrefix[] = "+CPIN: READY";
    AtCmdDesc noPrefix = desc;
    noPrefix.parsePrefix = nullptr;
    AtCmdDesc noModule = desc;
    noModule.moduleId = 31;
    EXPECT_EQ(AtParseNodeFromBuf(&desc, otherPrefix, params, 3), -1);
    EXPECT_EQ(AtParseNodeFromBuf(&noModule, reply, params, 3), -1);
    EXPECT_EQ(AtParseNodeFromBuf(&noPrefix, reply, params, 3), -1);
    EXPECT_EQ(AtParseNodeFromBuf(nullptr, reply, params, 3), -1);
    EXPECT_EQ(AtParseNodeFromBuf(&desc, nullptr, params, 3), -1);
    EXPECT_EQ(AtParseNodeFromBuf(&desc, reply, nullptr, 3), -1);
    EXPECT_EQ(record.code[0], '\0');
    EXPECT_EQ(record.times, -1);
}

}  // namespace
}  // namespace atapi::test
