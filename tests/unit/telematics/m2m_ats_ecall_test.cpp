// eCall against the scripted modem: the line per command (the start line
// in command order, not record order), the mode range that only the query
// checks, the IMS configuration read back, the MSD at the line's limit, and
// errorId that only an OK reply touches.

#include <string>

#include "atapi/m2m_ats_call.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

struct NoRecord {
    char unused;
};

constexpr char kMsd[] = "0123ABCD";

// clang-format off
TEST(M2mAtsEcall, Mode) {
    const auto mode = [](int32_t cmdType) { return [cmdType](int32_t &m) { return AtEclMode(cmdType, &m); }; };
    RunCommandCases<int32_t>(Cases<int32_t>{
        {"query 2", mode(0), {Ok("AT^ECLMODE?", "^ECLMODE: 2").Prefix("^ECLMODE:").Timeout(30)}, 0, [](int32_t &m) { m = 2; }},
        {"query 3 is refused", mode(0), {Ok("AT^ECLMODE?", "^ECLMODE: 3")}, -1},
        {"query -1 is refused", mode(0), {Ok("AT^ECLMODE?", "^ECLMODE: -1")}, -1},
        {"query without a row", mode(0), {Ok("AT^ECLMODE?", "")}, -1},
        {"set takes any value", mode(1), {Ok("AT^ECLMODE=7").Prefix("")}, 0},
        {"unknown cmdType", mode(2), {}, -1},
    } + ErrorCases<int32_t>("query", mode(0), "AT^ECLMODE?", kFails) + ErrorCases<int32_t>("set", mode(1), "AT^ECLMODE=7", kFails), int32_t{7});
    EXPECT_EQ(AtEclMode(0, nullptr), -1);
}

TEST(M2mAtsEcall, ImsConfiguration) {
    using R = AtsEclImsCfgInfo;
    const auto ims = [](int32_t cmdType) { return [cmdType](R &r) { return AtsEclImsCfg(cmdType, &r); }; };
    R preset = Filled<R>(0x5A);
    preset.modeType = 1;
    SetText(preset.contentType, "application/emergencyCallData.eCall.MSD");
    RunCommandCases<R>(Cases<R>{
        {"set with the content type", ims(1), {Ok("AT^ECLIMSCFG=1,\"application/emergencyCallData.eCall.MSD\"")}, 0},
        {"set mode 0 leaves the content type out", [](R &r) { r.modeType = 0; return AtsEclImsCfg(1, &r); },
         {Ok("AT^ECLIMSCFG=0")}, 0, [](R &r) { r.modeType = 0; }},
        {"query", ims(0), {Ok("AT^ECLIMSCFG?", "^ECLIMSCFG: 0,\"text/plain\"").Prefix("")}, 0,
         [](R &r) { r.modeType = 0; SetText(r.contentType, "text/plain"); }},
        {"query without a content type", ims(0), {Ok("AT^ECLIMSCFG?", "^ECLIMSCFG: 2")}, 0, [](R &r) { r.modeType = 2; }},
        {"a content type of 64 characters fails", ims(0), {Ok("AT^ECLIMSCFG?", "^ECLIMSCFG: 0," + std::string(64, 'a'))}, -1,
         [](R &r) { r.modeType = 0; r.contentType[0] = '\0'; }},
        {"unknown cmdType", ims(2), {}, -1},
    } + ErrorCases<R>("query", ims(0), "AT^ECLIMSCFG?", kFails)
      + ErrorCases<R>("set", ims(1), "AT^ECLIMSCFG=1,\"application/emergencyCallData.eCall.MSD\"", kFails), preset);
    EXPECT_EQ(AtsEclImsCfg(0, nullptr), -1);
}

TEST(M2mAtsEcall, MsdConfigurationAndStart) {
    // An MSD that fills the line to 1539 characters, and one more.
    static const std::string kLongest(AT_CMD_STR_LEN - 1 - 12, 'A');
    static const std::string kTooLong(kLongest + "A");
    const auto msd = [](const std::string *text) {
        return [text](AtsEclMsdInfo &r) {
            if (text != nullptr) r.msd = text->c_str();
            const int32_t ret = AtsEclMsd(&r);
            r.msd = kMsd;
            return ret;
        };
    };
    const auto ok = [](AtsEclMsdInfo &r) { r.errorId = AT_ERRID_OK; };
    RunCommandCases<AtsEclMsdInfo>(Cases<AtsEclMsdInfo>{
        {"MSD", msd(nullptr), {Ok("AT^ECLMSD=\"0123ABCD\"").Prefix("")}, 0, ok},
        {"the longest MSD", msd(&kLongest), {Ok("AT^ECLMSD=\"" + kLongest + "\"")}, 0, ok},
        {"an MSD one longer is not sent", msd(&kTooLong), {}, -1},
    } + ErrorCases<AtsEclMsdInfo>("MSD", msd(nullptr), "AT^ECLMSD=\"0123ABCD\"", kFails), AtsEclMsdInfo{kMsd, 0});
    AtsEclMsdInfo noMsd{nullptr, 0};
    EXPECT_EQ(AtsEclMsd(&noMsd), -1);
    EXPECT_EQ(AtsEclMsd(nullptr), -1);

    const auto cfg = [](AtsEclCfgInfo &r) { return AtsEclCfg(&r); };
    RunCommandCases<AtsEclCfgInfo>(Cases<AtsEclCfgInfo>{
        {"configure", cfg, {Ok("AT^ECLCFG=1,2,3")}, 0, [](AtsEclCfgInfo &r) { r.errorId = AT_ERRID_OK; }},
    } + ErrorCases<AtsEclCfgInfo>("configure", cfg, "AT^ECLCFG=1,2,3", kFails), AtsEclCfgInfo{1, 2, 3, 0});

    AtsEclStartInfo start{1, 2, 3, {}, 0};
    SetText(start.number, "112");
    const auto startCall = [](AtsEclStartInfo &r) { return AtsEclStart(&r); };
    RunCommandCases<AtsEclStartInfo>(Cases<AtsEclStartInfo>{
        {"start sends the number third and param4 last", startCall,
         {Ok("AT^ECLSTART=1,2,\"112\",3")}, 0, [](AtsEclStartInfo &r) { r.errorId = AT_ERRID_OK; }},
        {"an unterminated number is not sent", [](AtsEclStartInfo &r) {
             AtsEclStartInfo copy = r;
             std::memset(copy.number, '1', sizeof copy.number);
             return AtsEclStart(&copy);
         }, {}, -1},
    } + ErrorCases<AtsEclStartInfo>("start", startCall, "AT^ECLSTART=1,2,\"112\",3", kFails), start);
    EXPECT_EQ(AtsEclCfg(nullptr), -1);
    EXPECT_EQ(AtsEclStart(nullptr), -1);
}

TEST(M2mAtsEcall, PushStopAbort) {
    const auto call = [](int32_t (*fn)()) { return [fn](NoRecord &) { return fn(); }; };
    RunCommandCases<NoRecord>(Cases<NoRecord>{
        {"push", call(AtsEclPush), {Ok("AT^ECLPUSH").Prefix("").Timeout(30)}, 0},
        {"stop", call(AtsEclStop), {Ok("AT^ECLSTOP")}, 0},
        {"abort", call(AtEcalllAbort), {Ok("AT^ECLABORT")}, 0},
    } + ErrorCases<NoRecord>("push", call(AtsEclPush), "AT^ECLPUSH", kFails) + ErrorCases<NoRecord>("stop", call(AtsEclStop), "AT^ECLSTOP", kFails)
      + ErrorCases<NoRecord>("abort", call(AtEcalllAbort), "AT^ECLABORT", kFails), NoRecord{0});
}
// clang-format on

}  // namespace
}  // namespace atapi::test
