// Splitting a names text and a values text into one row of nodes.
#include <algorithm>
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
bool IsTrimmedEnd(char c) { return c == '\n' || c == '\r' || c == ' ' || c == '"'; }

// The field with a leading and a trailing run of each trimmed character
// removed, one character after the other.
std::string_view Trimmed(std::string_view field) {
    if (field.empty() || (!IsTrimmedEnd(field.front()) && !IsTrimmedEnd(field.back()))) {
        return field;
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

// The comma-separated fields of a text, one slot per comma outside double
// quotes plus one: a '"' toggles the quoted state, and a last field that ends
// inside an unclosed quote is lost (its slot holds no field).
class FieldCursor {
  public:
    explicit FieldCursor(std::string_view text) : next_(text.data()), end_(next_ + text.size()) {}

    bool HasSlot() const { return !done_; }

    // Takes the next slot (HasSlot() must hold): true with its field,
    // untrimmed, or false when the slot holds none.
    bool Next(std::string_view *field) {
        const char *start = next_;
        bool quoted = false;
        for (const char *p = start; p != end_; ++p) {
            if (*p > ',') continue;  // digits and letters, most of a reply
            if (*p == '"') {
                quoted = !quoted;
            } else if (*p == ',' && !quoted) {
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
