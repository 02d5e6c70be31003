// SIM extensions against the scripted modem: the exact lines with their
// prefix and timeout, the records read from realistic replies, and the
// replies that fail without an error id.
#include "atapi/m2m_ats_usim.h"

#include <cstdlib>
#include <tuple>

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

// The result of a request as the call leaves it, its response copied out.
struct PidResult {
    int32_t sw1, sw2, errorId;
    char response[24];
};

TEST(M2mAtsUsim, RestrictedAccessWithPath) {
    constexpr int32_t kUntouched = 0x5A5A5A5A;
    const auto crsm = [](CrsmPidReq q) {
        return [q](PidResult &p) {
            CrsmPidResult r{p.sw1, p.sw2, nullptr, p.errorId};
            const int32_t ret = AtCrsmPid(&q, &r);
            std::tie(p.sw1, p.sw2, p.errorId) = std::tie(r.sw1, r.sw2, r.errorId);
            SetText(p.response, r.response != nullptr ? r.response : "(none)");
            std::free(r.response);
            return ret;
        };
    };
    const auto result = [](int32_t sw1, int32_t sw2, const char *response) { return [=](PidResult &p) { std::tie(p.sw1, p.sw2, p.errorId) = std::make_tuple(sw1, sw2, AT_ERRID_OK); SetText(p.response, response); }; };
    const std::string longData(1600, 'A');
    const std::string cut = "AT+CRSM=214,28542,0,0,2,\"" + longData;
    RunRows<PidResult>({
        {"read binary", crsm({176, 28589, 0, 0, 4, nullptr, "3F007FFF"}), {Ok("AT+CRSM=176,28589,0,0,4,\"\",\"3F007FFF\"", "+CRSM: 144,0,\"00FFFF02\"").Prefix("").Timeout(30)}, 0,
         result(144, 0, "00FFFF02"), kFails},
        {"STATUS goes alone", crsm({242, 28589, 1, 2, 3, "00", "3F00"}), {Ok("AT+CRSM=242", "+CRSM: 144,0,\"62178202782183027FFF\"")}, 0, result(144, 0, "62178202782183027FFF")},
        {"update without response text", crsm({214, 28542, 0, 0, 2, "0102", nullptr}), {Ok("AT+CRSM=214,28542,0,0,2,\"0102\",\"\"", "+CRSM: 106,130")}, 0, result(106, 130, "(none)")},
        {"an overlong line is cut and sent", crsm({214, 28542, 0, 0, 2, longData.c_str(), "3F00"}), {Ok(cut.substr(0, AT_CMD_STR_LEN - 1), "+CRSM: 103,0")}, 0, result(103, 0, "(none)")},
        {"OK without +CRSM", crsm({176, 12258, 0, 0, 10, nullptr, "3F00"}), {Ok("AT+CRSM=176,12258,0,0,10,\"\",\"3F00\"", "")}, -1},
    }, PidResult{kUntouched, kUntouched, kUntouched, "(none)"});
}

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
