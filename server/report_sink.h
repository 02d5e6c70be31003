// Where unsolicited lines go: always the log, and optionally a file or
// stdout (--report FILE, --report -), one line each, flushed at once.
#pragma once

#include <cstdio>
#include <string>

namespace atserver {

class ReportSink {
  public:
    ReportSink() = default;
    ~ReportSink();
    ReportSink(const ReportSink &) = delete;
    ReportSink &operator=(const ReportSink &) = delete;

    // Empty path: log only. False when the file cannot be opened.
    bool Open(const std::string &path);
    void Write(const std::string &line);

  private:
    std::FILE *out_ = nullptr;
    bool ownsOut_ = false;
};

}  // namespace atserver
