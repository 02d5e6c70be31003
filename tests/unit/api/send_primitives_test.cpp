// The send primitives against the in-process fake AT server: what goes on
// the wire, how each result class comes back per primitive, how replies are
// split, and which argument checks fail before anything is sent.

#include <sys/syscall.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "atapi/at_parse.h"
#include "atapi/at_send.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"
#include "scripted_modem.h"

namespace atapi::test {
namespace {

constexpr int32_t kUntouched = 777;

constexpr char kCgdcontReply[] =
    "+CGDCONT: 1,\"IP\",\"internet\",\"10.0.0.2\",0,0\r\n"
    "+CGDCONT: 2,\"IPV4V6\",\"ims\",\"\",0,0";

// A private runtime whose modem gives every request the same reply: these
// tests are about the primitives, which send whatever line they are given.
struct Served {
    explicit Served(int32_t retVal = AT_RET_OK, const std::string &text = "") {
        server.AnswerAnyWith(Fails("", retVal, text));
    }
    IsolatedRuntime runtime;
    ScriptedModem server{runtime};
};

enum Primitive { kSimple, kSecret, kSingle, kMulti, kList, kNetwork };
constexpr const char *kPrimitiveNames[] = {"simple", "secret", "single",
                                           "multi",  "list",   "network"};

// Calls the primitive (9 s where it takes a timeout); *answer gets what it
// handed back: the string, the number of lines or rows, or the parsed code.
int32_t Call(Primitive primitive, int32_t *errCode, std::string *answer) {
    switch (primitive) {
        case kSimple:
            return AtSendSimpleCmd("AT+CFUN=1", "+CFUN", errCode);
        case kSecret:
            return AtSendSimpleSecCmd("AT+CPIN=\"1234\"", nullptr, errCode, 9);
        case kSingle: {
            char out[64] = {};
            const int32_t result =
                AtSendAndGetSingleStrRsp("AT+CGMI", "+CGMI", out, sizeof out, errCode);
            *answer = out;
            return result;
        }
        case kMulti: {
            const char *const desc[2] = {"AT+CGDCONT?", "+CGDCONT"};
            char *lines[4] = {};
            int32_t count = 4;
            const int32_t result = AtSendMultiCmd(desc, lines, &count, errCode, 9);
            *answer = std::to_string(count);
            ReleaseSubstring(lines, count);
            return result;
        }
        case kList: {
            char code[16] = {};
            AtParamDesc params[] = {{"code", AT_TYPE_STRING, code, sizeof code, 0, 0}};
            const AtCmdDesc desc = {"AT+CPIN?", "+CPIN", "+CPIN", AT_PARSE_QUERY, 2};
            const int32_t result = AtSendAndGetListRspSpecialTimeout(&desc, params, 1, errCode, 9);
            *answer = code;
            return result;
        }
        case kNetwork: {
            AtCmdParseNode *rows = nullptr;
            const AtCmdDesc desc = {"AT+CGDCONT?", "+CGDCONT", "+CGDCONT", AT_PARSE_QUERY, 25};
            const int32_t result = AtNetworkSendMultiCmd(&desc, &rows, errCode, 9);
            size_t count = 0;
            for (const AtCmdParseNode *row = rows; row != nullptr; row = row->nextRow) ++count;
            *answer = std::to_string(count);
            FreeAtCmd(rows);
            return result;
        }
    }
    return -1;
}

// The whole record each primitive sends: the header, the strings and zeroes
// everywhere else.
AtSrvMsg SentBy(Primitive primitive) {
    struct Wire {
        const char *cmd;
        const char *atName;
        uint32_t multiRsp;
        int32_t timeoutSec;
    };
    constexpr Wire kWire[] = {
        {"AT+CFUN=1", "+CFUN", 0, 30}, {"AT+CPIN=\"1234\"", "", 0, 9},
        {"AT+CGMI", "+CGMI", 0, 30},   {"AT+CGDCONT?", "+CGDCONT", 1, 9},
        {"AT+CPIN?", "+CPIN", 0, 9},   {"AT+CGDCONT?", "+CGDCONT", 0, 9},
    };
    const Wire &w = kWire[primitive];
    AtSrvMsg msg;
    std::memset(&msg, 0, sizeof msg);
    msg.mtype = static_cast<int32_t>(syscall(SYS_gettid));
    msg.seq = 1;
    msg.multiRsp = w.multiRsp;
    msg.timeoutSec = w.timeoutSec;
    std::strcpy(msg.sndRcvMsg.sMsg.atName, w.atName);
    std::strcpy(msg.sndRcvMsg.sMsg.atCmdStr, w.cmd);
    return msg;
}

// Every primitive against every class of reply: the record on the wire, and
// the return value and error id, which differ between primitives on purpose.
TEST(SendPrimitives, ResultClassesPerPrimitive) {
    struct Case {
        Primitive primitive;
        int32_t retVal;
        const char *text;
        int32_t result;
        int32_t errCode;
        const char *answer;
    };
    // clang-format off
    const Case cases[] = {
        {kSimple, AT_RET_OK, "", 0, AT_ERRID_OK, ""},
        {kSimple, AT_RET_CME_ERROR, "+CME ERROR: 10", -1, AT_RET_CME_ERROR, ""},
        {kSecret, AT_RET_CMS_ERROR, "+CMS ERROR: 310", -1, AT_RET_CMS_ERROR, ""},
        {kSimple, AT_RET_ERROR, "ERROR", -1, kUntouched, ""},
        {kSecret, AT_RET_ABORTED, "AT_ABORTED", -1, AT_ERRID_ABORTED, ""},
        {kSimple, 9, "", -1, kUntouched, ""},
        {kSingle, AT_RET_OK, "+CGMI: Atsim", 0, AT_ERRID_OK, " Atsim"},
        {kSingle, AT_RET_CME_ERROR, "+CME ERROR: 10", -1, 13, ""},
        {kSingle, AT_RET_CMS_ERROR, "+CMS ERROR: 311", -1, 11, ""},
        {kSingle, AT_RET_ABORTED, "AT_ABORTED", -1, kUntouched, ""},
        {kMulti, AT_RET_OK, kCgdcontReply, 0, AT_ERRID_OK, "2"},
        {kMulti, AT_RET_CME_ERROR, "+CME ERROR: SIM busy", 3, 314, "4"},
        {kMulti, AT_RET_CMS_ERROR, "+CMS ERROR: 316", 4, 12, "4"},
        {kMulti, AT_RET_ABORTED, "AT_ABORTED", -1, kUntouched, "4"},
        {kList, AT_RET_OK, "+CPIN: READY", 0, AT_ERRID_OK, "READY"},
        {kList, AT_RET_OK, "^SIMST: 1,0", -1, AT_ERRID_OK, ""},
        {kList, AT_RET_CME_ERROR, "+CME ERROR: 16", 3, -3, ""},
        {kList, AT_RET_ERROR, "ERROR", 5, AT_ERRID_UNMAPPED, ""},
        {kList, AT_RET_ABORTED, "AT_ABORTED", 14, AT_ERRID_UNMAPPED, ""},
        {kNetwork, AT_RET_OK, kCgdcontReply, 0, AT_ERRID_OK, "2"},
        {kNetwork, AT_RET_OK, "^SIMST: 1,0", -1, kUntouched, "0"},
        {kNetwork, AT_RET_CME_ERROR, "+CME ERROR: 30", 3, 30, "0"},
        {kNetwork, AT_RET_ERROR, "ERROR", -1, kUntouched, "0"},
        {kNetwork, AT_RET_ABORTED, "AT_ABORTED", 14, AT_ERRID_ABORTED, "0"},
    };
    // clang-format on
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << kPrimitiveNames[c.primitive] << " " << c.text);
        Served served(c.retVal, c.text);
        int32_t errCode = kUntouched;
        std::string answer;
        EXPECT_EQ(Call(c.primitive, &errCode, &answer), c.result);
        EXPECT_EQ(errCode, c.errCode);
        EXPECT_EQ(answer, c.answer);
        const auto requests = served.server.Requests();
        const AtSrvMsg sent = SentBy(c.primitive);
        ASSERT_EQ(requests.size(), 1u);
        EXPECT_EQ(std::memcmp(&requests[0], &sent, sizeof sent), 0) << "the record on the wire";
    }
}

TEST(SendPrimitives, SingleStringAnswer) {
    struct Case {
        const char *reply;
        const char *prefix;
        int32_t outSize;
        int32_t result;
        const char *answer;
    };
    // clang-format off
    const Case cases[] = {
        {"+CIMI: 460001234567890", "+CIMI", 32, 0, " 460001234567890"},  // callers trim the blank
        {"\n\n+CGSN: 861234\n", "+CGSN", 32, 0, " 861234"},
        {"Atsim Modems", nullptr, 32, 0, "Atsim Modems"},
        {"460001234567890", "+CIMI", 32, -1, ""},
        {"+CIMI: 460001234567890", "+CIMI", 6, -1, " 4600"},
        {"+CIMI: 1", "+CIMI", 0, -1, ""},
    };
    // clang-format on
    for (const Case &c : cases) {
        SCOPED_TRACE(c.reply);
        Served served(AT_RET_OK, c.reply);
        char out[32] = {};
        EXPECT_EQ(AtSendAndGetSingleStrRsp("AT+CIMI", c.prefix, out, c.outSize, nullptr), c.result);
        EXPECT_STREQ(out, c.answer);
    }
}

// Lines are cut where the prefix starts a line, up to the caller's capacity.
TEST(SendPrimitives, MultiLineSplitting) {
    const std::string first = "+CGDCONT: 1,\"IP\",\"internet\",\"10.0.0.2\",0,0\r\n";
    const std::string second = "+CGDCONT: 2,\"IPV4V6\",\"ims\",\"\",0,0";
    struct Case {
        const char *prefix;
        int32_t capacity;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"+CGDCONT", 4, {first, second}}, {"+CGDCONT", 1, {first}}, {nullptr, 4, {}}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.capacity);
        Served served(AT_RET_OK, kCgdcontReply);
        const char *const desc[2] = {"AT+CGDCONT?", c.prefix};
        char *lines[4] = {};
        int32_t count = c.capacity;
        ASSERT_EQ(AtSendMultiCmd(desc, lines, &count, nullptr, 30), 0);
        EXPECT_EQ(std::vector<std::string>(lines, lines + count), c.lines);
        ReleaseSubstring(lines, count);
    }
}

TEST(SendPrimitives, ArgumentChecksFailBeforeSending) {
    char out[8];
    char *lines[2];
    int32_t count = 2;
    AtParamDesc params[1] = {{"code", AT_TYPE_STRING, out, sizeof out, 0, 0}};
    const AtCmdDesc good = {"AT+CPIN?", "+CPIN", "+CPIN", 0, 2};
    const AtCmdDesc noCmd = {nullptr, "+CPIN", "+CPIN", 0, 2};
    const char *const nullCmd[2] = {nullptr, "+CPIN"};
    const char *const okDesc[2] = {"AT+CPIN?", "+CPIN"};
    AtCmdParseNode *rows = nullptr;
    const std::string tooLong(AT_CMD_STR_LEN, 'A');
    const std::string longPrefix(AT_NAME_LEN, 'P');
    Served served;
    const int32_t results[] = {
        AtSendSimpleCmd(nullptr, nullptr, nullptr),
        AtSendSimpleCmd(tooLong.c_str(), nullptr, nullptr),
        AtSendSimpleCmd("AT", longPrefix.c_str(), nullptr),
        AtSendAndGetSingleStrRsp(nullptr, "+CPIN", out, sizeof out, nullptr),
        AtSendAndGetSingleStrRsp("AT+CPIN?", "+CPIN", nullptr, 8, nullptr),
        AtSendMultiCmd(nullCmd, lines, &count, nullptr, 30),
        AtSendMultiCmd(okDesc, nullptr, &count, nullptr, 30),
        AtSendAndGetListRsp(&good, params, 0, nullptr),
        AtSendAndGetListRsp(&good, params, 257, nullptr),
        AtSendAndGetListRsp(&good, nullptr, 1, nullptr),
        AtSendAndGetListRsp(&noCmd, params, 1, nullptr),
        AtNetworkSendMultiCmd(nullptr, &rows, nullptr, 30),
        AtNetworkSendMultiCmd(&noCmd, &rows, nullptr, 30),
    };
    for (size_t i = 0; i < std::size(results); ++i) EXPECT_EQ(results[i], -1) << "call #" << i;
    EXPECT_TRUE(served.server.Requests().empty());
}

}  // namespace
}  // namespace atapi::test
