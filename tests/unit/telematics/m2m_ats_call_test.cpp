// Voice calls against the scripted modem: the line, how each result class
// comes back (a failed exchange is handed back as it is), and the two call
// lists with their bounds.

#include "atapi/m2m_ats_call.h"

#include <tuple>

#include "error_classes.h"

namespace atapi::test {
namespace {

constexpr int32_t kUntouched = 0x5A5A5A5A;

// clang-format off
TEST(M2mAtsCall, DialAnswerHangUpHold) {
    const auto call = [](auto fn) { return [fn](NoRecord &) { return fn(); }; };
    RunRows<NoRecord>({
        {"dial", call([] { return AtsD("112"); }), {Ok("ATD112;").Prefix("").Timeout(30)}, 0, {}, kFails},
        {"dial without a number", call([] { return AtsD(nullptr); }), {}, -1},
        {"a dial string that does not fit the line", call([] { return AtsD(std::string(AT_CMD_STR_LEN, '1').c_str()); }), {}, -1},
        {"answer", call(AtsA), {Ok("ATA")}, 0, {}, kFails},
        {"hang up", call(AtsChup), {Ok("AT+CHUP")}, 0, {}, kFails},
        {"hold", call([] { return AtsChld(2); }), {Ok("AT+CHLD=2")}, 0, {}, kFails},
    }, NoRecord{0});
}

struct CallList {
    AtsClccInfo calls[21];
};

void SetCall(AtsClccInfo &c, int32_t idx, int32_t dir, int32_t mpty, int32_t type, const std::string &number) {
    std::tie(c.idx, c.dir, c.mode, c.mpty, c.type) = std::make_tuple(idx, dir, 0, mpty, type);
    SetText(c.number, number.c_str());
}

constexpr char kTwoCalls[] = "+CLCC: 1,0,0,0,0,\"+4930123456\",145\r\n+CLCC: 2,1,6,0,1,\"112\",129";

TEST(M2mAtsCall, CallList) {
    const auto list = [](int32_t maxIndex) { return [maxIndex](CallList &l) { return AtsClcc(l.calls, maxIndex); }; };
    const auto firstCall = [](CallList &l) { SetCall(l.calls[0], 1, 0, 0, 145, "+4930123456"); l.calls[0].stat = 0; };
    // The second call's state 6 is out of range and is not stored.
    const auto twoCalls = [firstCall](CallList &l) { firstCall(l); SetCall(l.calls[1], 2, 1, 1, 129, "112"); };
    RunRows<CallList>({
        {"two calls, maxIndex 1", list(1), {Ok("AT+CLCC", kTwoCalls).Prefix("+CLCC").Timeout(30)}, 0, twoCalls, kFails},
        {"maxIndex 20 is accepted", list(20), {Ok("AT+CLCC", kTwoCalls)}, 0, twoCalls},
        {"maxIndex 0 is inclusive: one entry", list(0), {Ok("AT+CLCC", kTwoCalls)}, 0, firstCall},
        {"no call leaves the list", list(1), {Ok("AT+CLCC", "")}, 0},
        {"a number of 41 characters is cut and fails the list", list(1), {Ok("AT+CLCC", "+CLCC: 1,0,0,0,0,\"" + std::string(41, '9') + "\",129")}, -1,
         [](CallList &l) { SetCall(l.calls[0], 1, 0, 0, kUntouched, std::string(40, '9')); l.calls[0].stat = 0; }},
        {"maxIndex 21 is refused", list(21), {}, -1},
    });
}

struct CallListEx {
    AtsClccExInfo calls[7];
};

constexpr char kTwoCallsEx[] = "^CLCC: 1,0,0,0,0,1,0,0,\"+4930123456\",145\r\n^CLCC: 2,2,9,0,1,0,0,1,\"112\",129";

void SetCallEx(AtsClccExInfo &c, int32_t idx, int32_t voiceDomain, int32_t type, const std::string &number) {
    c.idx = idx;
    c.dir = c.state = c.mode = c.mpty = c.callType = c.isEconference = 0;
    c.voiceDomain = voiceDomain;
    c.type = type;
    SetText(c.number, number.c_str());
}

TEST(M2mAtsCall, ExtendedCallList) {
    const auto list = [](int32_t count) { return [count](CallListEx &l) { return AtsClccEx(l.calls, count); }; };
    const auto firstCall = [](CallListEx &l) { SetCallEx(l.calls[0], 1, 1, 145, "+4930123456"); };
    RunRows<CallListEx>({
        {"count 1 reads one of two lines", list(1), {Ok("AT^CLCC?", kTwoCallsEx).Prefix("^CLCC:").Timeout(30)}, 0, firstCall, kFails},
        {"count 7; dir and state out of range keep their preset", list(7), {Ok("AT^CLCC?", kTwoCallsEx)}, 0, [firstCall](CallListEx &l) {
             firstCall(l);
             AtsClccExInfo &c = l.calls[1];
             SetCallEx(c, 2, 0, 129, "112");
             c.dir = c.state = kUntouched;
             c.mpty = c.isEconference = 1;
         }},
        {"a number is cut at 40 characters", list(1), {Ok("AT^CLCC?", "^CLCC: 1,0,0,0,0,1,0,0,\"" + std::string(45, '7') + "\",129")}, 0,
         [](CallListEx &l) { SetCallEx(l.calls[0], 1, 1, 129, std::string(40, '7')); }},
        {"a line without fields fails", list(1), {Ok("AT^CLCC?", "^CLCC")}, -1},
        {"count 8 is refused", list(8), {}, -1},
    });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
