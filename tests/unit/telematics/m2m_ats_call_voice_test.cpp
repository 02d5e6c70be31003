// Voice path settings against the scripted modem: the line per cmdType, the
// value or record read back, errorId per reply class (-3 when nothing
// completed) and the refusals that send nothing.

#include "atapi/m2m_ats_call.h"
#include "command_cases.h"

namespace atapi::test {
namespace {

constexpr int32_t kCme10 = 13;  // id of "+CME ERROR: 10"
constexpr int32_t kCms316 = 12;
constexpr int32_t kPending = AT_ERRID_NOT_COMPLETED;

template <typename Record>
auto ErrorId(int32_t id) {
    return [id](Record &r) { r.errorId = id; };
}

// clang-format off
TEST(M2mAtsCallVoice, AutoAnswerAndMute) {
    const auto with = [](int32_t (*fn)(int32_t, int32_t *), int32_t cmdType) {
        return [fn, cmdType](int32_t &v) { return fn(cmdType, &v); };
    };
    const auto becomes = [](int32_t value) { return [value](int32_t &v) { v = value; }; };
    RunCommandCases<int32_t>({
        {"S0 query reads the whole reply", with(AtsS0, 0), {Ok("ATS0?", "003")}, 0, becomes(3)},
        {"S0 query without text", with(AtsS0, 0), {Ok("ATS0?", "")}, -1},
        {"S0 set", with(AtsS0, 1), {Ok("ATS0=7").Prefix("")}, 0},
        {"S0 unknown cmdType", with(AtsS0, 2), {}, -1},
        {"CMUT query", with(AtsCmut, 0), {Ok("AT+CMUT?", "+CMUT: 1").Prefix("")}, 0, becomes(1)},
        {"CMUT query without the prefix keeps the value", with(AtsCmut, 0), {Ok("AT+CMUT?", "")}, 0},
        {"CMUT set refused", with(AtsCmut, 1), {Fails("AT+CMUT=7", AT_RET_CME_ERROR, "+CME ERROR: 3")}, -1},
        {"SMUT query", with(AtsSmut, 0), {Ok("AT^SMUT?", "^SMUT: 0")}, 0, becomes(0)},
        {"SMUT set, exchange failed", with(AtsSmut, 1), {ExchangeFails("AT^SMUT=7")}, -1},
    }, int32_t{7});
    EXPECT_EQ(AtsS0(0, nullptr), -1);
    EXPECT_EQ(AtsCmut(0, nullptr), -1);
    EXPECT_EQ(AtsSmut(1, nullptr), -1);
}

TEST(M2mAtsCallVoice, Switches) {
    using R = AtSwitchModeInfo;
    const auto ns = [](int32_t cmdType) { return [cmdType](R &r) { return AtsNsSwitch(cmdType, &r); }; };
    const auto echo = [](int32_t cmdType) { return [cmdType](R &r) { return AtEchoSwitch(cmdType, &r); }; };
    const auto read = [](int32_t mode) { return [mode](R &r) { r = {mode, AT_ERRID_OK}; }; };
    RunCommandCases<R>({
        {"NS query", ns(0), {Ok("AT^NSSWITCH?", "^NSSWITCH: 0").Prefix("^NSSWITCH:").Timeout(30)}, 0, read(0)},
        {"NS query without a row", ns(0), {Ok("AT^NSSWITCH?", "")}, -1, ErrorId<R>(kPending)},
        {"NS query, exchange failed", ns(0), {ExchangeFails("AT^NSSWITCH?")}, -1, ErrorId<R>(kPending)},
        {"NS set", ns(1), {Ok("AT^NSSWITCH=1").Prefix("^NSSWITCH:")}, 0, read(1)},
        {"NS set +CME ERROR", ns(1), {Fails("AT^NSSWITCH=1", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1, ErrorId<R>(kCme10)},
        {"NS set ERROR", ns(1), {Fails("AT^NSSWITCH=1", AT_RET_ERROR, "ERROR")}, -1, ErrorId<R>(kPending)},
        {"NS unknown cmdType", ns(3), {}, -1, ErrorId<R>(kPending)},
        {"echo query", echo(0), {Ok("AT^ECHOSWITCH?", "^ECHOSWITCH: 0").Prefix("")}, 0, read(0)},
        {"echo query +CMS ERROR", echo(0), {Fails("AT^ECHOSWITCH?", AT_RET_CMS_ERROR, "+CMS ERROR: 316")}, -1, ErrorId<R>(kCms316)},
        {"echo set, exchange failed", echo(1), {ExchangeFails("AT^ECHOSWITCH=1")}, -1, ErrorId<R>(kPending)},
    }, R{1, 0});
    EXPECT_EQ(AtsNsSwitch(0, nullptr), -1);
    EXPECT_EQ(AtEchoSwitch(1, nullptr), -1);
}

TEST(M2mAtsCallVoice, EchoParameters) {
    using R = AtEchoExParam;
    const auto echo = [](int32_t cmdType) { return [cmdType](R &r) { return AtsEchoEx(cmdType, &r); }; };
    RunCommandCases<R>({
        {"query", echo(0), {Ok("AT^ECHOEX?", "^ECHOEX: 1,20,30,4,5").Prefix("^ECHOEX:")}, 0,
         [](R &r) { r = {1, 20, 30, 4, 5, AT_ERRID_OK}; }},
        {"set in record order", echo(1), {Ok("AT^ECHOEX=1,2,3,4,5").Prefix("^ECHOEX:")}, 0, ErrorId<R>(AT_ERRID_OK)},
        {"set +CME ERROR", echo(1), {Fails("AT^ECHOEX=1,2,3,4,5", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1, ErrorId<R>(kCme10)},
        {"query aborted", echo(0), {Fails("AT^ECHOEX?", AT_RET_ABORTED, "AT_ABORTED")}, -1, ErrorId<R>(kPending)},
    }, R{1, 2, 3, 4, 5, 0});
}

TEST(M2mAtsCallVoice, DtmfAndDeltaTable) {
    using R = AtDtmfParam;
    const auto dtmf = [](R &r) { return AtDtmf(&r); };
    RunCommandCases<R>({
        {"tone", dtmf, {Ok("AT+VTS=#,300")}, 0, ErrorId<R>(AT_ERRID_OK)},
        {"+CME ERROR still returns 0", dtmf, {Fails("AT+VTS=#,300", AT_RET_CME_ERROR, "+CME ERROR: 10")}, 0, ErrorId<R>(kCme10)},
        {"+CMS ERROR is not mapped", dtmf, {Fails("AT+VTS=#,300", AT_RET_CMS_ERROR, "+CMS ERROR: 316")}, -1, ErrorId<R>(kPending)},
    }, R{'#', 300, 0});
    EXPECT_EQ(AtDtmf(nullptr), -1);

    struct NoRecord {
        char unused;
    };
    RunCommandCases<NoRecord>({
        {"delta table", [](NoRecord &) { return AtDeltaSet("1,2,3"); }, {Ok("AT^DELTASET=\"1,2,3\"")}, 0},
        {"delta table, exchange failed", [](NoRecord &) { return AtDeltaSet("1"); }, {ExchangeFails("AT^DELTASET=\"1\"")}, -1},
        {"no delta table", [](NoRecord &) { return AtDeltaSet(nullptr); }, {}, -1},
    }, NoRecord{0});
}

TEST(M2mAtsCallVoice, PcmInterface) {
    using R = AtCpcmParam;
    const auto cpcm = [](int32_t cmdType) { return [cmdType](R &r) { return AtCpcm(cmdType, &r); }; };
    RunCommandCases<R>({
        {"check", cpcm(0), {Ok("AT^CPCM?", "^CPCM: 0,1,2,3,4").Prefix("^CPCM:")}, 0,
         [](R &r) { r = {0, 1, 2, 3, 4, AT_ERRID_OK}; }},
        {"check +CME ERROR", cpcm(0), {Fails("AT^CPCM?", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1, ErrorId<R>(kCme10)},
        {"check +CMS ERROR is not mapped", cpcm(0), {Fails("AT^CPCM?", AT_RET_CMS_ERROR, "+CMS ERROR: 316")}, -1, ErrorId<R>(kPending)},
        {"execute", cpcm(1), {Ok("AT^CPCM=5,6,7,8,9").Prefix("^CPCM:")}, 0, ErrorId<R>(AT_ERRID_OK)},
        {"execute ERROR", cpcm(1), {Fails("AT^CPCM=5,6,7,8,9", AT_RET_ERROR, "ERROR")}, -1, ErrorId<R>(kPending)},
        {"unknown cmdType", cpcm(2), {}, -1},
    }, R{5, 6, 7, 8, 9, 0});
    EXPECT_EQ(AtCpcm(0, nullptr), -1);
    EXPECT_EQ(AtCpcmCheck(nullptr), -1);
    EXPECT_EQ(AtCpcmExecute(nullptr), -1);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
