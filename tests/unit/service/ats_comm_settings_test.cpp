// Module settings with their own result conventions (boolean queries, a
// failed query read as locked) and the one-line writes, against the
// scripted modem.

#include "atapi/ats_comm.h"
#include "command_cases.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr uint32_t kUntouched = 0x5A5A5A5A;

// For the calls without a record: the test's record stays as it was.
template <typename Fn>
CommandCase<int32_t>::Call NoRecord(Fn fn) {
    return [fn](int32_t &) { return fn(); };
}

TEST(AtsCommSettings, LockAndRemoteSim) {
    // clang-format off
    RunCommandCases<int32_t>({
        {"data lock off", NoRecord(AtQryDatalock),
         {Ok("AT^DATALOCK?", "^DATALOCK: 0").Prefix("^DATALOCK")}, 0},
        {"data lock on", NoRecord(AtQryDatalock), {Ok("AT^DATALOCK?", "^DATALOCK: 2")}, 1},
        {"a failed query reads as locked", NoRecord(AtQryDatalock),
         {Fails("AT^DATALOCK?", AT_RET_CME_ERROR, "+CME ERROR: 10")}, 1},
        {"unlock", NoRecord([] { return AtSetDatalock("5678"); }),
         {Ok("AT^DATALOCK=5678").Prefix("").Timeout(30)}, 0},
        {"unlock refused", NoRecord([] { return AtSetDatalock("5678"); }),
         {Fails("AT^DATALOCK=5678", AT_RET_ERROR, "ERROR")}, -1},
        {"no unlock code", NoRecord([] { return AtSetDatalock(nullptr); }), {}, -1},
        {"remote SIM on", NoRecord(AtQryRsim), {Ok("AT^RSIM?", "^RSIM: 1").Prefix("^RSIM")}, 0},
        {"remote SIM off", NoRecord(AtQryRsim), {Ok("AT^RSIM?", "^RSIM: 0")}, -1},
        {"remote SIM without a blank", NoRecord(AtQryRsim), {Ok("AT^RSIM?", "^RSIM:1")}, -1},
        {"remote SIM query failed", NoRecord(AtQryRsim),
         {Fails("AT^RSIM?", AT_RET_ERROR, "ERROR")}, -1},
        {"echo", NoRecord(AtMmiEcho), {Ok("AT^MMIECHO=").Prefix("")}, 0},
        {"NV configuration", NoRecord(AtActiveNcfg), {Ok("AT^ACTIVENCFG=1")}, 0},
        {"NV item 2591", NoRecord([] {
             const uint32_t value = 3000000000u;
             return AtSharePdpNvWr(&value);
         }), {Ok("AT^USERNVWR=2591,4,3000000000 0 0 0").Prefix("")}, 0},
        {"NV item without a value", NoRecord([] { return AtSharePdpNvWr(nullptr); }), {}, -1},
    }, 0);
    // clang-format on
}

TEST(AtsCommSettings, ProductTypeAndLogPort) {
    const auto product = [](uint32_t &t) { return AtQryProductType(&t); };
    const auto logPort = [](uint32_t &t) { return AtQryLogPort(&t); };
    // clang-format off
    RunCommandCases<uint32_t>({
        {"product type", product, {Ok("AT^PRODTYPE?", "^PRODTYPE: 3").Prefix("^PRODTYPE")}, 1,
         [](uint32_t &t) { t = 3; }},
        {"a product type above 3", product, {Ok("AT^PRODTYPE?", "^PRODTYPE: 4")}, 0},
        {"product type query failed", product, {Fails("AT^PRODTYPE?", AT_RET_ERROR, "ERROR")}, 0},
        {"log port", logPort, {Ok("AT^LOGPORT?", "^LOGPORT: 5").Prefix("^LOGPORT")}, 1,
         [](uint32_t &t) { t = 5; }},
        {"a negative log port", logPort, {Ok("AT^LOGPORT?", "^LOGPORT: -1")}, 0},
    }, kUntouched);
    // clang-format on
    {
        TraceCapture trace;
        EXPECT_EQ(AtQryProductType(nullptr), 0);
        EXPECT_EQ(AtQryLogPort(nullptr), 0);
        EXPECT_EQ(trace.Count("Param Invalid"), 2u);
    }
    const auto setPort = [](uint32_t portType, uint32_t config) {
        return NoRecord([=] {
            LogPortSetting s{portType, config};
            return AtSetLogPort(&s);
        });
    };
    // clang-format off
    RunCommandCases<int32_t>({
        {"set log port", setPort(5, 1), {Ok("AT^LOGPORT=5,1").Prefix("").Timeout(30)}, 0},
        {"port type 6", setPort(6, 0), {}, -1},
        {"config 2", setPort(0, 2), {}, -1},
    }, 0);
    // clang-format on
    TraceCapture trace;
    EXPECT_EQ(AtSetLogPort(nullptr), -1);
    EXPECT_TRUE(trace.Contains("para error"));
}

}  // namespace
}  // namespace atapi::test
