// Voice calls against the scripted modem: the line, and how each result
// class comes back (a failed exchange is handed back as it is).

#include "atapi/m2m_ats_call.h"

#include "command_cases.h"

namespace atapi::test {
namespace {

struct NoRecord {
    char unused;
};

TEST(M2mAtsCall, DialAnswerHangUpHold) {
    const auto call = [](auto fn) { return [fn](NoRecord &) { return fn(); }; };
    const auto dial = call([] { return AtsD("112"); });
    const auto hold = call([] { return AtsChld(2); });
    RunCommandCases<NoRecord>(
        {
            {"dial", dial, {Ok("ATD112;").Prefix("").Timeout(30)}, 0},
            {"dial aborted", dial, {Fails("ATD112;", AT_RET_ABORTED, "AT_ABORTED")}, -1},
            {"dial without a number", call([] { return AtsD(nullptr); }), {}, -1},
            {"answer", call(AtsA), {Ok("ATA")}, 0},
            {"answer, no carrier", call(AtsA), {Fails("ATA", AT_RET_ERROR, "NO CARRIER")}, -1},
            {"hang up", call(AtsChup), {Ok("AT+CHUP")}, 0},
            {"hold", hold, {Ok("AT+CHLD=2")}, 0},
            {"hold refused", hold, {Fails("AT+CHLD=2", AT_RET_CME_ERROR, "+CME ERROR: 3")}, -1},
        },
        Filled<NoRecord>(0));
}

}  // namespace
}  // namespace atapi::test
