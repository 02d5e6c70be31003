// Device identities, SIM authentication and the download request against
// the scripted modem: the exact line, the text taken from the reply, and
// what each error class leaves behind.

#include "atapi/ats_comm.h"
#include "error_classes.h"

namespace atapi::test {
namespace {

std::function<void(IdentityText &)> TextIs(const std::string &text) {
    return [text](IdentityText &r) {
        SetText(r.text, text.c_str());
        Done(r);
    };
}

// clang-format off
TEST(AtsCommIdentity, Texts) {
    using R = IdentityText;
    const auto call = [](int32_t (*fn)(R *)) { return [fn](R &r) { return fn(&r); }; };
    RunRows<R>({
        {"IMSI", call(AtImsi), {Ok("AT+CIMI", "001010123456789").Prefix("").Timeout(30)}, 0, TextIs("001010123456789"), kSingle},
        {"IMEI", call(AtImei), {Ok("AT+CGSN", "865432010012347")}, 0, TextIs("865432010012347"), kSingle},
        {"serial number keeps the blank behind the colon", call(AtSn), {Ok("AT^SN", "^SN: ATS5G1000000123").Prefix("^SN:")}, 0, TextIs(" ATS5G1000000123"), kSingle},
        {"manufacturer waits 5 s", call(AtCgmi), {Ok("AT+CGMI", "Atsim Modems").Timeout(5)}, 0, TextIs("Atsim Modems"), kSingle},
        {"model", call(AtCgmm), {Ok("AT+CGMM", "ATS-5G100").Timeout(30)}, 0, TextIs("ATS-5G100"), kSingle},
        {"a model longer than the field", call(AtCgmm), {Ok("AT+CGMM", std::string(128, 'M'))}, -1, TextIs("")},
        {"authentication version", call(AtAuthVer), {Ok("AT^AUTHVER?", "^AUTHVER: 1").Prefix("^AUTHVER:")}, 0, TextIs(" 1"), kSingle},
    });
    RunRows<ImeiShort>({{"short IMEI", [](ImeiShort &r) { return AtCgsn(&r); }, {Ok("AT+CGSN", "865432010012347")}, 0,
                         [](ImeiShort &r) { r.valid = 1; SetText(r.imei, "865432010012347"); Done(r); }, kSingle}});
    RunRows<PhyNumList>({{"physical numbers, one text per line", [](PhyNumList &l) { return AtQryPhyNum(&l); },
                          {Ok("AT^PHYNUM?", "^PHYNUM: IMEI,865432010012347\r\n^PHYNUM: SN,ATS5G1000000123").Prefix("^PHYNUM").Timeout(30)}, 0,
                          [](PhyNumList &l) { l.count = 2; SetText(l.lines[0], "IMEI,865432010012347"); SetText(l.lines[1], "SN,ATS5G1000000123"); Done(l); }, kMultiClass}});
}

TEST(AtsCommIdentity, UiccAuth) {
    using R = UiccAuthInfo;
    R preset = Filled<R>(0x5A);
    preset.authType = 0;
    SetText(preset.rand, "A1B2C3D4E5F60718");
    SetText(preset.autn, "00112233445566778899AABBCCDDEEFF");
    const auto unterminated = [](R &a) { std::memset(a.rand, 'A', sizeof a.rand); };
    RunRows<R>({
        {"result and texts", [](R &a) { return AtUiccAuth(7, &a); },
         {Ok("AT^UICCAUTH=0,A1B2C3D4E5F60718,00112233445566778899AABBCCDDEEFF", "^UICCAUTH: 0,\"A1B2\",\"0011AA\",\"FFEE00\",\"\"").Prefix("^UICCAUTH:").Timeout(30)}, 0,
         [](R &a) { a.result = 0; SetText(a.res, "A1B2"); SetText(a.ck, "0011AA"); SetText(a.ik, "FFEE00"); SetText(a.auts, ""); Done(a); }, kListClass},
        {"rand without a terminator is not sent", [unterminated](R &a) { unterminated(a); return AtUiccAuth(0, &a); }, {}, -1, unterminated},
    }, preset);
}

TEST(AtsCommIdentity, DownloadMode) {
    using R = DownloadRequest;
    const auto download = [](uint32_t mode, uint32_t value) { return [=](R &r) { r.mode = mode; r.value = value; return AtZteDownload(&r); }; };
    const auto outcome = [](uint32_t mode, uint32_t value, uint32_t result) { return [=](R &r) { r = {mode, value, AT_ERRID_OK, result}; }; };
    RunRows<R>({
        {"download mode", download(0, 9), {Ok("AT+ZCDRUN=G", "Enter download mode result): 0").Prefix("download mode result):")}, 0, outcome(0, 9, 0)},
        {"with a value", download(1, 3), {Ok("AT+ZCDRUN=3", "Enter download mode result): 12")}, 0, outcome(1, 3, 12), kSingle,
         [](R &r) { r.mode = 1; r.value = 3; }},
        {"mode 2 is not sent", download(2, 3), {}, -1, [](R &r) { r.mode = 2; r.value = 3; }},
    });
}

// Every function of the family refuses a missing argument before sending.
TEST(AtsComm, NullArguments) {
    ExpectRefused({
        {"AtImsi", [] { return AtImsi(nullptr); }}, {"AtImei", [] { return AtImei(nullptr); }}, {"AtSn", [] { return AtSn(nullptr); }},
        {"AtCgmi", [] { return AtCgmi(nullptr); }}, {"AtCgmm", [] { return AtCgmm(nullptr); }}, {"AtAuthVer", [] { return AtAuthVer(nullptr); }},
        {"AtCgsn", [] { return AtCgsn(nullptr); }}, {"AtQryPhyNum", [] { return AtQryPhyNum(nullptr); }},
        {"AtUiccAuth", [] { return AtUiccAuth(0, nullptr); }}, {"AtZteDownload", [] { return AtZteDownload(nullptr); }},
        {"AtVersion", [] { return AtVersion(nullptr); }}, {"AtCgmr", [] { return AtCgmr(nullptr); }}, {"AtHwVer", [] { return AtHwVer(nullptr); }},
        {"AtRrcVer", [] { return AtRrcVer(AT_COMM_QUERY, nullptr); }}, {"AtSetMode", [] { return AtSetMode(AT_COMM_QUERY, nullptr); }},
        {"AtOpenChannel", [] { return AtOpenChannel(AT_COMM_QUERY, nullptr); }}, {"AtShlock", [] { return AtShlock(AT_COMM_SET, "1", nullptr); }},
        {"AtCiregExecute", [] { return AtCiregExecute(nullptr); }}, {"AtCiregCheck", [] { return AtCiregCheck(nullptr); }},
        {"AtNetregCheck", [] { return AtNetregCheck(nullptr); }}, {"AtCfunEx", [] { return AtCfunEx(nullptr); }},
        {"AtCfunQuery", [] { return AtCfunQuery(nullptr); }}, {"AtChipTemp", [] { return AtChipTemp(nullptr); }},
        {"AtAdcReadEx", [] { return AtAdcReadEx(AT_COMM_SET, nullptr); }}, {"AtXoTemp", [] { return AtXoTemp(AT_COMM_QUERY, nullptr); }},
        {"AtHs", [] { return AtHs(nullptr); }}, {"AtAntMode", [] { return AtAntMode(AT_COMM_SET, nullptr); }},
        {"AtSingleAntMode", [] { return AtSingleAntMode(AT_COMM_SET, nullptr); }}, {"AtBackupAntCtrl", [] { return AtBackupAntCtrl(nullptr); }},
        {"AtSetDatalock", [] { return AtSetDatalock(nullptr); }}, {"AtSharePdpNvWr", [] { return AtSharePdpNvWr(nullptr); }},
        {"AtQryProductType", [] { return AtQryProductType(nullptr); }, 0}, {"AtQryLogPort", [] { return AtQryLogPort(nullptr); }, 0},
        {"AtSetLogPort", [] { return AtSetLogPort(nullptr); }},
    });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
