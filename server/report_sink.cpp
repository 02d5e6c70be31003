#include "report_sink.h"

#include "server_log.h"

namespace atserver {

ReportSink::~ReportSink() {
    if (ownsOut_) std::fclose(out_);
}

bool ReportSink::Open(const std::string &path) {
    if (path.empty()) return true;
    if (path == "-") {
        out_ = stdout;
        return true;
    }
    out_ = std::fopen(path.c_str(), "ae");
    ownsOut_ = out_ != nullptr;
    return out_ != nullptr;
}

void ReportSink::Write(const std::string &line) {
    Logf("unsolicited: %s", line.c_str());
    if (out_ == nullptr) return;
    std::fprintf(out_, "%s\n", line.c_str());
    std::fflush(out_);
}

}  // namespace atserver
