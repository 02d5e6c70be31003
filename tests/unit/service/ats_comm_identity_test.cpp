// Device identities, SIM authentication and the download request against
// the scripted modem: the exact line, the text taken from the reply, and
// what an error reply leaves behind.

#include "atapi/ats_comm.h"
#include "command_cases.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;

std::function<void(IdentityText &)> TextIs(const std::string &text, int32_t errorId) {
    return [text, errorId](IdentityText &r) {
        SetText(r.text, text.c_str());
        r.errorId = errorId;
    };
}

TEST(AtsCommIdentity, Texts) {
    const auto call = [](int32_t (*fn)(IdentityText *)) {
        return [fn](IdentityText &r) { return fn(&r); };
    };
    const std::string longModel(128, 'M');
    // clang-format off
    RunCommandCases<IdentityText>({
        {"IMSI", call(AtImsi), {Ok("AT+CIMI", "001010123456789").Prefix("").Timeout(30)}, 0,
         TextIs("001010123456789", AT_ERRID_OK)},
        {"IMEI", call(AtImei), {Ok("AT+CGSN", "865432010012347")}, 0,
         TextIs("865432010012347", AT_ERRID_OK)},
        {"serial number keeps the blank behind the colon", call(AtSn),
         {Ok("AT^SN", "^SN: ATS5G1000000123").Prefix("^SN:")}, 0,
         TextIs(" ATS5G1000000123", AT_ERRID_OK)},
        {"manufacturer waits 5 s", call(AtCgmi), {Ok("AT+CGMI", "Atsim Modems").Timeout(5)}, 0,
         TextIs("Atsim Modems", AT_ERRID_OK)},
        {"model", call(AtCgmm), {Ok("AT+CGMM", "ATS-5G100").Timeout(30)}, 0,
         TextIs("ATS-5G100", AT_ERRID_OK)},
        {"a model longer than the field", call(AtCgmm), {Ok("AT+CGMM", longModel)}, -1,
         TextIs("", AT_ERRID_OK)},
        {"authentication version", call(AtAuthVer),
         {Ok("AT^AUTHVER?", "^AUTHVER: 1").Prefix("^AUTHVER:")}, 0, TextIs(" 1", AT_ERRID_OK)},
        {"+CME ERROR is mapped", call(AtImsi),
         {Fails("AT+CIMI", AT_RET_CME_ERROR, "+CME ERROR: 10")},
         -1, [](IdentityText &r) { r.errorId = 13; }},
        {"ERROR leaves the record", call(AtCgmm), {Fails("AT+CGMM", AT_RET_ERROR, "ERROR")}, -1},
    }, Filled<IdentityText>(kFill));
    RunCommandCases<ImeiShort>({
        {"short IMEI", [](ImeiShort &r) { return AtCgsn(&r); },
         {Ok("AT+CGSN", "865432010012347")}, 0,
         [](ImeiShort &r) {
             r.valid = 1;
             SetText(r.imei, "865432010012347");
             r.errorId = AT_ERRID_OK;
         }},
        {"short IMEI refused", [](ImeiShort &r) { return AtCgsn(&r); },
         {Fails("AT+CGSN", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1,
         [](ImeiShort &r) { r.errorId = 13; }},
    }, Filled<ImeiShort>(kFill));
    // clang-format on
    for (auto fn : {AtImsi, AtImei, AtSn, AtCgmi, AtCgmm, AtAuthVer}) EXPECT_EQ(fn(nullptr), -1);
    EXPECT_EQ(AtCgsn(nullptr), -1);
}

TEST(AtsCommIdentity, PhysicalNumbers) {
    const auto query = [](PhyNumList &l) { return AtQryPhyNum(&l); };
    // clang-format off
    RunCommandCases<PhyNumList>({
        {"one text per line", query,
         {Ok("AT^PHYNUM?", "^PHYNUM: IMEI,865432010012347\r\n^PHYNUM: SN,ATS5G1000000123")
              .Prefix("^PHYNUM").Timeout(30)}, 0,
         [](PhyNumList &l) {
             l.count = 2;
             SetText(l.lines[0], "IMEI,865432010012347");
             SetText(l.lines[1], "SN,ATS5G1000000123");
             l.errorId = AT_ERRID_OK;
         }},
        {"an error reply passes its class", query,
         {Fails("AT^PHYNUM?", AT_RET_CME_ERROR, "+CME ERROR: 10")}, AT_RET_CME_ERROR,
         [](PhyNumList &l) { l.errorId = 13; }},
    }, Filled<PhyNumList>(kFill));
    // clang-format on
    EXPECT_EQ(AtQryPhyNum(nullptr), -1);
}

TEST(AtsCommIdentity, UiccAuth) {
    UiccAuthInfo preset = Filled<UiccAuthInfo>(kFill);
    preset.authType = 0;
    SetText(preset.rand, "A1B2C3D4E5F60718");
    SetText(preset.autn, "00112233445566778899AABBCCDDEEFF");
    const auto auth = [](UiccAuthInfo &a) { return AtUiccAuth(7, &a); };
    const char *line = "AT^UICCAUTH=0,A1B2C3D4E5F60718,00112233445566778899AABBCCDDEEFF";
    // clang-format off
    RunCommandCases<UiccAuthInfo>({
        {"result and texts", auth,
         {Ok(line, "^UICCAUTH: 0,\"A1B2\",\"0011AA\",\"FFEE00\",\"\"")
              .Prefix("^UICCAUTH:").Timeout(30)},
         0,
         [](UiccAuthInfo &a) {
             a.result = 0;
             SetText(a.res, "A1B2");
             SetText(a.ck, "0011AA");
             SetText(a.ik, "FFEE00");
             SetText(a.auts, "");
             a.errorId = AT_ERRID_OK;
         }},
        {"an error reply passes its class", auth, {Fails(line, AT_RET_CME_ERROR, "+CME ERROR: 10")},
         AT_RET_CME_ERROR, [](UiccAuthInfo &a) { a.errorId = 13; }},
        {"rand without a terminator is not sent",
         [](UiccAuthInfo &a) {
             std::memset(a.rand, 'A', sizeof a.rand);
             return AtUiccAuth(0, &a);
         },
         {}, -1, [](UiccAuthInfo &a) { std::memset(a.rand, 'A', sizeof a.rand); }},
    }, preset);
    // clang-format on
    EXPECT_EQ(AtUiccAuth(0, nullptr), -1);
}

TEST(AtsCommIdentity, DownloadMode) {
    const auto download = [](uint32_t mode, uint32_t value) {
        return [=](DownloadRequest &r) {
            r.mode = mode;
            r.value = value;
            return AtZteDownload(&r);
        };
    };
    const auto outcome = [](uint32_t mode, uint32_t value, int32_t errorId, uint32_t result) {
        return [=](DownloadRequest &r) { r = {mode, value, errorId, result}; };
    };
    constexpr uint32_t kUntouched = 0x5A5A5A5A;
    // clang-format off
    RunCommandCases<DownloadRequest>({
        {"download mode", download(0, 9),
         {Ok("AT+ZCDRUN=G", "Enter download mode result): 0").Prefix("download mode result):")}, 0,
         outcome(0, 9, AT_ERRID_OK, 0)},
        {"with a value", download(1, 3), {Ok("AT+ZCDRUN=3", "Enter download mode result): 12")}, 0,
         outcome(1, 3, AT_ERRID_OK, 12)},
        {"refused", download(1, 3), {Fails("AT+ZCDRUN=3", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1,
         outcome(1, 3, 13, kUntouched)},
        {"mode 2 is not sent", download(2, 3), {}, -1,
         outcome(2, 3, static_cast<int32_t>(kUntouched), kUntouched)},
    }, Filled<DownloadRequest>(kFill));
    // clang-format on
    EXPECT_EQ(AtZteDownload(nullptr), -1);
}

}  // namespace
}  // namespace atapi::test
