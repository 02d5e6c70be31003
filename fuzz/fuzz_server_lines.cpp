// atserver's modem-side text path on arbitrary bytes: the line reader (fed in
// chunks whose sizes the input picks), the final-result classifier, the
// unsolicited-report filter against a running command, and the reply text
// built from the lines. Input: chunk-size byte, command line NUL response
// prefix NUL modem bytes.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz_parse_input.h"
#include "line_reader.h"
#include "reply_builder.h"
#include "result_classifier.h"
#include "urc_filter.h"

namespace {

atserver::LineReader::Output ReadAll(std::string_view bytes, size_t chunk) {
    atserver::LineReader reader;
    atserver::LineReader::Output out;
    for (size_t at = 0; at < bytes.size(); at += chunk) {
        const size_t len = bytes.size() - at < chunk ? bytes.size() - at : chunk;
        reader.Feed(bytes.data() + at, len, &out);
    }
    return out;
}

bool SameLines(const atserver::LineReader::Output &a, const atserver::LineReader::Output &b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i].text != b[i].text || a[i].droppedLength != b[i].droppedLength) return false;
    }
    return true;
}

bool IsLine(const std::string &line) {
    return !line.empty() && line.size() <= atserver::LineReader::kMaxLineBytes &&
           line.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const atserver::UrcFilter filter;
    atapi::fuzz::InputReader input(data, size);
    const size_t chunk = 1 + input.Byte() % 64;
    const std::string cmd = input.Segment();
    const std::string atName = input.Segment();
    const std::string bytes = input.Rest();

    // How the bytes arrive must not change the lines they make.
    const atserver::LineReader::Output whole = ReadAll(bytes, bytes.size() + 1);
    const atserver::LineReader::Output split = ReadAll(bytes, chunk);
    if (!SameLines(whole, split)) __builtin_trap();

    std::vector<std::string> info;
    for (const atserver::LineReader::Line &read : whole) {
        // A dropped line keeps only its place and its length.
        if (read.droppedLength > 0) {
            if (!read.text.empty() || read.droppedLength <= atserver::LineReader::kMaxLineBytes) {
                __builtin_trap();
            }
            continue;
        }
        const std::string &line = read.text;
        if (!IsLine(line)) __builtin_trap();
        const atserver::UrcFilter::Verdict verdict = filter.Check(line, atName, cmd);
        if (verdict.unsolicited) continue;
        if (const auto retVal = atserver::ClassifyFinalResult(line)) {
            const atserver::ReplyText reply = *retVal == AT_RET_OK
                                                  ? atserver::OkReply(info)
                                                  : atserver::ErrorReply(*retVal, line);
            AtSrvMsg request{};
            const AtSrvMsg record = atserver::MakeReplyRecord(request, reply);
            // The text is C text of the length the record states, with what it left out counted.
            const AtSrvRcvMsg &rMsg = record.sndRcvMsg.rMsg;
            const void *end = std::memchr(rMsg.atReportStr, '\0', sizeof rMsg.atReportStr);
            if (end == nullptr ||
                static_cast<const char *>(end) - rMsg.atReportStr != rMsg.atReportLen) {
                __builtin_trap();
            }
            info.clear();
        } else {
            info.push_back(line);
        }
    }
    return 0;
}
