// Modules 27, 28 and 30: socket contexts and positioning, feature status,
// chip temperatures.
#include <iterator>

#include "parse/tables/internal_tables.h"
#include "parse/tables/row_builder.h"

namespace atapi {
namespace {
using tables::Q;
using tables::RowMaker;
using tables::S;
using tables::T;
}  // namespace

// clang-format off
extern constexpr AtParseHandler g_positionCfgHandlers[] = {
    RowMaker{27}.Row("+CGDCONT", Q("+CGDCONT:cid,pdp_type,apn,ip_address,d_comp,h_comp"), S(), T()),
    RowMaker{27}.Row("^WPCAP", Q("^WPCAP:gps_type"), S(), T()),
    RowMaker{27}.Row("^WPDOM", Q("^WPDOM:operation_mode"), S(), T()),
    RowMaker{27}.Row("^WPDST", Q("^WPDST:session_type"), S(), T()),
    RowMaker{27}.Row("^GPSTYPE", Q("^GPSTYPE:gps_type"), S(), T()),
    RowMaker{27}.Row("^WGNSS", Q("^WGNSS:pd_system"), S(), T()),
    RowMaker{27}.Row("^WPQOS", Q("^WPQOS:performance,accuracy"), S(), T()),
    RowMaker{27}.Row("^WPDFR", Q("^WPDFR:number,time"), S(), T()),
    RowMaker{27}.Row("^SOCKETCONT", Q("^SOCKETCONT:cid,pdp_type,apn,ip_address,d_comp,h_comp"), S(), T()),
    RowMaker{27}.Row("^AUTHDATA", Q("^AUTHDATA:cid,auth_type,passwd,username,plmn"), S(), T()),
    RowMaker{27}.Row("^WPURL", Q("^WPURL:url"), S(), T()),
    RowMaker{27}.Row("^DCONNSTAT", Q("^DCONNSTAT: cid,APN,ipv4_stat,ipv6_stat,dconn_type,ether_stat"), S(), T()),
    RowMaker{27}.Row("^WPDIM", Q("^WPDIM: mode")),
    RowMaker{27}.Row("^WPJAM", Q("^WPJAM: status,threshold"), S(), T()),
    RowMaker{27}.End(),
};

extern constexpr AtParseHandler g_featureCfgHandlers[] = {
    RowMaker{28}.Row("^HFEATURESTAT", Q("^HFEATURESTAT:feature_id,value1,value2,value3,value4,value5"), S(), T()),
    RowMaker{28}.End(),
};

extern constexpr AtParseHandler g_chipTempCfgHandlers[] = {
    RowMaker{30}.Row("^CHIPTEMP", Q("^CHIPTEMP:gpa_temp,wpa_temp,lpa_temp,sim_temp,bat_temp,tcxo_temp,bb_temp"), S(), T()),
    RowMaker{30}.End(),
};
// clang-format on

static_assert(std::size(g_positionCfgHandlers) == 15, "14 rows and the end entry");
static_assert(std::size(g_featureCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_chipTempCfgHandlers) == 2, "1 row and the end entry");

}  // namespace atapi
