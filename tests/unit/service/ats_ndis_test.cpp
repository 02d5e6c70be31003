// PDP contexts and connection state against the scripted modem.

#include "atapi/ats_ndis.h"

#include "command_cases.h"

namespace atapi::test {
namespace {

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
        Filled<PdpContextInfo>(0x5A));
}

TEST(AtsNdis, ConnectionState) {
    const auto state = [](uint32_t cid) {
        return [cid](PppStateInfo &s) { return AtPppState(cid, &s); };
    };
    const auto states = [](uint32_t v4, uint32_t v6, uint32_t ether) {
        return [=](PppStateInfo &s) {
            s.ipv4Status = v4;
            s.ipv6Status = v6;
            s.etherStatus = ether;
            s.errorId = AT_ERRID_OK;
        };
    };
    RunCommandCases<PppStateInfo>(
        {
            {"cid 0 reads all families",
             state(0),
             {Ok("AT^APCONNST?", "^APCONNST: 1,\"IPV4\",2,\"IPV6\",0,\"Ethernet\"")
                  .Prefix("^APCONNST")
                  .Timeout(5)},
             0,
             states(1, 2, 0)},
            {"cid 1 is the set form",
             state(1),
             {Ok("AT^APCONNST=1", "^APCONNST: 2,\"IPV4\",0,\"IPV6\",0,\"Ethernet\"")},
             0,
             states(2, 0, 0)},
            {"a state out of range",
             state(1),
             {Ok("AT^APCONNST=1", "^APCONNST: 3,\"IPV4\",0,\"IPV6\",0,\"Ethernet\"")},
             -1},
            {"an error reply is done, with its id",
             state(2),
             {Fails("AT^APCONNST=2", AT_RET_CME_ERROR, "+CME ERROR: 30")},
             0,
             [](PppStateInfo &s) { s.errorId = 30; }},
            {"ERROR", state(2), {Fails("AT^APCONNST=2", AT_RET_ERROR, "ERROR")}, -1},
            {"unparsable reply", state(0), {Ok("AT^APCONNST?", "^OTHER: 1")}, -1},
        },
        Filled<PppStateInfo>(0x5A));
    EXPECT_EQ(AtPppState(0, nullptr), -1);
}

}  // namespace
}  // namespace atapi::test
