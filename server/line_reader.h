// Splits the modem's byte stream into lines. CR and LF both end a line and
// empty lines are skipped, so "\r\nOK\r\n" gives one line "OK". A line longer
// than kMaxLineBytes is dropped whole (its length is reported); control bytes
// inside a line (NUL included) become '?' so that a line is always C text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace atserver {

class LineReader {
  public:
    static constexpr size_t kMaxLineBytes = 2048;

    struct Output {
        std::vector<std::string> lines;
        std::vector<size_t> droppedLengths;  // lengths of over-long lines dropped
    };

    // Appends the lines completed by these bytes to *out.
    void Feed(const char *data, size_t len, Output *out);
    // Forgets a partial line (after the port was reopened).
    void Reset();

  private:
    void ClearPartial();

    std::string partial_;
    size_t overflowLength_ = 0;  // > 0 while dropping an over-long line
};

}  // namespace atserver
