// Events: what the modem does by itself some time after a command (a call
// that connects, a ring, eCall progress), and the default scenario's calls
// and eCalls as they unfold over time.
#include <gtest/gtest.h>

#include <string>

#include "modem_harness.h"

namespace atsim::test {
namespace {

const std::string kEvents = R"(
var state = idle
var n = 0
on AT+GO
  set state = busy
  trigger 100 tick
  trigger 50 never
on AT+STOP
  set state = idle
on AT+DROP
  cancel t*k
on AT+SLOW
  delay 200
on AT+STATE?
  line +STATE: ${state},${n}
event never
  when ${state} == nowhere
  line +NEVER
event tick
  when ${state} == busy
  when ${n} < 2
  add n 1
  line +TICK: ${n}
  trigger 0 tick
event tick
  when ${state} == busy
  add n 1
  line $0: ${n}
  after 10 +TOCK
)";

// clang-format off
TEST(Events, RunLapseAndWaitForTheReply) {
    ModemHarness harness("events.scn", kEvents);
    Play(harness, {
        // An event whose conditions do not hold lapses (never, at 50 ms).
        {"AT+GO\r", 100, {"OK", "+TICK: 1"}}, {"AT+STATE?\r", 0, {"+STATE: busy,1", "OK"}},
        // A trigger of 0 ms comes 1 ms later; the second rule of the
        // name takes over once the first one's condition fails.
        {"", 2, {"+TICK: 2", "tick: 3"}}, {"", 10, {"+TOCK"}},
        // During a reply an event changes the state at once, while its
        // lines wait for the end of the replies.
        {"AT+GO\rAT+SLOW\r", 150, {"OK"}}, {"AT+STATE?\r", 0, {}},
        {"", 50, {"OK", "+STATE: busy,4", "OK", "tick: 4", "+TOCK"}},
        {"AT+GO\rAT+STOP\r", 1000, {"OK", "OK"}},
        // Cancelled: busy, but no tick any more.
        {"AT+GO\rAT+DROP\r", 1000, {"OK", "OK"}}, {"AT+STATE?\r", 0, {"+STATE: busy,4", "OK"}},
    });
}

// What the end-to-end session does not reach: calls while others run, hold,
// refusals, rejecting, answering by itself, and eCall progress against time.
TEST(CallScenario, OutgoingCallConnectsHoldsAndEnds) {
    const std::string called = "\"+15551230002\",145";
    ModemHarness harness("default.scn");
    Play(harness, {
        {"ATD+15551230002;\r", 0, {"OK"}}, {"AT+CLCC\r", 0, {"+CLCC: 1,0,2,0,0," + called, "OK"}},
        {"AT+VTS=1,100\r", 0, {"+CME ERROR: 3"}}, {"ATD112;\r", 0, {"+CME ERROR: 3"}},
        {"", 100, {"^ORIG: 1,0"}}, {"", 200, {"^CONF: 1"}},
        {"AT^CLCC?\r", 0, {"^CLCC: 1,0,3,0,0,1,0,0," + called, "OK"}},
        {"", 500, {"^CONN: 1,0"}},
        {"AT+CHLD=2\r", 0, {"OK"}}, {"AT+CHLD=12\r", 0, {"+CME ERROR: 3"}},
        {"AT+CLCC\r", 0, {"+CLCC: 1,0,1,0,0," + called, "OK"}},
        {"AT+CHLD=1\r", 0, {"OK"}}, {"AT+CLCC\r", 0, {"+CLCC: 1,0,0,0,0," + called, "OK"}},
        {"AT+CHUP\r", 100, {"OK", "^CEND: 1,0,104,16"}}, {"AT+CHLD=1\r", 0, {"+CME ERROR: 3"}},
        // Hung up while alerting: the rest of the progress lapses.
        {"ATD10086;\r", 350, {"OK", "^ORIG: 1,0", "^CONF: 1"}},
        {"AT+CHUP\r", 1000, {"OK", "^CEND: 1,0,104,16"}},
    });
}

TEST(CallScenario, IncomingCallRingsUntilAnswered) {
    ModemHarness harness("default.scn");
    Play(harness, {
        {"AT+SIMRING=\"5551234\",129\r", 51, {"OK", "RING"}},
        {"AT+CLIP=1\r", 3000, {"OK", "RING", "+CLIP: \"5551234\",129,,,,0"}},
        {"AT+SIMRING\r", 0, {"+CME ERROR: 3"}},
        {"ATA\r", 50, {"OK", "^CONN: 1,0"}}, {"", 6000, {}},
        {"AT+CLCC\r", 0, {"+CLCC: 1,1,0,0,0,\"5551234\",129", "OK"}},
        {"AT+CHUP\r", 100, {"OK", "^CEND: 1,0,104,16"}},
        // Rejected, then answered by itself after two rings.
        {"AT+SIMRING\r", 51, {"OK", "RING", "+CLIP: \"+15551230077\",145,,,,0"}},
        {"AT+CHLD=0\r", 100, {"OK", "^CEND: 1,0,104,17"}},
        {"ATS0=2\rAT+CLIP=0\r", 0, {"OK", "OK"}},
        {"AT+SIMRING\r", 3051, {"OK", "RING", "RING"}}, {"", 3000, {"^CONN: 1,0"}},
        {"AT+CLCC\r", 0, {"+CLCC: 1,1,0,0,0,\"+15551230077\",145", "OK"}},
    });
}

// The progress of an eCall is the end-to-end session's; here what is refused.
TEST(CallScenario, ECallStartsOnceWithAnMsd) {
    const std::string start = "AT^ECLSTART=1,1,\"112\",0\r";
    ModemHarness harness("default.scn");
    Play(harness, {
        {start, 0, {"+CME ERROR: 3"}}, {"AT^ECLMSD=\"0102A0\"\r", 0, {"OK"}},
        {start, 0, {"OK"}}, {start, 0, {"+CME ERROR: 3"}}, {"AT^ECLMODE=2\r", 0, {"+CME ERROR: 3"}},
    });
}
// clang-format on

}  // namespace
}  // namespace atsim::test
