// The module's versions, read once per process: AtVersion keeps the first
// complete read and answers later calls from it; the software and hardware
// versions are cut out of it.
#include <atomic>
#include <cstddef>
#include <cstring>
#include <new>

#include "api/command.h"
#include "api/reply.h"
#include "atapi/ats_comm.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "service/ats_comm_internal.h"

namespace {

using namespace atapi::api;

constexpr char kTraceSrc[] = "atapi/src/ats_comm";

constexpr int32_t kVersionLines = 32;
constexpr CommandDescription kVersionQuery = Reads("AT^VERSION?", "^VERSION", module::kSysCfg);

// The keywords in the order they are tried, and the field each line fills.
struct VersionSlot {
    const char *keyword;
    size_t offset;
    size_t size;
};
constexpr VersionSlot kVersionSlots[] = {
    {"EXTD", offsetof(VersionInfo, extdVersion), sizeof(VersionInfo::extdVersion)},
    {"EXTH", offsetof(VersionInfo, exthVersion), sizeof(VersionInfo::exthVersion)},
    {"EXTS", offsetof(VersionInfo, extsVersion), sizeof(VersionInfo::extsVersion)},
    {"INI", offsetof(VersionInfo, iniVersion), sizeof(VersionInfo::iniVersion)},
    {"EXTU", offsetof(VersionInfo, extuVersion), sizeof(VersionInfo::extuVersion)},
};
constexpr uint32_t kVersionsWanted = 5;

// A module that has no user version yet reports this one; it is never kept.
constexpr char kPlaceholderExtd[] = "EXTD:WEBUI_00.00.00.000.03";

// The cache. A complete read is published once as an immutable heap copy
// behind this pointer (release), and readers copy it out after an acquire
// load, so concurrent first calls neither race nor lock. Only the first
// publisher wins; a later one frees its own copy, which nobody has seen.
// A published copy is never taken back while the process runs: readers
// may still be copying it, so it stays reachable here until exit. An
// unpublished cache holds nothing, which is what clearing it before a query
// amounts to; a placeholder read is simply not published.
std::atomic<const VersionInfo *> g_versions{nullptr};

void Publish(const VersionInfo &v) {
    const VersionInfo *copy = new (std::nothrow) VersionInfo(v);
    if (copy == nullptr) return;  // not kept: the next call asks again
    const VersionInfo *none = nullptr;
    if (!g_versions.compare_exchange_strong(none, copy, std::memory_order_acq_rel,
                                            std::memory_order_relaxed)) {
        delete copy;
    }
}

// The end of a read with all five versions: kept for later calls, unless
// the user version is the placeholder, which the caller gets empty.
int32_t FinishVersions(VersionInfo &v) {
    if (std::strncmp(v.extdVersion, kPlaceholderExtd, sizeof kPlaceholderExtd - 1) == 0) {
        memset_s(v.extdVersion, sizeof v.extdVersion, 0, sizeof v.extdVersion);
        AT_LOG_ERR("versionInfo->extd_version invalid");
        return 0;
    }
    Publish(v);
    return 0;
}

// The software and hardware versions: one version line without its keyword.
struct VersionPart {
    const char *keyword;  // five characters, colon included
    char (VersionInfo::*line)[128];
    const char *success;
    const char *failure;
};
constexpr VersionPart kSoftPart{"EXTS:", &VersionInfo::extsVersion, "get softVersion success",
                                "get softVersion failed"};
constexpr VersionPart kHardPart{"EXTH:", &VersionInfo::exthVersion, "get hardVersion success",
                                "get hardVersion failed"};
constexpr size_t kKeywordLength = 5;

template <typename Record>
int32_t ReadVersionPart(const VersionPart &part, Record *r) {
    if (r == nullptr) return -1;
    VersionInfo v{};
    v.errorId = AT_ERRID_NOT_COMPLETED;
    const char *text = AtVersion(&v) == 0 && v.errorId == 0
                           ? atapi::comm::CutVersionText(part.keyword, v.*part.line)
                           : nullptr;
    const size_t length = text != nullptr ? std::strlen(text) : sizeof r->version;
    if (length >= sizeof r->version) {
        AT_LOG_ERR("%s", part.failure);
        return -1;
    }
    std::memcpy(r->version, text, length + 1);
    r->valid = 1;
    AT_LOG_INFO("%s", part.success);
    return 0;
}

}  // namespace

namespace atapi::comm {

void ResetVersionCache() { delete g_versions.exchange(nullptr, std::memory_order_acq_rel); }

bool StoreVersionLine(const char *value, VersionInfo &v) {
    for (const VersionSlot &slot : kVersionSlots) {
        if (std::strstr(value, slot.keyword) == nullptr) continue;
        char *field = reinterpret_cast<char *>(&v) + slot.offset;
        if (strcpy_s(field, slot.size, value) != 0) return false;
        v.errorId = 0;
        AT_LOG_INFO("find cmdStr sucess,return %s", field);
        return true;
    }
    return false;
}

const char *CutVersionText(const char *keyword, char *line) {
    const char *start = std::strstr(line, keyword);
    if (start == nullptr) return nullptr;
    char *end = std::strstr(line, "\r\n");
    if (end == nullptr) end = std::strchr(line, '\r');
    if (end != nullptr) *end = '\0';
    return start + kKeywordLength;
}

}  // namespace atapi::comm

extern "C" {

int32_t AtVersion(VersionInfo *v) {
    if (v == nullptr) return -1;
    if (const VersionInfo *kept = g_versions.load(std::memory_order_acquire)) {
        *v = *kept;
        AT_LOG_INFO("get data from buffer");
        return 0;
    }
    ReplyLines<kVersionLines> lines;
    const int32_t ret = Command(kVersionQuery).SendLines(lines, nullptr);
    if (IsCauseError(ret)) return 0;
    if (ret != 0 || lines.Count() < 1) return -1;
    v->lineCount = lines.Count();
    uint32_t found = 0;
    for (int32_t i = 0; i < lines.Count(); ++i) {
        AT_LOG_INFO("begin webui version parse verList[%d] = %s", i, lines[i]);
        int32_t status = AT_PARSE_OK;
        const atapi::ParseRows rows = ParseReply(kVersionQuery, lines[i], &status);
        if (status != AT_PARSE_OK || rows.Get() == nullptr) {
            AT_LOG_ERR("ParsingVersionKeyWord failed");
            return -1;
        }
        const char *value = rows.Get()->atFieldValue;
        if (value == nullptr || !atapi::comm::StoreVersionLine(value, *v)) continue;
        ++found;
        AT_LOG_INFO("getVersionNum %u", found);
        if (found == kVersionsWanted) return FinishVersions(*v);
    }
    return -1;
}

int32_t AtCgmr(SoftVersion *s) { return ReadVersionPart(kSoftPart, s); }

int32_t AtHwVer(HardVersion *h) { return ReadVersionPart(kHardPart, h); }

}  // extern "C"
