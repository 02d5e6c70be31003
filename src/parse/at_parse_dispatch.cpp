// The dispatcher from (module id, response prefix, mode) to a handler's parse
// routine, and the two registration buffers kept for other processes.
#include <cstring>

#include "atapi/at_parse.h"
#include "link/at_log.h"
#include "parse/handler_tables.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse";

AtParseModule g_parseRegistry[AT_REG_ENTRY_COUNT];
AtReportModule g_reportRegistry[AT_REG_ENTRY_COUNT];

const AtParseHandler *FindModuleTable(int32_t moduleId) {
    for (const AtParseModule &module : atapi::g_atParseModules) {
        if (module.moduleId == moduleId) return module.handlers;
    }
    return nullptr;
}

const AtParseHandler *FindHandler(const AtParseHandler *table, const char *atName) {
    for (const AtParseHandler *entry = table; entry->atName != nullptr; ++entry) {
        // Most prefixes share their first character ('+' or '^'): the
        // second one settles most rows without a call.
        if (entry->atName[0] == atName[0] &&
            (atName[0] == '\0' ||
             (entry->atName[1] == atName[1] && std::strcmp(entry->atName, atName) == 0))) {
            return entry;
        }
    }
    return nullptr;
}

// Registering replaces: the buffer is zeroed first, and a table too large for
// it leaves it zeroed.
template <typename Entry, size_t N>
void Register(Entry (&registry)[N], const void *table, uint32_t byteCount) {
    if (table == nullptr) return;
    memset_s(registry, sizeof(registry), 0, sizeof(registry));
    if (byteCount != 0) memcpy_s(registry, sizeof(registry), table, byteCount);
}

// Entries in use: the leading ones whose handler pointer is set.
template <typename Entry, size_t N>
uint32_t CountRegistered(const Entry (&registry)[N]) {
    uint32_t count = 0;
    while (count < N && registry[count].handlers != nullptr) ++count;
    return count;
}

}  // namespace

extern "C" {

int32_t ParseAtCmdFunc(AtCmdParseNode **out, const char *atName, char *replyText, int32_t moduleId,
                       uint32_t mode) {
    if (atName == nullptr) return AT_PARSE_NO_ENTRY;
    if (out == nullptr || replyText == nullptr) return AT_PARSE_BAD_ARG;
    AT_LOG_INFO("atName=%s\n", atName);

    const AtParseHandler *table = FindModuleTable(moduleId);
    if (table == nullptr) return AT_PARSE_BAD_ARG;
    const AtParseHandler *entry = FindHandler(table, atName);
    if (entry == nullptr) return AT_PARSE_NO_ENTRY;
    if (mode >= AT_PARSE_MODE_COUNT || entry->parseFn[mode] == nullptr) return AT_PARSE_BAD_MODE;

    const int32_t status = entry->parseFn[mode](out, entry->atTemplate[mode], replyText, atName);
    if (mode == AT_PARSE_QUERY) AT_LOG_INFO("atName=%s and ret=%d\n", atName, status);
    return status;
}

void AtsRegParseModule(const AtParseModule *table, uint32_t byteCount) {
    Register(g_parseRegistry, table, byteCount);
}

uint32_t AtGeRegtParseTableSize(void) { return CountRegistered(g_parseRegistry); }

void AtsRegReportModule(const void *table, uint32_t byteCount) {
    Register(g_reportRegistry, table, byteCount);
}

AtReportModule *AtsGetRegReportModule(void) { return g_reportRegistry; }

uint32_t AtGeRegtReportTableSize(void) { return CountRegistered(g_reportRegistry); }

}  // extern "C"
