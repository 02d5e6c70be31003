// The command classes whose lines carry personal data (numbers, IMSI,
// credentials, addresses), and the routines that log such a line masked.
// Each routine works on a heap copy that is wiped before it is released.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "atapi/at_text.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "platform/wiped_text.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_lib";

constexpr char kMaskChar = '*';
constexpr size_t kKeptEdge = 2;         // characters left readable at each end
constexpr size_t kCpbwCopySize = 1024;  // phone-book lines fit this working copy
constexpr size_t kCopyFitsLine = 0;     // working copy sized to the line

// A heap copy of a line that may hold a secret, of capacity bytes (or sized
// to the line); empty when the line is null or the copy failed.
platform::WipedText<> SecretCopy(const char *line, size_t capacity) {
    if (line == nullptr) return {};
    const size_t size = capacity != kCopyFitsLine ? capacity : std::strlen(line) + 1;
    platform::WipedText<> copy(static_cast<char *>(std::malloc(size)), size);
    if (copy.Get() != nullptr && strcpy_s(copy.Get(), size, line) != 0) copy.Reset();
    return copy;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool AnyChar(char) { return true; }

// Masks the characters of [begin, end) that `selects` picks, except the first
// two and the last two of them.
template <typename Pred>
void MaskAllButEdges(char *begin, char *end, Pred selects) {
    const auto total = static_cast<size_t>(std::count_if(begin, end, selects));
    size_t index = 0;
    for (char *p = begin; p != end; ++p) {
        if (!selects(*p)) continue;
        if (index >= kKeptEdge && index + kKeptEdge < total) *p = kMaskChar;
        ++index;
    }
}

char *TextEnd(char *text) { return text + std::strlen(text); }

// Numbers and IMSIs: every run of decimal digits is masked like a dialled
// number (runs of up to four digits, such as an index or a number type, stay).
void MaskDigitRuns(char *text) {
    char *p = text;
    while (*p != '\0') {
        if (!IsDigit(*p)) {
            ++p;
            continue;
        }
        char *runEnd = p;
        while (IsDigit(*runEnd)) ++runEnd;
        MaskAllButEdges(p, runEnd, AnyChar);
        p = runEnd;
    }
}

// Which quoted strings of a line hold secrets, and which lines to look at.
struct QuotedMaskRule {
    const char *func;         // the exported routine, for the log line
    const char *skipMarkers;  // a line with any of these (a query) is left as is
    const char *needMarkers;  // only a line with one of these is masked
    uint32_t maskedStrings;   // bit n set: the n-th quoted string (from 1) is masked
};

constexpr uint32_t QuotedString(uint32_t n) { return 1U << n; }

enum QuotedRuleId { kIpopenRule, kSetautodialRule, kNdisdupRule, kSslmngRule, kQuotedRuleCount };

constexpr QuotedMaskRule kQuotedMaskRules[] = {
    {"AtIpopenEncrypt", "", "=", QuotedString(3) | QuotedString(4)},
    {"AtSetautodialEncrypt", "", "=:", QuotedString(3) | QuotedString(4)},
    {"AtNdisdupEncrypt", "?", "=", QuotedString(2) | QuotedString(3)},
    {"AtSslmngEncrypt", "?", "=", QuotedString(2)},
};
static_assert(std::size(kQuotedMaskRules) == kQuotedRuleCount);

void MaskQuotedStrings(char *text, const QuotedMaskRule &rule) {
    if (std::strpbrk(text, rule.skipMarkers) != nullptr ||
        std::strpbrk(text, rule.needMarkers) == nullptr) {
        return;
    }
    size_t quotes = 0;  // quotes are counted from the start of the line
    for (char *p = text; *p != '\0'; ++p) {
        if (*p == '"') {
            ++quotes;
            continue;
        }
        const size_t stringNo = (quotes + 1) / 2;
        const bool inside = quotes % 2 == 1;
        if (inside && stringNo < 32 && ((rule.maskedStrings >> stringNo) & 1U) != 0) {
            *p = kMaskChar;
        }
    }
}

// The first quoted string (to the end of the line when unterminated).
void MaskFirstQuotedString(char *text) {
    char *open = std::strchr(text, '"');
    if (open == nullptr) return;
    char *close = std::strchr(open + 1, '"');
    MaskAllButEdges(open + 1, close != nullptr ? close : TextEnd(open + 1), AnyChar);
}

template <typename MaskFn>
int32_t LogMasked(const char *func, const char *line, size_t copySize, MaskFn mask) {
    const platform::WipedText<> copy = SecretCopy(line, copySize);
    if (copy.Get() == nullptr) return 1;
    mask(copy.Get());
    AT_LOG_INFO("%s func in %s.", func, copy.Get());
    return 0;
}

int32_t LogQuotedMasked(QuotedRuleId id, const char *line) {
    const QuotedMaskRule &rule = kQuotedMaskRules[id];
    return LogMasked(rule.func, line, kCopyFitsLine,
                     [&rule](char *text) { MaskQuotedStrings(text, rule); });
}

}  // namespace

extern "C" {

constexpr AtRightListCmd g_tdRightListCmdMap[] = {
    {0, "^CHIPTEMP", nullptr},
    {1, "+CIMI", AtCimiEncrypt},
    {2, "ATD", AtAtdEncrypt},
    {3, "+CLCK", nullptr},
    {4, "+CPWD", nullptr},
    {5, "+CLIP", nullptr},
    {6, "+CNUM", AtCnumEncrypt},
    {7, "+CPIN", nullptr},
    {8, "+CPBW", AtCpbwEncrypt},
    {9, "+CPBR", nullptr},
    {10, "+CPBF", nullptr},
    {11, "+CGPADDR", AtCpbwEncrypt},
    {12, "^AUTHDATA", nullptr},
    {13, "+CMT", nullptr},
    {14, "+CDS", nullptr},
    {15, "+CMGL", nullptr},
    {16, "+CMGR", nullptr},
    {17, "+CMGW", nullptr},
    {18, "+CMGS", nullptr},
    {19, "^SSLMNG", AtSslmngEncrypt},
    {20, "^NDISDUP", AtNdisdupEncrypt},
    {21, "^SETAUTODIAL", AtSetautodialEncrypt},
    {22, "^IPOPEN", AtIpopenEncrypt},
};

int32_t AtIpopenEncrypt(const char *cmd) { return LogQuotedMasked(kIpopenRule, cmd); }

int32_t AtSetautodialEncrypt(const char *cmd) { return LogQuotedMasked(kSetautodialRule, cmd); }

int32_t AtNdisdupEncrypt(const char *cmd) { return LogQuotedMasked(kNdisdupRule, cmd); }

int32_t AtSslmngEncrypt(const char *cmd) { return LogQuotedMasked(kSslmngRule, cmd); }

int32_t AtAtdEncrypt(const char *cmd) {
    return LogMasked(__func__, cmd, kCopyFitsLine,
                     [](char *text) { MaskAllButEdges(text, TextEnd(text), IsDigit); });
}

int32_t AtCpbwEncrypt(const char *cmd) {
    return LogMasked(__func__, cmd, kCpbwCopySize, MaskFirstQuotedString);
}

int32_t AtCnumEncrypt(const char *cmd) {
    return LogMasked(__func__, cmd, kCopyFitsLine, MaskDigitRuns);
}

int32_t AtCimiEncrypt(const char *cmd) {
    return LogMasked(__func__, cmd, kCopyFitsLine, MaskDigitRuns);
}

}  // extern "C"

namespace {

// The bound comes from the public declaration (a missing row would be
// zero-filled): every row must be present and carry its row number as id.
constexpr bool CmdMapRowsMatchIds() {
    for (size_t i = 0; i < std::size(g_tdRightListCmdMap); ++i) {
        const AtRightListCmd &row = g_tdRightListCmdMap[i];
        if (row.prefix == nullptr || row.id != static_cast<int32_t>(i)) return false;
    }
    return std::size(g_tdRightListCmdMap) == AT_RIGHT_LIST_CMD_COUNT;
}
static_assert(CmdMapRowsMatchIds());

}  // namespace
