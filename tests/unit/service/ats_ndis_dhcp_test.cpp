// Addresses and router advertisement of a connection against the scripted
// modem, and the conversion of the module's hex IPv4 addresses.

#include "atapi/ats_ndis.h"
#include "error_classes.h"
#include "service/ats_ndis_internal.h"

namespace atapi::test {
namespace {

constexpr unsigned char kFill = 0x5A;

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
        SCOPED_TRACE(hex != nullptr ? hex : "(null)");
        char out[16];
        std::memset(out, 'x', sizeof out);
        ndis::AtHexIpToDotStr(hex, out);
        const std::string text = expected != nullptr ? expected : "";
        EXPECT_EQ(std::string(out, sizeof out),
                  expected != nullptr ? text + std::string(sizeof out - text.size(), '\0')
                                      : std::string(sizeof out, 'x'));
    }
}

// 192.168.0.10/24; gateway, DHCP server and DNS 192.168.0.1; no second DNS.
std::function<void(DhcpInfo &)> Addresses(uint64_t rx) {
    return [rx](DhcpInfo &d) {
        const std::pair<char(*)[16], const char *> texts[] = {
            {&d.ipAddr, "192.168.0.10"}, {&d.netMask, "255.255.255.0"},
            {&d.gateWay, "192.168.0.1"}, {&d.dhcpServer, "192.168.0.1"},
            {&d.pDns, "192.168.0.1"},    {&d.sDns, "0.0.0.0"}};
        for (const auto &[field, text] : texts) {
            std::memset(*field, 0, sizeof *field);
            SetText(*field, text);
        }
        d.maxRxData = rx;
        d.maxTxData = 50000000;
        d.errorId = AT_ERRID_OK;
    };
}

// clang-format off
TEST(AtsNdisDhcp, Dhcp) {
    const auto dhcp = [](uint32_t cid) { return [cid](DhcpInfo &d) { return AtDhcp(cid, &d); }; };
    RunCommandCases<DhcpInfo>(Cases<DhcpInfo>{
        {"cid 1 reads the default connection", dhcp(1),
         {Ok("AT^DHCP?", "^DHCP: 0A00A8C0,00FFFFFF,0100A8C0,0100A8C0,0100A8C0,00000000,150000000,50000000")
              .Prefix("^DHCP").Timeout(30)}, 0, Addresses(150000000)},
        {"another cid; a negative rate reads as 0", dhcp(2),
         {Ok("AT^DHCP=2", "^DHCP: 0A00A8C0,00FFFFFF,0100A8C0,0100A8C0,0100A8C0,0,-1,50000000")}, 0, Addresses(0)},
        {"no reply text", dhcp(1), {Ok("AT^DHCP?")}, -1},
    } + ErrorCases<DhcpInfo>("addresses", dhcp(3), "AT^DHCP=3", kFails), Filled<DhcpInfo>(kFill));
    EXPECT_EQ(AtDhcp(1, nullptr), -1);
}

TEST(AtsNdisDhcp, DhcpV6AndRouterAdvertisement) {
    const auto dhcp = [](uint32_t cid) { return [cid](DhcpV6Info &d) { return AtDhcpV6(cid, &d); }; };
    const char *reply = "^DHCPV6: 2001:db8:1::10,ffff:ffff:ffff:ffff::,2001:db8:1::1,2001:db8:1::1,2001:db8::53,"
                        "2001:db8::54,150000000,50000000";
    const auto addresses = [](DhcpV6Info &d) {
        SetText(d.ipAddr, "2001:db8:1::10"); SetText(d.netMask, "ffff:ffff:ffff:ffff::");
        SetText(d.gateWay, "2001:db8:1::1"); SetText(d.dhcpServer, "2001:db8:1::1");
        SetText(d.pDns, "2001:db8::53"); SetText(d.sDns, "2001:db8::54");
        d.maxRxData = 150000000; d.maxTxData = 50000000; d.errorId = AT_ERRID_OK;
    };
    RunCommandCases<DhcpV6Info>(Cases<DhcpV6Info>{
        {"cid 1 reads the default connection", dhcp(1), {Ok("AT^DHCPV6?", reply).Prefix("^DHCPV6").Timeout(30)}, 0, addresses},
        {"another cid", dhcp(3), {Ok("AT^DHCPV6=3", reply)}, 0, addresses},
    } + ErrorCases<DhcpV6Info>("addresses", dhcp(3), "AT^DHCPV6=3", kListFails, &DhcpV6Info::errorId), Filled<DhcpV6Info>(kFill));
    RunCommandCases<ApRaInfo>({
        {"router advertisement", [](ApRaInfo &r) { return AtApRaInfo(1, &r); },
         {Ok("AT^APRAINFO=1", "^APRAINFO: 1500,\"2001:db8:1::/64\",3600,7200,0,1").Prefix("^APRAINFO").Timeout(30)}, 0,
         [](ApRaInfo &r) {
             r.ipv6Mtu = 1500; SetText(r.prefix, "2001:db8:1::/64");
             r.preferredLifetime = 3600; r.validLifetime = 7200; r.errorId = AT_ERRID_OK;
         }},
    }, Filled<ApRaInfo>(kFill));
    EXPECT_EQ(AtDhcpV6(1, nullptr), -1);
    EXPECT_EQ(AtApRaInfo(1, nullptr), -1);
}
// clang-format on

}  // namespace
}  // namespace atapi::test
