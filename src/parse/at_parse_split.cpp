// Splitting a names text and a values text into one row of nodes.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "atapi/at_parse.h"
#include "link/at_log.h"
#include "parse/at_parse_alloc.h"
#include "parse/at_parse_fields.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_parse";

// A row never holds more fields than this.
constexpr uint32_t kMaxFieldsPerRow = 1000;

// Trimmed ends, in this order: a value keeps the blanks inside its quotes.
constexpr char kTrimOrder[] = {'\n', '\r', ' ', '"'};

// One of kTrimOrder's characters.
constexpr bool IsTrimmedEnd(char c) {
    constexpr uint64_t kEnds = 1ull << '\n' | 1ull << '\r' | 1ull << ' ' | 1ull << '"';
    return static_cast<unsigned char>(c) < 64 &&
           ((kEnds >> static_cast<unsigned char>(c)) & 1) != 0;
}

// The field with a leading and a trailing run of each trimmed character
// removed, one character after the other.
[[gnu::noinline]] std::string_view TrimEnds(std::string_view field) {
    // A quoted value: only the quotes go.
    if (field.front() == '"' && field.back() == '"' && field.size() > 1) {
        const size_t start = field.find_first_not_of('"');
        if (start == std::string_view::npos) return {};
        return field.substr(start, field.find_last_not_of('"') + 1 - start);
    }
    for (char ch : kTrimOrder) {
        if (field.empty()) break;
        if (field.front() != ch && field.back() != ch) continue;
        size_t start = 0;
        while (start < field.size() && field[start] == ch) ++start;
        size_t end = field.size();
        while (end > start && field[end - 1] == ch) --end;
        field = field.substr(start, end - start);
    }
    return field;
}

// Most fields have nothing to trim: two tests and no call settle them.
inline std::string_view Trimmed(std::string_view field) {
    if (field.empty() || (!IsTrimmedEnd(field.front()) && !IsTrimmedEnd(field.back()))) {
        return field;
    }
    return TrimEnds(field);
}

// Bit 7 of each byte of the result is set where word holds the byte of
// pattern (all its bytes alike); the lowest set bit is exact, bits above a
// match may be false.
constexpr uint64_t BytesEqual(uint64_t word, uint64_t pattern) {
    constexpr uint64_t kOnes = 0x0101010101010101ull;
    const uint64_t x = word ^ pattern;
    return (x - kOnes) & ~x & (kOnes << 7);
}

// The first ',' or '"' of [p, end), or end; text is where the whole text
// starts (bytes from it on may be read). Eight bytes are tested at a time.
const char *FindCommaOrQuote(const char *text, const char *p, const char *end) {
    constexpr uint64_t kCommas = 0x0101010101010101ull * ',';
    constexpr uint64_t kQuotes = 0x0101010101010101ull * '"';
    if constexpr (std::endian::native == std::endian::little) {
        uint64_t word;
        for (; end - p >= 8; p += 8) {
            std::memcpy(&word, p, 8);
            const uint64_t hits = BytesEqual(word, kCommas) | BytesEqual(word, kQuotes);
            if (hits != 0) return p + (std::countr_zero(hits) >> 3);
        }
        if (p == end || end - text < 8) {
            while (p != end && *p != ',' && *p != '"') ++p;
            return p;
        }
        // The last word of the text, its bytes before p shifted out.
        std::memcpy(&word, end - 8, 8);
        word >>= 8 * (8 - (end - p));
        const uint64_t hits = BytesEqual(word, kCommas) | BytesEqual(word, kQuotes);
        return hits != 0 ? p + (std::countr_zero(hits) >> 3) : end;
    } else {
        while (p != end && *p != ',' && *p != '"') ++p;
        return p;
    }
}

// The comma-separated fields of a text, one slot per comma outside double
// quotes plus one: a '"' toggles the quoted state, and a last field that ends
// inside an unclosed quote is lost (its slot holds no field).
class FieldCursor {
  public:
    explicit FieldCursor(std::string_view text)
        : text_(text.data()), next_(text_), end_(next_ + text.size()) {}

    bool HasSlot() const { return !done_; }

    // Takes the next slot (HasSlot() must hold): true with its field,
    // untrimmed, or false when the slot holds none.
    bool Next(std::string_view *field) {
        const char *start = next_;
        bool quoted = false;
        for (const char *p = start;; ++p) {
            p = FindCommaOrQuote(text_, p, end_);
            if (p == end_) break;
            if (*p == '"') {
                quoted = !quoted;
            } else if (!quoted) {
                *field = std::string_view(start, static_cast<size_t>(p - start));
                next_ = p + 1;
                return true;
            }
        }
        done_ = true;
        *field = std::string_view(start, static_cast<size_t>(end_ - start));
        return !quoted;
    }

    // The slots not taken yet.
    uint32_t SlotsLeft() const {
        uint32_t slots = 0;
        for (FieldCursor rest = *this; rest.HasSlot(); ++slots) {
            std::string_view ignored;
            rest.Next(&ignored);
        }
        return slots;
    }

  private:
    const char *text_;  // the whole text: the scan may read any of it
    const char *next_;
    const char *end_;
    bool done_ = false;  // every slot taken
};

// A heap copy of the trimmed field through *slot, when the cursor still has
// a slot that holds a field; *slot stays null otherwise. False when the copy
// could not be allocated.
bool TakeField(FieldCursor *cursor, char **slot) {
    std::string_view field;
    if (!cursor->HasSlot() || !cursor->Next(&field)) return true;
    *slot = atapi::AtParseStrDup(Trimmed(field));
    return *slot != nullptr;
}

void ReleasePieces(char **pieces, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        atapi::AtParseFreeString(pieces[i]);
        pieces[i] = nullptr;
    }
}

}  // namespace

namespace atapi {

int32_t ParseFieldSpans(AtCmdParseNode **out, std::string_view names, std::string_view values) {
    FieldCursor nameCursor(names);
    FieldCursor valueCursor(values);
    AtCmdParseNode *first = nullptr;
    AtCmdParseNode **link = &first;
    // A row is as long as the longer of its two texts: a field missing on
    // either side is a null name or a null value.
    for (uint32_t count = 0; nameCursor.HasSlot() || valueCursor.HasSlot(); ++count) {
        if (count == kMaxFieldsPerRow) {
            const uint32_t fields =
                count + std::max(nameCursor.SlotsLeft(), valueCursor.SlotsLeft());
            AT_LOG_ERR("the modeNumber out of range, modeNumber is %d\n", static_cast<int>(fields));
            FreeAtCmd(first);
            return AT_PARSE_BAD_ARG;
        }
        AtCmdParseNode *node = AtParseNewNode();
        if (node == nullptr) {
            AT_LOG_ERR("malloc failed\n");
            FreeAtCmd(first);
            return AT_PARSE_BAD_ARG;
        }
        *link = node;
        link = &node->nextField;
        if (!TakeField(&nameCursor, &node->atFieldName) ||
            !TakeField(&valueCursor, &node->atFieldValue)) {
            FreeAtCmd(first);
            return AT_PARSE_NO_ENTRY;
        }
    }
    *out = first;
    return AT_PARSE_OK;
}

}  // namespace atapi

extern "C" {

int32_t AtConstParse(char **pieces, uint32_t capacity, const char *text, uint32_t *outCount) {
    if (pieces == nullptr || text == nullptr || outCount == nullptr) return AT_PARSE_NO_ENTRY;
    uint32_t stored = 0;
    FieldCursor cursor(text);
    std::string_view field;
    while (stored < capacity && cursor.HasSlot() && cursor.Next(&field)) {
        char *piece = atapi::AtParseStrDup(Trimmed(field));
        if (piece == nullptr) {
            ReleasePieces(pieces, stored);
            return AT_PARSE_NO_ENTRY;
        }
        pieces[stored++] = piece;
    }
    *outCount = stored;
    return AT_PARSE_OK;
}

AtCmdParseNode *GreatLinkListAt(char **names, char **values, uint32_t count) {
    if (names == nullptr || values == nullptr) {
        AT_LOG_ERR("the modeName or modeValue is NULL\n");
        return nullptr;
    }
    if (count > kMaxFieldsPerRow) {
        AT_LOG_ERR("the modeNumber out of range, modeNumber is %d\n", static_cast<int>(count));
        return nullptr;
    }
    AtCmdParseNode *first = nullptr;
    AtCmdParseNode **link = &first;
    for (uint32_t i = 0; i < count; ++i) {
        AtCmdParseNode *node = atapi::AtParseNewNode();
        if (node == nullptr) {
            // The strings stay with the caller: release the bare nodes only.
            while (first != nullptr) {
                AtCmdParseNode *next = first->nextField;
                atapi::AtParseRelease(first, sizeof(*first));
                first = next;
            }
            AT_LOG_ERR("malloc failed\n");
            return nullptr;
        }
        node->atFieldName = names[i];
        node->atFieldValue = values[i];
        *link = node;
        link = &node->nextField;
    }
    return first;
}

int32_t ParseField(AtCmdParseNode **out, const char *names, const char *values) {
    if (names == nullptr) return AT_PARSE_NO_ENTRY;
    if (values == nullptr || out == nullptr) {
        AT_LOG_ERR("the atValueStr or result is NULL\n");
        return AT_PARSE_BAD_ARG;
    }
    return atapi::ParseFieldSpans(out, names, values);
}

}  // extern "C"
