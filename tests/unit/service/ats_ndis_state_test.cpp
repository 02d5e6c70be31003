// Connection state, addresses and router advertisement of a connection, and
// the settings that dial-up depends on, against the scripted modem; and the
// conversion of the module's hex IPv4 addresses.

#include <algorithm>
#include <cstdlib>
#include <tuple>

#include "atapi/ats_ndis.h"
#include "atapi/ats_security.h"
#include "error_classes.h"
#include "service/ats_ndis_internal.h"

namespace atapi::test {
namespace {

constexpr uint32_t kUntouched = 0x5A5A5A5A;

// clang-format off
TEST(AtsNdisState, ConnectionState) {
    using R = PppStateInfo;
    const auto state = [](uint32_t cid) { return [cid](R &s) { return AtPppState(cid, &s); }; };
    const auto states = [](uint32_t v4, uint32_t v6, uint32_t ether) { return [=](R &s) { s.ipv4Status = v4; s.ipv6Status = v6; s.etherStatus = ether; Done(s); }; };
    RunRows<R>({
        {"cid 0 reads all families", state(0), {Ok("AT^APCONNST?", "^APCONNST: 1,\"IPV4\",2,\"IPV6\",0,\"Ethernet\"").Prefix("^APCONNST").Timeout(5)}, 0, states(1, 2, 0)},
        {"cid 1 is the set form", state(1), {Ok("AT^APCONNST=1", "^APCONNST: 2,\"IPV4\",0,\"IPV6\",0,\"Ethernet\"")}, 0, states(2, 0, 0), kOwnDone},
        {"a state out of range", state(1), {Ok("AT^APCONNST=1", "^APCONNST: 3,\"IPV4\",0,\"IPV6\",0,\"Ethernet\"")}, -1},
        {"unparsable reply", state(0), {Ok("AT^APCONNST?", "^OTHER: 1")}, -1},
    });
}

TEST(AtsNdisState, DialUpState) {
    using R = NdisStatInfo;
    const auto query = [](int32_t cid) { return [cid](R &s) { return AtNdisStatQryState(cid, &s); }; };
    RunRows<R>({
        {"cid 1 reads the default connection", query(1), {Ok("AT^NDISSTATQRY?", "^NDISSTATQRY: 1,,,\"IPV4\",0,33,,\"IPV6\"").Prefix("^NDISSTATQRY").Timeout(5)}, 0,
         [](R &s) { s.ipv4Stat = 1; s.ipv4ErrCode = 0; s.ipv6Stat = 0; s.ipv6ErrCode = 33; s.errCode = 33; Done(s); }},
        // The family is named by PDP_type; the first stat stands for IPv4 too.
        {"an Ethernet family", query(2), {Ok("AT^NDISSTATQRY=2", "^NDISSTATQRY: 2,,,\"IPV6\",1,7,,\"Ethernet\"")}, 0,
         [](R &s) { s.ipv4Stat = 2; s.ipv6Stat = 2; s.ipv6ErrCode = 0; s.etherStat = 1; s.etherErrCode = 7; s.errCode = 7; Done(s); }, kOwnDone},
        {"a stat out of range", query(1), {Ok("AT^NDISSTATQRY?", "^NDISSTATQRY: 4,,,\"IPV4\",0,,,\"IPV6\"")}, -1},
    });
}

TEST(AtsNdisState, DialUpCids) {
    using R = NdisCidList;
    const auto test = [](R &l) { return AtNdisStatQryTest(&l); };
    const auto cids = [](std::vector<const char *> texts, int32_t errorId) {
        return [texts, errorId](R &l) { std::memset(&l, 0, sizeof l); for (const char *t : texts) SetText(l.cids[l.count++], t); l.errorId = errorId; };
    };
    const char *line = "AT^NDISSTATQRY=?";
    RunRows<R>({
        {"the list", test, {Ok(line, "^NDISSTATQRY: (1,2,16)").Prefix("^NDISSTATQRY").Timeout(5)}, 0, cids({"1", "2", "16"}, AT_ERRID_OK)},
        {"at most 16 cids of at most 3 characters", test, {Ok(line, "^NDISSTATQRY: (1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,1000,17)")}, 0,
         cids({"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "13", "14", "15", "100"}, AT_ERRID_OK)},
        {"an error reply is done, with its id", test, {Fails(line, AT_RET_CME_ERROR, "+CME ERROR: 10")}, 0, cids({}, kCme10)},
        {"ERROR", test, {Fails(line, AT_RET_ERROR, "ERROR")}, -1, cids({}, 0)},
        {"a reply without the list", test, {Ok(line, "^NDISSTATQRY: 1")}, -1, cids({}, 0)},
    });
}

DconnStatEntry Entry(uint32_t cid, const char *apn, uint32_t v4, uint32_t v6, uint32_t type, uint32_t ether) {
    DconnStatEntry e{};
    SetText(e.apn, apn);
    std::tie(e.cid, e.ipv4Stat, e.ipv6Stat, e.dconnType, e.etherStat) = std::tie(cid, v4, v6, type, ether);
    return e;
}

// The list as the call leaves it: the count, where the list points (0: the
// caller's entry, 1: null, 2: entries of its own, copied here).
struct Connections {
    uint32_t count, list;
    DconnStatEntry entries[16];
};

TEST(AtsNdisState, ConnectionList) {
    const auto list = [](int32_t flag) {
        return [flag](Connections &c) {
            DconnStatEntry callers{};
            DconnStatEntry *list = &callers;
            const int32_t ret = AtDconnStatList(flag, &c.count, &list);
            c.list = list == &callers ? 0 : list == nullptr ? 1 : 2;
            if (c.list == 2) std::memcpy(c.entries, list, std::min<size_t>(c.count, 16) * sizeof *list);
            if (c.list == 2) std::free(list);
            return ret;
        };
    };
    const auto listed = [](std::vector<DconnStatEntry> entries) { return [entries](Connections &c) { c.count = entries.size(); c.list = 2; std::copy(entries.begin(), entries.end(), c.entries); }; };
    std::string sixteen;
    std::vector<DconnStatEntry> sixteenEntries;
    for (uint32_t i = 1; i <= 16; ++i) {
        sixteen += "^DCONNSTAT: " + std::to_string(i) + ",\"\",0,0,1,0\r\n";
        sixteenEntries.push_back(Entry(i, "", 0, 0, 1, 0));
    }
    const std::string two = "^DCONNSTAT: 1,\"internet\",1,0,1,0\r\n^DCONNSTAT: 2,\"ims\",1,1,2,1";
    RunRows<Connections>({
        {"two connections", list(0), {Ok("AT^DCONNSTAT?", two).Prefix("^DCONNSTAT:").Timeout(30)}, 0, listed({Entry(1, "internet", 1, 0, 1, 0), Entry(2, "ims", 1, 1, 2, 1)}), kOwnDone},
        {"a full list", list(0), {Ok("AT^DCONNSTAT?", sixteen)}, 0, listed(sixteenEntries)},
        {"flag 1 does not query", list(1), {}, 0},
        {"no connection", list(0), {Ok("AT^DCONNSTAT?")}, -1},
        {"a line that cannot be read", list(0), {Ok("AT^DCONNSTAT?", "^DCONN: 1\r\n" + two)}, -1, [](Connections &c) { c.count = 0; c.list = 1; }},
    }, Connections{77, 0, {}});
}

TEST(AtsNdisState, Settings) {
    RunRows<Ipv6CapInfo>({
        {"IPv6 capability", [](Ipv6CapInfo &r) { return AtIpv6Cap(&r); }, {Ok("AT^IPV6CAP?", "^IPV6CAP: 7").Prefix("^IPV6CAP").Timeout(5)}, 0, [](Ipv6CapInfo &r) { r = {7, AT_ERRID_OK}; }, kListDone},
        {"a value out of 1..11 is not stored", [](Ipv6CapInfo &r) { return AtIpv6Cap(&r); }, {Ok("AT^IPV6CAP?", "^IPV6CAP: 12")}, 0, Done<Ipv6CapInfo>},
    });
    RunRows<CardModeInfo>({{"card mode", [](CardModeInfo &r) { return AtCardMode(&r); }, {Ok("AT^CARDMODE", "^CARDMODE: 2").Prefix("^CARDMODE").Timeout(30)}, 0,
                            [](CardModeInfo &r) { r = {2, AT_ERRID_OK}; }, kListClass}});
    RunRows<HfeatureStatusInfo>({{"feature status", [](HfeatureStatusInfo &h) { return AtHfeatureStatus(3, &h); }, {Ok("AT^HFEATURESTAT=3", "^HFEATURESTAT: 3,1,0,2,0,5").Prefix("^HFEATURESTAT")}, 0,
                                  [](HfeatureStatusInfo &h) { h = {3, 1, 0, 2, 0, 5, AT_ERRID_OK}; }, kListClass}});
    RunRows<CpinInfo>({{"PIN state", [](CpinInfo &r) { return AtCpinCheck(&r); }, {Ok("AT+CPIN?", "+CPIN: READY").Prefix("+CPIN")}, 0,
                        [](CpinInfo &r) { SetText(r.code, "READY"); Done(r); }, kListDone}});
}

TEST(AtsNdisState, LteProfileRange) {
    using R = LteProfileRange;
    const auto test = [](R &r) { return AtLteProfileTest(&r); };
    const auto read = [](uint32_t first, uint32_t last) { return [=](R &r) { r.mode1 = 0; r.mode2 = 1; r.firstIndex = first; r.lastIndex = last; Done(r); }; };
    const char *line = "AT^LTEPROFILE=?";
    RunRows<R>({
        {"modes and index range", test, {Ok(line, "^LTEPROFILE: (0,1),(0-7),10,99,64,64,(0-3)").Prefix("^LTEPROFILE").Timeout(30)}, 0, read(0, 7), kFails},
        {"a single index is no range", test, {Ok(line, "^LTEPROFILE: (0,1),(5),10,99,64,64,(0-3)")}, -1, read(kUntouched, kUntouched)},
        {"a range of more than 9 characters", test, {Ok(line, "^LTEPROFILE: (0,1),(10000-20000),10,99,64,64,(0-3)")}, -1, read(kUntouched, kUntouched)},
    });
}

TEST(AtsNdisDhcp, HexIpToDotStr) {
    const std::pair<const char *, const char *> cases[] = {
        {"0100A8C0", "192.168.0.1"},  // little-endian: the last pair is the first octet
        {"1", "1.0.0.0"},             // short values get leading zeros
        {"fffffffe", "254.255.255.255"},
        {"000000  ", "0.0.0.-391"},  // a pair that is no number: the octets stay in reply order
        {"0100A8C00", nullptr},      // too long, and null: out untouched
        {nullptr, nullptr},
    };
    for (const auto &[hex, expected] : cases) {
        char out[16];
        std::memset(out, 'x', sizeof out);
        ndis::AtHexIpToDotStr(hex, out);
        const std::string text = expected != nullptr ? expected : "";
        EXPECT_EQ(std::string(out, sizeof out), expected != nullptr ? text + std::string(sizeof out - text.size(), '\0') : std::string(sizeof out, 'x')) << (hex != nullptr ? hex : "(null)");
    }
}

// 192.168.0.10/24; gateway, DHCP server and DNS 192.168.0.1; no second DNS.
std::function<void(DhcpInfo &)> Addresses(uint64_t rx) {
    return [rx](DhcpInfo &d) {
        const std::pair<char(*)[16], const char *> texts[] = {{&d.ipAddr, "192.168.0.10"}, {&d.netMask, "255.255.255.0"}, {&d.gateWay, "192.168.0.1"},
                                                              {&d.dhcpServer, "192.168.0.1"}, {&d.pDns, "192.168.0.1"}, {&d.sDns, "0.0.0.0"}};
        for (const auto &[field, text] : texts) { std::memset(*field, 0, sizeof *field); SetText(*field, text); }
        d.maxRxData = rx; d.maxTxData = 50000000; Done(d);
    };
}

TEST(AtsNdisDhcp, Dhcp) {
    const auto dhcp = [](uint32_t cid) { return [cid](DhcpInfo &d) { return AtDhcp(cid, &d); }; };
    RunRows<DhcpInfo>({
        {"cid 1 reads the default connection", dhcp(1), {Ok("AT^DHCP?", "^DHCP: 0A00A8C0,00FFFFFF,0100A8C0,0100A8C0,0100A8C0,00000000,150000000,50000000").Prefix("^DHCP").Timeout(30)}, 0, Addresses(150000000)},
        {"another cid; a negative rate reads as 0", dhcp(2), {Ok("AT^DHCP=2", "^DHCP: 0A00A8C0,00FFFFFF,0100A8C0,0100A8C0,0100A8C0,0,-1,50000000")}, 0, Addresses(0), kFails},
        {"no reply text", dhcp(1), {Ok("AT^DHCP?")}, -1},
    });
}

TEST(AtsNdisDhcp, DhcpV6AndRouterAdvertisement) {
    const auto dhcp = [](uint32_t cid) { return [cid](DhcpV6Info &d) { return AtDhcpV6(cid, &d); }; };
    const char *reply = "^DHCPV6: 2001:db8:1::10,ffff:ffff:ffff:ffff::,2001:db8:1::1,2001:db8:1::1,2001:db8::53,2001:db8::54,150000000,50000000";
    const auto addresses = [](DhcpV6Info &d) {
        SetText(d.ipAddr, "2001:db8:1::10"); SetText(d.netMask, "ffff:ffff:ffff:ffff::"); SetText(d.gateWay, "2001:db8:1::1"); SetText(d.dhcpServer, "2001:db8:1::1");
        SetText(d.pDns, "2001:db8::53"); SetText(d.sDns, "2001:db8::54"); d.maxRxData = 150000000; d.maxTxData = 50000000; Done(d);
    };
    RunRows<DhcpV6Info>({
        {"cid 1 reads the default connection", dhcp(1), {Ok("AT^DHCPV6?", reply).Prefix("^DHCPV6").Timeout(30)}, 0, addresses},
        {"another cid", dhcp(3), {Ok("AT^DHCPV6=3", reply)}, 0, addresses, kListFails},
    });
    RunRows<ApRaInfo>({{"router advertisement", [](ApRaInfo &r) { return AtApRaInfo(1, &r); }, {Ok("AT^APRAINFO=1", "^APRAINFO: 1500,\"2001:db8:1::/64\",3600,7200,0,1").Prefix("^APRAINFO").Timeout(30)}, 0,
                        [](ApRaInfo &r) { r.ipv6Mtu = 1500; SetText(r.prefix, "2001:db8:1::/64"); r.preferredLifetime = 3600; r.validLifetime = 7200; Done(r); }, kListClass}});
}

// Every function of the family refuses a missing argument before sending.
TEST(AtsNdis, NullArguments) {
    static uint32_t count = 0;
    ExpectRefused({
        {"AtCgdContHandler", [] { return AtCgdContHandler(nullptr); }}, {"AtGetCgdCont", [] { return AtGetCgdCont(nullptr); }},
        {"AtGetCgdContByCid", [] { return AtGetCgdContByCid(nullptr, 1); }}, {"AtAuthDataHandler", [] { return AtAuthDataHandler(nullptr); }},
        {"AtGetAuthData", [] { return AtGetAuthData(nullptr); }}, {"AtGetAuthDataByCid", [] { return AtGetAuthDataByCid(nullptr, 1); }},
        {"AtChData", [] { return AtChData(nullptr); }}, {"AtPppState", [] { return AtPppState(0, nullptr); }},
        {"AtNdisStatQryState", [] { return AtNdisStatQryState(1, nullptr); }}, {"AtNdisStatQryTest", [] { return AtNdisStatQryTest(nullptr); }},
        {"AtDconnStatList", [] { return AtDconnStatList(0, &count, nullptr); }}, {"AtIpv6Cap", [] { return AtIpv6Cap(nullptr); }},
        {"AtCardMode", [] { return AtCardMode(nullptr); }}, {"AtHfeatureStatus", [] { return AtHfeatureStatus(3, nullptr); }},
        {"AtCpinCheck", [] { return AtCpinCheck(nullptr); }}, {"AtLteProfileTest", [] { return AtLteProfileTest(nullptr); }},
        {"AtDhcp", [] { return AtDhcp(1, nullptr); }}, {"AtDhcpV6", [] { return AtDhcpV6(1, nullptr); }}, {"AtApRaInfo", [] { return AtApRaInfo(1, nullptr); }},
    });
}
// clang-format on

}  // namespace
}  // namespace atapi::test
