// Module 1: registration, signal, cell, band and radio queries.
#include <iterator>

#include "atapi/at_parse.h"
#include "parse/tables/row_builder.h"

namespace {
using atapi::tables::Q;
using atapi::tables::S;
using atapi::tables::T;
constexpr atapi::tables::RowMaker kRows{1};
}  // namespace

extern "C" {

// clang-format off
ATAPI_EXPORT extern constexpr AtParseHandler g_networkCfgHandlers[] = {
    kRows.Row("^SYSCFG", Q("^SYSCFG:mode,acqorder,band,roam,srvdomain"), S(), T("^SYSCFG:(modes),(acqorders),((band,band_name)),(roman),(srvdomain)", ParseSysCfgAtStr)),
    kRows.Row("^SYSCFGEX", Q("^SYSCFGEX:acqorder,band,roam,srvdomain,lteband"), S(), T("^SYSCFGEX:(acqorders),((band,band_name)),(roams),(srvdomains),((lteband,lteband_name))", ParseSysCfgExAtStr)),
    kRows.Row("+COPS", Q("+COPS:mode,format,oper,rat"), S(), T("+COPS:(stat,long_oper,short_oper,numeric_oper,rat),,(mode_0,mode_1,mode_2,mode_3,mode_4),(format_0,format_1,format_2)", ParseCopsAtStr)),
    kRows.Row("^EONS", Q("^EONS:type,plmn_id,plmn_long,plmn_short,spn_cond,spn", ParseEonsAtStr), S(), T("^EONS:type")),
    kRows.Row("^PPPD", Q("^PPPD:ip_addr,ppp_state,cur_time_len,total_time_len,cur_ppp_ibytes,cur_ppp_obytes,total_ppp_ibytes,total_ppp_obytes"), S(), T()),
    kRows.Row("^HSDPA", Q("^HSDPA:code"), S(), T()),
    kRows.Row("+CPAS", Q(), S("+CPAS:pactstatus"), T()),
    kRows.Row("^CSNR", Q("^CSNR:rscp,ecio"), S(), T()),
    kRows.Row("+C5GREG", Q("+C5GREG:n,stat,tac,ci,act"), S(), T()),
    kRows.Row("^C5GOPTION", Q("^C5GOPTION:nr_sa_support_flag,nr_dc_mode,5gc_access_mode"), S(), T()),
    kRows.Row("^PROBEINFO", Q("^PROBEINFO:cell1_bler,cell1_cqi0,cell1_cqi1,cell1_rank"), S(), T()),
    kRows.Row("+CREG", Q("+CREG:n,stat,lac,ci"), S(), T()),
    kRows.Row("+CGREG", Q("+CGREG:n,stat,lac,ci"), S(), T()),
    kRows.Row("+CEREG", Q("+CEREG:n,stat,lac,ci"), S(), T()),
    kRows.Row("^CERSSI", Q("^CERSSI:n,m,rssi,rscp,ecio,rsrp,rsrq,rssnr,ri,cqi0,cqi1,rfNum,rsrp1,rsrp2,rsrp3,rsrp4,sinr1,sinr2,sinr3,sinr4,5grsrp,5gRsrq,5grssnr"), S(), T()),
    kRows.Row("^LCELLINFO", Q("^LCELLINFO:cellno,ncellflag,cellid_bscid_psc,rssi_rscp,freqinfo"), S(), T()),
    kRows.Row("+CGATT", Q("+CGATT:state"), S(), T()),
    kRows.Row("+CSQLVL", Q("+CSQLVL:uiPercent,newRssiCode"), S(), T()),
    kRows.Row("^SKU", Q("^SKU:n,simlock"), S(), T()),
    kRows.Row("^DNSP", Q("^DNSP:pri_dns"), S(), T()),
    kRows.Row("^DNSS", Q("^DNSS:sec_dns"), S(), T()),
    kRows.Row("^CELLROAM", Q("^CELLROAM:cell_roam_state,rat")),
    kRows.Row("^CGCATT", Q("^CGCATT:psState,csState"), S(), T()),
    kRows.Row("^LTERSRP", Q("^LTERSRP:rsrp,rsrq"), S(), T()),
    kRows.Row("^CECELLID", Q("^CECELLID:Plmn,Ci,Pci,Tac"), S(), T()),
    kRows.Row("^RFSWITCH", Q("^RFSWITCH:rf_status")),
    kRows.Row("^HOPARASET", Q("^HOPARASET:rsrp_thresh1,rsrp_thresh2,rsrp_thresh3,sinr_thresh1,sinr_thresh2,sinr_thresh3")),
    kRows.Row("^LTEMEASMODE", Q("^LTEMEASMODE:mode")),
    kRows.Row("^HFREQINFO", Q("^HFREQINFO:switch,sysmode,index_0,...,index_n", ParseCmgiListAtStr)),
    kRows.Row("^CNWI", Q("^CNWI:plmn_id,sid,nid,sub_net_id,ltm_off")),
    kRows.Row("+CGACT", Q("+CGACT:cid,state")),
    kRows.Row("+CLCC", S("+CLCC:idx,dir,stat,mode")),
    kRows.Row("+CIREG", Q("+CIREG:n,reg_info,ext_info"), S(), T()),
    kRows.Row("^LOCINFO", Q("^LOCINFO:plmn,lac,rac,cellid")),
    kRows.Row("+CSQ", Q("+CSQ:rssi,ber"), S(), T()),
    kRows.Row("^RRCSTAT", Q("^RRCSTAT:enable,state")),
    kRows.Row("^LWCLASH", Q("^LWCLASH:state,ulfreq,ulbw,dlfreq,dlbw,band")),
    kRows.Row("^TXPOWER", Q("^TXPOWER:stxpwr,PPusch,PPucch,PSrs,PPrach")),
    kRows.Row("^LTEMCS", Q("^LTEMCS:param1,param2,param3,param4")),
    kRows.Row("^LTETDDSUBFRAME", Q("^LTETDDSUBFRAME:SubframeAssign,SubframePatterns")),
    kRows.Row("^LCACELL", Q("^LCACELL:\"value\",\"value1\",\"value2\",\"value3\",\"value4\",\"value5\",\"value6\",\"value7\"")),
    kRows.Row("^LTEPROFILE", T("^LTEPROFILE:(mode1,mode2),(indexs),maximsiprefixlen,maxapnlen,maxusernamelen,maxuserpwdlen,(authtypes)", ParseLteProfileAtStr)),
    kRows.Row("^UICCAUTH", Q("^UICCAUTH:result,\"res\",\"ck\",\"ik\",\"auts\"")),
    kRows.Row("^VOLTEIMPU", Q("^VOLTEIMPU:impu")),
    kRows.Row("^JDSWITCH", Q("^JDSWITCH:mode,rat")),
    kRows.Row("^JDCFG", Q("^JDCFG:rat,value1,value2,value3,value4")),
    kRows.Row("^EMRSSIRPT", Q("^EMRSSIRPT:n")),
    kRows.Row("^EMRSSICFG", Q("^EMRSSICFG:rat,rssi_thresh")),
    kRows.Row("^CIPHERQRY", Q("^CIPHERQRY:ea")),
    kRows.Row("^MONSC", Q("^MONSC:rat,mcc,mnc,arfcn,value4,value5,value6,value7,value8,value9,value10")),
    kRows.Row("^MONNC", Q("^MONNC:rat,value1,value2,value3,value4,value5,value6")),
    kRows.Row("^MONSSC", Q("^MONSSC:rat,value1,value2,value3,value4,value5,value6")),
    kRows.Row("^NETSCAN", Q("^NETSCAN:arfcn,c1,c2,lac,mcc,mnc,bsic,rxlev,cid,band,psc,pci,5gscs,5grsrp,5grsrq,5grssnr"), S(), T()),
    kRows.Row("^CELLSCAN", Q("^CELLSCAN:rat,plmn,freq,pci,band,lac,cid,rxlev,bsic,psc,5GSCS,5GRSRP,5GRSRQ,5GRSSNR"), S(), T()),
    kRows.Row("^REJINFO", Q("^REJINFO:plmnid,srvdomain,rejectcause,rattype,rejectType,rejectOriginalCause,rejectLac,rejectRac,rejectCellId,rejectEsmCause")),
    kRows.Row("^TRANSMODE", Q("^TRANSMODE:state")),
    kRows.Row("^ERRCCAPQRY", Q("^ERRCCAPQRY:cap_type,para1,para2,para3")),
    kRows.Row("^LTEPWRCTRL", Q("^LTEPWRCTRL:Mode,Para")),
    kRows.Row("^CGAS", Q("arfcn,bsic,rxlev", ParseAtCgasStr)),
    kRows.Row("^TRANSMODE", Q("^TRANSMODE:state")),  // never reached: the earlier row wins
    kRows.Row("^LTEATTACHINFO", Q("^LTEATTACHINFO:PDP_type,APN")),
    kRows.Row("^CASCELLINFO", Q("^CASCELLINFO:index, pci, rssi, rsrp, rsrq,band_class, ulfreqpoint, dlfreqpoint, ulfreq, dlfreq, ulbw, dlbw")),
    kRows.Row("^SINGLEPDNSWITCH", Q("^SINGLEPDNSWITCH:enable")),
    kRows.Row("^NWCFG", Q("^NWCFG:attach_profile_list,active_profile_list,pending_profile_list")),
    kRows.Row("^DSAMBR", Q("^DSAMBR:cid,dl_apnambr,ul_apnambr")),
    kRows.Row("^LENDC", Q("^LENDC:enable,endc_available,endc_plmn_available,endc_restricted,nr_pscell")),
    kRows.Row("^MCS", Q("^MCS:mode,rat,mcsTableIndex,mcsUpCarrier1Code0,mcsUpCarrier1Code1,mcsDownCarrier1Code0,mcsDownCarrier1Code1", ParseCmgiListAtStr)),
    kRows.Row("^CSERSSI", Q("^CSERSSI:n,m,rssi,rscp,ecio,rsrp,rsrq,rssnr,ri,cqi0,cqi1,nrrsrp,nrrsrq,nrrssnr")),
    kRows.Row("^NTXPOWER", Q("^NTXPOWER:index_0,...,index_n", ParseCmgiListAtStr)),
    kRows.Row("^NRRCCAPQRY", Q("^NRRCCAPQRY:capType,para1,para2,para3")),
    kRows.Row("^NRPWRCTRL", Q("^NRPWRCTRL:mode,para")),
    kRows.Row("^LL2COMQRY", Q("^LL2COMQRY:cmdType,para1,para2,para3")),
    kRows.Row("^NL2COMQRY", Q("^NL2COMQRY:cmdType,para1,para2,para3")),
    kRows.Row("^CPOLICYCODE", Q("^CPOLICYCODE:index,code")),
    kRows.Row("+C5GNSSAIRDPDEFAULT", Q("+C5GNSSAIRDPDEFAULT:default_configured_nssai_length,default_configured_nssai,rejected_nssai_3gpp_length,rejected_nssai_3gpp,rejected_nssai_non3gpp_length,rejected_nssai_non3gpp")),
    kRows.Row("+C5GNSSAIRDPPLMN", Q("+C5GNSSAIRDPPLMN:plmn_id,configured_nssai_length,configured_nssai,allowed_nssai_3gpp_length,allowed_nssai_3gpp,allowed_nssai_non3gpp_length,allowed_nssai_non3gpp")),
    kRows.Row("^C5GRSDQRY", Q("^C5GRSDQRY:cid,rsd_type,ursp_precedence,rsd_precedence,ssc_mode,nssai,dnn,pdu_type,preferred_access_type,offload_ind")),
    kRows.Row("^DPACAT", Q("^DPACAT:rate")),
    kRows.Row("+CGEQOSRDP", S("+CGEQOSRDP:cid,qci,dlGbr,ulGbr,dlMbr,ulMbr"), T("+CGEQOSRDP:(cids)")),
    kRows.Row("^LCACTRL", Q("^LCACTRL:CaMode")),
    kRows.Row("^OVERHEATINGQRY", Q("^OVERHEATINGQRY:OverHeatingSupportFlag,lastReportParamFlag,Para1,Para2,Para3,Para4,Para5,Para6,Para7,Para8,Para9,Para10")),
    kRows.Row("+C5GQOSRDP", S("+C5GQOSRDP:cid,nr_5qi,dl_gfbr,ul_gfbr,dl_mfbr,ul_mfbr,dl_sambr,ul_sambr,averaging_window"), T("+C5GQOSRDP:(cids)")),
    kRows.Row("^ANTCOMBSEL", Q("^ANTCOMBSEL:infoType,bandFreqInfo,antCombIndex,spectralEfficiency"), S(), T()),
    kRows.End(),
};
// clang-format on

}  // extern "C"

static_assert(std::size(g_networkCfgHandlers) == 84, "83 rows and the end entry");
