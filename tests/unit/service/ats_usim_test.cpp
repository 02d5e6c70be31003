// SIM file access against the scripted modem: the directory each card type
// reads a file from, the exact +CRSM lines, the files decoded from real
// cards' replies, the status words each reader accepts, and the card type
// asked once per process, also by threads that read at once.
#include "atapi/ats_usim.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

#include "error_classes.h"
#include "service/ats_usim_internal.h"

namespace atapi::test {
namespace {

Step CardMode(int mode) {
    return Ok("AT^CARDMODE", "^CARDMODE: " + std::to_string(mode)).Prefix("^CARDMODE");
}
Step CardModeFails() { return Fails("AT^CARDMODE", AT_RET_ERROR, "ERROR"); }
std::string Crsm(const std::string &sw, const std::string &hex) {
    return "+CRSM: " + sw + ",\"" + hex + "\"";
}

constexpr char kIccidUsim[] = "AT+CRSM=176,12258,0,0,10,,\"3F00\"";
constexpr char kIccidReply[] = "+CRSM: 144,0,\"989420021032547698F7\"";
constexpr char kIccid[] = "8949022001234567897";

// clang-format off
// Paths: which directory a card type reads a file from, and when the
// request's own path serves.
TEST(AtsUsim, CrsmPaths) {
    const auto read = [](int32_t fileId, const char *path) {
        return [=](int32_t &) {
            usim::ResetCardModeCache();
            CrsmRequest q{AT_CRSM_READ_BINARY, fileId, 0, 0, 10, nullptr, path};
            CrsmResult r{};
            CrsmRequest request = q;
            const int32_t ret = AtCrsm(&request, &r);
            std::free(r.response);
            return ret;
        };
    };
    const auto sends = [](Step cardMode, const char *line) { return std::vector<Step>{cardMode, Ok(line, "+CRSM: 144,0,\"00\"")}; };
    RunRows<int32_t>({
        {"ICCID on a USIM", read(0x2FE2, "3F00"), sends(CardMode(2), kIccidUsim), 0},
        {"ICCID on a SIM lies under DF GSM", read(0x2FE2, "3F00"), sends(CardMode(1), "AT+CRSM=176,12258,0,0,10,,\"3F007F20\""), 0},
        {"the table's path replaces the request's", read(0x6F46, "3F00"), sends(CardMode(2), "AT+CRSM=176,28486,0,0,10,,\"3F007FFF\""), 0},
        {"EF 6F38 keeps DF GSM on a USIM", read(0x6F38, nullptr), sends(CardMode(2), "AT+CRSM=176,28472,0,0,10,,\"3F007F20\""), 0},
        {"EF SPDI is not in the SIM table", read(0x6FCD, "3F007FFF"), sends(CardMode(1), "AT+CRSM=176,28621,0,0,10,,\"3F007FFF\""), 0},
        {"a table row without a path", read(0x6FFE, "3F00"), sends(CardMode(2), "AT+CRSM=176,28670,0,0,10,,\"3F00\""), 0},
        {"a file in no table, no path of its own", read(0x6F07, nullptr), {CardMode(2)}, -1},
        {"an unsupported card type", read(0x2FE2, "3F00"), sends(CardMode(3), kIccidUsim), 0},
        {"card type unknown", read(0x2FE2, "3F00"), sends(CardModeFails(), kIccidUsim), 0},
        {"card type unknown, no path", read(0x6F46, nullptr), {CardModeFails()}, -1},
    }, 0);
}

// The result as the call leaves it, its response copied out; the call
// starts with the response of an earlier read in the library's allocation.
struct CrsmOutcome {
    uint32_t sw1, sw2;
    int32_t errorId;
    char response[24];
};

TEST(AtsUsim, CrsmResult) {
    const auto crsm = [](CrsmRequest q) {
        return [q](CrsmOutcome &o) {
            usim::ResetCardModeCache();
            CrsmResult r{o.sw1, o.sw2, strdup(o.response), o.errorId};
            CrsmRequest request = q;
            const int32_t ret = AtCrsm(&request, &r);
            std::tie(o.sw1, o.sw2, o.errorId) = std::tie(r.sw1, r.sw2, r.errorId);
            SetText(o.response, r.response != nullptr ? r.response : "(none)");
            std::free(r.response);
            return ret;
        };
    };
    const auto result = [](uint32_t sw1, uint32_t sw2, const char *response) { return [=](CrsmOutcome &o) { std::tie(o.sw1, o.sw2, o.errorId) = std::make_tuple(sw1, sw2, AT_ERRID_OK); SetText(o.response, response); }; };
    RunRows<CrsmOutcome>({
        {"update with data, unquoted", crsm({214, 0x6F46, 0, 0, 3, "010203", nullptr}), {CardMode(2), Ok("AT+CRSM=214,28486,0,0,3,010203,\"3F007FFF\"", "+CRSM: 144,0").Timeout(30)}, 0, result(144, 0, "")},
        {"file not found, no response", crsm({AT_CRSM_READ_BINARY, 0x6F3E, 0, 0, 0, nullptr, nullptr}), {CardMode(2), Ok("AT+CRSM=176,28478,0,0,0,,\"3F007FFF\"", "+CRSM: 106,130")}, 0, result(106, 130, "")},
        // Every error class fails and keeps the last response; the list query maps the id.
        {"a new response replaces the last", crsm({AT_CRSM_READ_BINARY, 0x2FE2, 0, 0, 10, nullptr, "3F00"}), {CardMode(2), Ok(kIccidUsim, kIccidReply)}, 0, result(144, 0, "989420021032547698F7"), kListFails},
    }, CrsmOutcome{7, 7, 0x5A, "00"});
}

TEST(AtsUsim, IccidAndHomePlmn) {
    const auto iccid = [](IccidInfo &r) { usim::ResetCardModeCache(); return AtGetIccidByCrsm(&r); };
    const auto iccidIs = [](const char *text) { return [text](IccidInfo &r) { SetText(r.iccid, text); r.errorId = AT_ERRID_OK; }; };
    RunCommandCases<IccidInfo>({
        {"19 digits with filler", iccid, {CardMode(2), Ok(kIccidUsim, kIccidReply)}, 0, iccidIs(kIccid)},
        {"20 digits from a SIM", iccid,
         {CardMode(1), Ok("AT+CRSM=176,12258,0,0,10,,\"3F007F20\"", Crsm("144,0", "98101430121181157002"))}, 0, iccidIs("89014103211118510720")},
        {"odd length", iccid, {CardMode(2), Ok(kIccidUsim, Crsm("144,0", "989420021"))}, -1},
        {"file not found", iccid, {CardMode(2), Ok(kIccidUsim, "+CRSM: 106,130")}, -1},
        {"error reply", iccid, {CardMode(2), Fails(kIccidUsim, AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1},
    }, Filled<IccidInfo>(0x5A));

    const auto plmn = [](AphPlmnInfo &r) { usim::ResetCardModeCache(); return AtAphPlmnByCrsm(&r); };
    const auto plmnIs = [](const char *text) { return [text](AphPlmnInfo &r) { SetText(r.plmn, text); r.errorId = AT_ERRID_OK; }; };
    const auto read = [](const char *imsi, std::string ad) {
        return std::vector<Step>{Ok("AT+CIMI", imsi), CardMode(2), Ok("AT+CRSM=176,28589,0,0,0,,\"3F007FFF\"", ad)};
    };
    RunCommandCases<AphPlmnInfo>({
        {"two-digit MNC", plmn, read("262011234567890", Crsm("144,0", "00000002")), 0, plmnIs("26201")},
        {"three-digit MNC", plmn, read("310260123456789", Crsm("144,0", "00000003")), 0, plmnIs("310260")},
        {"MNC length 0", plmn, read("262011234567890", Crsm("144,0", "00000000")), -1},
        {"MNC longer than the IMSI allows", plmn, read("26201", Crsm("144,0", "00000003")), -1},
        {"EF AD unreadable", plmn, read("262011234567890", "+CRSM: 106,130"), -1},
        {"IMSI refused", plmn, {Fails("AT+CIMI", AT_RET_CME_ERROR, "+CME ERROR: 10")}, -1},
    }, Filled<AphPlmnInfo>(0x5A));
}

// The other readers: the result, and what each wrote as text.
struct Read {
    char text[64];
};
// clang-format off
int32_t ReadSpn(Read &r) { char buf[40] = "x"; const int32_t ret = AtGetSpnByCrsm(buf, sizeof buf); SetText(r.text, buf); return ret; }
int32_t ReadGid(Read &r) { char buf[8] = "x"; const int32_t ret = AtGetSimGid(buf, sizeof buf); SetText(r.text, buf); return ret; }
int32_t ReadSpdi(Read &r) { char out[24] = "x"; AtGetEfspdiPlmn(out, sizeof out); SetText(r.text, out); return 0; }
int32_t ReadMnc(Read &) { return AtGetMncLength(); }
int32_t ReadApns(Read &r) {
    SimApnNode *head = nullptr;
    const int32_t ret = AtGetSimApn(&head);
    std::string apns;
    for (const SimApnNode *n = head; n != nullptr; n = n->next) apns += std::string(n->apn) + ";";
    FreeApnList(&head);
    SetText(r.text, apns.c_str());
    return ret;
}

TEST(AtsUsim, FileReaders) {
    const auto fresh = [](int32_t (*read)(Read &)) { return [read](Read &r) { usim::ResetCardModeCache(); return read(r); }; };
    const auto wrote = [](std::string text) { return [text](Read &r) { SetText(r.text, text.c_str()); }; };
    const auto usim = [](std::string line, std::string reply) { return std::vector<Step>{CardMode(2), Ok(line, reply)}; };
    const std::string spn = "AT+CRSM=176,28486,0,0,17,,\"3F007FFF\"", gid = "AT+CRSM=176,28478,0,0,0,,\"3F007FFF\"", acl = "AT+CRSM=176,28503,0,0,255,,\"3F007FFF\"",
                      spdi = "AT+CRSM=176,28621,0,0,0,,\"3F007FFF\"", ad = "AT+CRSM=176,28589,0,0,0,,\"3F007FFF\"";
    const std::string vodafone = "01566F6461666F6E65FFFFFFFFFFFFFFFF";
    RunRows<Read>({
        {"SPN as the card's hex", fresh(ReadSpn), usim(spn, Crsm("144,0", vodafone)), 0, wrote(vodafone)},
        {"SPN on a SIM", fresh(ReadSpn), {CardMode(1), Ok("AT+CRSM=176,28486,0,0,17,,\"3F007F20\"", Crsm("144,0", vodafone))}, 0, wrote(vodafone)},
        {"SPN: status words are not examined", fresh(ReadSpn), usim(spn, Crsm("98,130", "00")), 0, wrote("00")},
        {"SPN empty", fresh(ReadSpn), usim(spn, "+CRSM: 106,130"), -1, wrote("x")},
        {"SPN refused", fresh(ReadSpn), {CardMode(2), Fails(spn, AT_RET_ERROR, "ERROR")}, -1, wrote("x")},
        {"GID1", fresh(ReadGid), usim(gid, Crsm("144,0", "12FF")), 0, wrote("12FF")},
        {"GID1 too long for the buffer", fresh(ReadGid), usim(gid, Crsm("144,0", "12FFFFFFFF")), -1},
        {"GID1 not on a SIM's table: no path", fresh(ReadGid), {CardMode(1)}, -1, wrote("x")},
        {"APN list", fresh(ReadApns), usim(acl, Crsm("144,0", "02DD0908696E7465726E6574DD100377656208766F6461666F6E65026465FFFF")), 0, wrote("internet;web.vodafone.de;")},
        {"APN list with extra information", fresh(ReadApns), usim(acl, Crsm("145,12", "01DD0403696D73")), 0, wrote("ims;")},
        {"APN list empty", fresh(ReadApns), usim(acl, Crsm("144,0", "00FFFFFF")), -1},
        {"APN list malformed", fresh(ReadApns), usim(acl, Crsm("144,0", "01DD09")), -1},
        {"APN list: file not found", fresh(ReadApns), usim(acl, Crsm("106,130", "01DD0403696D73")), -1},
        {"SPDI", fresh(ReadSpdi), usim(spdi, Crsm("144,0", "A30B800964F01062F210130062FFFFFF")), 0, wrote("x 46001 26201 310260")},
        {"SPDI not tagged", fresh(ReadSpdi), usim(spdi, Crsm("144,0", "FFFFFFFF")), 0, wrote("x")},
        {"SPDI only with 90 00", fresh(ReadSpdi), usim(spdi, Crsm("145,0", "A30B800964F01062F210130062")), 0, wrote("x")},
        {"SPDI not hex", fresh(ReadSpdi), usim(spdi, Crsm("144,0", "A30B8009Z4F010")), 0, wrote("x")},
        {"MNC length 2", fresh(ReadMnc), usim(ad, Crsm("144,0", "00000002")), 2},
        {"MNC length 3 with extra information", fresh(ReadMnc), usim(ad, Crsm("145,4", "00000003")), 3},
        {"MNC length: other status", fresh(ReadMnc), usim(ad, Crsm("144,1", "00000002")), -1},
        {"EF AD too short", fresh(ReadMnc), usim(ad, Crsm("144,0", "000000")), -1},
        {"MNC length on a SIM", fresh(ReadMnc), {CardMode(1), Ok("AT+CRSM=176,28589,0,0,0,,\"3F007F20\"", Crsm("144,0", "00000002"))}, 2},
    }, Read{});
}
// clang-format on

// Threads that read at once either ask for the card type themselves or find
// it stored; none races another, and once stored nobody asks again (the
// second round sends no ^CARDMODE).
TEST(AtsUsim, ConcurrentReaders) {
    constexpr int kThreads = 16;
    usim::ResetCardModeCache();
    IsolatedRuntime runtime;
    ScriptedModem modem(runtime);
    modem.AnswerEachWith({CardMode(2), Ok(kIccidUsim, kIccidReply)});
    IccidInfo expected = Filled<IccidInfo>(0x5A);
    SetText(expected.iccid, kIccid);
    Done(expected);
    const auto readAll = [&] {
        RunAtOnce<IccidInfo>(
            kThreads, [](IccidInfo &r) { return AtGetIccidByCrsm(&r); }, Filled<IccidInfo>(0x5A),
            expected);
        const std::vector<std::string> sent = modem.Sent();
        return std::count(sent.begin(), sent.end(), "AT^CARDMODE");
    };
    const auto asked = readAll();
    EXPECT_GE(asked, 1);
    EXPECT_LE(asked, kThreads);
    EXPECT_EQ(readAll(), asked) << "a stored card type was asked again";
    modem.Verify();
    usim::ResetCardModeCache();
}

}  // namespace
}  // namespace atapi::test
