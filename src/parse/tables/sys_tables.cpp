// Module 14: system information, SIM files, device settings and the
// telematics extensions.
#include <iterator>

#include "atapi/at_parse.h"
#include "parse/tables/row_builder.h"

namespace {
using atapi::tables::Q;
using atapi::tables::T;
constexpr atapi::tables::RowMaker kRows{14};
// "^HVSST" carries the id of a module that has no table; it is found through 14.
constexpr atapi::tables::RowMaker kHvsstRow{26};
}  // namespace

extern "C" {

// clang-format off
ATAPI_EXPORT extern constexpr AtParseHandler g_sysCfgHandlers[] = {
    kRows.RowNoFree("^SYSINFO", Q("^SYSINFO:srv_status,srv_domain,roam_status,sys_mode,sim_state,lock_state,sys_submode")),
    kRows.RowNoFree("^SCID", Q("^SCID:scid_num")),
    kRows.RowNoFree("^OPL", Q("^OPL:numeric,reserved,index")),
    kRows.RowNoFree("^PNN", Q("^PNN:long_name,short_name,reserved")),
    kRows.RowNoFree("^CPNN", Q("^CPNN:full_name,full_name_coding,full_name_ci,short_name,short_name_coding,shor_name_ci")),
    kRows.RowNoFree("^SYSINFOEX", Q("^SYSINFOEX:srv_status,srv_domain,roam_status,sim_state,lock_state,sysmode,sysmode_name,submode,submode_name")),
    kRows.RowNoFree("^SYSCFGEX", Q("^SYSCFGEX:acqorder,band,roam,srvdomain,lteband")),
    kRows.RowNoFree("^FREQLOCK", Q("^FREQLOCK:enbale,mode,freq,band,psc,pci")),
    kRows.Row("^NETSELOPT", Q("^NETSELOPT:scene,rat,band")),
    kRows.Row("^NRFREQLOCK", Q("^NETSELOPT:enable,scstype,band,arfcn,cellid")),
    kRows.Row("^APCHG", Q("^APCHG:ChargerState,ChargerTime,ChargerVoltage,BatteryVoltage,ChargerCurrent,BatteryTemp,BoardTemp,SimTemp,MsmTemp,PaTemp,IsOffChg")),
    kRows.Row("^ANQUERY", Q("^ANQUERY:rscp,ecio,rssi,antenna_level,cellid")),
    kRows.Row("^APDIALM", Q("^APDIALM:dial_mode")),
    kRows.Row("+CBC", Q("+CBC:cbs,bcl")),
    kRows.Row("^APBATLVL", Q("^APBATLVL:chargerState,batterylvl")),
    kRows.Row("+CNUM", Q("+CNUM:name,num,type")),
    kRows.Row("+CREG", Q("+CREG:n,stat,lac,ci")),
    kRows.Row("^APTIMEZONE", Q("^APTIMEZONE:timezone")),
    kRows.Row("+CRSM", Q("+CRSM: sw1,sw2,response")),
    kRows.Row("^ICCID", Q("^ICCID: iccid")),
    kRows.Row("^CURRSID", Q("^CURRSID: curr_sid,curr_nid,curr_evdo_subnetid")),
    kRows.Row("^LTESCINFO", Q("^LTESCINFO:ci,dl_sinr,num_ant,dl_bw")),
    kRows.Row("^RRCVer", Q("^RRCVer:rrcver")),
    kRows.Row("^HCSQ", Q("^HCSQ:sysmode,value1,value2,value3,value4,value5")),
    kRows.Row("^NWTIME", Q("^NWTIME:date,time,dt")),
    kRows.Row("^VERSION", Q("^VERSION:type:content")),
    kRows.Row("^WAKEUPCFG", T("^WAKEUPCFG:switch,channel,source")),
    kRows.Row("^CURC", T("^CURC:mode")),
    kRows.Row("^TRUSTNUM", Q("^TRUSTNUM: index,phonenum"), T("^TRUSTNUM:index")),
    kRows.Row("^TRUSTCNUM", Q("^TRUSTCNUM: index,phonenum"), T("^TRUSTCNUM:index")),
    kRows.Row("^THERMFUN", T("^THERMFUN:switch")),
    kRows.Row("^SETWDTIME", T("^SETWDTIME:watchdog_time")),
    kRows.Row("+CCLK", Q("+CCLK:date")),
    kRows.Row("^SIMSWITCH", Q("^SIMSWITCH:sim_type")),
    kRows.Row("^SIMGPIO", Q("^SIMGPIO:gpio_switch")),
    kRows.Row("^THERMSTATE", T("^THERMSTATE:state")),
    kRows.Row("^SHELL", Q("^SHELL:shell_type")),
    kRows.Row("+CSIM", Q("+CSIM:length,response")),
    kRows.Row("^SETMODE", Q("^SETMODE:work_mode")),
    kRows.Row("^SHLOCK", Q("^SHLOCK:State")),
    kRows.Row("^XOTEMP", Q("^XOTEMP:CRYSTALtemp")),
    kRows.Row("^ADCREADEX", Q("^ADCREADEX:adc_value")),
    kRows.Row("^LOPCNL", Q("^LOPCNL:mode")),
    kRows.Row("^ANTMODE", Q("ANTMODE:ulAntEnable,ulAntIndex,dlAntEnable,dlAntIndex")),
    kRows.Row("^ANTSELCFG", Q("ANTSELCFG:SelMode,SelCycle,AntCombIndex,TxAntBitmap")),
    kRows.Row("^SIMSQ", Q("^SIMSQ: mode,sim_status")),
    kRows.Row("^ESIMEID", Q("^ESIMEID: ESIMEID")),
    kRows.Row("^EID", Q("^EID: EID")),
    kRows.Row("^CRNVSWT", Q("^CRNVSWT: mode,index")),
    kRows.Row("^TNUMCTL", Q("^TNUMCTL: status,voice_switch,blacklist")),
    kHvsstRow.Row("^HVSST", Q("^HVSST:index,enable,slot,state")),
    kRows.Row("^CAROOSGEARS", Q("^CAROOSGEARS:period")),
    kRows.End(),
};
// clang-format on

}  // extern "C"

static_assert(std::size(g_sysCfgHandlers) == 53, "52 rows and the end entry");
