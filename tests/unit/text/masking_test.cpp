// Masking routines: the exact masked line that reaches the trace, and that
// the secret itself never does.
#include <gtest/gtest.h>

#include <string>

#include "atapi/at_text.h"
#include "fixtures/trace_capture.h"

namespace {

struct MaskCase {
    AtCmdMaskFn fn;
    const char *func;
    const char *line;
    const char *logged;  // the line as it must appear in the trace
    const char *secret;  // a part that must not appear anywhere; null: nothing hidden
};

void PrintTo(const MaskCase &c, std::ostream *os) { *os << c.func << "(" << c.line << ")"; }

class MaskingTest : public testing::TestWithParam<MaskCase> {};

TEST_P(MaskingTest, LogsOnlyTheMaskedLine) {
    const MaskCase &c = GetParam();
    atapi::test::TraceCapture capture;
    ASSERT_EQ(c.fn(c.line), 0);
    const auto lines = capture.Lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].text, std::string(c.func) + " func in " + c.logged + ".");
    EXPECT_EQ(lines[0].level, 8);
    EXPECT_EQ(lines[0].source, "atapi/src/at_lib");
    if (c.secret != nullptr) {
        EXPECT_EQ(capture.All().find(c.secret), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Atd, MaskingTest,
    testing::Values(
        MaskCase{AtAtdEncrypt, "AtAtdEncrypt", "ATD0123456789;", "ATD01******89;", "234567"},
        MaskCase{AtAtdEncrypt, "AtAtdEncrypt", "ATD+86 139-1234;", "ATD+86 ***-**34;", "139"},
        MaskCase{AtAtdEncrypt, "AtAtdEncrypt", "ATD12345;", "ATD12*45;", "123"},
        MaskCase{AtAtdEncrypt, "AtAtdEncrypt", "ATD1234;", "ATD1234;", nullptr},
        MaskCase{AtAtdEncrypt, "AtAtdEncrypt", "ATD>SM1;", "ATD>SM1;", nullptr}));

INSTANTIATE_TEST_SUITE_P(
    Cpbw, MaskingTest,
    testing::Values(MaskCase{AtCpbwEncrypt, "AtCpbwEncrypt",
                             "AT+CPBW=1,\"13912345678\",129,\"Bob\"",
                             "AT+CPBW=1,\"13*******78\",129,\"Bob\"", "9123456"},
                    MaskCase{AtCpbwEncrypt, "AtCpbwEncrypt", "AT+CPBW=2,\"12345\",129",
                             "AT+CPBW=2,\"12*45\",129", "123"},
                    MaskCase{AtCpbwEncrypt, "AtCpbwEncrypt", "AT+CPBW=2,\"1234\",129",
                             "AT+CPBW=2,\"1234\",129", nullptr},
                    MaskCase{AtCpbwEncrypt, "AtCpbwEncrypt", "AT+CPBW=3,\"\",129,\"Ann\"",
                             "AT+CPBW=3,\"\",129,\"Ann\"", nullptr},
                    MaskCase{AtCpbwEncrypt, "AtCpbwEncrypt", "AT+CPBW=?", "AT+CPBW=?", nullptr},
                    MaskCase{AtCpbwEncrypt, "AtCpbwEncrypt", "AT+CPBW=4,\"0123456",
                             "AT+CPBW=4,\"01***56", "234"},
                    MaskCase{AtCpbwEncrypt, "AtCpbwEncrypt", "+CGPADDR: 1,\"10.11.12.13\"",
                             "+CGPADDR: 1,\"10*******13\"", "11.12"}));

INSTANTIATE_TEST_SUITE_P(
    QuotedStrings, MaskingTest,
    testing::Values(
        MaskCase{AtIpopenEncrypt, "AtIpopenEncrypt",
                 "AT^IPOPEN=1,\"TCP\",\"1\",\"host.example\",\"s3cret\"",
                 "AT^IPOPEN=1,\"TCP\",\"1\",\"************\",\"******\"", "s3cret"},
        MaskCase{AtIpopenEncrypt, "AtIpopenEncrypt", "^IPOPEN: 1,\"a\",\"b\",\"c\",\"d\"",
                 "^IPOPEN: 1,\"a\",\"b\",\"c\",\"d\"", nullptr},
        MaskCase{AtIpopenEncrypt, "AtIpopenEncrypt", "AT^IPOPEN?", "AT^IPOPEN?", nullptr},
        MaskCase{AtSetautodialEncrypt, "AtSetautodialEncrypt",
                 "AT^SETAUTODIAL=1,\"apn\",\"net\",\"alice\",\"pa55\",1",
                 "AT^SETAUTODIAL=1,\"apn\",\"net\",\"*****\",\"****\",1", "pa55"},
        MaskCase{AtSetautodialEncrypt, "AtSetautodialEncrypt",
                 "^SETAUTODIAL: 1,\"apn\",\"net\",\"alice\",\"pa55\"",
                 "^SETAUTODIAL: 1,\"apn\",\"net\",\"*****\",\"****\"", "alice"},
        MaskCase{AtSetautodialEncrypt, "AtSetautodialEncrypt", "AT^SETAUTODIAL", "AT^SETAUTODIAL",
                 nullptr},
        MaskCase{AtNdisdupEncrypt, "AtNdisdupEncrypt",
                 "AT^NDISDUP=1,1,\"cmnet\",\"alice\",\"pa55\",2",
                 "AT^NDISDUP=1,1,\"cmnet\",\"*****\",\"****\",2", "pa55"},
        MaskCase{AtNdisdupEncrypt, "AtNdisdupEncrypt", "AT^NDISDUP?", "AT^NDISDUP?", nullptr},
        MaskCase{AtNdisdupEncrypt, "AtNdisdupEncrypt", "AT^NDISDUP=?", "AT^NDISDUP=?", nullptr},
        MaskCase{AtNdisdupEncrypt, "AtNdisdupEncrypt", "^NDISDUP: 1,\"a\",\"b\",\"c\"",
                 "^NDISDUP: 1,\"a\",\"b\",\"c\"", nullptr},
        MaskCase{AtSslmngEncrypt, "AtSslmngEncrypt", "AT^SSLMNG=0,\"client.pem\",\"k3y\"",
                 "AT^SSLMNG=0,\"client.pem\",\"***\"", "k3y"},
        MaskCase{AtSslmngEncrypt, "AtSslmngEncrypt", "AT^SSLMNG=1,\"a\",\"unterminated",
                 "AT^SSLMNG=1,\"a\",\"************", "unterminated"},
        MaskCase{AtSslmngEncrypt, "AtSslmngEncrypt", "AT^SSLMNG?", "AT^SSLMNG?", nullptr}));

INSTANTIATE_TEST_SUITE_P(
    NumberAndImsi, MaskingTest,
    testing::Values(MaskCase{AtCnumEncrypt, "AtCnumEncrypt",
                             "+CNUM: \"Line 1\",\"+8613912345678\",145",
                             "+CNUM: \"Line 1\",\"+86*********78\",145", "139123456"},
                    MaskCase{AtCnumEncrypt, "AtCnumEncrypt", "AT+CNUM", "AT+CNUM", nullptr},
                    MaskCase{AtCimiEncrypt, "AtCimiEncrypt", "460001234567890", "46***********90",
                             "0001234567"},
                    MaskCase{AtCimiEncrypt, "AtCimiEncrypt", "+CIMI: 460001234567890",
                             "+CIMI: 46***********90", "0001234567"},
                    MaskCase{AtCimiEncrypt, "AtCimiEncrypt", "AT+CIMI", "AT+CIMI", nullptr}));

const AtCmdMaskFn kAllMaskFns[] = {AtCimiEncrypt,        AtAtdEncrypt,    AtCnumEncrypt,
                                   AtCpbwEncrypt,        AtSslmngEncrypt, AtNdisdupEncrypt,
                                   AtSetautodialEncrypt, AtIpopenEncrypt};

TEST(Masking, NoWorkingCopyMeansNothingLogged) {
    atapi::test::TraceCapture capture;
    for (AtCmdMaskFn fn : kAllMaskFns) EXPECT_EQ(fn(nullptr), 1);
    // The phone-book copy has a fixed size: a longer line is not logged at all.
    const std::string longLine = "AT+CPBW=1,\"" + std::string(1020, '7') + "\"";
    EXPECT_EQ(AtCpbwEncrypt(longLine.c_str()), 1);
    EXPECT_TRUE(capture.Lines().empty());
}

TEST(Masking, CpbwLineFillingItsCopyIsMasked) {
    atapi::test::TraceCapture capture;
    const std::string number(1023 - 11 - 1, '7');  // 1023 characters with the prefix and quote
    const std::string line = "AT+CPBW=1,\"" + number + "\"";
    ASSERT_EQ(line.size(), 1023U);
    ASSERT_EQ(AtCpbwEncrypt(line.c_str()), 0);
    const std::string masked = "77" + std::string(number.size() - 4, '*') + "77";
    EXPECT_TRUE(capture.Contains("AT+CPBW=1,\"" + masked + "\"."));
}

TEST(Masking, ClassesAndTheirRoutines) {
    const std::pair<int, AtCmdMaskFn> masked[] = {
        {1, AtCimiEncrypt},     {2, AtAtdEncrypt},          {6, AtCnumEncrypt},
        {8, AtCpbwEncrypt},     {11, AtCpbwEncrypt},        {19, AtSslmngEncrypt},
        {20, AtNdisdupEncrypt}, {21, AtSetautodialEncrypt}, {22, AtIpopenEncrypt},
    };
    size_t next = 0;
    for (const AtRightListCmd &row : g_tdRightListCmdMap) {
        const bool isMasked = next < std::size(masked) && masked[next].first == row.id;
        EXPECT_EQ(row.mask, isMasked ? masked[next].second : nullptr) << row.prefix;
        if (isMasked) ++next;
    }
    EXPECT_EQ(next, std::size(masked));
}

}  // namespace
