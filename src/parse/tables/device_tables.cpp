// Module 4: software and hardware versions, identities, functionality level.
#include <iterator>

#include "parse/tables/internal_tables.h"
#include "parse/tables/row_builder.h"

namespace atapi {
namespace {
using tables::Q;
using tables::S;
using tables::T;
constexpr tables::RowMaker kRows{4};
}  // namespace

// clang-format off
extern constexpr AtParseHandler g_deviceInfoCfgHandlers[] = {
    kRows.Row("+CGMR", Q("246.subsoftversion", ParseSoftStr), S(), T()),
    kRows.Row("^HWVER", Q("^HWVER:hardversion"), S(), T()),
    kRows.Row("^HS", Q("^HS:id,protocol,IsOffline,p_class,p_id,s_id"), S(), T()),
    kRows.Row("^U2DIAG", Q("^U2DIAG:val"), S(), T()),
    kRows.Row("^MEID", Q("^MEID:meid"), S(), T()),
    kRows.Row("+ESN", Q("ESN:esn"), S(), T()),
    kRows.Row("^PRLVER", Q("^PRLVER:ver"), S(), T()),
    kRows.Row("^SARREDUCTION", Q("^SARREDUCTION:power_step")),
    kRows.Row("+CFUN", Q("+CFUN:fun"), S(), T()),
    kRows.End(),
};
// clang-format on

static_assert(std::size(g_deviceInfoCfgHandlers) == 10, "9 rows and the end entry");

}  // namespace atapi
