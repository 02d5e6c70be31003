// The default scenario's state across a session: PIN entry and its retry
// counters, PUK unblocking, PDP contexts with their S-NSSAI, dial-up state,
// the radio function level and the locks. Each case is a command sequence
// on a fresh modem with the reply expected to each command.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modem_harness.h"

namespace atsim::test {
namespace {

struct Step {
    std::string command;
    std::vector<std::string> reply;  // information lines and final result
};

struct Session {
    const char *name;
    std::vector<Step> steps;
};

const std::string kCme16 = "+CME ERROR: 16";

// The reply lines of a context as the query shows them.
std::string Context(const std::string &head, const std::string &nssai) {
    return "+CGDCONT: " + head + ",\"0.0.0.0\",0,0,0,0,0,0,0,0,0,0,0,0,0,\"" + nssai + "\",0,0,0,0";
}

const std::string kNssaiTail = ",\"\",,,,,,,,,,,,,,\"01.000001\",,,,";

// Three wrong PINs, ten wrong PUKs, and then the right PUK is refused.
std::vector<Step> TenWrongPuks() {
    std::vector<Step> steps(3, {"AT+CPIN=\"1\"", {kCme16}});
    steps.insert(steps.end(), 10, {"AT+CPIN=\"0\",\"1\"", {kCme16}});
    steps.push_back({"AT+CPIN=\"12345678\",\"1\"", {"+CME ERROR: 13"}});
    return steps;
}

// clang-format off
TEST(DefaultScenarioSession, StateFollowsTheCommands) {
    const std::string ims =
        "+CGDCONT: 2,\"IPV4V6\",\"ims\",\"0.0.0.0\",0,0,0,0,1,1,0,0,0,0,0,0,0,\"\",0,0,0,0";
    const std::string sos =
        "+CGDCONT: 3,\"IPV4V6\",\"sos\",\"0.0.0.0\",0,0,0,1,1,1,0,0,0,0,0,0,0,\"\",0,0,0,0";
    const Session sessions[] = {
        {"the third wrong PIN asks for the PUK, which unblocks with a new PIN",
         {{"AT+CPIN=\"1\"", {kCme16}}, {"AT^CPIN=\"2\"", {kCme16}}, {"AT+CPIN=\"3\"", {kCme16}},
          {"AT+CPIN?", {"+CPIN: SIM PUK", "OK"}},
          {"AT+CPIN=\"1234\"", {"+CME ERROR: 12"}},
          {"AT+CPIN=\"11111111\",\"4321\"", {kCme16}},
          {"AT^CPIN?", {"^CPIN: SIM PUK,9,9,0,10,3", "OK"}},
          {"AT+CPIN=\"12345678\",\"4321\"", {"OK"}},
          {"AT^CPIN?", {"^CPIN: READY,,10,3,10,3", "OK"}},
          {"AT+CPIN=\"4321\"", {"+CME ERROR: 3"}},
          {"AT+CPWD=\"SC\",\"1234\",\"5555\"", {kCme16}},
          {"AT+CPWD=\"SC\",\"4321\",\"5555\"", {"OK"}},
          {"AT^CPIN?", {"^CPIN: READY,,10,3,10,3", "OK"}},
          {"AT+CLCK=\"SC\",0,\"5555\"", {"OK"}}, {"AT+CLCK=\"SC\",2", {"+CLCK: 0", "OK"}}}},
        {"lock changes need the PIN; wrong ones there cost tries too",
         {{"AT+CLCK=\"SC\",2", {"+CLCK: 1", "OK"}}, {"AT+CLCK=\"SC\",0,\"1234\"", {"+CME ERROR: 11"}},
          {"AT+CPIN=\"1234\"", {"OK"}},
          {"AT+CLCK=\"SC\",0,\"9999\"", {kCme16}}, {"AT+CPWD=\"SC\",\"9999\",\"1\"", {kCme16}},
          {"AT+CLCK=\"SC\",0,\"9999\"", {kCme16}}, {"AT+CPIN?", {"+CPIN: SIM PUK", "OK"}}}},
        {"ten wrong PUKs block the card for good", TenWrongPuks()},
        {"a context keeps its S-NSSAI until it is defined again without one",
         {{"AT+CGDCONT=1,\"IP\",\"slice.example\"" + kNssaiTail, {"OK"}},
          {"AT+CGDCONT=5,\"IPV6\",\"v6.example\"" + kNssaiTail, {"OK"}},
          {"AT+CGDCONT?", {Context("1,\"IP\",\"slice.example\"", "01.000001"), ims, sos,
                           Context("5,\"IPV6\",\"v6.example\"", "01.000001"), "OK"}},
          {"AT+CGDCONT=1,\"IPV4V6\",\"internet\"", {"OK"}}, {"AT+CGDCONT=5,\"\",\"\"", {"OK"}},
          {"AT+CGDCONT=6,\"X25\",\"old\"", {"+CME ERROR: 50"}},
          {"AT+CGDCONT=17,\"IP\",\"far\"", {"+CME ERROR: 50"}},
          {"AT+CGDCONT?", {Context("1,\"IPV4V6\",\"internet\"", ""), ims, sos, "OK"}}}},
        {"dial-up needs the PIN and the radio; radio off takes it down",
         {{"AT^NDISDUP=1,1", {"+CME ERROR: 11"}}, {"AT+CPIN=\"1234\"", {"OK"}},
          {"AT^NDISDUP=1,1", {"OK"}}, {"AT+CFUN=4", {"OK"}},
          {"AT^NDISSTATQRY?", {"^NDISSTATQRY: 0,0,0,\"IPV4\",0,0,0,\"IPV6\"", "OK"}},
          {"AT^NDISDUP=1,1", {"+CME ERROR: 30"}}}},
        {"the radio level reads back; a reset asks for the PIN again",
         {{"AT+CFUN=0", {"OK"}}, {"AT+CFUN?", {"+CFUN: 0", "OK"}},
          {"AT^HS=0,0", {"^HS: 88888888,1,2,A,5G100,0", "OK"}},
          {"AT+CFUN=7", {"+CME ERROR: 50"}}, {"AT+CFUN=1", {"OK"}}, {"AT+CFUN?", {"+CFUN: 1", "OK"}},
          {"AT+CPIN=\"1234\"", {"OK"}}, {"AT+CFUN=1,1", {"OK"}},
          {"AT+CPIN?", {"+CPIN: SIM PIN", "OK"}}}},
        {"card lock and data lock take their codes",
         {{"AT^CARDLOCK=\"1\"", {"+CME ERROR: 3"}}, {"AT^DATALOCK?", {"^DATALOCK: 1", "OK"}},
          {"AT^DATALOCK=1", {kCme16}}, {"AT^DATALOCK=20240517", {"OK"}},
          {"AT^DATALOCK?", {"^DATALOCK: 0", "OK"}},
          {"AT^LOGPORT=6,0", {"+CME ERROR: 50"}}, {"AT^LOGPORT=3,1", {"OK"}},
          {"AT^LOGPORT?", {"^LOGPORT: 3", "OK"}}}},
    };
    for (const Session &session : sessions) {
        SCOPED_TRACE(session.name);
        ModemHarness harness("default.scn");
        for (const Step &step : session.steps) {
            EXPECT_EQ(harness.Exchange(step.command + "\r"), Framed(step.reply)) << step.command;
        }
    }
}
// clang-format on

}  // namespace
}  // namespace atsim::test
