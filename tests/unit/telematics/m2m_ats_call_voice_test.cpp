// Voice path settings against the scripted modem: the line per cmdType, the
// value or record read back, errorId per reply class (-3 when nothing
// completed) and the refusals that send nothing.

#include <string>

#include "atapi/m2m_ats_call.h"
#include "command_cases.h"

namespace atapi::test {
namespace {

constexpr int32_t kCme10 = 13;  // id of "+CME ERROR: 10"
constexpr int32_t kCms316 = 12;

TEST(M2mAtsCallVoice, AutoAnswerAndMute) {
    const auto with = [](int32_t (*fn)(int32_t, int32_t *), int32_t cmdType) {
        return [fn, cmdType](int32_t &v) { return fn(cmdType, &v); };
    };
    const auto becomes = [](int32_t value) { return [value](int32_t &v) { v = value; }; };
    RunCommandCases<int32_t>(
        {
            {"S0 query reads the whole reply", with(AtsS0, 0), {Ok("ATS0?", "003")}, 0, becomes(3)},
            {"S0 query without text", with(AtsS0, 0), {Ok("ATS0?", "")}, -1},
            {"S0 set", with(AtsS0, 1), {Ok("ATS0=7").Prefix("")}, 0},
            {"S0 set refused", with(AtsS0, 1), {Fails("ATS0=7", AT_RET_ERROR, "ERROR")}, -1},
            {"S0 unknown cmdType", with(AtsS0, 2), {}, -1},
            {"CMUT query",
             with(AtsCmut, 0),
             {Ok("AT+CMUT?", "+CMUT: 1").Prefix("")},
             0,
             becomes(1)},
            {"CMUT query without the prefix keeps the value",
             with(AtsCmut, 0),
             {Ok("AT+CMUT?", "")},
             0},
            {"CMUT set refused",
             with(AtsCmut, 1),
             {Fails("AT+CMUT=7", AT_RET_CME_ERROR, "+CME ERROR: 3")},
             -1},
            {"SMUT query", with(AtsSmut, 0), {Ok("AT^SMUT?", "^SMUT: 0")}, 0, becomes(0)},
            {"SMUT set, exchange failed", with(AtsSmut, 1), {ExchangeFails("AT^SMUT=7")}, -1},
        },
        int32_t{7});
    EXPECT_EQ(AtsS0(0, nullptr), -1);
    EXPECT_EQ(AtsCmut(0, nullptr), -1);
    EXPECT_EQ(AtsSmut(1, nullptr), -1);
}

TEST(M2mAtsCallVoice, Switches) {
    const auto ns = [](int32_t cmdType) {
        return [cmdType](AtSwitchModeInfo &r) { return AtsNsSwitch(cmdType, &r); };
    };
    const auto echo = [](int32_t cmdType) {
        return [cmdType](AtSwitchModeInfo &r) { return AtEchoSwitch(cmdType, &r); };
    };
    const auto read = [](int32_t mode) {
        return [mode](AtSwitchModeInfo &r) {
            r.switchMode = mode;
            r.errorId = AT_ERRID_OK;
        };
    };
    const auto errorId = [](int32_t id) { return [id](AtSwitchModeInfo &r) { r.errorId = id; }; };
    AtSwitchModeInfo preset{1, 0};
    RunCommandCases<AtSwitchModeInfo>(
        {
            {"NS query",
             ns(0),
             {Ok("AT^NSSWITCH?", "^NSSWITCH: 0").Prefix("^NSSWITCH:").Timeout(30)},
             0,
             read(0)},
            {"NS query without a row",
             ns(0),
             {Ok("AT^NSSWITCH?", "")},
             -1,
             errorId(AT_ERRID_NOT_COMPLETED)},
            {"NS query, exchange failed",
             ns(0),
             {ExchangeFails("AT^NSSWITCH?")},
             -1,
             errorId(AT_ERRID_NOT_COMPLETED)},
            {"NS set", ns(1), {Ok("AT^NSSWITCH=1").Prefix("^NSSWITCH:")}, 0, read(1)},
            {"NS set +CME ERROR",
             ns(1),
             {Fails("AT^NSSWITCH=1", AT_RET_CME_ERROR, "+CME ERROR: 10")},
             -1,
             errorId(kCme10)},
            {"NS set ERROR",
             ns(1),
             {Fails("AT^NSSWITCH=1", AT_RET_ERROR, "ERROR")},
             -1,
             errorId(AT_ERRID_NOT_COMPLETED)},
            {"NS unknown cmdType", ns(3), {}, -1, errorId(AT_ERRID_NOT_COMPLETED)},
            {"echo query",
             echo(0),
             {Ok("AT^ECHOSWITCH?", "^ECHOSWITCH: 0").Prefix("")},
             0,
             read(0)},
            {"echo query +CMS ERROR",
             echo(0),
             {Fails("AT^ECHOSWITCH?", AT_RET_CMS_ERROR, "+CMS ERROR: 316")},
             -1,
             errorId(kCms316)},
            {"echo set", echo(1), {Ok("AT^ECHOSWITCH=1")}, 0, read(1)},
            {"echo set, exchange failed",
             echo(1),
             {ExchangeFails("AT^ECHOSWITCH=1")},
             -1,
             errorId(AT_ERRID_NOT_COMPLETED)},
        },
        preset);
    EXPECT_EQ(AtsNsSwitch(0, nullptr), -1);
    EXPECT_EQ(AtEchoSwitch(1, nullptr), -1);
}

TEST(M2mAtsCallVoice, EchoParameters) {
    const auto echo = [](int32_t cmdType) {
        return [cmdType](AtEchoExParam &r) { return AtsEchoEx(cmdType, &r); };
    };
    RunCommandCases<AtEchoExParam>(
        {
            {"query",
             echo(0),
             {Ok("AT^ECHOEX?", "^ECHOEX: 1,20,30,4,5").Prefix("^ECHOEX:")},
             0,
             [](AtEchoExParam &r) { r = {1, 20, 30, 4, 5, AT_ERRID_OK}; }},
            {"set in record order",
             echo(1),
             {Ok("AT^ECHOEX=1,2,3,4,5").Prefix("^ECHOEX:")},
             0,
             [](AtEchoExParam &r) { r.errorId = AT_ERRID_OK; }},
            {"set +CME ERROR",
             echo(1),
             {Fails("AT^ECHOEX=1,2,3,4,5", AT_RET_CME_ERROR, "+CME ERROR: 10")},
             -1,
             [](AtEchoExParam &r) { r.errorId = kCme10; }},
            {"query aborted",
             echo(0),
             {Fails("AT^ECHOEX?", AT_RET_ABORTED, "AT_ABORTED")},
             -1,
             [](AtEchoExParam &r) { r.errorId = AT_ERRID_NOT_COMPLETED; }},
        },
        AtEchoExParam{1, 2, 3, 4, 5, 0});
}

TEST(M2mAtsCallVoice, DtmfAndDeltaTable) {
    const auto dtmf = [](AtDtmfParam &r) { return AtDtmf(&r); };
    RunCommandCases<AtDtmfParam>(
        {
            {"tone",
             dtmf,
             {Ok("AT+VTS=#,300")},
             0,
             [](AtDtmfParam &r) { r.errorId = AT_ERRID_OK; }},
            {"+CME ERROR still returns 0",
             dtmf,
             {Fails("AT+VTS=#,300", AT_RET_CME_ERROR, "+CME ERROR: 10")},
             0,
             [](AtDtmfParam &r) { r.errorId = kCme10; }},
            {"+CMS ERROR is not mapped",
             dtmf,
             {Fails("AT+VTS=#,300", AT_RET_CMS_ERROR, "+CMS ERROR: 316")},
             -1,
             [](AtDtmfParam &r) { r.errorId = AT_ERRID_NOT_COMPLETED; }},
        },
        AtDtmfParam{'#', 300, 0});
    EXPECT_EQ(AtDtmf(nullptr), -1);

    struct NoRecord {
        char unused;
    };
    RunCommandCases<NoRecord>(
        {
            {"delta table",
             [](NoRecord &) { return AtDeltaSet("1,2,3"); },
             {Ok("AT^DELTASET=\"1,2,3\"")},
             0},
            {"delta table, exchange failed",
             [](NoRecord &) { return AtDeltaSet("1"); },
             {ExchangeFails("AT^DELTASET=\"1\"")},
             -1},
            {"no delta table", [](NoRecord &) { return AtDeltaSet(nullptr); }, {}, -1},
        },
        NoRecord{0});
}

TEST(M2mAtsCallVoice, PcmInterface) {
    const auto cpcm = [](int32_t cmdType) {
        return [cmdType](AtCpcmParam &r) { return AtCpcm(cmdType, &r); };
    };
    const auto errorId = [](int32_t id) { return [id](AtCpcmParam &r) { r.errorId = id; }; };
    RunCommandCases<AtCpcmParam>(
        {
            {"check",
             cpcm(0),
             {Ok("AT^CPCM?", "^CPCM: 0,1,2,3,4").Prefix("^CPCM:")},
             0,
             [](AtCpcmParam &r) { r = {0, 1, 2, 3, 4, AT_ERRID_OK}; }},
            {"check +CME ERROR",
             cpcm(0),
             {Fails("AT^CPCM?", AT_RET_CME_ERROR, "+CME ERROR: 10")},
             -1,
             errorId(kCme10)},
            {"check +CMS ERROR is not mapped",
             cpcm(0),
             {Fails("AT^CPCM?", AT_RET_CMS_ERROR, "+CMS ERROR: 316")},
             -1,
             errorId(AT_ERRID_NOT_COMPLETED)},
            {"execute",
             cpcm(1),
             {Ok("AT^CPCM=5,6,7,8,9").Prefix("^CPCM:")},
             0,
             errorId(AT_ERRID_OK)},
            {"execute ERROR",
             cpcm(1),
             {Fails("AT^CPCM=5,6,7,8,9", AT_RET_ERROR, "ERROR")},
             -1,
             errorId(AT_ERRID_NOT_COMPLETED)},
            {"unknown cmdType", cpcm(2), {}, -1},
        },
        AtCpcmParam{5, 6, 7, 8, 9, 0});
    EXPECT_EQ(AtCpcm(0, nullptr), -1);
    EXPECT_EQ(AtCpcmCheck(nullptr), -1);
    EXPECT_EQ(AtCpcmExecute(nullptr), -1);
}

}  // namespace
}  // namespace atapi::test
