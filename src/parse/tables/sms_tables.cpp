// Module 3: short messages. The two-line record templates hold a real CR LF
// between header and PDU.
#include <iterator>

#include "atapi/at_parse.h"
#include "parse/tables/row_builder.h"

namespace {
using atapi::tables::Q;
using atapi::tables::S;
using atapi::tables::T;
constexpr atapi::tables::RowMaker kRows{3};
}  // namespace

extern "C" {

// clang-format off
ATAPI_EXPORT extern constexpr AtParseHandler g_smsCfgHandlers[] = {
    kRows.Row("+CMGD", Q("+CMGD:index_0,...indexN", ParseSmsIndexListAtStr), S(), T()),
    kRows.Row("^HCMGD", Q("^HCMGD:index_0,...indexN", ParseSmsIndexListAtStr), S(), T()),
    kRows.Row("+CPMS", Q("+CPMS:mem1,used1,total1,mem2,used2,total2,mem3,used3,total3"), S("+CPMS:used1,total1,used2,total2,used3,total3"), T("+CPMS:(mem1,mem2),...", ParseSmsMediaAtStr)),
    kRows.Row("^HCPMS", Q("^HCPMS:mem1,used1,total1,mem2,used2,total2,mem3,used3,total3"), S("^HCPMS:used1,total1,used2,total2,used3,total3"), T("^HCPMS:(mem1,mem2),...", ParseSmsMediaAtStr)),
    kRows.Row("+CSCA", Q("+CSCA:sca,tosca"), S(), T()),
    kRows.Row("+CMGW", S("+CMGW:index")),
    kRows.Row("+CMSS", S("+CMSS:mr")),
    kRows.Row("+CMGS", S("+CMGS:mr")),
    kRows.Row("^CMSR", Q("^CMSR:ReadTag", nullptr), S()),  // the query template has no routine
    kRows.Row("^CMGI", S("^CMGI:index_0,...indexN", ParseCmgiListAtStr)),
    kRows.Row("^CMMT", S("^CMMT:index")),
    kRows.Row("+CMGR", Q("+CMGR:stat,reserved,length\r\npdu", ParseSmsCmgrAtStr)),
    kRows.Row("+CMGF", Q("+CMGF:mode")),
    kRows.Row("^HCMGF", Q("^HCMGF:mode")),
    kRows.Row("+CSCB", Q("+CSCB:mode,mids,dcss")),
    kRows.Row("+CNMI", Q("+CNMI:mode,mt,bm,ds,bfr")),
    kRows.Row("+CVMNQ", Q("+CVMNQ:voice_mail_number,nv_number"), S(), T()),
    kRows.Row("^HCMGR", Q("^HCMGR:callerID,year,month,day,hour,minute,second,lang,format,length,prt,prv,type,stat")),
    kRows.Row("^HCMGW", S("^HCMGW:index")),
    kRows.Row("^HSMF", Q("^HSMF:mode")),
    kRows.End(),
};
// clang-format on

}  // extern "C"

static_assert(std::size(g_smsCfgHandlers) == 21, "20 rows and the end entry");
