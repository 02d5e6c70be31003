// Module 2: PIN, facility lock, card lock and card mode.
#include <iterator>

#include "atapi/at_parse.h"
#include "parse/tables/row_builder.h"

namespace {
using atapi::tables::Q;
using atapi::tables::S;
using atapi::tables::T;
constexpr atapi::tables::RowMaker kRows{2};
}  // namespace

extern "C" {

// clang-format off
ATAPI_EXPORT extern constexpr AtParseHandler g_pinCfgHandlers[] = {
    kRows.Row("+CPWD", Q(), S(), T()),
    kRows.Row("+CLCK", Q(), S("+CLCK:status"), T()),
    kRows.Row("^CPIN", Q("^CPIN:code,times,puk_times,pin_times,puk2_times,pin2_times"), S(), T()),
    kRows.Row("+CPIN", Q("+CPIN:code"), S(), T()),
    kRows.Row("^APPINVF", Q("^APPINVF:enable,pin,scid"), S(), T()),
    kRows.Row("^CARDLOCK", Q("^CARDLOCK:state,times,operator"), S(), T()),
    kRows.Row("^CARDMODE", Q("^CARDMODE:sim_type"), S(), T()),
    kRows.Row("^APHPLMN", Q("^APHPLMN:plmn"), S(), T()),
    kRows.Row("^CARDTYPE", Q("^CARDTYPE:cardMode, hasCdma, hasGsm"), S(), T()),
    kRows.End(),
};
// clang-format on

}  // extern "C"

static_assert(std::size(g_pinCfgHandlers) == 10, "9 rows and the end entry");
