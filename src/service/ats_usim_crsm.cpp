// Restricted SIM access: one +CRSM exchange, with the file's directory
// taken from the path table of the card's type. The type is asked once per
// process and kept.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <span>

#include "api/command.h"
#include "atapi/ats_ndis.h"
#include "atapi/ats_usim.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "service/ats_usim_internal.h"

namespace {

using namespace atapi::api;
using atapi::usim::kCardSim;
using atapi::usim::kCardUsim;

constexpr char kTraceSrc[] = "atapi/src/ats_usim";

constexpr CommandDescription kCrsmWithData =
    Reads("AT+CRSM=%d,%d,%d,%d,%d,%s,\"%s\"", nullptr, "+CRSM", module::kSysCfg);
constexpr CommandDescription kCrsm =
    Reads("AT+CRSM=%d,%d,%d,%d,%d,,\"%s\"", nullptr, "+CRSM", module::kSysCfg);

// The reply's fields, before the response moves to the heap.
struct CrsmReply {
    uint32_t sw1;
    uint32_t sw2;
    char response[1024];
};
constexpr auto kCrsmFields = FieldList(Field<&CrsmReply::sw1>("sw1"), Field<&CrsmReply::sw2>("sw2"),
                                       Field<&CrsmReply::response>("response"));

// File id to directory, searched in order; a null path means that the file
// is read without one.
struct PathRow {
    int32_t fileId;
    const char *path;
};
constexpr PathRow kSimPaths[] = {
    {0x6F05, "3F007F20"}, {0x2F05, "3F00"},     {0x6F57, "3F007F20"}, {0x2FE2, "3F007F20"},
    {0x6F46, "3F007F20"}, {0x6F40, "3F007F20"}, {0x6FAD, "3F007F20"}, {0x6F02, "3F007F43"},
    {0x6F38, "3F007F20"}, {0x6FFE, nullptr},
};
constexpr PathRow kUsimPaths[] = {
    {0x6F05, "3F007FFF"}, {0x2F05, "3F00"},     {0x6F57, "3F007FFF"}, {0x2FE2, "3F00"},
    {0x6F46, "3F007FFF"}, {0x6F40, "3F007FFF"}, {0x6FAD, "3F007FFF"}, {0x6FCD, "3F007FFF"},
    {0x6F3E, "3F007FFF"}, {0x6F02, "3F007F43"}, {0x6F38, "3F007F20"}, {0x6FFE, nullptr},
};
static_assert(std::size(kSimPaths) == 10 && std::size(kUsimPaths) == 12);

// The card's type, 0 until known. It is a plain value that nothing else
// depends on: threads that find it 0 at once each ask the module and store
// the same answer, so relaxed loads and stores are all it needs.
std::atomic<uint32_t> g_cardMode{0};

// The path of fileId on this card, asking for the card's type first.
const char *TablePath(int32_t fileId) {
    uint32_t mode = g_cardMode.load(std::memory_order_relaxed);
    if (mode == 0) {
        CardModeInfo info{};
        if (AtCardMode(&info) != 0) return nullptr;
        mode = info.simType;
        g_cardMode.store(mode, std::memory_order_relaxed);
    }
    return atapi::usim::FilePath(mode, fileId);
}

int32_t SendCrsm(const CrsmRequest &q, CrsmReply &reply, int32_t *errorId) {
    if (q.data != nullptr) {
        return Command(kCrsmWithData, q.command, q.fileId, q.p1, q.p2, q.p3, q.data, q.path)
            .Query(kCrsmFields, reply, errorId);
    }
    return Command(kCrsm, q.command, q.fileId, q.p1, q.p2, q.p3, q.path)
        .Query(kCrsmFields, reply, errorId);
}

// Replaces r's response with a heap copy of text.
int32_t StoreResponse(const char *text, CrsmResult *r) {
    std::free(r->response);
    const size_t size = std::strlen(text) + 1;
    r->response = static_cast<char *>(std::malloc(size));
    if (r->response == nullptr) return -1;
    std::memset(r->response, 0, size);
    if (strcpy_s(r->response, size, text) != 0) {
        std::free(r->response);
        r->response = nullptr;
        return -1;
    }
    return 0;
}

}  // namespace

namespace atapi::usim {

const char *FilePath(uint32_t cardMode, int32_t fileId) {
    std::span<const PathRow> table;
    if (cardMode == kCardSim) {
        table = kSimPaths;
    } else if (cardMode == kCardUsim) {
        table = kUsimPaths;
    } else {
        AT_LOG_ERR("cardMode %d is not supported", static_cast<int>(cardMode));
        return nullptr;
    }
    const auto row = std::find_if(table.begin(), table.end(),
                                  [fileId](const PathRow &r) { return r.fileId == fileId; });
    if (row != table.end() && row->path != nullptr) return row->path;
    AT_LOG_ERR("fileId = [%d] get pathId error", fileId);
    return nullptr;
}

void ResetCardModeCache() { g_cardMode.store(0, std::memory_order_relaxed); }

}  // namespace atapi::usim

extern "C" {

int32_t AtCrsm(CrsmRequest *q, CrsmResult *r) {
    if (q == nullptr || r == nullptr) return -1;
    if (const char *path = TablePath(q->fileId); path != nullptr) {
        q->path = path;
    } else {
        AT_LOG_ERR("get pathId error");
    }
    if (q->path == nullptr) return -1;
    CrsmReply reply{};
    if (SendCrsm(*q, reply, &r->errorId) != 0) return -1;
    r->sw1 = reply.sw1;
    r->sw2 = reply.sw2;
    return StoreResponse(reply.response, r);
}

}  // extern "C"
