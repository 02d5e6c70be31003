// SIM extensions against the scripted modem: the exact lines with their
// prefix and timeout, the records read from realistic replies, and the
// replies that fail without an error id.
#include "atapi/m2m_ats_usim.h"

#include <cstdlib>
#include <string>

#include "error_classes.h"

namespace atapi::test {
namespace {

constexpr char kEid[] = "89049032007008882600012345678901";

// clang-format off
TEST(M2mAtsUsim, SimStateAndEuiccId) {
    const auto read = [](int32_t mode, int32_t status) { return [=](SimSqInfo &r) { r = {mode, status}; }; };
    const auto sq = [](SimSqInfo &r) { return AtSimSqQuery(&r); };
    RunRows<SimSqInfo>({
        {"state", sq, {Ok("AT^SIMSQ?", "^SIMSQ: 1,12").Prefix("^SIMSQ:").Timeout(5)}, 0, read(1, 12), kFails},
        {"a missing field is left", sq, {Ok("AT^SIMSQ?", "^SIMSQ: 0")}, 0, read(0, 7)},
        {"OK without the state", sq, {Ok("AT^SIMSQ?", "")}, -1},
    }, SimSqInfo{7, 7});
    struct R {
        char eid[AT_EUICC_ID_SIZE];
    };
    const auto query = [](R &r) { return AtEuiccIdQuery(r.eid); };
    const auto becomes = [](std::string eid) { return [eid](R &r) { SetText(r.eid, eid.c_str()); }; };
    const std::string longest(63, '8');
    RunRows<R>({
        {"identifier", query, {Ok("AT^ESIMEID?", std::string("^ESIMEID: ") + kEid).Prefix("").Timeout(5)}, 0, becomes(kEid), kFails},
        {"63 characters fit", query, {Ok("AT^ESIMEID?", "^ESIMEID: " + longest)}, 0, becomes(longest)},
        {"64 characters fail the copy", query, {Ok("AT^ESIMEID?", "^ESIMEID: " + longest + "9")}, -1, becomes("")},
        {"OK without the identifier", query, {Ok("AT^ESIMEID?", "")}, -1},
    });
}
// clang-format on

TEST(M2mAtsUsim, RestrictedAccessWithPath) {
    struct Case {
        const char *name;
        CrsmPidReq request;
        Step step;
        int32_t result;
        int32_t sw1, sw2;
        const char *response;  // null: none stored
        int32_t errorId;
    };
    constexpr int32_t kUntouched = 0x5A5A5A5A;
    const CrsmPidReq iccid{176, 12258, 0, 0, 10, nullptr, "3F00"};
    const std::string iccidLine = "AT+CRSM=176,12258,0,0,10,\"\",\"3F00\"";
    const std::string longData(1600, 'A');
    const std::string cut = "AT+CRSM=214,28542,0,0,2,\"" + longData;
    // clang-format off
    const Case cases[] = {
        {"read binary", {176, 28589, 0, 0, 4, nullptr, "3F007FFF"},
         Ok("AT+CRSM=176,28589,0,0,4,\"\",\"3F007FFF\"", "+CRSM: 144,0,\"00FFFF02\"").Prefix("").Timeout(30),
         0, 144, 0, "00FFFF02", AT_ERRID_OK},
        {"STATUS goes alone", {242, 28589, 1, 2, 3, "00", "3F00"},
         Ok("AT+CRSM=242", "+CRSM: 144,0,\"62178202782183027FFF\""), 0, 144, 0, "62178202782183027FFF", AT_ERRID_OK},
        {"update without response text", {214, 28542, 0, 0, 2, "0102", nullptr},
         Ok("AT+CRSM=214,28542,0,0,2,\"0102\",\"\"", "+CRSM: 106,130"), 0, 106, 130, nullptr, AT_ERRID_OK},
        {"an overlong line is cut and sent", {214, 28542, 0, 0, 2, longData.c_str(), "3F00"},
         Ok(cut.substr(0, AT_CMD_STR_LEN - 1), "+CRSM: 103,0"), 0, 103, 0, nullptr, AT_ERRID_OK},
        {"OK without +CRSM", iccid, Ok(iccidLine, ""), -1, kUntouched, kUntouched, nullptr, kUntouched},
        // Every error class fails and keeps errorId.
        {"ERROR", iccid, Fails(iccidLine, AT_RET_ERROR, "ERROR"), -1, kUntouched, kUntouched, nullptr, kUntouched},
        {"+CME ERROR", iccid, Fails(iccidLine, AT_RET_CME_ERROR, "+CME ERROR: 10"), -1, kUntouched, kUntouched, nullptr, kUntouched},
        {"+CMS ERROR", iccid, Fails(iccidLine, AT_RET_CMS_ERROR, "+CMS ERROR: 316"), -1, kUntouched, kUntouched, nullptr, kUntouched},
        {"AT_ABORTED", iccid, Fails(iccidLine, AT_RET_ABORTED, "AT_ABORTED"), -1, kUntouched, kUntouched, nullptr, kUntouched},
        {"a lost exchange", iccid, ExchangeFails(iccidLine), -1, kUntouched, kUntouched, nullptr, kUntouched},
    };
    // clang-format on
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        ScriptedModem modem(runtime, {c.step});
        CrsmPidResult r{kUntouched, kUntouched, nullptr, kUntouched};
        EXPECT_EQ(AtCrsmPid(&c.request, &r), c.result);
        modem.Verify();
        EXPECT_EQ(r.sw1, c.sw1);
        EXPECT_EQ(r.sw2, c.sw2);
        EXPECT_EQ(r.errorId, c.errorId);
        if (c.response == nullptr) {
            EXPECT_EQ(r.response, nullptr);
        } else {
            ASSERT_NE(r.response, nullptr);
            EXPECT_STREQ(r.response, c.response);
        }
        std::free(r.response);
    }
}

// clang-format off
TEST(M2mAtsUsim, NullArguments) {
    static CrsmPidReq request{};
    static CrsmPidResult result{};
    ExpectRefused({
        {"AtSimSqQuery", [] { return AtSimSqQuery(nullptr); }}, {"AtEuiccIdQuery", [] { return AtEuiccIdQuery(nullptr); }},
        {"AtCrsmPid without a request", [] { return AtCrsmPid(nullptr, &result); }}, {"AtCrsmPid without a result", [] { return AtCrsmPid(&request, nullptr); }},
    });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
