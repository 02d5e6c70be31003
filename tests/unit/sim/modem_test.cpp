// The modem: framing, built-ins, rule order and conditions, state changes,
// delays and queued commands, unsolicited lines, faults, and hostile input.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "sim_test_util.h"

namespace atsim::test {
namespace {

// One exchange of a conversation: bytes written, then time let pass, then
// everything the modem sent back in between.
struct Exchange {
    std::string input;
    Millis waitMs;
    std::string output;
};

struct Conversation {
    const char *name;
    const char *scenario;
    std::vector<Exchange> exchanges;
};

class ConversationTest : public ::testing::TestWithParam<Conversation> {};

TEST_P(ConversationTest, RepliesInOrder) {
    const Files files{{"main.scn", GetParam().scenario}};
    ModemHarness harness(files);
    for (std::size_t i = 0; i < GetParam().exchanges.size(); ++i) {
        const Exchange &exchange = GetParam().exchanges[i];
        std::string output = harness.Write(exchange.input);
        output += harness.Wait(exchange.waitMs);
        EXPECT_EQ(output, exchange.output) << "exchange " << i << ": " << exchange.input;
    }
}

const char kCounter[] =
    "var n = 0\n"
    "on AT+N?\n  line +N: ${n}\n"
    "on AT+N=*\n  when $1 > 9\n  final +CME ERROR: 3\n"
    "on AT+N=*\n  set n = $1\n"
    "on AT+INC\n  add n 1\n"
    "on AT+DEC\n  add n -1\n"
    "on AT+CMP=*\n  when ${n} < $1\n  line less\n"
    "on AT+CMP=*\n  when ${n} >= $1\n  line not less\n"
    "on AT+IS=*\n  when $1 == ${n}\n  line same\n"
    "on AT+IS=*\n  when $1 != ${n}\n  line other\n";

const char kTimed[] =
    "on AT+WAIT=*\n  delay $1\n"
    "on AT+TWO\n  line +TWO: 1\n  delay 100\n  line +TWO: 2\n"
    "on AT+LATER\n  final OK\n  after 50 ^LATE: 1\n  after 20 ^LATE: 0\n";

INSTANTIATE_TEST_SUITE_P(
    Cases, ConversationTest,
    ::testing::Values(
        Conversation{"BuiltIns",
                     "",
                     {{"AT\r", 0, "\r\nOK\r\n"},
                      {"at\r", 0, "\r\nOK\r\n"},
                      {"AT+UNKNOWN\r", 0, "\r\nERROR\r\n"},
                      {"ATE1\r", 0, "\r\nOK\r\n"},
                      {"AT\r", 0, "AT\r\r\nOK\r\n"},
                      {"ATE0\r", 0, "ATE0\r\r\nOK\r\n"},
                      {"AT\r", 0, "\r\nOK\r\n"}}},
        Conversation{"FramingAndLineEnds",
                     "on AT+CGMI\n  line Atsim Modems\n",
                     {{"AT+CGMI\r", 0, "\r\nAtsim Modems\r\n\r\nOK\r\n"},
                      {"AT+CGMI\r\n", 0, "\r\nAtsim Modems\r\n\r\nOK\r\n"},
                      {"\nAT+C", 0, ""},
                      {"GMI\rAT\r", 0, "\r\nAtsim Modems\r\n\r\nOK\r\n\r\nOK\r\n"},
                      {"\r\r\n", 0, ""}}},
        Conversation{"FirstMatchingRuleWins",
                     "on AT+X=1\n  line one\non AT+X=*\n  line any $1\non AT+X=1\n  line never\n",
                     {{"AT+X=1\r", 0, "\r\none\r\n\r\nOK\r\n"},
                      {"at+x=Abc\r", 0, "\r\nany Abc\r\n\r\nOK\r\n"}}},
        Conversation{"ConditionsAndStateChanges",
                     kCounter,
                     {{"AT+N?\r", 0, "\r\n+N: 0\r\n\r\nOK\r\n"},
                      {"AT+N=12\r", 0, "\r\n+CME ERROR: 3\r\n"},
                      {"AT+N=5\r", 0, "\r\nOK\r\n"},
                      {"AT+INC\rAT+INC\rAT+DEC\r", 0, "\r\nOK\r\n\r\nOK\r\n\r\nOK\r\n"},
                      {"AT+N?\r", 0, "\r\n+N: 6\r\n\r\nOK\r\n"},
                      {"AT+CMP=7\r", 0, "\r\nless\r\n\r\nOK\r\n"},
                      {"AT+CMP=6\r", 0, "\r\nnot less\r\n\r\nOK\r\n"},
                      // Ordering compares numbers only: text never orders.
                      {"AT+CMP=x\r", 0, "\r\nERROR\r\n"},
                      {"AT+IS=6\r", 0, "\r\nsame\r\n\r\nOK\r\n"},
                      {"AT+IS=06\r", 0, "\r\nother\r\n\r\nOK\r\n"}}},
        Conversation{"DelaysHoldTheQueue",
                     kTimed,
                     {{"AT+WAIT=100\rAT\r", 99, ""},
                      {"", 1, "\r\nOK\r\n\r\nOK\r\n"},
                      {"AT+TWO\r", 99, "\r\n+TWO: 1\r\n"},
                      {"", 1, "\r\n+TWO: 2\r\n\r\nOK\r\n"},
                      {"AT+WAIT=0\r", 0, "\r\nOK\r\n"}}},
        Conversation{"DelayedUnsolicitedLines",
                     kTimed,
                     {{"AT+LATER\r", 19, "\r\nOK\r\n"},
                      {"", 1, "\r\n^LATE: 0\r\n"},
                      // A command under way holds them back until its end.
                      {"AT+WAIT=100\r", 40, ""},
                      {"", 60, "\r\nOK\r\n\r\n^LATE: 1\r\n"}}}),
    [](const ::testing::TestParamInfo<Conversation> &info) { return info.param.name; });

TEST(Modem, NextDeadlineFollowsDelaysAndDelayedLines) {
    const Files files{{"main.scn", kTimed}};
    ModemHarness harness(files);
    EXPECT_EQ(harness.modem().NextDeadline(), std::nullopt);
    harness.Send("AT+WAIT=250");
    EXPECT_EQ(harness.modem().NextDeadline(), harness.now() + 250);
    harness.Wait(250);
    harness.Send("AT+LATER");
    EXPECT_EQ(harness.modem().NextDeadline(), harness.now() + 20);
}

TEST(Modem, PeriodicLinesOnTheirTicks) {
    const Files files{
        {"main.scn", "periodic 1 ^A\nperiodic 2 ^B: ${rand 7 7}\non AT+WAIT\n  delay 1500\n"}};
    ModemOptions options;
    options.urcIntervalMs = 1000;
    ModemHarness harness(files, options);
    EXPECT_EQ(harness.modem().NextDeadline(), ModemHarness::kStart + 1000);
    EXPECT_EQ(harness.Wait(999), "");
    EXPECT_EQ(harness.Wait(1), Framed({"^A"}));
    EXPECT_EQ(harness.Wait(1000), Framed({"^A", "^B: 7"}));
    // A tick during a reply waits for its end.
    EXPECT_EQ(harness.Send("AT+WAIT"), "");
    EXPECT_EQ(harness.Wait(1000), "");
    EXPECT_EQ(harness.Wait(500), Framed({"OK", "^A"}));
    // A late wake-up gives one tick, not a burst of the missed ones.
    EXPECT_EQ(harness.Wait(5000), Framed({"^A", "^B: 7"}));
    EXPECT_EQ(harness.modem().NextDeadline(), harness.now() + 1000);
}

TEST(Modem, PeriodicLinesWaitForAPartlyTypedCommand) {
    const Files files{{"main.scn", "periodic 1 ^A\n"}};
    ModemOptions options;
    options.urcIntervalMs = 100;
    ModemHarness harness(files, options);
    EXPECT_EQ(harness.Write("AT"), "");
    EXPECT_EQ(harness.Wait(100), "");
    EXPECT_EQ(harness.Write("\r"), Framed({"OK", "^A"}));
}

TEST(Modem, NoPeriodicLinesWhenTurnedOff) {
    const Files files{{"main.scn", "periodic 1 ^A\n"}};
    ModemHarness harness(files);
    EXPECT_EQ(harness.modem().NextDeadline(), std::nullopt);
    EXPECT_EQ(harness.Wait(60000), "");
}

TEST(Modem, AmountThatIsNoNumberCountsAsZero) {
    ModemHarness harness(
        Files{{"main.scn", "var n = 5\non AT+BAD=*\n  delay $1\n  add n $1\n  line ${n}\n"}});
    EXPECT_EQ(harness.Send("AT+BAD=soon"), Framed({"5", "OK"}));
    EXPECT_EQ(harness.logs(), (std::vector<std::string>{
                                  "atsim: main.scn:3: \"soon\" is not a number, taken as 0",
                                  "atsim: main.scn:4: \"soon\" is not a number, taken as 0"}));
}

TEST(Modem, OverlongLineIsDroppedAndLogged) {
    ModemHarness harness(Files{{"main.scn", "on AT+LONG*\n  line long\n"}});
    const std::string overlong = "AT+LONG" + std::string(Modem::kMaxLineLength, 'x');
    EXPECT_EQ(harness.Send(overlong), "");
    ASSERT_EQ(harness.logs().size(), 1u);
    EXPECT_EQ(harness.logs()[0], "atsim: dropped an input line of 4103 bytes (limit 4096)");
    EXPECT_EQ(harness.Send("AT"), Framed({"OK"})) << "the next line is read afresh";
    const std::string longest = "AT+LONG" + std::string(Modem::kMaxLineLength - 7, 'x');
    EXPECT_EQ(harness.Send(longest), Framed({"long", "OK"}));
}

TEST(Modem, HostileBytesAreJustText) {
    ModemHarness harness(Files{{"main.scn", "on AT+ECHO*\n  line [$1]\n"}});
    const std::string binary("AT+ECHO\0\xff\x01", 10);
    EXPECT_EQ(harness.Send(binary), Framed({"[" + binary.substr(7) + "]", "OK"}));
}

TEST(Modem, TooManyQueuedCommandsAreDropped) {
    ModemHarness harness(Files{{"main.scn", "on AT+WAIT\n  delay 10\n"}});
    std::string burst = "AT+WAIT\r";
    for (std::size_t i = 0; i < Modem::kMaxQueuedCommands + 3; ++i) burst += "AT\r";
    harness.Write(burst);
    const std::string out = harness.Wait(10);
    std::size_t oks = 0;
    for (std::size_t at = out.find("OK"); at != std::string::npos; at = out.find("OK", at + 1))
        ++oks;
    EXPECT_EQ(oks, 1 + Modem::kMaxQueuedCommands);
    EXPECT_EQ(harness.logs().size(), 3u);
}

// ---- The shipped scenarios ------------------------------------------------------------

TEST(DefaultScenario, PinFlow) {
    ModemHarness harness(ShippedScenario("default.scn"), ModemHarness::QuietOptions());
    const std::vector<std::pair<std::string, std::string>> steps = {
        {"AT+CPIN?", Framed({"+CPIN: SIM PIN", "OK"})},
        {"AT^CPIN?", Framed({"^CPIN: SIM PIN,3,10,3,10,3", "OK"})},
        {"AT+CPIN=\"0000\"", Framed({"+CME ERROR: 16"})},
        {"AT^CPIN?", Framed({"^CPIN: SIM PIN,2,10,2,10,3", "OK"})},
        {"AT^CPIN=\"1234\",\"\"", Framed({"OK"})},
        {"AT+CPIN?", Framed({"+CPIN: READY", "OK"})},
        {"AT^CPIN?", Framed({"^CPIN: READY,,10,3,10,3", "OK"})},
        {"AT+CPIN=\"1234\"", Framed({"+CME ERROR: 3"})},
        {"AT+CLCK=\"SC\",2", Framed({"+CLCK: 1", "OK"})},
        {"AT+CLCK=\"SC\",0,\"9999\"", Framed({"+CME ERROR: 16"})},
        {"AT+CLCK=\"SC\",0,\"1234\"", Framed({"OK"})},
        {"AT+CLCK=\"SC\",2", Framed({"+CLCK: 0", "OK"})},
        {"AT+CPWD=\"SC\",\"1234\",\"4321\"", Framed({"OK"})},
        {"AT+CPWD=\"SC\",\"1234\",\"4321\"", Framed({"+CME ERROR: 16"})},
    };
    for (const auto &[command, reply] : steps) EXPECT_EQ(harness.Send(command), reply) << command;
}

TEST(DefaultScenario, WrongPinsBlockTheCardUntilThePuk) {
    ModemHarness harness(ShippedScenario("default.scn"), ModemHarness::QuietOptions());
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(harness.Send("AT+CPIN=\"9\""), Framed({"+CME ERROR: 16"}));
    const std::vector<std::pair<std::string, std::string>> steps = {
        {"AT+CPIN?", Framed({"+CPIN: SIM PUK", "OK"})},
        {"AT^CPIN?", Framed({"^CPIN: SIM PUK,10,10,0,10,3", "OK"})},
        {"AT+CPIN=\"1234\"", Framed({"+CME ERROR: 12"})},
        {"AT+CPIN=\"11111111\",\"4321\"", Framed({"+CME ERROR: 16"})},
        {"AT^CPIN?", Framed({"^CPIN: SIM PUK,9,9,0,10,3", "OK"})},
        {"AT+CPIN=\"12345678\",\"4321\"", Framed({"OK"})},
        {"AT^CPIN?", Framed({"^CPIN: READY,,10,3,10,3", "OK"})},
        {"AT+CLCK=\"SC\",1,\"4321\"", Framed({"OK"})},
    };
    for (const auto &[command, reply] : steps) EXPECT_EQ(harness.Send(command), reply) << command;
}

TEST(DefaultScenario, DataConnectionState) {
    ModemHarness harness(ShippedScenario("default.scn"), ModemHarness::QuietOptions());
    const std::string down = Framed({"^NDISSTATQRY: 0,0,0,\"IPV4\",0,0,0,\"IPV6\"", "OK"});
    EXPECT_EQ(harness.Send("AT^NDISSTATQRY?"), down);
    EXPECT_EQ(harness.Send("AT^NDISDUP=1,1,\"internet\",\"u\",\"p\",2"), Framed({"OK"}));
    EXPECT_EQ(harness.Wait(200), Framed({"^NDISSTAT: 1,1,0,0,\"IPV4\""}));
    EXPECT_EQ(harness.Send("AT^NDISSTATQRY?"),
              Framed({"^NDISSTATQRY: 1,0,0,\"IPV4\",0,0,0,\"IPV6\"", "OK"}));
    EXPECT_EQ(harness.Send("AT+CGACT?"),
              Framed({"+CGACT: 1,1", "+CGACT: 2,0", "+CGACT: 3,0", "OK"}));
    EXPECT_EQ(harness.Send("AT^NDISDUP=1,0"), Framed({"OK"}));
    EXPECT_EQ(harness.Wait(200), Framed({"^NDISSTAT: 1,0,0,0,\"IPV4\""}));
    EXPECT_EQ(harness.Send("AT^NDISSTATQRY?"), down);
    EXPECT_EQ(harness.Send("AT+CGDCONT=1,\"IP\",\"apn.example\""), Framed({"OK"}));
    EXPECT_EQ(harness.Send("AT+CGDCONT=1,\"IPV6\",\"slice\",\"\",,,,,,,,,,,,,\"01.000001\",,,,"),
              Framed({"OK"}));
    const std::string rows = harness.Send("AT+CGDCONT?");
    EXPECT_EQ(rows.substr(0, rows.find("\r\n", 2) + 2),
              Framed({"+CGDCONT: 1,\"IPV6\",\"slice\",\"0.0.0.0\",0,0,0,0,0,0,0"}));
}

TEST(FaultScenario, ContractFaults) {
    ModemHarness harness(ShippedScenario("faults.scn"), ModemHarness::QuietOptions());
    EXPECT_EQ(harness.Send("AT+SLOW"), "");
    EXPECT_EQ(harness.Wait(1499), "");
    EXPECT_EQ(harness.Wait(1), Framed({"OK"}));
    EXPECT_EQ(harness.Send("AT+SLOW=40"), "");
    EXPECT_EQ(harness.Wait(40), Framed({"OK"}));
    EXPECT_EQ(harness.Send("AT+SILENT"), "");
    EXPECT_EQ(harness.Wait(60000), "");
    EXPECT_EQ(harness.Send("AT+CGMI"), Framed({"Atsim Modems", "OK"})) << "default rules are in";
    EXPECT_EQ(harness.Send("AT+URCMID"), Framed({"+URCMID: 1", "^RSSI: 17", "+URCMID: 2", "OK"}));
    EXPECT_EQ(harness.Send("AT+ECHOCMD=\"a,b\";x"),
              Framed({"+ECHOCMD: AT+ECHOCMD=\"a,b\";x", "OK"}));
    EXPECT_FALSE(harness.modem().HungUp());
    EXPECT_EQ(harness.Send("AT+HANGUP"), "");
    EXPECT_TRUE(harness.modem().HungUp());
    EXPECT_EQ(harness.Send("AT"), "") << "nothing is served after a hang-up";
    EXPECT_EQ(harness.modem().NextDeadline(), std::nullopt);
}

TEST(FaultScenario, GarbageThenOverlongLineThenOk) {
    ModemHarness harness(ShippedScenario("faults.scn"), ModemHarness::QuietOptions());
    const std::string out = harness.Send("AT+GARBAGE");
    const std::string tail = Framed({std::string(Modem::kOverlongLine, 'A'), "OK"});
    ASSERT_EQ(out.size(), Modem::kGarbageBytes + tail.size());
    const std::string noise = out.substr(0, Modem::kGarbageBytes);
    EXPECT_EQ(out.substr(Modem::kGarbageBytes), tail);
    EXPECT_EQ(noise.find_first_of("\r\n"), std::string::npos);
    EXPECT_NE(noise.find('\0'), std::string::npos);
    EXPECT_NE(noise.find('\xff'), std::string::npos);
}

}  // namespace
}  // namespace atsim::test
