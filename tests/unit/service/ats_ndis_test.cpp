// Dial-up, PDP contexts, authentication data and data channels against the
// scripted modem.

#include "atapi/ats_ndis.h"

#include "command_cases.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;

constexpr char kTwoContexts[] =
    "+CGDCONT: 1,\"IP\",\"internet\",\"0.0.0.0\",0,0,0,0,0,0,0\r\n"
    "+CGDCONT: 5,\"IPV4V6\",\"ims\",\"0.0.0.0\",0,0,0,0,0,0,1";

PdpContextInfo Context(uint32_t cid, const char *type, const char *apn, const char *nssai) {
    PdpContextInfo c;
    std::memset(&c, 0, sizeof c);
    c.cid = cid;
    SetText(c.pdpType, type);
    SetText(c.apn, apn);
    SetText(c.sNssai, nssai);
    return c;
}

// A context read from a reply line: the by-cid reader clears the record
// before each line, so everything else is zero.
void ReadBack(PdpContextInfo &r, uint32_t cid, const char *type, const char *apn) {
    r = Context(cid, type, apn, "");
    r.errorId = 0;
}

TEST(AtsNdis, DefineContext) {
    const auto define = [](PdpContextInfo c) {
        return [c](PdpContextInfo &r) {
            r = c;
            return AtCgdContHandler(&r);
        };
    };
    const auto sent = [](PdpContextInfo c, int32_t errorId) {
        return [c, errorId](PdpContextInfo &r) {
            r = c;
            r.errorId = errorId;
        };
    };
    const PdpContextInfo plain = Context(1, "IP", "internet", "");
    const PdpContextInfo sliced = Context(2, "IPV4V6", "ims", "01.000001");
    RunCommandCases<PdpContextInfo>(
        {
            {"without S-NSSAI",
             define(plain),
             {Ok("AT+CGDCONT=1,\"IP\",\"internet\"").Prefix("+CGDCONT").Timeout(30)},
             0,
             sent(plain, AT_ERRID_OK)},
            {"S-NSSAI as the 18th of 22 parameters",
             define(sliced),
             {Ok("AT+CGDCONT=2,\"IPV4V6\",\"ims\",\"\",,,,,,,,,,,,,,\"01.000001\",,,,")},
             0,
             sent(sliced, AT_ERRID_OK)},
            {"answered +CME ERROR",
             define(plain),
             {Fails("AT+CGDCONT=1,\"IP\",\"internet\"", AT_RET_CME_ERROR, "+CME ERROR: 3")},
             -1,
             sent(plain, AT_RET_CME_ERROR)},
        },
        Filled<PdpContextInfo>(0));
}

TEST(AtsNdis, NssaiTailNeedsRoom) {
    PdpContextInfo c = Context(1, "IP", "a", "1");
    char cmd[64] = "AT+CGDCONT=1,\"IP\",\"a\"";
    EXPECT_EQ(AtCgdContAddSingleNssai(&c, cmd, 31), -1);
    EXPECT_STREQ(cmd, "AT+CGDCONT=1,\"IP\",\"a\"") << "unchanged when it does not fit";
    EXPECT_EQ(AtCgdContAddSingleNssai(&c, cmd, sizeof cmd), 0);
    EXPECT_STREQ(cmd, "AT+CGDCONT=1,\"IP\",\"a\",\"\",,,,,,,,,,,,,,\"1\",,,,");
}

TEST(AtsNdis, ReadContexts) {
    const auto byCid = [](uint32_t cid) {
        return [cid](PdpContextInfo &r) { return AtGetCgdContByCid(&r, cid); };
    };
    const Step query = Ok("AT+CGDCONT?", kTwoContexts).Prefix("+CGDCONT").Timeout(30);
    RunCommandCases<PdpContextInfo>(
        {
            {"first context",
             [](PdpContextInfo &r) { return AtGetCgdCont(&r); },
             {query},
             0,
             [](PdpContextInfo &r) {
                 r.cid = 1;
                 SetText(r.pdpType, "IP");
                 SetText(r.apn, "internet");
                 r.errorId = AT_ERRID_OK;
             }},
            {"list query answered ERROR",
             [](PdpContextInfo &r) { return AtGetCgdCont(&r); },
             {Fails("AT+CGDCONT?", AT_RET_ERROR, "ERROR")},
             AT_RET_ERROR,
             [](PdpContextInfo &r) { r.errorId = AT_ERRID_UNMAPPED; }},
            {"by cid: the second line",
             byCid(5),
             {query},
             0,
             [](PdpContextInfo &r) { ReadBack(r, 5, "IPV4V6", "ims"); }},
            {"by cid: none matches, the last line stays",
             byCid(7),
             {query},
             -1,
             [](PdpContextInfo &r) { ReadBack(r, 5, "IPV4V6", "ims"); }},
            {"by cid: no lines", byCid(1), {Ok("AT+CGDCONT?")}, -1},
            {"by cid: error reply",
             byCid(1),
             {Fails("AT+CGDCONT?", AT_RET_CME_ERROR, "+CME ERROR: 4")},
             -1},
        },
        Filled<PdpContextInfo>(kFill));
}

// ^AUTHDATA: cid, auth type, password, user name, PLMN.
constexpr char kTwoAuthData[] =
    "^AUTHDATA: 1,2,\"s3cret\",\"alice\",\"46000\"\r\n^AUTHDATA: 3,1,\"pw\",\"bob\",\"\"";

// Authentication data as read or written; by-cid reads clear the rest first.
std::function<void(AuthDataInfo &)> Auth(uint32_t cid, uint32_t type, const char *pass,
                                         const char *user, const char *plmn, int32_t errorId,
                                         bool cleared = false) {
    return [=](AuthDataInfo &a) {
        if (cleared) std::memset(&a, 0, sizeof a);
        a.cid = cid;
        a.authType = type;
        SetText(a.passwd, pass);
        SetText(a.username, user);
        SetText(a.plmn, plmn);
        a.errorId = errorId;
    };
}

TEST(AtsNdis, AuthData) {
    const auto set = [](AuthDataInfo &a) {
        Auth(1, 2, "s3cret", "alice", "46000", 0)(a);
        return AtAuthDataHandler(&a);
    };
    const auto get = [](AuthDataInfo &a) { return AtGetAuthData(&a); };
    const auto byCid = [](uint32_t cid) {
        return [cid](AuthDataInfo &a) { return AtGetAuthDataByCid(&a, cid); };
    };
    const Step query = Ok("AT^AUTHDATA?", kTwoAuthData).Prefix("^AUTHDATA").Timeout(30);
    // clang-format off
    RunCommandCases<AuthDataInfo>({
        {"set: PLMN, then password, then user name", set,
         {Ok("AT^AUTHDATA=1,2,\"46000\",\"s3cret\",\"alice\"").Prefix("^AUTHDATA").Timeout(30)}, 0,
         Auth(1, 2, "s3cret", "alice", "46000", AT_ERRID_OK)},
        {"first context", get, {query}, 0, Auth(1, 2, "s3cret", "alice", "46000", AT_ERRID_OK)},
        {"by cid: the second line", byCid(3), {query}, 0, Auth(3, 1, "pw", "bob", "", 0, true)},
        {"by cid: none matches, the last line stays", byCid(2), {query}, -1,
         Auth(3, 1, "pw", "bob", "", 0, true)},
        {"by cid: a line of another command", byCid(1), {Ok("AT^AUTHDATA?", "^CGAUTH: 1,0")}, -1,
         [](AuthDataInfo &a) { std::memset(&a, 0, sizeof a); }},
    }, Filled<AuthDataInfo>(kFill));
    // clang-format on
    EXPECT_EQ(AtAuthDataHandler(nullptr), -1);
    EXPECT_EQ(AtGetAuthDataByCid(nullptr, 1), -1);
}

NdisDupProfile Profile(uint8_t apnIsStatic, uint8_t ipIsStatic) {
    NdisDupProfile p = Filled<NdisDupProfile>(kFill);
    p.apnIsStatic = apnIsStatic;
    p.ipIsStatic = ipIsStatic;
    SetText(p.apn, "internet");
    SetText(p.username, "alice");
    SetText(p.passwd, "s3cret");
    p.authType = '2';
    SetText(p.ipAddr, "10.0.0.5");
    return p;
}

TEST(AtsNdis, DialUp) {
    TraceCapture trace;
    const auto dial = [](NdisDupProfile &p) { return AtNdisDup(1, 1, &p); };
    const auto done = [](NdisDupProfile &p) { p.errorId = AT_ERRID_OK; };
    const std::pair<NdisDupProfile, const char *> forms[] = {
        {Profile(1, 1), "AT^NDISDUP=1,1,\"internet\",\"alice\",\"s3cret\",2,\"10.0.0.5\""},
        {Profile(1, 0), "AT^NDISDUP=1,1,\"internet\",\"alice\",\"s3cret\",2"},
        {Profile(0, 1), "AT^NDISDUP=1,1,,\"alice\",\"s3cret\",2,\"10.0.0.5\""},
        {Profile(0, 0), "AT^NDISDUP=1,1,,\"alice\",\"s3cret\",2"},
        {Profile(2, 2), "AT^NDISDUP=1,1,,\"alice\",\"s3cret\",2"},  // only 1 counts as set
    };
    for (const auto &[profile, line] : forms) {
        RunCommandCases<NdisDupProfile>(
            {{line, dial, {Ok(line).Prefix("^NDISDUP").Timeout(30)}, 0, done}}, profile);
    }
    // clang-format off
    RunCommandCases<NdisDupProfile>({
        {"without a profile: cid and connect flag only",
         [](NdisDupProfile &) { return AtNdisDup(2, 0, nullptr); },
         {Ok("AT^NDISDUP=2,0").Prefix("^NDISDUP").Timeout(30)}, 0},
        {"refused", dial, {Fails(forms[1].second, AT_RET_CME_ERROR, "+CME ERROR: 11")}, -1,
         [](NdisDupProfile &p) { p.errorId = AT_RET_CME_ERROR; }},
    }, Profile(1, 0));
    // clang-format on
    EXPECT_FALSE(trace.Contains("s3cret")) << "the password reached the trace";
}

TEST(AtsNdis, DataChannel) {
    const auto bind = [](uint32_t channel) {
        return [channel](ChDataRequest &r) {
            r = {1, channel, 0};
            return AtChData(&r);
        };
    };
    const auto bound = [](uint32_t channel, int32_t errorId) {
        return [=](ChDataRequest &r) { r = {1, channel, errorId}; };
    };
    // clang-format off
    RunCommandCases<ChDataRequest>({
        {"a channel", bind(3), {Ok("AT^CHDATA=1,3").Prefix("^CHDATA").Timeout(30)}, 0,
         bound(3, AT_ERRID_OK)},
        {"channel 0 leaves it to the module", bind(0), {Ok("AT^CHDATA=1")}, 0,
         bound(0, AT_ERRID_OK)},
        {"an error reply is -1", bind(0), {Fails("AT^CHDATA=1", AT_RET_CME_ERROR, "+CME ERROR: 4")},
         -1, bound(0, AT_RET_CME_ERROR)},
    }, Filled<ChDataRequest>(kFill));
    // clang-format on
    EXPECT_EQ(AtChData(nullptr), -1);
}

}  // namespace
}  // namespace atapi::test
