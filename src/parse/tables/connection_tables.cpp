// Data-connection modules: dial-up profiles (15), DMZ (16), connection status
// (17), on-demand dial (18), provider name (19), PDP contexts (25), PDP
// authentication (24), traffic statistics (20), DHCP (21), USSD mode (22) and
// router advertisement (23).
#include <iterator>

#include "parse/tables/internal_tables.h"
#include "parse/tables/row_builder.h"

namespace {
using atapi::tables::Q;
using atapi::tables::RowMaker;
using atapi::tables::S;
using atapi::tables::T;
}  // namespace

// clang-format off
extern "C" {

ATAPI_EXPORT extern constexpr AtParseHandler g_profileCfgHandlers[] = {
    RowMaker{15}.Row("^APPROFALL", Q("^APPROFALL:index,is_valid,profile_name,apn_is_static,apn_name,dialup_num,username,password,auth_modeip_is_static,addr,dns_is_static,primary_dns,secondary_dns,wins_is_static,primary_wins,read_only"), S(), T()),
    RowMaker{15}.End(),
};

ATAPI_EXPORT extern constexpr AtParseHandler g_spnCfgHandlers[] = {
    RowMaker{19}.Row("^SPN", Q("^SPN:disp_rplmn,coding,spn_name"), S(), T()),
    RowMaker{19}.End(),
};

ATAPI_EXPORT extern constexpr AtParseHandler g_ussdCfgHandlers[] = {
    RowMaker{22}.Row("^USSDMODE", Q("^USSDMODE: mode"), S(), T()),
    RowMaker{22}.End(),
};

}  // extern "C"

namespace atapi {

extern constexpr AtParseHandler g_dmzCfgHandlers[] = {
    RowMaker{16}.Row("^APDMZ", Q("^APDMZ:enable,dmz_ipaddr"), S(), T()),
    RowMaker{16}.End(),
};

extern constexpr AtParseHandler g_connStatCfgHandlers[] = {
    RowMaker{17}.Row("^APCONNST", Q("^APCONNST:status,IPV4,status,IPV6,status,Ethernet"), S(), T()),
    RowMaker{17}.Row("^GLASTERR", Q("^GLASTERR:type,code"), S(), T()),
    RowMaker{17}.Row("^CGDNS", Q("CGDNS: cid,PriDns,SecDns"), S(), T()),
    RowMaker{17}.Row("^IPV6CAP", Q("IPV6CAP: cfg_value"), S(), T()),
    RowMaker{17}.Row("^NDISSTATQRY", Q("NDISSTATQRY:stat,err_code,wx_state,PDP_type,stat,err_code,wx_state,PDP_type"), S(), T("^NDISSTATQRY:(cid)", ParseNdisStateQueryAtStr)),
    RowMaker{17}.End(),
};

extern constexpr AtParseHandler g_needDialCfgHandlers[] = {
    RowMaker{18}.Row("^APNEEDDIAL", Q("^APNEEDDIAL:enable,ondemand_time"), S(), T()),
    RowMaker{18}.End(),
};

extern constexpr AtParseHandler g_pdpContextCfgHandlers[] = {
    RowMaker{25}.Row("+CGDCONT", Q("+CGDCONT:cid,PDP_type,APN,PDP_address,d_comp,h_comp,temp7,emergency,PCSCF,IM_CN,NSLPI"), S(), T()),
    RowMaker{25}.End(),
};

extern constexpr AtParseHandler g_authDataCfgHandlers[] = {
    RowMaker{24}.Row("^AUTHDATA", Q("^AUTHDATA:cid,Auth_type,passwd,username,PLMN"), S(), T()),
    RowMaker{24}.End(),
};

extern constexpr AtParseHandler g_flowCfgHandlers[] = {
    RowMaker{20}.Row("^DSFLOWQRY", Q("^DSFLOWQRY:last_ds_time,last_tx_flow,last_rx_flow,total_ds_time,total_tx_flow,total_rx_flow")),
    RowMaker{20}.End(),
};

extern constexpr AtParseHandler g_dhcpCfgHandlers[] = {
    RowMaker{21}.Row("^DHCP", Q("^DHCP:IPAddr,NetMask,GateWay,DHCPserver,pDNS,sDNS,max_rx_data,max_tx_data")),
    RowMaker{21}.Row("^DHCPV6", Q("^DHCPV6:clip_v6,netmask_v6,gate_v6,dhcp_v6,pDNS_v6,sDNS_v6,max_rx_data,max_tx_data")),
    RowMaker{21}.End(),
};

extern constexpr AtParseHandler g_raInfoCfgHandlers[] = {
    RowMaker{23}.Row("^APRAINFO", Q("^APRAINFO:ipv6_mtu,prefix,preferred_lifetime,valid_lifetime,MFlag,OFlag")),
    RowMaker{23}.Row("^APLANADDR", Q("^APLANADDR:addr,prefixlen")),
    RowMaker{23}.End(),
};
// clang-format on

static_assert(std::size(g_dmzCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_connStatCfgHandlers) == 6, "5 rows and the end entry");
static_assert(std::size(g_needDialCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_pdpContextCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_authDataCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_flowCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_dhcpCfgHandlers) == 3, "2 rows and the end entry");
static_assert(std::size(g_raInfoCfgHandlers) == 3, "2 rows and the end entry");

}  // namespace atapi

static_assert(std::size(g_profileCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_spnCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_ussdCfgHandlers) == 2, "1 row and the end entry");
