// The command frame: bounded lines, secrets wiped, rows typed from the
// record, and the scripted modem failing a test that sends the wrong line.

#include <gtest/gtest-spi.h>

#include <new>
#include <string>

#include "api/command.h"
#include "atapi/ats_security.h"
#include "command_cases.h"

namespace atapi::test {
namespace {

using namespace atapi::api;

template <typename T>
bool AllZero(const T &storage) {
    const auto *bytes = reinterpret_cast<const unsigned char *>(&storage);
    for (size_t i = 0; i < sizeof storage; ++i) {
        if (bytes[i] != 0) return false;
    }
    return true;
}

TEST(CommandFrame, LinesAreBoundedNotCut) {
    const std::string longest(AT_CMD_STR_LEN - 1 - 3, '1');
    constexpr CommandDescription kDescription{.format = "AT+%s"};
    EXPECT_TRUE(Command(kDescription, longest.c_str()));
    const Command tooLong(kDescription, (longest + "1").c_str());
    EXPECT_FALSE(tooLong);
    EXPECT_STREQ(tooLong.Line(), "") << "nothing of a cut line is kept";

    char buffer[12] = "AT+X";
    EXPECT_TRUE(AppendFormat(buffer, sizeof buffer, ",%d", 123456));
    EXPECT_FALSE(AppendFormat(buffer, sizeof buffer, "%s", "1"));
    EXPECT_STREQ(buffer, "AT+X,123456") << "full, and left as it was";
}

// What held a secret is zero once it goes out of scope, on the success and
// on the failure path; a plain line is left alone.
TEST(CommandFrame, SecretsAreWipedOnTheWayOut) {
    constexpr CommandDescription kSecret{.format = "AT+CPIN=\"%s\"", .secrecy = Secrecy::kSecret};
    constexpr CommandDescription kPlain{.format = "AT+CPIN=\"%s\""};
    alignas(Command) unsigned char storage[sizeof(Command)];
    for (const std::string &pin : {std::string("1234"), std::string(AT_CMD_STR_LEN, '9')}) {
        auto *cmd = new (storage) Command(kSecret, pin.c_str());
        cmd->~Command();
        const auto *line = reinterpret_cast<const char *>(storage);
        EXPECT_EQ(std::string(line, sizeof storage).find("1234"), std::string::npos);
        EXPECT_EQ(std::string(line, sizeof storage).find("999"), std::string::npos);
    }
    auto *plain = new (storage) Command(kPlain, "1234");
    plain->~Command();
    EXPECT_NE(std::string(reinterpret_cast<const char *>(storage), sizeof storage).find("1234"),
              std::string::npos);

    alignas(OwnedSrvMsg) unsigned char msgStorage[sizeof(OwnedSrvMsg)];
    auto *msg = new (msgStorage) OwnedSrvMsg;
    AtInitCommonMsgHandler(msg->Get(), "AT+CPIN=\"1234\"", "+CPIN", 0, 30);
    msg->~OwnedSrvMsg();
    EXPECT_TRUE(AllZero(msgStorage));
}

// Each width of member gets the kind that stores that width, and the range
// beside a row is applied.
TEST(CommandFrame, RowsAreTypedFromTheRecord) {
    struct Counters {
        char code[4];
        int32_t times;
        uint8_t puk;
        int64_t pin;
        uint32_t puk2;
        signed char pin2;
    };
    constexpr CommandDescription kDescription{
        .format = "AT^CPIN?", .parsePrefix = "^CPIN", .moduleId = module::kPin};
    constexpr auto kFields =
        FieldList(Field<&Counters::code>("code"), Field<&Counters::times>("times"),
                  Field<&Counters::puk>("puk_times", 0, 255), Field<&Counters::pin>("pin_times"),
                  Field<&Counters::puk2, AT_TYPE_ULONG>("puk2_times", 0, 10),
                  Field<&Counters::pin2>("pin2_times", -1, 3));
    static_assert(kFields[2].kind == AT_TYPE_UCHAR && kFields[3].kind == AT_TYPE_LLONG);
    Counters c = Filled<Counters>(0x11);
    char reply[] = "^CPIN: READY,3,300,9999999999,7,-1";
    ASSERT_EQ(ParseFields(kDescription, reply, kFields, c), 0);
    EXPECT_STREQ(c.code, "REA");
    EXPECT_EQ(c.times, 3);
    EXPECT_EQ(c.puk, 0x11) << "300 is out of 0..255: left as it was";
    EXPECT_EQ(c.pin, 9999999999);
    EXPECT_EQ(c.puk2, 7u);
    EXPECT_EQ(c.pin2, -1);
}

// A function's test fails when the line it sends differs from the script by
// one character, when it sends a line the script does not hold, and when a
// scripted line is never sent.
TEST(ScriptedModem, FailsTheTestWhenTheLineIsNotTheScripts) {
    IsolatedRuntime runtime;
    int32_t errorId = 0;
    {
        ScriptedModem modem(runtime, {Ok("AT+CPWD=\"SC\",\"1234\",\"4322\"")});
        AtPinModify("SC", "1234", "4321", &errorId);
        EXPECT_NONFATAL_FAILURE(modem.Verify(), "sent:     \"AT+CPWD=\"SC\",\"1234\",\"4321\"\"");
    }
    {
        ScriptedModem modem(runtime, {Ok("AT+CPWD=\"SC\",\"1234\",\"4321\"").Timeout(5)});
        AtPinModify("SC", "1234", "4321", &errorId);
        EXPECT_NONFATAL_FAILURE(modem.Verify(), "went with a timeout of 30 s, expected 5 s");
    }
    {
        ScriptedModem modem(runtime);
        EXPECT_EQ(AtPinModify("SC", "1234", "4321", &errorId), -1) << "answered ERROR";
        EXPECT_NONFATAL_FAILURE(modem.Verify(), "a command was sent after the script ended");
    }
    {
        ScriptedModem modem(runtime, {Ok("AT+CHUP")});
        EXPECT_NONFATAL_FAILURE(modem.Verify(), "expected a command that was never sent");
    }
}

}  // namespace
}  // namespace atapi::test
