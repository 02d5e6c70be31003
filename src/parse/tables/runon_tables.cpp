// Modules 34, 32 and 101 as one array: no end entry between them, so a
// lookup that starts at 34 or 32 runs on through the rows that follow.
#include "parse/tables/internal_tables.h"
#include "parse/tables/row_builder.h"

namespace atapi {
namespace {
using tables::Q;
using tables::RowMaker;
}  // namespace

// clang-format off
extern constexpr AtParseHandler g_runOnCfgHandlers[] = {
    // Module 34: extended dial-up, PDP and time-sync settings.
    RowMaker{34}.Row("^NDISDUP", Q("^NDISDUP:cid,connect,apn,username,password,authtype")),
    RowMaker{34}.Row("+CGDCONT", Q("+CGDCONT:cid,pdptype,apn,pdpaddr,dcomp,hcomp,ipv4addr,emergency,pcscf,imcn,nslpi,securepco,ipv4mtu,localaddr,nonipmtu,reliabledata,ssc,snssai")),
    RowMaker{34}.Row("^AUTHDATA", Q("^AUTHDATA:cid,authtype,plmn,password,username")),
    RowMaker{34}.Row("^HPTCFG", Q("^HPTCFG:tsnEn,ueUncertainty,timeZone")),
    RowMaker{34}.Row("^TDCFG", Q("^TDCFG:infcfg,cfgOpt,cfgValue")),
    // Module 32: back-off timer.
    RowMaker{32}.Row("+CABTSR", Q("+CABTSR:status")),
    RowMaker{32}.Row("+CABTRDP", Q("+CABTRDP:apn,residual_backoff_time,re-attempt_rat_indicator,re-attempt_eplmn_indicator,NSLPI,procedure")),
    // Module 101: older status commands.
    RowMaker{101}.RowNoFree("+ZPAS", Q("+ZPAS:network,srv_domain")),
    RowMaker{101}.RowNoFree("+ZPINPUK", Q("+ZPINPUK:pinnumber,puknumber")),
    RowMaker{101}.RowNoFree("+ZSNT", Q("+ZSNT:cm_mode,net_sel_mode,pref_acq")),
    RowMaker{101}.RowNoFree("+ZOPRT", Q("+ZOPRT:mode")),
    RowMaker{101}.RowNoFree("+ZUSIM", Q("+ZUSIM:usim_card")),
    RowMaker{101}.RowNoFree("+ZSEC", Q("+ZSEC:sec_statue,sec_items")),
    RowMaker{101}.End(),
};
// clang-format on

// The entry points are offsets into this array; they hold only if each
// group starts where the row counts say.
static_assert(g_ndisExCfgHandlers[0].moduleId == 34 &&
              g_ndisExCfgHandlers[kNdisExRowCount - 1].moduleId == 34);
static_assert(g_backoffCfgHandlers[0].moduleId == 32 &&
              g_backoffCfgHandlers[kBackoffRowCount - 1].moduleId == 32);
static_assert(g_legacyCfgHandlers[0].moduleId == 101 &&
              g_legacyCfgHandlers[kLegacyRowCount].atName == nullptr);

}  // namespace atapi
