// The dispatcher from (module id, response prefix, mode) to a handler's parse
// routine, and the two registration buffers kept for other processes.
#include <cstring>

#include "atapi/at_parse.h"
#include "link/at_log.h"
#include "parse/handler_tables.h"
#include "parse/row_index.h"
#include "platform/bounded.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse";

AtParseModule g_parseRegistry[AT_REG_ENTRY_COUNT];
AtReportModule g_reportRegistry[AT_REG_ENTRY_COUNT];

// The module table as the dispatcher searches it: module id to the row
// index of its handler table, built once, on first use.
class ModuleIndex {
  public:
    ModuleIndex() {
        for (int8_t &entry : byId_) entry = -1;
        for (size_t i = atapi::kModuleCount; i-- > 0;) {  // the first entry of an id wins
            const AtParseModule &module = atapi::g_atParseModules[i];
            if (module.handlers != nullptr) rows_[i] = atapi::RowIndex(module.handlers);
            if (module.moduleId >= 0 && module.moduleId < kDirectIds) {
                byId_[module.moduleId] = static_cast<int8_t>(i);
            }
        }
    }

    // The row index of the first entry of moduleId; null when there is no
    // such entry or its table is null.
    const atapi::RowIndex *Find(int32_t moduleId) const {
        int32_t entry = -1;
        if (moduleId >= 0 && moduleId < kDirectIds) {
            entry = byId_[moduleId];
        } else {
            for (size_t i = 0; i < atapi::kModuleCount && entry < 0; ++i) {
                if (atapi::g_atParseModules[i].moduleId == moduleId)
                    entry = static_cast<int32_t>(i);
            }
        }
        if (entry < 0 || atapi::g_atParseModules[entry].handlers == nullptr) return nullptr;
        return &rows_[entry];
    }

  private:
    static constexpr int32_t kDirectIds = 128;

    int8_t byId_[kDirectIds];
    atapi::RowIndex rows_[atapi::kModuleCount];
};

const ModuleIndex &Modules() {
    static const ModuleIndex modules;
    return modules;
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
    AT_LOG_INFO_HOT("atName=%s\n", atName);

    const atapi::RowIndex *rows = Modules().Find(moduleId);
    if (rows == nullptr) return AT_PARSE_BAD_ARG;
    const AtParseHandler *entry = rows->Find(atName);
    if (entry == nullptr) return AT_PARSE_NO_ENTRY;
    if (mode >= AT_PARSE_MODE_COUNT || entry->parseFn[mode] == nullptr) return AT_PARSE_BAD_MODE;

    const int32_t status = entry->parseFn[mode](out, entry->atTemplate[mode], replyText, atName);
    if (mode == AT_PARSE_QUERY) AT_LOG_INFO_HOT("atName=%s and ret=%d\n", atName, status);
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
