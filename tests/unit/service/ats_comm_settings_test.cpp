// Module settings with their own result conventions (boolean queries, a
// failed query read as locked) and the one-line writes, against the
// scripted modem.

#include "atapi/ats_comm.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

constexpr uint32_t kUntouched = 0x5A5A5A5A;
// The boolean queries: every error class reads as locked (1), or as a failure (0).
constexpr Convention kLocked{{1}, {1}, {1}, {1}, {1}};
constexpr Convention kFalse{{0}, {0}, {0}, {0}, {0}};

// For the calls without a record: the test's record stays as it was.
template <typename Fn>
CommandCase<int32_t>::Call NoRecord(Fn fn) {
    return [fn](int32_t &) { return fn(); };
}

// clang-format off
TEST(AtsCommSettings, LockAndRemoteSim) {
    const auto unlock = NoRecord([] { return AtSetDatalock("5678"); });
    const auto nv = NoRecord([] { const uint32_t value = 3000000000u; return AtSharePdpNvWr(&value); });
    RunCommandCases<int32_t>(Cases<int32_t>{
        {"data lock off", NoRecord(AtQryDatalock), {Ok("AT^DATALOCK?", "^DATALOCK: 0").Prefix("^DATALOCK")}, 0},
        {"data lock on", NoRecord(AtQryDatalock), {Ok("AT^DATALOCK?", "^DATALOCK: 2")}, 1},
        {"unlock", unlock, {Ok("AT^DATALOCK=5678").Prefix("").Timeout(30)}, 0},
        {"no unlock code", NoRecord([] { return AtSetDatalock(nullptr); }), {}, -1},
        {"remote SIM on", NoRecord(AtQryRsim), {Ok("AT^RSIM?", "^RSIM: 1").Prefix("^RSIM")}, 0},
        {"remote SIM off", NoRecord(AtQryRsim), {Ok("AT^RSIM?", "^RSIM: 0")}, -1},
        {"remote SIM without a blank", NoRecord(AtQryRsim), {Ok("AT^RSIM?", "^RSIM:1")}, -1},
        {"echo", NoRecord(AtMmiEcho), {Ok("AT^MMIECHO=").Prefix("")}, 0},
        {"NV configuration", NoRecord(AtActiveNcfg), {Ok("AT^ACTIVENCFG=1")}, 0},
        {"NV item 2591", nv, {Ok("AT^USERNVWR=2591,4,3000000000 0 0 0").Prefix("")}, 0},
        {"NV item without a value", NoRecord([] { return AtSharePdpNvWr(nullptr); }), {}, -1},
    } + ErrorCases<int32_t>("data lock", NoRecord(AtQryDatalock), "AT^DATALOCK?", kLocked)
      + ErrorCases<int32_t>("unlock", unlock, "AT^DATALOCK=5678", kFails)
      + ErrorCases<int32_t>("remote SIM", NoRecord(AtQryRsim), "AT^RSIM?", kFails)
      + ErrorCases<int32_t>("echo", NoRecord(AtMmiEcho), "AT^MMIECHO=", kFails)
      + ErrorCases<int32_t>("NV configuration", NoRecord(AtActiveNcfg), "AT^ACTIVENCFG=1", kFails)
      + ErrorCases<int32_t>("NV item", nv, "AT^USERNVWR=2591,4,3000000000 0 0 0", kFails), 0);
}

TEST(AtsCommSettings, ProductTypeAndLogPort) {
    const auto product = [](uint32_t &t) { return AtQryProductType(&t); };
    const auto logPort = [](uint32_t &t) { return AtQryLogPort(&t); };
    RunCommandCases<uint32_t>(Cases<uint32_t>{
        {"product type", product, {Ok("AT^PRODTYPE?", "^PRODTYPE: 3").Prefix("^PRODTYPE")}, 1, [](uint32_t &t) { t = 3; }},
        {"a product type above 3", product, {Ok("AT^PRODTYPE?", "^PRODTYPE: 4")}, 0},
        {"log port", logPort, {Ok("AT^LOGPORT?", "^LOGPORT: 5").Prefix("^LOGPORT")}, 1, [](uint32_t &t) { t = 5; }},
        {"a negative log port", logPort, {Ok("AT^LOGPORT?", "^LOGPORT: -1")}, 0},
    } + ErrorCases<uint32_t>("product type", product, "AT^PRODTYPE?", kFalse)
      + ErrorCases<uint32_t>("log port", logPort, "AT^LOGPORT?", kFalse), kUntouched);
    EXPECT_EQ(AtQryProductType(nullptr), 0);
    EXPECT_EQ(AtQryLogPort(nullptr), 0);
    const auto setPort = [](uint32_t portType, uint32_t config) {
        return NoRecord([=] { LogPortSetting s{portType, config}; return AtSetLogPort(&s); });
    };
    RunCommandCases<int32_t>(Cases<int32_t>{
        {"set log port", setPort(5, 1), {Ok("AT^LOGPORT=5,1").Prefix("").Timeout(30)}, 0},
        {"port type 6", setPort(6, 0), {}, -1},
        {"config 2", setPort(0, 2), {}, -1},
    } + ErrorCases<int32_t>("set log port", setPort(5, 1), "AT^LOGPORT=5,1", kFails), 0);
    EXPECT_EQ(AtSetLogPort(nullptr), -1);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
