#include "line_reader.h"

#include "platform/bounded.h"

namespace atserver {
namespace {

char Printable(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && c != '\t') || byte == 0x7f ? '?' : c;
}

}  // namespace

void LineReader::Feed(const char *data, size_t len, Output *out) {
    for (size_t i = 0; i < len; ++i) {
        const char c = data[i];
        if (c == '\r' || c == '\n') {
            if (overflowLength_ > 0) {
                out->push_back({{}, overflowLength_});
                overflowLength_ = 0;
            } else if (!partial_.empty()) {
                out->push_back({partial_});
            }
            ClearPartial();
            continue;
        }
        if (overflowLength_ > 0) {
            ++overflowLength_;
        } else if (partial_.size() == kMaxLineBytes) {
            overflowLength_ = partial_.size() + 1;
            ClearPartial();
        } else {
            partial_.push_back(Printable(c));
        }
    }
}

void LineReader::Reset() {
    ClearPartial();
    overflowLength_ = 0;
}

// A line may be the echo of a command with a PIN: it is copied out and wiped
// here rather than moved, which would leave a short line's bytes behind.
void LineReader::ClearPartial() {
    memset_s(partial_.data(), partial_.size(), 0, partial_.size());
    partial_.clear();
}

}  // namespace atserver
