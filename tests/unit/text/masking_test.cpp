// Masking routines: the exact masked line that reaches the trace, and that
// the secret itself never does; the command-class map that picks them and
// its lookup.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "atapi/at_text.h"
#include "fixtures/trace_capture.h"

namespace {

struct MaskCase {
    AtCmdMaskFn fn;
    const char *name;
    const char *line;
    const char *logged;  // the line as it must appear in the trace
    const char *secret;  // a part that must appear nowhere; null: nothing hidden
};

// A routine and its name, as it logs it.
#define ROUTINE(fn) fn, #fn

const MaskCase kCases[] = {
    {ROUTINE(AtAtdEncrypt), "ATD0123456789;", "ATD01******89;", "234567"},
    {ROUTINE(AtAtdEncrypt), "ATD+86 139-1234;", "ATD+86 ***-**34;", "139"},
    {ROUTINE(AtAtdEncrypt), "ATD12345;", "ATD12*45;", "123"},
    {ROUTINE(AtCpbwEncrypt), "AT+CPBW=1,\"13912345678\",129,\"Bob\"",
     "AT+CPBW=1,\"13*******78\",129,\"Bob\"", "9123456"},
    {ROUTINE(AtCpbwEncrypt), "AT+CPBW=2,\"12345\",129", "AT+CPBW=2,\"12*45\",129", "123"},
    {ROUTINE(AtCpbwEncrypt), "AT+CPBW=3,\"\",129,\"Ann\"", "AT+CPBW=3,\"\",129,\"Ann\"", nullptr},
    {ROUTINE(AtCpbwEncrypt), "AT+CPBW=4,\"0123456", "AT+CPBW=4,\"01***56", "234"},
    {ROUTINE(AtCpbwEncrypt), "+CGPADDR: 1,\"10.11.12.13\"", "+CGPADDR: 1,\"10*******13\"", "11.12"},
    {ROUTINE(AtIpopenEncrypt), "AT^IPOPEN=1,\"TCP\",\"1\",\"host.example\",\"s3cret\"",
     "AT^IPOPEN=1,\"TCP\",\"1\",\"************\",\"******\"", "s3cret"},
    {ROUTINE(AtIpopenEncrypt), "^IPOPEN: 1,\"a\",\"b\",\"c\",\"d\"",
     "^IPOPEN: 1,\"a\",\"b\",\"c\",\"d\"", nullptr},
    {ROUTINE(AtSetautodialEncrypt), "AT^SETAUTODIAL=1,\"apn\",\"net\",\"alice\",\"pa55\",1",
     "AT^SETAUTODIAL=1,\"apn\",\"net\",\"*****\",\"****\",1", "pa55"},
    {ROUTINE(AtSetautodialEncrypt), "^SETAUTODIAL: 1,\"apn\",\"net\",\"alice\",\"pa55\"",
     "^SETAUTODIAL: 1,\"apn\",\"net\",\"*****\",\"****\"", "alice"},
    {ROUTINE(AtSetautodialEncrypt), "AT^SETAUTODIAL", "AT^SETAUTODIAL", nullptr},
    {ROUTINE(AtNdisdupEncrypt), "AT^NDISDUP=1,1,\"cmnet\",\"alice\",\"pa55\",2",
     "AT^NDISDUP=1,1,\"cmnet\",\"*****\",\"****\",2", "pa55"},
    {ROUTINE(AtNdisdupEncrypt), "AT^NDISDUP=?", "AT^NDISDUP=?", nullptr},
    {ROUTINE(AtSslmngEncrypt), "AT^SSLMNG=0,\"client.pem\",\"k3y\"",
     "AT^SSLMNG=0,\"client.pem\",\"***\"", "k3y"},
    {ROUTINE(AtSslmngEncrypt), "AT^SSLMNG=1,\"a\",\"unterminated",
     "AT^SSLMNG=1,\"a\",\"************", "unterminated"},
    {ROUTINE(AtSslmngEncrypt), "AT^SSLMNG?", "AT^SSLMNG?", nullptr},
    {ROUTINE(AtCnumEncrypt), "+CNUM: \"Line 1\",\"+8613912345678\",145",
     "+CNUM: \"Line 1\",\"+86*********78\",145", "139123456"},
    {ROUTINE(AtCimiEncrypt), "460001234567890", "46***********90", "0001234567"},
};

TEST(Masking, LogsOnlyTheMaskedLine) {
    for (const MaskCase &c : kCases) {
        SCOPED_TRACE(c.line);
        atapi::test::TraceCapture capture;
        ASSERT_EQ(c.fn(c.line), 0);
        const auto lines = capture.Lines();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_EQ(lines[0].text, std::string(c.name) + " func in " + c.logged + ".");
        if (c.secret != nullptr) {
            EXPECT_EQ(capture.All().find(c.secret), std::string::npos);
        }
    }
}

// Without a working copy nothing is logged; the phone-book copy holds 1023
// characters.
TEST(Masking, NothingLoggedWithoutAWorkingCopy) {
    atapi::test::TraceCapture capture;
    for (const MaskCase &c : kCases) EXPECT_EQ(c.fn(nullptr), 1) << c.name;
    const std::string fits = "AT+CPBW=1,\"" + std::string(1011, '7') + "\"";
    EXPECT_EQ(AtCpbwEncrypt((fits + "7").c_str()), 1);
    EXPECT_TRUE(capture.Lines().empty());
    ASSERT_EQ(AtCpbwEncrypt(fits.c_str()), 0);
    EXPECT_TRUE(capture.Contains("AT+CPBW=1,\"77" + std::string(1007, '*') + "77\"."));
}

TEST(CmdMap, RowsAreFoundByTheirPrefixAndCarryTheirMask) {
    const std::pair<int, AtCmdMaskFn> masked[] = {
        {1, AtCimiEncrypt},     {2, AtAtdEncrypt},          {6, AtCnumEncrypt},
        {8, AtCpbwEncrypt},     {11, AtCpbwEncrypt},        {19, AtSslmngEncrypt},
        {20, AtNdisdupEncrypt}, {21, AtSetautodialEncrypt}, {22, AtIpopenEncrypt},
    };
    size_t next = 0;
    for (int32_t i = 0; i < AT_RIGHT_LIST_CMD_COUNT; ++i) {
        const AtRightListCmd &row = g_tdRightListCmdMap[i];
        const std::string line = std::string("AT") + row.prefix + "=1";
        EXPECT_EQ(AtCheckAtCmd(line.c_str(), static_cast<uint32_t>(line.size())), i) << line;
        const bool isMasked = next < std::size(masked) && masked[next].first == i;
        EXPECT_EQ(row.mask, isMasked ? masked[next].second : nullptr) << row.prefix;
        if (isMasked) ++next;
    }
    EXPECT_EQ(next, std::size(masked));
}

// Rows win by table order, not by position in the line; only bufLen bytes count.
TEST(AtCheckAtCmd, FirstRowInTableOrder) {
    const std::pair<const char *, int32_t> cases[] = {
        {"at+cgpaddr", 11},
        {"AT+CPBW=1,\"0123456789\",129,\"Catdog\"", 2},
        {"AT^IPOPEN=1,\"+CIMI\"", 1},
        {"+CMT: \"+8613912345678\",,\"24/01/01\"", 13},
        {"AT+CGMI", -1},
        {"", -1}};
    for (const auto &[line, id] : cases) {
        EXPECT_EQ(AtCheckAtCmd(line, static_cast<uint32_t>(std::strlen(line))), id) << line;
    }
    EXPECT_EQ(AtCheckAtCmd("AT+CPIN=1234", 6), -1);
    EXPECT_EQ(AtCheckAtCmd("AT+CPIN=1234", 7), 7);
    EXPECT_EQ(AtCheckAtCmd(nullptr, 10), -1);
}

}  // namespace
