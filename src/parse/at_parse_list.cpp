// Rows of parse nodes: appending, releasing (wiped), and the line splitter
// used by callers that take multi-line replies apart themselves.
#include <cstring>

#include "atapi/at_parse.h"
#include "link/at_log.h"
#include "parse/at_parse_alloc.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse";

// A piece with its terminator fits the reply text of one message.
constexpr size_t kMaxPieceBytes = AT_REPORT_STR_LEN;

// Wipes and frees a node and both its strings.
inline void ReleaseNode(AtCmdParseNode *node) {
    atapi::AtParseFreeString(node->atFieldName);
    atapi::AtParseFreeString(node->atFieldValue);
    atapi::AtParseRelease(node, sizeof(*node));
}

}  // namespace

extern "C" {

void AddLinkNode(AtCmdParseNode **head, AtCmdParseNode *row) {
    if (head == nullptr || row == nullptr) {
        AT_LOG_ERR("para error\n");
        return;
    }
    AtCmdParseNode **link = head;
    while (*link != nullptr) link = &(*link)->nextRow;
    *link = row;
}

void FreeAtCmdParseNode(AtCmdParseNode *node) {
    if (node != nullptr) ReleaseNode(node);
}

void FreeAtCmd(AtCmdParseNode *first) {
    while (first != nullptr) {
        AtCmdParseNode *nextRow = first->nextRow;
        for (AtCmdParseNode *node = first; node != nullptr;) {
            AtCmdParseNode *nextField = node->nextField;
            ReleaseNode(node);
            node = nextField;
        }
        first = nextRow;
    }
}

void GetSubstring(const char *buffer, char **pieces, int32_t *count, const char *needle) {
    if (count == nullptr) return;
    if (pieces == nullptr || buffer == nullptr || needle == nullptr || buffer[0] == '\0') {
        *count = 0;
        return;
    }
    const int32_t capacity = *count;
    int32_t stored = 0;
    const char *piece = buffer;
    // An empty needle would otherwise step onto the terminator.
    while (piece != nullptr && *piece != '\0' && stored < capacity) {
        const char *next = std::strstr(piece + 1, needle);
        const size_t len = next != nullptr ? static_cast<size_t>(next - piece) : std::strlen(piece);
        if (len + 1 > kMaxPieceBytes) {
            AT_LOG_INFO("len too long\n");
            break;
        }
        char *copy = atapi::AtParseStrDup(std::string_view(piece, len));
        if (copy == nullptr) break;
        pieces[stored++] = copy;
        piece = next;
    }
    *count = stored;
}

void ReleaseSubstring(char **pieces, int32_t count) {
    if (pieces == nullptr) return;
    for (int32_t i = 0; i < count; ++i) {
        atapi::AtParseFreeString(pieces[i]);
        pieces[i] = nullptr;
    }
}

}  // extern "C"
