// Modules 5, 6 and 7: call settings and lists, call-waiting mode, phone book.
#include <iterator>

#include "parse/tables/internal_tables.h"
#include "parse/tables/row_builder.h"

namespace {
using atapi::tables::Q;
using atapi::tables::S;
using atapi::tables::T;
constexpr atapi::tables::RowMaker kCallRows{5};
constexpr atapi::tables::RowMaker kCcwaRows{6};
constexpr atapi::tables::RowMaker kPhoneBookRows{7};
}  // namespace

// clang-format off
namespace atapi {

extern constexpr AtParseHandler g_callCfgHandlers[] = {
    kCallRows.Row("+CCWA", Q("+CCWA:status,class")),
    kCallRows.Row("+CCFC", Q("+CCFC:status,class,number,type,reserved1,reserved2,time")),
    kCallRows.Row("+CLCC", Q("+CLCC:idx,dir,stat,mode,mpty,number,type")),
    kCallRows.Row("^CLCC", Q("^CLCC:idx,dir,state,mode,mpty,voice_domain,call_type,isEconference,number,type")),
    kCallRows.Row("+CMUT", Q("+CMUT:n_value")),
    kCallRows.Row("^SMUT", Q("^SMUT:n_value")),
    kCallRows.Row("+CLVL", Q("+CLVL:level")),
    kCallRows.Row("^NSSWITCH", Q("^NSSWITCH:switch_mode"), S(), T()),
    kCallRows.Row("^ECHOEX", Q("^ECHOEX:enable,time,single_len,single_dec,double_dec"), S(), T()),
    kCallRows.Row("^PCMFR", Q("^PCMFR:pcm_frq"), S(), T()),
    kCallRows.Row("+CMIC", Q("+CMIC:level")),
    kCallRows.Row("^ECHOSWITCH", Q("^ECHOSWITCH:switch_mode")),
    kCallRows.Row("^CPCM", Q("^CPCM:mode,format,clock,frame,offset"), S(), T()),
    kCallRows.Row("+CLIP", Q("+CLIP:n,m")),
    kCallRows.Row("+CLIR", Q("+CLIP:n,m")),
    kCallRows.Row("^ECLMODE", Q("^ECLMODE:mode")),
    kCallRows.Row("^ECLIMSCFG", Q("^ECLIMSCFG:modeType,contentType")),
    kCallRows.Row("^CCWA", Q("^CCWA:status,class")),
    kCallRows.Row("^CCWAI", Q("^CCWAI:mode,ctrl_mode")),
    kCallRows.Row("^CLIP", Q("^CLIP:n,m")),
    kCallRows.Row("^CLIR", Q("^CLIR:n,m")),
    kCallRows.Row("^IMSREFRESH", Q("^IMSREFRESH:state")),
    kCallRows.End(),
};
static_assert(std::size(g_callCfgHandlers) == 23, "22 rows and the end entry");

extern constexpr AtParseHandler g_ccwaUrcCfgHandlers[] = {
    kCcwaRows.Row("^CCWA", Q("^CCWA:n")),
    kCcwaRows.End(),
};
static_assert(std::size(g_ccwaUrcCfgHandlers) == 2, "1 row and the end entry");

}  // namespace atapi

extern "C" {

ATAPI_EXPORT extern constexpr AtParseHandler g_phoneRecordCfgHandlers[] = {
    kPhoneBookRows.Row("+CPBS", Q("+CPBS:storage,used,total")),
    kPhoneBookRows.Row("^CPBW"),  // known, but no mode is parsed
    kPhoneBookRows.Row("^CPBR", S("^CPBR:index,number,type,text,coding"), T("^CPBR:indexs,nlength,tlength,mlength")),
    kPhoneBookRows.End(),
};

}  // extern "C"
// clang-format on

static_assert(std::size(g_phoneRecordCfgHandlers) == 4, "3 rows and the end entry");
