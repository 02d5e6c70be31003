// The send primitives against the in-process fake AT server: what goes on
// the wire, how each result class and error text comes back, and which
// argument checks fail before anything is sent.

#include <sys/syscall.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "atapi/at_parse.h"
#include "atapi/at_send.h"
#include "fake_at_server.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"

namespace atapi::test {
namespace {

constexpr int32_t kUntouched = 777;

constexpr char kCgdcontReply[] =
    "+CGDCONT: 1,\"IP\",\"internet\",\"10.0.0.2\",0,0\r\n"
    "+CGDCONT: 2,\"IPV4V6\",\"ims\",\"\",0,0";

class SendPrimitives : public ::testing::Test {
protected:
    void Answer(int32_t retVal, const std::string &text) { server_.Script({{"", {retVal, text}}}); }
    AtSrvMsg OnlyRequest() const {
        const auto requests = server_.Requests();
        EXPECT_EQ(requests.size(), 1u);
        return requests.empty() ? AtSrvMsg{} : requests.front();
    }

    IsolatedRuntime runtime_;
    FakeAtServer server_{runtime_};
};

TEST(SendPrimitiveCases, RecordFieldsOnTheWire) {
    struct Case {
        const char *name;
        int (*send)();
        const char *cmd;
        const char *atName;
        uint32_t multiRsp;
        int32_t timeoutSec;
    };
    const Case cases[] = {
        {"simple", [] { return AtSendSimpleCmd("AT+CFUN=1", "+CFUN", nullptr); }, "AT+CFUN=1",
         "+CFUN", 0, 30},
        {"simple timeout",
         [] { return AtSendSimpleCmdSpecialTimeout("AT+CFUN?", nullptr, nullptr, 7); }, "AT+CFUN?",
         "", 0, 7},
        {"secret",
         [] { return AtSendSimpleSecCmd("AT+CPIN=\"1234\"", "+CPIN", nullptr, 12); },
         "AT+CPIN=\"1234\"", "+CPIN", 0, 12},
        {"multi",
         [] {
             const char *const desc[2] = {"AT+CGDCONT?", "+CGDCONT"};
             char *lines[4] = {};
             int32_t count = 4;
             const int r = AtSendMultiCmd(desc, lines, &count, nullptr, 9);
             ReleaseSubstring(lines, count);
             return r;
         },
         "AT+CGDCONT?", "+CGDCONT", 1, 9},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        FakeAtServer server(runtime);
        EXPECT_EQ(c.send(), 0);
        const auto requests = server.Requests();
        ASSERT_EQ(requests.size(), 1u);
        const AtSrvMsg &m = requests.front();
        EXPECT_EQ(m.mtype, static_cast<int32_t>(syscall(SYS_gettid)));
        EXPECT_EQ(m.reqType, 0u);
        EXPECT_EQ(m.reserved1, 0u);
        EXPECT_EQ(m.reserved2, 0u);
        EXPECT_EQ(m.multiRsp, c.multiRsp);
        EXPECT_EQ(m.timeoutSec, c.timeoutSec);
        EXPECT_STREQ(m.sndRcvMsg.sMsg.atCmdStr, c.cmd);
        EXPECT_STREQ(m.sndRcvMsg.sMsg.atName, c.atName);
    }
}

// Every primitive against every class of reply: the return value and the
// error id differ between primitives on purpose.
TEST(SendPrimitiveCases, ResultClassesPerPrimitive) {
    enum Primitive { kSimple, kSingle, kMulti, kList, kNetwork };
    struct Case {
        Primitive primitive;
        int32_t retVal;
        const char *text;
        int32_t result;
        int32_t errCode;
    };
    const Case cases[] = {
        {kSimple, AT_RET_OK, "", 0, AT_ERRID_OK},
        {kSimple, AT_RET_CME_ERROR, "+CME ERROR: 10", -1, 3},
        {kSimple, AT_RET_CMS_ERROR, "+CMS ERROR: 310", -1, 4},
        {kSimple, AT_RET_ERROR, "ERROR", -1, kUntouched},
        {kSimple, AT_RET_ABORTED, "AT_ABORTED", -1, AT_ERRID_ABORTED},
        {kSimple, 9, "", -1, kUntouched},
        {kSingle, AT_RET_OK, "+CGMI: Atsim", 0, AT_ERRID_OK},
        {kSingle, AT_RET_CME_ERROR, "+CME ERROR: 10", -1, 13},
        {kSingle, AT_RET_CMS_ERROR, "+CMS ERROR: 311", -1, 11},
        {kSingle, AT_RET_ERROR, "ERROR", -1, kUntouched},
        {kSingle, AT_RET_ABORTED, "AT_ABORTED", -1, kUntouched},
        {kMulti, AT_RET_OK, kCgdcontReply, 0, AT_ERRID_OK},
        {kMulti, AT_RET_CME_ERROR, "+CME ERROR: SIM busy", 3, 314},
        {kMulti, AT_RET_CMS_ERROR, "+CMS ERROR: 316", 4, 12},
        {kMulti, AT_RET_ERROR, "ERROR", -1, kUntouched},
        {kMulti, AT_RET_ABORTED, "AT_ABORTED", -1, kUntouched},
        {kList, AT_RET_OK, "+CPIN: READY", 0, AT_ERRID_OK},
        {kList, AT_RET_CME_ERROR, "+CME ERROR: 16", 3, -3},
        {kList, AT_RET_ERROR, "ERROR", 5, AT_ERRID_UNMAPPED},
        {kList, AT_RET_ABORTED, "AT_ABORTED", 14, AT_ERRID_UNMAPPED},
        {kNetwork, AT_RET_OK, kCgdcontReply, 0, AT_ERRID_OK},
        {kNetwork, AT_RET_CME_ERROR, "+CME ERROR: 30", 3, 30},
        {kNetwork, AT_RET_ERROR, "ERROR", -1, kUntouched},
        {kNetwork, AT_RET_ABORTED, "AT_ABORTED", 14, AT_ERRID_ABORTED},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "primitive " << c.primitive << " retVal " << c.retVal);
        IsolatedRuntime runtime;
        FakeAtServer server(runtime);
        server.Script({{"", {c.retVal, c.text}}});
        int32_t errCode = kUntouched;
        int32_t result = 0;
        switch (c.primitive) {
            case kSimple:
                result = AtSendSimpleCmd("AT+CFUN=1", nullptr, &errCode);
                break;
            case kSingle: {
                char out[64] = {};
                result = AtSendAndGetSingleStrRsp("AT+CGMI", "+CGMI", out, sizeof out, &errCode);
                break;
            }
            case kMulti: {
                const char *const desc[2] = {"AT+CGDCONT?", "+CGDCONT"};
                char *lines[4] = {};
                int32_t count = 4;
                result = AtSendMultiCmd(desc, lines, &count, &errCode, 30);
                ReleaseSubstring(lines, count);
                break;
            }
            case kList: {
                char code[16] = {};
                AtParamDesc params[] = {{"code", AT_TYPE_STRING, code, sizeof code, 0, 0}};
                const AtCmdDesc desc = {"AT+CPIN?", "+CPIN", "+CPIN", AT_PARSE_QUERY, 2};
                result = AtSendAndGetListRsp(&desc, params, 1, &errCode);
                if (c.retVal == AT_RET_OK) {
                    EXPECT_STREQ(code, "READY");
                }
                break;
            }
            case kNetwork: {
                AtCmdParseNode *rows = nullptr;
                const AtCmdDesc desc = {"AT+CGDCONT?", "+CGDCONT", "+CGDCONT", AT_PARSE_QUERY, 25};
                result = AtNetworkSendMultiCmd(&desc, &rows, &errCode, 30);
                if (c.retVal == AT_RET_OK) {
                    ASSERT_NE(rows, nullptr);
                    ASSERT_NE(rows->nextRow, nullptr);
                    EXPECT_STREQ(rows->nextRow->atFieldValue, "2");
                }
                FreeAtCmd(rows);
                break;
            }
        }
        EXPECT_EQ(result, c.result);
        EXPECT_EQ(errCode, c.errCode);
    }
}

TEST(SendPrimitiveCases, SingleStringAnswer) {
    struct Case {
        const char *reply;
        const char *prefix;
        int32_t outSize;
        int32_t result;
        const char *answer;
    };
    const Case cases[] = {
        // The blank behind the ':' stays; callers trim it.
        {"+CIMI: 460001234567890", "+CIMI", 32, 0, " 460001234567890"},
        {"\n\n+CGSN: 861234\n", "+CGSN", 32, 0, " 861234"},
        {"Atsim Modems", nullptr, 32, 0, "Atsim Modems"},
        {"Atsim Modems", "", 32, 0, "Atsim Modems"},
        {"460001234567890", "+CIMI", 32, -1, ""},
        {"+CIMI: 460001234567890", "+CIMI", 6, -1, " 4600"},
        {"+CIMI: 1", "+CIMI", 0, -1, ""},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.reply);
        IsolatedRuntime runtime;
        FakeAtServer server(runtime);
        server.Script({{"AT+CIMI", {AT_RET_OK, c.reply}}});
        char out[32] = {};
        int32_t errCode = kUntouched;
        EXPECT_EQ(AtSendAndGetSingleStrRsp("AT+CIMI", c.prefix, out, c.outSize, &errCode), c.result);
        EXPECT_STREQ(out, c.answer);
        EXPECT_EQ(errCode, AT_ERRID_OK);
    }
}

TEST(SendPrimitiveCases, MultiLineSplitting) {
    struct Case {
        const char *prefix;
        int32_t capacity;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"+CGDCONT", 4,
         {"+CGDCONT: 1,\"IP\",\"internet\",\"10.0.0.2\",0,0\r\n",
          "+CGDCONT: 2,\"IPV4V6\",\"ims\",\"\",0,0"}},
        {"+CGDCONT", 1, {"+CGDCONT: 1,\"IP\",\"internet\",\"10.0.0.2\",0,0\r\n"}},
        {nullptr, 4, {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.capacity);
        IsolatedRuntime runtime;
        FakeAtServer server(runtime);
        server.Script({{"AT+CGDCONT?", {AT_RET_OK, kCgdcontReply}}});
        const char *const desc[2] = {"AT+CGDCONT?", c.prefix};
        char *lines[4] = {};
        int32_t count = c.capacity;
        int32_t errCode = kUntouched;
        ASSERT_EQ(AtSendMultiCmd(desc, lines, &count, &errCode, 30), 0);
        EXPECT_EQ(errCode, AT_ERRID_OK);
        ASSERT_EQ(count, static_cast<int32_t>(c.lines.size()));
        for (int32_t i = 0; i < count; ++i) EXPECT_EQ(lines[i], c.lines[i]);
        ReleaseSubstring(lines, count);
    }
}

TEST_F(SendPrimitives, ListFillsCallerRecordFromFirstRow) {
    Answer(AT_RET_OK, "^CPIN: SIM PIN,3,10,3,10,3\r\n^CPIN: READY,0,0,0,0,0");
    char code[16] = {};
    int32_t times = -1;
    uint8_t pukTimes = 0;
    AtParamDesc params[] = {
        {"code", AT_TYPE_STRING, code, sizeof code, 0, 0},
        {"times", AT_TYPE_INT, &times, 0, 0, 10},
        {"puk_times", AT_TYPE_UCHAR, &pukTimes, 0, 0, 10},
    };
    const AtCmdDesc desc = {"AT^CPIN?", "^CPIN", "^CPIN", AT_PARSE_QUERY, 2};
    int32_t errCode = kUntouched;
    EXPECT_EQ(AtSendAndGetListRspSpecialTimeout(&desc, params, 3, &errCode, 5), 0);
    EXPECT_EQ(errCode, AT_ERRID_OK);
    EXPECT_STREQ(code, "SIM PIN");
    EXPECT_EQ(times, 3);
    EXPECT_EQ(pukTimes, 10);
    EXPECT_EQ(OnlyRequest().timeoutSec, 5);
}

TEST_F(SendPrimitives, ParseFailuresOfOkReplies) {
    // The reply carries no "+CPIN" rows: the list call fails, errCode says OK.
    server_.Script({{"", {AT_RET_OK, "^SIMST: 1,0"}}, {"", {AT_RET_OK, "^SIMST: 1,0"}}});
    char code[16] = {};
    AtParamDesc params[] = {{"code", AT_TYPE_STRING, code, sizeof code, 0, 0}};
    const AtCmdDesc desc = {"AT+CPIN?", "+CPIN", "+CPIN", AT_PARSE_QUERY, 2};
    int32_t errCode = kUntouched;
    EXPECT_EQ(AtSendAndGetListRsp(&desc, params, 1, &errCode), -1);
    EXPECT_EQ(errCode, AT_ERRID_OK);

    AtCmdParseNode *rows = nullptr;
    errCode = kUntouched;
    EXPECT_EQ(AtNetworkSendMultiCmd(&desc, &rows, &errCode, 30), -1);
    EXPECT_EQ(rows, nullptr);
    EXPECT_EQ(errCode, kUntouched);
}

TEST_F(SendPrimitives, ArgumentChecksFailBeforeSending) {
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
    const int32_t results[] = {
        AtSendSimpleCmd(nullptr, nullptr, nullptr),
        AtSendSimpleSecCmd(nullptr, nullptr, nullptr, 30),
        AtSendSimpleCmd(tooLong.c_str(), nullptr, nullptr),
        AtSendSimpleCmd("AT", longPrefix.c_str(), nullptr),
        AtSendAndGetSingleStrRsp(nullptr, "+CPIN", out, sizeof out, nullptr),
        AtSendAndGetSingleStrRsp("AT+CPIN?", "+CPIN", nullptr, 8, nullptr),
        AtSendAndGetSingleStrRspSpecialTimeout(nullptr, out, sizeof out, nullptr, 30),
        AtSendMultiCmd(nullCmd, lines, &count, nullptr, 30),
        AtSendMultiCmd(okDesc, nullptr, &count, nullptr, 30),
        AtSendMultiCmd(okDesc, lines, nullptr, nullptr, 30),
        AtSendAndGetListRsp(&good, params, 0, nullptr),
        AtSendAndGetListRsp(&good, params, 257, nullptr),
        AtSendAndGetListRsp(&good, nullptr, 1, nullptr),
        AtSendAndGetListRsp(&noCmd, params, 1, nullptr),
        AtSendAndGetListRsp(nullptr, params, 1, nullptr),
        AtNetworkSendMultiCmd(nullptr, &rows, nullptr, 30),
        AtNetworkSendMultiCmd(&good, nullptr, nullptr, 30),
        AtNetworkSendMultiCmd(&noCmd, &rows, nullptr, 30),
        AtInitCommonMsgHandler(nullptr, "AT", nullptr, 0, 30),
    };
    for (size_t i = 0; i < sizeof results / sizeof results[0]; ++i) {
        EXPECT_EQ(results[i], -1) << "call #" << i;
    }
    EXPECT_TRUE(server_.Requests().empty());
}

TEST(SendPrimitivesNoServer, InitFillsHeaderAndZeroesTheRest) {
    AtSrvMsg msg;
    std::memset(&msg, 0xA5, sizeof msg);
    ASSERT_EQ(AtInitCommonMsgHandler(&msg, "AT+CSQ", "+CSQ", 1, 12), 0);
    EXPECT_EQ(msg.mtype, static_cast<int32_t>(syscall(SYS_gettid)));
    EXPECT_EQ(msg.multiRsp, 1u);
    EXPECT_EQ(msg.timeoutSec, 12);
    EXPECT_EQ(msg.seq, 0u);
    EXPECT_EQ(msg.reserved3, 0u);
    EXPECT_STREQ(msg.sndRcvMsg.sMsg.atName, "+CSQ");
    EXPECT_STREQ(msg.sndRcvMsg.sMsg.atCmdStr, "AT+CSQ");
    // Nothing of the old content survives behind the strings.
    const auto *bytes = reinterpret_cast<const unsigned char *>(&msg.sndRcvMsg.sMsg.atCmdStr);
    for (size_t i = sizeof "AT+CSQ"; i < AT_CMD_STR_LEN; ++i) ASSERT_EQ(bytes[i], 0) << i;
}

}  // namespace
}  // namespace atapi::test
