#include "adapt/at_network_time.h"

#include "adapt/at_time_calendar.h"

namespace atapi::adapt {
namespace {

constexpr int32_t kCentury = 2000;  // of two-digit years

// A cursor over the text; every read fails once the text did not match.
class Reader {
  public:
    explicit Reader(const char *text) : p_(text) {}

    void SkipBlanks() {
        while (*p_ == ' ') ++p_;
    }
    bool Optional(char c) {
        if (*p_ != c) return false;
        ++p_;
        return true;
    }
    bool Expect(char c) { return ok_ = ok_ && Optional(c); }
    // Between minDigits and maxDigits decimal digits.
    int32_t Number(int minDigits, int maxDigits) {
        int32_t value = 0;
        int digits = 0;
        while (ok_ && digits < maxDigits && *p_ >= '0' && *p_ <= '9') {
            value = value * 10 + (*p_++ - '0');
            ++digits;
        }
        ok_ = ok_ && digits >= minDigits;
        return value;
    }
    bool Ok() const { return ok_; }
    char Peek() const { return *p_; }

  private:
    const char *p_;
    bool ok_ = true;
};

}  // namespace

bool DecodeNetworkTime(const char *text, AtsTimeInfo *out) {
    if (text == nullptr || out == nullptr) return false;
    Reader in(text);
    in.SkipBlanks();
    const bool quoted = in.Optional('"');
    AtsTimeInfo t{};
    t.tm_year = in.Number(2, 2);
    // A full year goes on with two more digits.
    t.tm_year = in.Peek() >= '0' && in.Peek() <= '9' ? t.tm_year * 100 + in.Number(2, 2)
                                                     : t.tm_year + kCentury;
    in.Expect('/');
    t.tm_mon = in.Number(2, 2);
    in.Expect('/');
    t.tm_mday = in.Number(2, 2);
    in.Expect(',');
    t.tm_hour = in.Number(2, 2);
    in.Expect(':');
    t.tm_min = in.Number(2, 2);
    in.Expect(':');
    t.tm_sec = in.Number(2, 2);
    const char sign = in.Peek();
    if (!in.Optional('+')) in.Expect('-');
    const int32_t zone = in.Number(1, 2);
    t.timeZone = sign == '-' ? -zone : zone;
    if (quoted) in.Expect('"');
    // What may follow: the daylight-saving field, line ends.
    if (!in.Ok() || (in.Peek() != '\0' && in.Peek() != ',' && in.Peek() != '\r' &&
                     in.Peek() != '\n' && in.Peek() != ' ')) {
        return false;
    }
    if (!IsValidTime(t)) return false;
    *out = t;
    return true;
}

}  // namespace atapi::adapt
