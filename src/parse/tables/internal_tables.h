// Handler tables that only the module table references (the exported ones
// are declared in atapi/at_parse.h).
#pragma once

#include <cstddef>

#include "atapi/at_parse.h"

namespace atapi {

extern const AtParseHandler g_dmzCfgHandlers[];
extern const AtParseHandler g_connStatCfgHandlers[];
extern const AtParseHandler g_needDialCfgHandlers[];
extern const AtParseHandler g_deviceInfoCfgHandlers[];
extern const AtParseHandler g_callCfgHandlers[];
extern const AtParseHandler g_ccwaUrcCfgHandlers[];
extern const AtParseHandler g_pdpContextCfgHandlers[];
extern const AtParseHandler g_authDataCfgHandlers[];
extern const AtParseHandler g_flowCfgHandlers[];
extern const AtParseHandler g_dhcpCfgHandlers[];
extern const AtParseHandler g_raInfoCfgHandlers[];
extern const AtParseHandler g_positionCfgHandlers[];
extern const AtParseHandler g_featureCfgHandlers[];
extern const AtParseHandler g_chipTempCfgHandlers[];

// Modules 34, 32 and 101 share one array without end entries between them:
// a lookup through module 34 runs on into 32's rows and then 101's, and one
// through 32 runs on into 101's. The three tables are entry points into it.
inline constexpr size_t kNdisExRowCount = 5;
inline constexpr size_t kBackoffRowCount = 2;
inline constexpr size_t kLegacyRowCount = 6;
extern const AtParseHandler
    g_runOnCfgHandlers[kNdisExRowCount + kBackoffRowCount + kLegacyRowCount + 1];
inline constexpr const AtParseHandler *g_ndisExCfgHandlers = g_runOnCfgHandlers;
inline constexpr const AtParseHandler *g_backoffCfgHandlers = g_ndisExCfgHandlers + kNdisExRowCount;
inline constexpr const AtParseHandler *g_legacyCfgHandlers =
    g_backoffCfgHandlers + kBackoffRowCount;

}  // namespace atapi
