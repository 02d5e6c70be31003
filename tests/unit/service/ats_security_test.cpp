// PIN and card lock against the scripted modem: the exact line per branch,
// the records filled, and the two result conventions (a query counts an
// error reply as done; a set form looks at the stored error id).

#include "atapi/ats_security.h"

#include "error_classes.h"

namespace atapi::test {
namespace {

// clang-format off
TEST(AtsSecurity, Pin) {
    using R = CpinInfo;
    const auto pin = [](uint32_t op, const char *code, const char *newPin) { return [=](R &r) { return AtPinManagement(op, code, newPin, &r); }; };
    const std::string tooLong(AT_CMD_STR_LEN, '1');
    RunRows<R>({
        {"query", pin(0, nullptr, nullptr), {Ok("AT+CPIN?", "+CPIN: SIM PIN").Prefix("+CPIN").Timeout(30)}, 0, [](R &r) { SetText(r.code, "SIM PIN"); Done(r); }, kListDone},
        {"enter", pin(1, "1234", nullptr), {Ok("AT+CPIN=\"1234\"").Prefix("+CPIN").Timeout(30)}, 0, Done<R>},
        {"an empty new PIN sends one parameter", pin(1, "1234", ""), {Ok("AT+CPIN=\"1234\"")}, 0, Done<R>},
        {"unblock", pin(1, "12345678", "4321"), {Ok("AT+CPIN=\"12345678\",\"4321\"")}, 0, Done<R>, kSimpleStoredDone},
        {"unknown op", pin(2, "1234", nullptr), {}, -1},
        {"no PIN", pin(1, nullptr, nullptr), {}, -1},
        {"a PIN that does not fit the line", pin(1, tooLong.c_str(), nullptr), {}, -1},
    });
}

TEST(AtsSecurity, PinCounters) {
    using R = CpinExInfo;
    const auto pin = [](uint32_t op, const char *code, const char *newPin) { return [=](R &r) { return AtPinManagementEx(op, code, newPin, &r); }; };
    RunRows<R>({
        {"query", pin(0, nullptr, nullptr), {Ok("AT^CPIN?", "^CPIN: SIM PIN,3,10,3,10,3").Prefix("^CPIN").Timeout(5)}, 0, [](R &r) {
             SetText(r.code, "SIM PIN"); SetText(r.times, "3"); SetText(r.pukTimes, "10"); SetText(r.pinTimes, "3"); SetText(r.puk2Times, "10"); SetText(r.pin2Times, "3"); Done(r);
         }, kListDone},
        {"enter", pin(1, "1234", nullptr), {Ok("AT^CPIN=\"1234\"").Prefix("^CPIN").Timeout(5)}, 0, Done<R>, kSimpleStoredDone},
        {"an empty new PIN is sent as an empty parameter", pin(1, "1234", ""), {Ok("AT^CPIN=\"1234\",\"\"")}, 0, Done<R>},
        {"no PIN", pin(1, nullptr, nullptr), {}, -1},
    });
}

TEST(AtsSecurity, CardLock) {
    using R = CardLockInfo;
    const auto lock = [](uint32_t op, const char *code) { return [=](R &r) { return AtSimLock(op, code, &r); }; };
    RunRows<R>({
        {"query", lock(0, nullptr), {Ok("AT^CARDLOCK?", "^CARDLOCK: 2,10,0").Prefix("^CARDLOCK").Timeout(30)}, 0, [](R &r) { r = {2, 10, AT_ERRID_OK}; }, kListDone},
        {"unlock", lock(1, "87654321"), {Ok("AT^CARDLOCK=\"87654321\"").Prefix("^CARDLOCK").Timeout(30)}, 0, Done<R>, kSimpleStoredDone},
        {"unlock without a code", lock(1, nullptr), {}, -1},
        {"unknown op", lock(2, "87654321"), {}, -1},
    });
}

TEST(AtsSecurity, FacilityLock) {
    using R = ClckResult;
    const auto clck = [](uint32_t op, const char *mode) {
        return [op, mode](R &r) { ClckRequest q = {"SC", "", "1234"}; SetText(q.mode, mode); return AtPinEnableDisableCmd(op, &q, &r); };
    };
    RunRows<R>({
        {"status query parses in set mode", clck(1, "2"), {Ok("AT+CLCK=\"SC\",2", "+CLCK: 1").Prefix("+CLCK").Timeout(5)}, 0, [](R &r) { SetText(r.status, "1"); Done(r); }, kListDone},
        {"lock", clck(1, "1"), {Ok("AT+CLCK=\"SC\",1,\"1234\"").Prefix("+CLCK").Timeout(5)}, 0, Done<R>, kSimpleStoredDone},
        {"mode 3", clck(1, "3"), {}, -1},
        {"op 0", clck(0, "2"), {}, -1},
    });
}

TEST(AtsSecurity, PasswordChange) {
    const auto cpwd = [](const char *newPwd) { return [newPwd](int32_t &id) { return AtPinModify("SC", "1234", newPwd, &id); }; };
    RunRows<int32_t>({
        {"done", cpwd("4321"), {Ok("AT+CPWD=\"SC\",\"1234\",\"4321\"").Prefix("+CPWD").Timeout(30)}, 0, [](int32_t &id) { id = AT_ERRID_OK; }, kSimpleStoredDone},
        {"no new password", cpwd(nullptr), {}, -1},
    }, 0x5A5A5A5A, [](int32_t &r, int32_t id) { r = id; });
}

TEST(AtsSecurity, NullArguments) {
    ExpectRefused({
        {"AtPinManagement", [] { return AtPinManagement(0, nullptr, nullptr, nullptr); }},
        {"AtPinManagementEx", [] { return AtPinManagementEx(0, nullptr, nullptr, nullptr); }},
        {"AtSimLock", [] { return AtSimLock(0, nullptr, nullptr); }},
        {"AtPinEnableDisableCmd", [] { return AtPinEnableDisableCmd(1, nullptr, nullptr); }},
        {"AtPinModify", [] { return AtPinModify("SC", "1234", "4321", nullptr); }},
    });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
