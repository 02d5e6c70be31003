// Dial-up, PDP contexts, authentication data and data channels against the
// scripted modem.

#include "atapi/ats_ndis.h"

#include "error_classes.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr char kTwoContexts[] =
    "+CGDCONT: 1,\"IP\",\"internet\",\"0.0.0.0\",0,0,0,0,0,0,0\r\n"
    "+CGDCONT: 5,\"IPV4V6\",\"ims\",\"0.0.0.0\",0,0,0,0,0,0,1";

// clang-format off
// A context as written, or as read from a reply line (the by-cid reader
// clears the record before each line, so everything else is zero).
std::function<void(PdpContextInfo &)> Context(uint32_t cid, const char *type, const char *apn, const char *nssai, int32_t errorId) {
    return [=](PdpContextInfo &c) { std::memset(&c, 0, sizeof c); c.cid = cid; SetText(c.pdpType, type); SetText(c.apn, apn); SetText(c.sNssai, nssai); c.errorId = errorId; };
}

TEST(AtsNdis, Contexts) {
    using R = PdpContextInfo;
    const auto define = [](std::function<void(R &)> set) { return [set](R &r) { set(r); return AtCgdContHandler(&r); }; };
    const auto plain = Context(1, "IP", "internet", "", 0);
    const auto byCid = [](uint32_t cid) { return [cid](R &r) { return AtGetCgdContByCid(&r, cid); }; };
    const Step query = Ok("AT+CGDCONT?", kTwoContexts).Prefix("+CGDCONT").Timeout(30);
    const auto fifth = Context(5, "IPV4V6", "ims", "", 0);
    RunRows<R>({
        {"without S-NSSAI", define(plain), {Ok("AT+CGDCONT=1,\"IP\",\"internet\"").Prefix("+CGDCONT").Timeout(30)}, 0, Context(1, "IP", "internet", "", AT_ERRID_OK), kSimple, plain},
        {"S-NSSAI as the 18th of 22 parameters", define(Context(2, "IPV4V6", "ims", "01.000001", 0)),
         {Ok("AT+CGDCONT=2,\"IPV4V6\",\"ims\",\"\",,,,,,,,,,,,,,\"01.000001\",,,,")}, 0, Context(2, "IPV4V6", "ims", "01.000001", AT_ERRID_OK)},
        {"first context", [](R &r) { return AtGetCgdCont(&r); }, {query}, 0, [](R &r) { r.cid = 1; SetText(r.pdpType, "IP"); SetText(r.apn, "internet"); Done(r); }, kListClass},
        {"by cid: the second line", byCid(5), {query}, 0, fifth},
        {"by cid: none matches, the last line stays", byCid(7), {query}, -1, fifth},
        {"by cid: no lines", byCid(1), {Ok("AT+CGDCONT?")}, -1, {}, kFails},
    });
}
// clang-format on

TEST(AtsNdis, NssaiTailNeedsRoom) {
    PdpContextInfo c{};
    Context(1, "IP", "a", "1", 0)(c);
    char cmd[64] = "AT+CGDCONT=1,\"IP\",\"a\"";
    EXPECT_EQ(AtCgdContAddSingleNssai(&c, cmd, 31), -1);
    EXPECT_STREQ(cmd, "AT+CGDCONT=1,\"IP\",\"a\"") << "unchanged when it does not fit";
    EXPECT_EQ(AtCgdContAddSingleNssai(&c, cmd, sizeof cmd), 0);
    EXPECT_STREQ(cmd, "AT+CGDCONT=1,\"IP\",\"a\",\"\",,,,,,,,,,,,,,\"1\",,,,");
}

// clang-format off
// Authentication data as read or written; by-cid reads clear the rest first.
std::function<void(AuthDataInfo &)> Auth(uint32_t cid, uint32_t type, const char *pass, const char *user, const char *plmn, int32_t errorId, bool cleared = false) {
    return [=](AuthDataInfo &a) {
        if (cleared) std::memset(&a, 0, sizeof a);
        a.cid = cid; a.authType = type; SetText(a.passwd, pass); SetText(a.username, user); SetText(a.plmn, plmn); a.errorId = errorId;
    };
}

TEST(AtsNdis, AuthData) {
    using R = AuthDataInfo;
    const auto input = Auth(1, 2, "s3cret", "alice", "46000", 0);
    const auto byCid = [](uint32_t cid) { return [cid](R &a) { return AtGetAuthDataByCid(&a, cid); }; };
    const Step query = Ok("AT^AUTHDATA?", "^AUTHDATA: 1,2,\"s3cret\",\"alice\",\"46000\"\r\n^AUTHDATA: 3,1,\"pw\",\"bob\",\"\"").Prefix("^AUTHDATA").Timeout(30);
    RunRows<R>({
        {"set: PLMN, then password, then user name", [input](R &a) { input(a); return AtAuthDataHandler(&a); },
         {Ok("AT^AUTHDATA=1,2,\"46000\",\"s3cret\",\"alice\"").Prefix("^AUTHDATA").Timeout(30)}, 0, Auth(1, 2, "s3cret", "alice", "46000", AT_ERRID_OK), kSimple, input},
        {"first context", [](R &a) { return AtGetAuthData(&a); }, {query}, 0, Auth(1, 2, "s3cret", "alice", "46000", AT_ERRID_OK), kListClass},
        {"by cid: the second line", byCid(3), {query}, 0, Auth(3, 1, "pw", "bob", "", 0, true), kFails},
        {"by cid: none matches, the last line stays", byCid(2), {query}, -1, Auth(3, 1, "pw", "bob", "", 0, true)},
        {"by cid: a line of another command", byCid(1), {Ok("AT^AUTHDATA?", "^CGAUTH: 1,0")}, -1, [](R &a) { std::memset(&a, 0, sizeof a); }},
    });
}

NdisDupProfile Profile(uint8_t apnIsStatic, uint8_t ipIsStatic) {
    NdisDupProfile p = Filled<NdisDupProfile>(0x5A);
    p.apnIsStatic = apnIsStatic; p.ipIsStatic = ipIsStatic; p.authType = '2';
    SetText(p.apn, "internet"); SetText(p.username, "alice"); SetText(p.passwd, "s3cret"); SetText(p.ipAddr, "10.0.0.5");
    return p;
}

TEST(AtsNdis, DialUp) {
    using R = NdisDupProfile;
    TraceCapture trace;
    const auto dial = [](R &p) { return AtNdisDup(1, 1, &p); };
    const std::pair<R, const char *> forms[] = {
        {Profile(1, 1), "AT^NDISDUP=1,1,\"internet\",\"alice\",\"s3cret\",2,\"10.0.0.5\""},
        {Profile(1, 0), "AT^NDISDUP=1,1,\"internet\",\"alice\",\"s3cret\",2"},
        {Profile(0, 1), "AT^NDISDUP=1,1,,\"alice\",\"s3cret\",2,\"10.0.0.5\""},
        {Profile(0, 0), "AT^NDISDUP=1,1,,\"alice\",\"s3cret\",2"},
        {Profile(2, 2), "AT^NDISDUP=1,1,,\"alice\",\"s3cret\",2"},  // only 1 counts as set
    };
    for (const auto &[profile, line] : forms) {  // the error classes once
        const auto errors = line == forms[0].second ? std::optional(kSimple) : std::nullopt;
        RunRows<R>({{line, dial, {Ok(line).Prefix("^NDISDUP").Timeout(30)}, 0, Done<R>, errors}}, profile);
    }
    RunRows<R>({{"without a profile: cid and connect flag only", [](R &) { return AtNdisDup(2, 0, nullptr); }, {Ok("AT^NDISDUP=2,0").Prefix("^NDISDUP").Timeout(30)}, 0}});
    EXPECT_FALSE(trace.Contains("s3cret")) << "the password reached the trace";
}

TEST(AtsNdis, DataChannel) {
    using R = ChDataRequest;
    const auto bind = [](uint32_t channel) { return [channel](R &r) { r.dataChannel = channel; return AtChData(&r); }; };
    const auto bound = [](uint32_t channel) { return [=](R &r) { r = {1, channel, AT_ERRID_OK}; }; };
    RunRows<R>({
        {"a channel", bind(3), {Ok("AT^CHDATA=1,3").Prefix("^CHDATA").Timeout(30)}, 0, bound(3)},
        {"channel 0 leaves it to the module", bind(0), {Ok("AT^CHDATA=1")}, 0, bound(0), kSimple, [](R &r) { r.dataChannel = 0; }},
    }, R{1, 9, 0x5A5A5A5A});
}
// clang-format on

}  // namespace
}  // namespace atapi::test
