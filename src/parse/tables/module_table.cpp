// The module table: module id to handler table, searched in this order.
#include <iterator>

#include "parse/handler_tables.h"
#include "parse/tables/internal_tables.h"

namespace atapi {

// clang-format off
constexpr AtParseModule g_atParseModules[] = {
    {0, g_initialReportHandlers},
    {1, g_networkCfgHandlers},
    {2, g_pinCfgHandlers},
    {15, g_profileCfgHandlers},
    {16, g_dmzCfgHandlers},
    {17, g_connStatCfgHandlers},
    {18, g_needDialCfgHandlers},
    {19, g_spnCfgHandlers},
    {3, g_smsCfgHandlers},
    {4, g_deviceInfoCfgHandlers},
    {5, g_callCfgHandlers},
    {6, g_ccwaUrcCfgHandlers},
    {7, g_phoneRecordCfgHandlers},
    {8, g_stkMenuCfgHandlers},
    {9, g_stkTextCfgHandlers},
    {10, g_stkInputCfgHandlers},
    {11, g_stkRefreshCfgHandlers},
    {12, g_stkBrowserCfgHandlers},
    {13, g_stkActionCfgHandlers},
    {14, g_sysCfgHandlers},
    {25, g_pdpContextCfgHandlers},
    {24, g_authDataCfgHandlers},
    {20, g_flowCfgHandlers},
    {21, g_dhcpCfgHandlers},
    {22, g_ussdCfgHandlers},
    {23, g_raInfoCfgHandlers},
    {27, g_positionCfgHandlers},
    {28, g_featureCfgHandlers},
    {30, g_chipTempCfgHandlers},
    {32, g_backoffCfgHandlers},
    {34, g_ndisExCfgHandlers},
    {101, g_legacyCfgHandlers},
};
// clang-format on

static_assert(std::size(g_atParseModules) == kModuleCount, "the module table has 32 entries");

}  // namespace atapi
