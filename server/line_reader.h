// Splits the modem's byte stream into lines. CR and LF both end a line and
// empty lines are skipped, so "\r\nOK\r\n" gives one line "OK". A line longer
// than kMaxLineBytes is dropped whole, but its place in the stream is kept
// (with its length), so that the command it interrupts can tell that a line
// was lost; control bytes inside a line (NUL included) become '?' so that a
// line is always C text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace atserver {

class LineReader {
  public:
    static constexpr size_t kMaxLineBytes = 2048;

    // A completed line, or the place of a dropped over-long one.
    struct Line {
        std::string text;
        size_t droppedLength = 0;  // > 0: an over-long line of this length (text empty)
    };
    using Output = std::vector<Line>;

    // Appends the lines completed by these bytes to *out, in stream order.
    void Feed(const char *data, size_t len, Output *out);
    // Forgets a partial line (after the port was reopened).
    void Reset();

  private:
    void ClearPartial();

    std::string partial_;
    size_t overflowLength_ = 0;  // > 0 while dropping an over-long line
};

}  // namespace atserver
