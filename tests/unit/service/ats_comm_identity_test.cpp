// Device identities, SIM authentication and the download request against
// the scripted modem: the exact line, the text taken from the reply, and
// what each error class leaves behind.

#include "atapi/ats_comm.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;

std::function<void(IdentityText &)> TextIs(const std::string &text) {
    return [text](IdentityText &r) {
        SetText(r.text, text.c_str());
        r.errorId = AT_ERRID_OK;
    };
}

// clang-format off
TEST(AtsCommIdentity, Texts) {
    using R = IdentityText;
    const auto call = [](int32_t (*fn)(R *)) { return [fn](R &r) { return fn(&r); }; };
    Cases<R> cases{
        {"IMSI", call(AtImsi), {Ok("AT+CIMI", "001010123456789").Prefix("").Timeout(30)}, 0, TextIs("001010123456789")},
        {"IMEI", call(AtImei), {Ok("AT+CGSN", "865432010012347")}, 0, TextIs("865432010012347")},
        {"serial number keeps the blank behind the colon", call(AtSn), {Ok("AT^SN", "^SN: ATS5G1000000123").Prefix("^SN:")}, 0,
         TextIs(" ATS5G1000000123")},
        {"manufacturer waits 5 s", call(AtCgmi), {Ok("AT+CGMI", "Atsim Modems").Timeout(5)}, 0, TextIs("Atsim Modems")},
        {"model", call(AtCgmm), {Ok("AT+CGMM", "ATS-5G100").Timeout(30)}, 0, TextIs("ATS-5G100")},
        {"a model longer than the field", call(AtCgmm), {Ok("AT+CGMM", std::string(128, 'M'))}, -1, TextIs("")},
        {"authentication version", call(AtAuthVer), {Ok("AT^AUTHVER?", "^AUTHVER: 1").Prefix("^AUTHVER:")}, 0, TextIs(" 1")},
    };
    const std::pair<int32_t (*)(R *), const char *> lines[] = {{AtImsi, "AT+CIMI"}, {AtImei, "AT+CGSN"}, {AtSn, "AT^SN"},
        {AtCgmi, "AT+CGMI"}, {AtCgmm, "AT+CGMM"}, {AtAuthVer, "AT^AUTHVER?"}};
    for (const auto &[fn, line] : lines) {
        cases = cases + ErrorCases<R>(line, call(fn), line, kSingle, &R::errorId);
        EXPECT_EQ(fn(nullptr), -1) << line;
    }
    RunCommandCases<R>(cases, Filled<R>(kFill));
    const auto cgsn = [](ImeiShort &r) { return AtCgsn(&r); };
    RunCommandCases<ImeiShort>(Cases<ImeiShort>{
        {"short IMEI", cgsn, {Ok("AT+CGSN", "865432010012347")}, 0,
         [](ImeiShort &r) { r.valid = 1; SetText(r.imei, "865432010012347"); r.errorId = AT_ERRID_OK; }},
    } + ErrorCases<ImeiShort>("short IMEI", cgsn, "AT+CGSN", kSingle, &ImeiShort::errorId), Filled<ImeiShort>(kFill));
    EXPECT_EQ(AtCgsn(nullptr), -1);
}

TEST(AtsCommIdentity, PhysicalNumbers) {
    const auto query = [](PhyNumList &l) { return AtQryPhyNum(&l); };
    RunCommandCases<PhyNumList>(Cases<PhyNumList>{
        {"one text per line", query,
         {Ok("AT^PHYNUM?", "^PHYNUM: IMEI,865432010012347\r\n^PHYNUM: SN,ATS5G1000000123").Prefix("^PHYNUM").Timeout(30)}, 0,
         [](PhyNumList &l) {
             l.count = 2; SetText(l.lines[0], "IMEI,865432010012347"); SetText(l.lines[1], "SN,ATS5G1000000123");
             l.errorId = AT_ERRID_OK;
         }},
    } + ErrorCases<PhyNumList>("numbers", query, "AT^PHYNUM?", kMultiClass, &PhyNumList::errorId), Filled<PhyNumList>(kFill));
    EXPECT_EQ(AtQryPhyNum(nullptr), -1);
}

TEST(AtsCommIdentity, UiccAuth) {
    using R = UiccAuthInfo;
    R preset = Filled<R>(kFill);
    preset.authType = 0;
    SetText(preset.rand, "A1B2C3D4E5F60718");
    SetText(preset.autn, "00112233445566778899AABBCCDDEEFF");
    const auto auth = [](R &a) { return AtUiccAuth(7, &a); };
    const char *line = "AT^UICCAUTH=0,A1B2C3D4E5F60718,00112233445566778899AABBCCDDEEFF";
    RunCommandCases<R>(Cases<R>{
        {"result and texts", auth, {Ok(line, "^UICCAUTH: 0,\"A1B2\",\"0011AA\",\"FFEE00\",\"\"").Prefix("^UICCAUTH:").Timeout(30)}, 0,
         [](R &a) {
             a.result = 0; SetText(a.res, "A1B2"); SetText(a.ck, "0011AA"); SetText(a.ik, "FFEE00"); SetText(a.auts, "");
             a.errorId = AT_ERRID_OK;
         }},
        {"rand without a terminator is not sent", [](R &a) { std::memset(a.rand, 'A', sizeof a.rand); return AtUiccAuth(0, &a); }, {}, -1,
         [](R &a) { std::memset(a.rand, 'A', sizeof a.rand); }},
    } + ErrorCases<R>("authenticate", auth, line, kListClass, &R::errorId), preset);
    EXPECT_EQ(AtUiccAuth(0, nullptr), -1);
}

TEST(AtsCommIdentity, DownloadMode) {
    using R = DownloadRequest;
    const auto download = [](uint32_t mode, uint32_t value) {
        return [=](R &r) { r.mode = mode; r.value = value; return AtZteDownload(&r); };
    };
    const auto outcome = [](uint32_t mode, uint32_t value, uint32_t result) {
        return [=](R &r) { r = {mode, value, AT_ERRID_OK, result}; };
    };
    RunCommandCases<R>(Cases<R>{
        {"download mode", download(0, 9), {Ok("AT+ZCDRUN=G", "Enter download mode result): 0").Prefix("download mode result):")}, 0,
         outcome(0, 9, 0)},
        {"with a value", download(1, 3), {Ok("AT+ZCDRUN=3", "Enter download mode result): 12")}, 0, outcome(1, 3, 12)},
        {"mode 2 is not sent", download(2, 3), {}, -1, [](R &r) { r.mode = 2; r.value = 3; }},
    } + ErrorCases<R>("download", download(1, 3), "AT+ZCDRUN=3", kSingle, &R::errorId, [](R &r) { r.mode = 1; r.value = 3; }),
      Filled<R>(kFill));
    EXPECT_EQ(AtZteDownload(nullptr), -1);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
