// Module 0: unsolicited reports. Only the report slot is used, except one
// query routine that has no template.
#include <iterator>

#include "atapi/at_parse.h"
#include "parse/tables/row_builder.h"

namespace {
using atapi::tables::Q;
using atapi::tables::R;
constexpr atapi::tables::RowMaker kRows{0};
}  // namespace

extern "C" {

// clang-format off
ATAPI_EXPORT extern constexpr AtParseHandler g_initialReportHandlers[] = {
    kRows.Row("^SRVST", R("^SRVST:srv_status")),
    kRows.Row("^SIMST", R("^SIMST:sim_state,lock_state")),
    kRows.Row("^MODE", R("^MODE:sys_mode,sys_submode")),
    kRows.Row("^HCSQ", R("^HCSQ:sysmode,value1,value2,value3,value4,value5")),
    kRows.Row("^CERSSI", R("^CERSSI:rssi,rscp,ecio,rsrp,rsrq,rssnr,ri,cqi0,cqi1,rfNum,rsrp1,rsrp2,rsrp3,rsrp4,sinr1,sinr2,sinr3,sinr4")),
    kRows.Row("^CSERSSI", R("^CSERSSI:n,m,rssi,rscp,ecio,rsrp,rsrq,rssnr,ri,cqi0,cqi1,rfNum,rsrp1,rsrp2,rsrp3,rsrp4,sinr1,sinr2,5grsrp,5grsrq,5grssnr")),
    kRows.Row("^RSSI", R("^RSSI:rssi")),
    kRows.Row("^ANLEVEL", R("^ANLEVEL:rscp,ecio,rssi,level,rsrp,rsrq")),
    kRows.Row("+CREG", R("+CREG:stat,lac,ci")),
    kRows.Row("+CGREG", R("+CGREG:stat,lac,ci")),
    kRows.Row("+CEREG", R("+CEREG:stat,lac,ci,act")),
    kRows.Row("+C5GREG", R("+C5GREG:stat,tac,ci,act")),
    kRows.Row("^DSFLOWRPT", R("^DSFLOWRPT:curr_ds_time,tx_rate,rx_rate,curr_tx_flow,curr_rx_flow, qos_tx_rate,qos_rx_rate")),
    kRows.Row("+CMTI", R("+CMTI:mem,index")),
    kRows.Row("+CDSI", R("+CDSI:mem,index")),
    kRows.Row("+CMT", R("+CMT:reserved,length\r\npdu", ParseSmsCmgrAtStr)),
    kRows.Row("+CDS", R("+CDS:length\r\npdu", ParseSmsCmgrAtStr)),
    kRows.Row("+CBM", R("+CBM:length\r\npdu", ParseSmsCmgrAtStr)),
    kRows.Row("^SMMEMFULL", R("^SMMEMFULL:mem_type")),
    kRows.Row("^HCMGSS", R("^HCMGSS:mr")),
    kRows.Row("^HCMGSF", R("^HCMGSF:errCode")),
    kRows.Row("^STIN", R("^STIN:cmdTpye,cmdIndex,isTimeOut")),
    kRows.Row("^ORIG", R("^ORIG:call_x,call_type")),
    kRows.Row("^CONF", R("^CONF:call_id")),
    kRows.Row("^CONN", R("^CONN:call_id,call_type")),
    kRows.Row("^CEND", R("^CEND:call_id,duration,end_status,cc_cause")),
    kRows.Row("RING", R("RING")),
    kRows.Row("^ECLSTAT", R("^ECLSTAT:eCall_state,description")),
    kRows.Row("+CLIP", R("+CLIP:call_num,call_type,subaddr,satype,alpha,cli_validity")),
    kRows.Row("+CCWA", R("+CCWA:call_num,call_type,call_class,alpha,cli_validity,subaddr,satype,priority")),
    kRows.Row("+CSSI", R("+CSSI:cssi_code,cssi_index,cssi_number,cssi_type,cssi_subaddr,cssi_satype")),
    kRows.Row("+CSSU", R("+CSSU:cssu_code,cssu_index,cssu_number,cssu_type,cssu_subaddr,cssu_satype")),
    kRows.Row("+CUSD", R("+CUSD:rspType,cusdStr,codeType")),
    kRows.Row("^DCONN", R("^DCONN:cid,pdp_type")),
    kRows.Row("^DEND", R("^DEND:cid,endCause,pdp_type")),
    kRows.Row("^APDIALUPRPT", R("^APDIALUPRPT:dialup")),
    kRows.Row("^APROAMRPT", R("^APROAMRPT:roaming_status")),
    kRows.Row("^TEMPPRT", R("^TEMPPRT:tempprotect_event,tempprotect_param")),
    kRows.Row("^EONS", R("^EONS:value")),
    kRows.Row("^NDISSTAT", R("^NDISSTAT:cid,stat,err_code,wx_state,PDP_type")),
    kRows.Row("^NDISSTATEX", R("^NDISSTATEX:cid,stat,err_code,wx_state,PDP_type")),
    kRows.Row("^NWTIME", R("^NWTIME:date,time,dt")),
    kRows.Row("^LTESIGLEV", R("^LTESIGLEV:level")),
    kRows.Row("^HFREQINFO", Q(), R("^HFREQINFO:switch,sysmode,index_0,...,index_n", ParseCmgiListAtStr)),
    kRows.Row("^RRCSTAT", R("^RRCSTAT:state")),
    kRows.Row("^WAKEUPIN", R("^WAKEUPIN:value")),
    kRows.Row("^PLMN", R("^PLMN:mcc,mnc")),
    kRows.Row("^REJINFO", R("^REJINFO:plmnid,srvdomain,rejectcause,rattype,rejectType,rejectOriginalCause,rejectLac,rejectRac,rejectCellId,rejectEsmCause")),
    kRows.Row("^HVRDH", R("^HVRDH:flag")),
    kRows.Row("^HFOTA", R("^HFOTA:indication,APN,username,passwd,auth_type,PDP_type,network_mode")),
    kRows.Row("^CCALLSTATE", R("^CCALLSTATE:call_id,state,voice_domain")),
    kRows.Row("^EXSIMST", R("^EXSIMST:exsim_state")),
    kRows.Row("^HWECDSA", R("^HWECDSA:mode,data_len,data,sign")),
    kRows.Row("^THERMEX", R("^THERMEX:reportaction,reportactionex")),
    kRows.Row("+CIREGU", R("+CIREGU:reg_info")),
    kRows.Row("^ECLREC", R("^ECLREC:timestamp,AL_ACK")),
    kRows.Row("^ANTDTCT", R("^ANTDTCT:main_stat,gps_stat,aux_stat")),
    kRows.Row("^SIMRESET", R("^SIMRESET:type")),
    kRows.Row("+CUSATP", R("+CUSATP:proactive_command")),
    kRows.Row("^CSIN", R("^CSIN:Len,CmdType,CmdData")),
    kRows.Row("+CUSATEND", R("+CUSATEND")),
    kRows.Row("^ANTINFO", R("^ANTINFO:ant_type,ant_status,ant_voltage")),
    kRows.Row("^XLEMA", R("^XLEMA:index,total,ecc_num,category,simpresent,mcc,abnormal_service")),
    kRows.Row("^CSCHANNELINFO", R("^CSCHANNELINFO:status,voice_domain")),
    kRows.Row("^LCACELLURC", R("^LCACELL:\"value\",\"value1\",\"value2\",\"value3\",\"value4\",\"value5\",\"value6\",\"value7\"")),
    kRows.Row("^SIMREFRESH", R("^SIMREFRESH:file_type")),
    kRows.Row("^ANTCOMBSEL", R("^ANTCOMBSEL:infoType,bandFreqInfo,antCombIndex,spectralEfficiency")),
    kRows.Row("^SIMSQ", R("^SIMSQ: mode,sim_status")),
    kRows.Row("^SYSREBOOT", R("^SYSREBOOT: reason")),
    kRows.Row("^JDINFO", R("^JDINFO:state,rat")),
    kRows.Row("^EMRSSIRPT", R("^EMRSSIRPT:rat,rssi")),
    kRows.Row("^CPBREADY", R("^CPBREADY")),
    kRows.Row("^DSAMBR", R("^DSAMBR:cid,dl_apnambr,ul_apnambr")),
    kRows.Row("^LENDC", R("^LENDC:endc_available,endc_plmn_available,endc_restricted,nr_pscell")),
    kRows.Row("^NETSELOPT", R("^NETSELOPT:scene,operate")),
    kRows.Row("^CPOLICYRPT", R("^CPOLICYRPT:urspLength,num,urspVersion")),
    kRows.Row("+CABTSRI", R("+CABTSRI:apn,event_type,residual_backoff_time,re-attempt_rat_indicator,re-attempt_eplmn_indicator,NSLPI,procedure")),
    kRows.Row("^SIMHOTPLUG", R("^SIMHOTPLUG:status")),
    kRows.Row("^IMSREFRESH", R("^IMSREFRESH:state")),
    kRows.End(),
};
// clang-format on

}  // extern "C"

static_assert(std::size(g_initialReportHandlers) == 80, "79 rows and the end entry");
