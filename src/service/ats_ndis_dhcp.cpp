// Data connection: the addresses of a connection (^DHCP, ^DHCPV6) and its
// IPv6 router advertisement (^APRAINFO).
#include <cstdlib>
#include <cstring>

#include "api/command.h"
#include "api/reply.h"
#include "atapi/ats_ndis.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "platform/osa.h"
#include "service/ats_ndis_internal.h"

namespace {

using namespace atapi::api;
using atapi::ParseRows;
using atapi::ndis::Named;

constexpr char kTraceSrc[] = "atapi/src/ats_ndis";

// The default connection is read with the query form, any other cid with
// the set form.
constexpr uint32_t kDefaultCid = 1;

constexpr CommandDescription kDhcpQuery = Reads("AT^DHCP?", "^DHCP", module::kDhcp);
constexpr CommandDescription kDhcpSet = kDhcpQuery.WithFormat("AT^DHCP=%d");

constexpr CommandDescription kDhcpV6Query = Reads("AT^DHCPV6?", "^DHCPV6", module::kDhcp);
constexpr CommandDescription kDhcpV6Set = kDhcpV6Query.WithFormat("AT^DHCPV6=%d");
constexpr auto kDhcpV6Fields = FieldList(
    Field<&DhcpV6Info::ipAddr>("clip_v6"), Field<&DhcpV6Info::netMask>("netmask_v6"),
    Field<&DhcpV6Info::gateWay>("gate_v6"), Field<&DhcpV6Info::dhcpServer>("dhcp_v6"),
    Field<&DhcpV6Info::pDns>("pDNS_v6"), Field<&DhcpV6Info::sDns>("sDNS_v6"),
    Field<&DhcpV6Info::maxRxData>("max_rx_data"), Field<&DhcpV6Info::maxTxData>("max_tx_data"));

constexpr CommandDescription kApRaInfo = Reads("AT^APRAINFO=%d", "^APRAINFO", module::kRaInfo);
constexpr auto kApRaFields =
    FieldList(Field<&ApRaInfo::ipv6Mtu>("ipv6_mtu"), Field<&ApRaInfo::prefix>("prefix"),
              Field<&ApRaInfo::preferredLifetime>("preferred_lifetime"),
              Field<&ApRaInfo::validLifetime>("valid_lifetime"));

constexpr size_t kIpTextSize = 16;  // "255.255.255.255" and its terminator
constexpr size_t kHexIpDigits = 8;

using AddressField = char (DhcpInfo::*)[kIpTextSize];
struct AddressName {
    const char *name;
    AddressField field;
};
constexpr AddressName kDhcpAddresses[] = {
    {"IPAddr", &DhcpInfo::ipAddr},   {"NetMask", &DhcpInfo::netMask},
    {"GateWay", &DhcpInfo::gateWay}, {"DHCPserver", &DhcpInfo::dhcpServer},
    {"pDNS", &DhcpInfo::pDns},       {"sDNS", &DhcpInfo::sDns},
};

// A data rate in bit/s; the module has no negative rates, so one reads as 0.
uint64_t Rate(const char *text) {
    const long long value = std::strtoll(text, nullptr, 10);
    return value < 0 ? 0 : static_cast<uint64_t>(value);
}

// The value of one hex digit pair, as the module's digits are read.
int32_t PairValue(char high, char low) { return AtCharToHex(&high) * 16 + AtCharToHex(&low); }

}  // namespace

namespace atapi::ndis {

void AtHexIpToDotStr(const char *hex, char out[16]) {
    if (hex == nullptr) return;
    const size_t len = strnlen(hex, kHexIpDigits + 1);
    if (len > kHexIpDigits) return;
    memset_s(out, kIpTextSize, 0, kIpTextSize);
    char digits[kHexIpDigits + 1] = "00000000";  // short values get leading zeros
    std::memcpy(digits + (kHexIpDigits - len), hex, len);

    // The octets in reply order; a text that does not fit stops short and
    // is refused below as it then lacks an octet.
    for (size_t i = 0; i < kHexIpDigits; i += 2) {
        const int32_t octet = PairValue(digits[i], digits[i + 1]);
        if (!api::AppendFormat(out, kIpTextSize, i == 0 ? "%d" : ".%d", octet)) break;
    }

    // The module sends the address least significant octet first.
    char text[kIpTextSize];
    std::memcpy(text, out, kIpTextSize);
    char *pieces[4] = {text, nullptr, nullptr, nullptr};
    for (size_t i = 1; i < 4; ++i) {
        char *dot = pieces[i - 1] != nullptr ? std::strchr(pieces[i - 1], '.') : nullptr;
        if (dot == nullptr) break;
        *dot = '\0';
        pieces[i] = dot + 1;
    }
    int32_t octets[4] = {};
    for (size_t i = 0; i < 4; ++i) {
        if (pieces[i] == nullptr || CheckValidNum(pieces[i], 0, INT32_MAX) != 0) {
            AT_LOG_ERR("the value is invalid");
            return;
        }
        octets[i] = SafeStrAtoi(pieces[i]);
    }
    if (sprintf_s(out, kIpTextSize, "%d.%d.%d.%d", octets[3], octets[2], octets[1], octets[0]) <
        0) {
        return;
    }
    AT_LOG_INFO("end");
}

int32_t AtDhcpCmdOk(char *reply, DhcpInfo *d) {
    if (reply == nullptr || d == nullptr) return -1;
    int32_t status = AT_PARSE_OK;
    const ParseRows rows = ParseReply(kDhcpQuery, reply, &status);
    if (status != AT_PARSE_OK || rows.Get() == nullptr) return -1;
    d->errorId = AT_ERRID_OK;
    ForEachField(rows.Get(), [d](const char *name, const char *value) {
        for (const AddressName &address : kDhcpAddresses) {
            if (std::strcmp(name, address.name) == 0) AtHexIpToDotStr(value, d->*address.field);
        }
        if (std::strcmp(name, "max_rx_data") == 0) d->maxRxData = Rate(value);
        if (std::strcmp(name, "max_tx_data") == 0) d->maxTxData = Rate(value);
    });
    AT_LOG_INFO("end");
    return 0;
}

}  // namespace atapi::ndis

extern "C" {

int32_t AtDhcp(uint32_t cid, DhcpInfo *d) {
    if (d == nullptr) {
        AT_LOG_ERR("no param, AT^DHCP cmd not execute");
        return -1;
    }
    AT_LOG_INFO("enter, cid = [%d]", static_cast<int32_t>(cid));
    Reply reply(cid == kDefaultCid ? Command(kDhcpQuery)
                                   : Command(kDhcpSet, static_cast<int32_t>(cid)));
    if (reply.Status() != 0) {
        AT_LOG_ERR("AT^DHCP result parse failed");
        return reply.Status();
    }
    if (!reply.Ok()) {
        AT_LOG_ERR("AT^DHCP query error");
        return -1;
    }
    return atapi::ndis::AtDhcpCmdOk(reply.Text(), d);
}

int32_t AtDhcpV6(uint32_t cid, DhcpV6Info *d) {
    if (d == nullptr) {
        AT_LOG_ERR("no param, AT^DHCPV6 cmd not execute");
        return -1;
    }
    const Command cmd =
        cid == kDefaultCid ? Command(kDhcpV6Query) : Command(kDhcpV6Set, static_cast<int32_t>(cid));
    const int32_t ret = cmd.Query(kDhcpV6Fields, *d, &d->errorId);
    return ret == 0 && d->errorId == AT_ERRID_OK ? 0 : -1;
}

int32_t AtApRaInfo(uint32_t cid, ApRaInfo *r) {
    if (r == nullptr) {
        AT_LOG_ERR("no param, AT^DHCP cmd not execute");
        return -1;
    }
    return Command(kApRaInfo, static_cast<int32_t>(cid)).Query(kApRaFields, *r, &r->errorId);
}

}  // extern "C"
