// The decoders of the SIM's files on values read from real cards, and on
// hex that no card should send: odd lengths, characters that are not hex
// digits, lengths that point past the end.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "atapi/ats_usim.h"
#include "service/ats_usim_internal.h"

namespace atapi::test {
namespace {

using namespace atapi::usim;

// The SPDI decoder on the bytes of a hex text.
bool Spdi(const char *hex, char *out, size_t size) {
    unsigned char bytes[64];
    const int32_t n = HexToBytes(hex, bytes, sizeof bytes);
    return n >= 0 && AppendSpdiPlmns(bytes, static_cast<size_t>(n), out, size);
}

// clang-format off
// Hex into text, each decoder on an output that starts as "x".
TEST(AtsUsimDecode, TextsFromHex) {
    struct Case {
        const char *name;
        bool (*decode)(const char *, char *, size_t);
        const char *hex;
        size_t size;
        bool ok;
        std::string text;
    };
    const std::string tooLong(66, '8');
    const std::string fullWidth(64, '8');  // 64 digits leave no room for the terminator
    const Case cases[] = {
        {"ICCID of 19 digits: nibbles swapped, filler dropped", IccidFromBcd, "989420021032547698F7", 64, true, "8949022001234567897"},
        {"ICCID of 20 digits", IccidFromBcd, "98101430121181157002", 64, true, "89014103211118510720"},
        {"ICCID filler only", IccidFromBcd, "FFFF", 64, true, ""},
        {"ICCID filler inside is kept", IccidFromBcd, "F9F8", 64, true, "9F8"},
        {"ICCID of odd length", IccidFromBcd, "989420021032547698F", 64, false, ""},
        {"ICCID empty", IccidFromBcd, "", 64, false, ""},
        {"ICCID longer than 64", IccidFromBcd, tooLong.c_str(), 64, false, ""},
        {"ICCID of 64 digits", IccidFromBcd, fullWidth.c_str(), 64, false, ""},
        {"ICCID larger than the output", IccidFromBcd, "989420021032547698F7", 8, false, ""},
        {"ICCID without text", IccidFromBcd, nullptr, 64, false, ""},
        {"SPN padded with 0xFF", SpnFromHex, "01566F6461666F6E65FFFFFFFFFFFFFFFF", 32, true, "Vodafone"},
        {"SPN of another display condition", SpnFromHex, "0054656C656B6F6DFFFFFFFFFFFFFFFFFF", 32, true, "Telekom"},
        {"SPN bytes outside ASCII", SpnFromHex, "0141FE42FF", 32, true, "A?B"},
        {"SPN display byte only", SpnFromHex, "00", 32, true, ""},
        {"SPN of odd length", SpnFromHex, "01566", 32, false, ""},
        {"SPN not hex", SpnFromHex, "01566G", 32, false, ""},
        {"SPN empty", SpnFromHex, "", 32, false, ""},
        {"SPN larger than the output", SpnFromHex, "01566F6461666F6E65FF", 5, false, ""},
        {"SPN without text", SpnFromHex, nullptr, 32, false, ""},
        {"SPDI of three PLMNs", Spdi, "A30B800964F01062F210130062FFFFFF", 32, true, "x 46001 26201 310260"},
        {"SPDI: an unused entry ends the list", Spdi, "A30E800C64F010FFFFFF62F210130062", 32, true, "x 46001"},
        {"SPDI: outer length past the end", Spdi, "A33080FF64F01062F2", 32, true, "x 46001"},
        {"SPDI: outer length decides, not the list's", Spdi, "A306800964F01062F210130062", 32, true, "x 46001 26201"},
        {"SPDI: an entry that does not fit its text is skipped", Spdi, "A3098009EF0FFF62F210", 32, true, "x 26201"},
        {"SPDI appends while it fits", Spdi, "A30B800964F01062F210130062", 9, true, "x 46001"},
        {"not an SPDI file", Spdi, "A20B800964F010", 32, false, "x"},
        {"SPDI without the PLMN list tag", Spdi, "A30B810964F010", 32, false, "x"},
        {"SPDI shorter than its header", Spdi, "A30B80", 32, false, "x"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        char out[64] = "x";
        EXPECT_EQ(c.decode(c.hex, out, c.size), c.ok);
        EXPECT_EQ(std::string(out), c.text);
    }
}

TEST(AtsUsimDecode, PlmnId) {
    struct Case {
        const char *name;
        std::vector<unsigned char> bytes;  // a zero byte is appended
        int32_t size;
        std::string text;
    };
    const Case cases[] = {
        {"China Mobile, two-digit MNC", {0x64, 0xF0, 0x10}, 8, "46001"},
        {"T-Mobile US, three-digit MNC", {0x13, 0x00, 0x62}, 8, "310260"},
        {"Vodafone UK", {0x32, 0xF4, 0x51}, 8, "23415"},
        {"does not fit: nothing partial", {0x13, 0x00, 0x62}, 4, ""},
        {"size below 2", {0x64, 0xF0, 0x10}, 1, "x"},
        {"test network: zero digits are digits", {0x00, 0xF1, 0x10}, 8, "00101"},
        {"beyond BCD: too long for the text", {0xEF, 0x0F, 0xFF}, 8, ""},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<unsigned char> plmn = c.bytes;
        plmn.push_back(0);
        char out[8] = "x";
        ExtractMccMncFromPlmnId(plmn.data(), out, c.size);
        EXPECT_EQ(std::string(out), c.text);
    }
    ExtractMccMncFromPlmnId(nullptr, nullptr, 8);  // refused, no crash
}

TEST(AtsUsimDecode, HexToBytes) {
    unsigned char bytes[4] = {};
    EXPECT_EQ(HexToBytes("A30b", bytes, sizeof bytes), 2);
    EXPECT_EQ(bytes[0], 0xA3);
    EXPECT_EQ(bytes[1], 0x0B);
    EXPECT_EQ(HexToBytes("", bytes, sizeof bytes), 0);
    for (const char *bad : {"A30", "G0", "0x", "A3 0", "0102030405"}) EXPECT_EQ(HexToBytes(bad, bytes, sizeof bytes), -1) << bad;
    EXPECT_EQ(HexToBytes(nullptr, bytes, sizeof bytes), -1);
}

TEST(AtsUsimDecode, MncLength) {
    const std::pair<const char *, int32_t> cases[] = {{"00000002", 2}, {"00000103", 3}, {"00FFFF03FF", 3}, {"0000000F", 15},
                                                      {"0000000", -1}, {"0000000G", -1}, {"", -1}, {nullptr, -1}};
    for (const auto &[hex, length] : cases) EXPECT_EQ(MncLengthFromAd(hex), length) << (hex != nullptr ? hex : "null");
}

std::vector<std::string> Apns(SimApnNode *list) {
    std::vector<std::string> apns;
    for (const SimApnNode *n = list; n != nullptr; n = n->next) apns.emplace_back(n->apn);
    FreeApnList(&list);
    EXPECT_EQ(list, nullptr);
    return apns;
}

TEST(AtsUsimDecode, ApnList) {
    // Two labels of 63 characters: 127 characters, of which 99 are kept.
    std::string longHex = "01DD803F";
    for (int i = 0; i < 63; ++i) longHex += "61";
    longHex += "3F";
    for (int i = 0; i < 63; ++i) longHex += "62";
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"02DD0908696E7465726E6574DD100377656208766F6461666F6E65026465FFFF", {"internet", "web.vodafone.de"}},  // card filler behind
        {"01DD0403696D73", {"ims"}},
        {"01DD0403696D83", {"im"}},  // a byte above 127 ends the text
        {longHex, {std::string(63, 'a') + "." + std::string(35, 'b')}},  // at most 99 characters
        {"00FFFF", {}},                    // no entries
        {"02DD0403696D73", {}},            // fewer entries than counted
        {"01DE0403696D73", {}},            // entry without its tag
        {"01DD00", {}},                    // zero entry length
        {"01DD0903696D73", {}},            // entry length past the end
        {"01DD0400696D73", {}},            // empty label
        {"01DD0405696D73", {}},            // label past its entry
        {"02DD0403696D73DD0403696D", {}},  // second entry bad, first freed
        {"01DD0403696DZZ", {}},            // not hex inside an entry
        {"ZZDD0403696D73", {}},            // count not hex
        {"0", {}},
        {"", {}},
    };
    for (const auto &[hex, apns] : cases) EXPECT_EQ(Apns(ParseSimApn(hex.c_str())), apns) << hex;
    EXPECT_EQ(ParseSimApn(nullptr), nullptr);
    FreeApnList(nullptr);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
