// The data-connection decoders on arbitrary reply text: the hex IPv4 address,
// the ^DHCP reply, the connection and dial-up states, the cid list, a
// ^DCONNSTAT line and the LTE profile ranges. Input: selector byte, control
// byte (allocation failure in the parse), reply text.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>

#include "fuzz_checks.h"
#include "fuzz_parse_input.h"
#include "service/ats_ndis_internal.h"

namespace {

using atapi::fuzz::Check;
using atapi::fuzz::Guarded;
using atapi::fuzz::Holds;
using atapi::fuzz::ReplyCopy;
using atapi::fuzz::Terminated;
using namespace atapi::ndis;

constexpr uint8_t kUnwritten = 0x5A;

// Hex digits only (at most eight, short ones with leading zeros) read as
// the address, least significant octet first; a longer text leaves out as it
// was; anything else ends terminated within out.
void HexIp(const std::string &text) {
    ReplyCopy hex(text);
    Guarded<char[16]> out;
    std::memset(out.record, kUnwritten, sizeof out.record);
    AtHexIpToDotStr(hex.Get(), out.record);
    Check(out.Intact());
    const size_t len = std::strlen(hex.Get());
    if (len > 8) {
        Check(Holds(out.record, kUnwritten));
        return;
    }
    Check(Terminated(out.record));
    bool allHex = true;
    for (size_t i = 0; i < len; ++i) allHex = allHex && std::isxdigit(hex.Get()[i]) != 0;
    if (!allHex) return;
    const unsigned long value = len == 0 ? 0 : std::stoul(std::string(hex.Get(), len), nullptr, 16);
    char expected[16];
    std::snprintf(expected, sizeof expected, "%lu.%lu.%lu.%lu", value & 0xFF, (value >> 8) & 0xFF,
                  (value >> 16) & 0xFF, value >> 24);
    Check(std::strcmp(out.record, expected) == 0);
}

void Dhcp(const std::string &text) {
    ReplyCopy reply(text);
    Guarded<DhcpInfo> d;
    std::memset(d.record.reserved, kUnwritten, sizeof d.record.reserved);
    AtDhcpCmdOk(reply.Get(), &d.record);
    const DhcpInfo &r = d.record;
    Check(d.Intact() && Holds(r.reserved, kUnwritten));
    Check(Terminated(r.ipAddr) && Terminated(r.netMask) && Terminated(r.gateWay) &&
          Terminated(r.dhcpServer) && Terminated(r.pDns) && Terminated(r.sDns));
}

// Only states the module defines are stored, on success or failure.
void PppState(const std::string &text) {
    ReplyCopy reply(text);
    Guarded<PppStateInfo> s;
    s.record.reserved = kUnwritten;
    PppStateFromReply(reply.Get(), s.record);
    const PppStateInfo &r = s.record;
    Check(s.Intact() && r.reserved == kUnwritten);
    Check(r.ipv4Status <= 2 && r.ipv6Status <= 2 && r.etherStatus <= 2);
}

void NdisState(const std::string &text) {
    ReplyCopy reply(text);
    Guarded<NdisStatInfo> s;
    s.record.reserved = kUnwritten;
    NdisStateFromReply(reply.Get(), s.record);
    const NdisStatInfo &r = s.record;
    Check(s.Intact() && r.reserved == kUnwritten);
    Check(r.ipv4Stat <= 3 && r.ipv6Stat <= 3 && r.etherStat <= 3);
}

void CidList(const std::string &text) {
    ReplyCopy reply(text);
    Guarded<NdisCidList> l;
    CidListFromReply(reply.Get(), l.record);
    Check(l.Intact() && l.record.count <= NDIS_CID_LIST_MAX);
    for (const auto &cid : l.record.cids) Check(Terminated(cid));
}

void DconnStat(const std::string &text) {
    ReplyCopy line(text);
    Guarded<DconnStatEntry> e;
    std::memset(e.record.reserved, kUnwritten, sizeof e.record.reserved);
    DconnStatFromLine(line.Get(), e.record);
    Check(e.Intact() && Holds(e.record.reserved, kUnwritten) && Terminated(e.record.apn));
}

void LteProfile(const std::string &text) {
    ReplyCopy reply(text);
    Guarded<LteProfileRange> r;
    std::memset(r.record.reserved, kUnwritten, sizeof r.record.reserved);
    LteProfileFromReply(reply.Get(), r.record);
    Check(r.Intact() && Holds(r.record.reserved, kUnwritten));
}

using Decoder = void (*)(const std::string &text);
constexpr Decoder kDecoders[] = {HexIp, Dhcp, PppState, NdisState, CidList, DconnStat, LteProfile};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    return atapi::fuzz::RunSelectedDecoder(data, size, kDecoders);
}
