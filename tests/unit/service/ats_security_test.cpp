// PIN and card lock against the scripted modem: the exact line per branch,
// the records filled, and the two result conventions (a query counts an
// error reply as done; a set form looks at the stored error id).

#include "atapi/ats_security.h"

#include "command_cases.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;
constexpr int32_t kUntouched = 0x5A5A5A5A;

TEST(AtsSecurity, PinState) {
    RunCommandCases<CpinInfo>(
        {
            {"query",
             [](CpinInfo &r) { return AtPinManagement(0, nullptr, nullptr, &r); },
             {Ok("AT+CPIN?", "+CPIN: SIM PIN").Prefix("+CPIN").Timeout(30)},
             0,
             [](CpinInfo &r) {
                 SetText(r.code, "SIM PIN");
                 r.errorId = AT_ERRID_OK;
             }},
            {"query answered +CME ERROR counts as done",
             [](CpinInfo &r) { return AtPinManagement(0, nullptr, nullptr, &r); },
             {Fails("AT+CPIN?", AT_RET_CME_ERROR, "+CME ERROR: 10")},
             0,
             [](CpinInfo &r) { r.errorId = 13; }},
            {"query answered ERROR",
             [](CpinInfo &r) { return AtPinManagement(0, nullptr, nullptr, &r); },
             {Fails("AT+CPIN?", AT_RET_ERROR, "ERROR")},
             -1,
             [](CpinInfo &r) { r.errorId = AT_ERRID_UNMAPPED; }},
            {"enter",
             [](CpinInfo &r) { return AtPinManagement(1, "1234", nullptr, &r); },
             {Ok("AT+CPIN=\"1234\"").Prefix("+CPIN").Timeout(30)},
             0,
             [](CpinInfo &r) { r.errorId = AT_ERRID_OK; }},
            {"an empty new PIN sends one parameter",
             [](CpinInfo &r) { return AtPinManagement(1, "1234", "", &r); },
             {Ok("AT+CPIN=\"1234\"")},
             0,
             [](CpinInfo &r) { r.errorId = AT_ERRID_OK; }},
            {"unblock, refused with a stored id of 3 is done",
             [](CpinInfo &r) { return AtPinManagement(1, "12345678", "4321", &r); },
             {Fails("AT+CPIN=\"12345678\",\"4321\"", AT_RET_CME_ERROR, "+CME ERROR: 16")},
             0,
             [](CpinInfo &r) { r.errorId = AT_RET_CME_ERROR; }},
            {"enter answered ERROR",
             [](CpinInfo &r) { return AtPinManagement(1, "1234", nullptr, &r); },
             {Fails("AT+CPIN=\"1234\"", AT_RET_ERROR, "ERROR")},
             -1},
            {"unknown op",
             [](CpinInfo &r) { return AtPinManagement(2, "1234", nullptr, &r); },
             {},
             -1},
            {"no PIN",
             [](CpinInfo &r) { return AtPinManagement(1, nullptr, nullptr, &r); },
             {},
             -1},
            {"a PIN that does not fit the line",
             [](CpinInfo &r) {
                 const std::string pin(AT_CMD_STR_LEN, '1');
                 return AtPinManagement(1, pin.c_str(), nullptr, &r);
             },
             {},
             -1},
        },
        Filled<CpinInfo>(kFill));
    EXPECT_EQ(AtPinManagement(0, nullptr, nullptr, nullptr), -1);
}

TEST(AtsSecurity, PinCounters) {
    RunCommandCases<CpinExInfo>(
        {
            {"query",
             [](CpinExInfo &r) { return AtPinManagementEx(0, nullptr, nullptr, &r); },
             {Ok("AT^CPIN?", "^CPIN: SIM PIN,3,10,3,10,3").Prefix("^CPIN").Timeout(5)},
             0,
             [](CpinExInfo &r) {
                 SetText(r.code, "SIM PIN");
                 SetText(r.times, "3");
                 SetText(r.pukTimes, "10");
                 SetText(r.pinTimes, "3");
                 SetText(r.puk2Times, "10");
                 SetText(r.pin2Times, "3");
                 r.errorId = AT_ERRID_OK;
             }},
            {"query answered +CMS ERROR leaves the counters",
             [](CpinExInfo &r) { return AtPinManagementEx(0, nullptr, nullptr, &r); },
             {Fails("AT^CPIN?", AT_RET_CMS_ERROR, "+CMS ERROR: 316")},
             0,
             [](CpinExInfo &r) { r.errorId = 12; }},
            {"an empty new PIN is sent as an empty parameter",
             [](CpinExInfo &r) { return AtPinManagementEx(1, "1234", "", &r); },
             {Ok("AT^CPIN=\"1234\",\"\"").Prefix("^CPIN").Timeout(5)},
             0,
             [](CpinExInfo &r) { r.errorId = AT_ERRID_OK; }},
            {"enter",
             [](CpinExInfo &r) { return AtPinManagementEx(1, "1234", nullptr, &r); },
             {Fails("AT^CPIN=\"1234\"", AT_RET_ABORTED, "AT_ABORTED")},
             -1,
             [](CpinExInfo &r) { r.errorId = AT_ERRID_ABORTED; }},
        },
        Filled<CpinExInfo>(kFill));
}

TEST(AtsSecurity, CardLock) {
    RunCommandCases<CardLockInfo>(
        {
            {"query",
             [](CardLockInfo &r) { return AtSimLock(0, nullptr, &r); },
             {Ok("AT^CARDLOCK?", "^CARDLOCK: 2,10,0").Prefix("^CARDLOCK").Timeout(30)},
             0,
             [](CardLockInfo &r) {
                 r = {2, 10, AT_ERRID_OK};
             }},
            {"unlock",
             [](CardLockInfo &r) { return AtSimLock(1, "87654321", &r); },
             {Ok("AT^CARDLOCK=\"87654321\"").Prefix("^CARDLOCK").Timeout(30)},
             0,
             [](CardLockInfo &r) { r.errorId = AT_ERRID_OK; }},
            {"unlock without a code",
             [](CardLockInfo &r) { return AtSimLock(1, nullptr, &r); },
             {},
             -1},
        },
        Filled<CardLockInfo>(kFill));
}

TEST(AtsSecurity, FacilityLock) {
    const auto clck = [](uint32_t op, const char *mode) {
        return [op, mode](ClckResult &r) {
            ClckRequest q = {"SC", "", "1234"};
            SetText(q.mode, mode);
            return AtPinEnableDisableCmd(op, &q, &r);
        };
    };
    RunCommandCases<ClckResult>(
        {
            {"status query parses in set mode",
             clck(1, "2"),
             {Ok("AT+CLCK=\"SC\",2", "+CLCK: 1").Prefix("+CLCK").Timeout(5)},
             0,
             [](ClckResult &r) {
                 SetText(r.status, "1");
                 r.errorId = AT_ERRID_OK;
             }},
            {"lock",
             clck(1, "1"),
             {Ok("AT+CLCK=\"SC\",1,\"1234\"").Prefix("+CLCK").Timeout(5)},
             0,
             [](ClckResult &r) { r.errorId = AT_ERRID_OK; }},
            {"unlock refused",
             clck(1, "0"),
             {Fails("AT+CLCK=\"SC\",0,\"1234\"", AT_RET_ERROR, "ERROR")},
             -1},
            {"mode 3", clck(1, "3"), {}, -1},
            {"op 0", clck(0, "2"), {}, -1},
        },
        Filled<ClckResult>(kFill));
}

TEST(AtsSecurity, PasswordChange) {
    const auto cpwd = [](int32_t &errorId) { return AtPinModify("SC", "1234", "4321", &errorId); };
    const char *line = "AT+CPWD=\"SC\",\"1234\",\"4321\"";
    RunCommandCases<int32_t>(
        {
            {"done",
             cpwd,
             {Ok(line).Prefix("+CPWD").Timeout(30)},
             0,
             [](int32_t &e) { e = AT_ERRID_OK; }},
            {"a stored id of 3 counts as done",
             cpwd,
             {Fails(line, AT_RET_CME_ERROR, "+CME ERROR: 16")},
             0,
             [](int32_t &e) { e = AT_RET_CME_ERROR; }},
            {"ERROR leaves the id and fails", cpwd, {Fails(line, AT_RET_ERROR, "ERROR")}, -1},
            {"no new password",
             [](int32_t &e) { return AtPinModify("SC", "1234", nullptr, &e); },
             {},
             -1},
        },
        kUntouched);
}

}  // namespace
}  // namespace atapi::test
