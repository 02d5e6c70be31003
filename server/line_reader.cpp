#include "line_reader.h"

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
                out->push_back({std::move(partial_)});
            }
            partial_.clear();
            continue;
        }
        if (overflowLength_ > 0) {
            ++overflowLength_;
        } else if (partial_.size() == kMaxLineBytes) {
            overflowLength_ = partial_.size() + 1;
            partial_.clear();
        } else {
            partial_.push_back(Printable(c));
        }
    }
}

void LineReader::Reset() {
    partial_.clear();
    overflowLength_ = 0;
}

}  // namespace atserver
