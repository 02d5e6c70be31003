// Tells unsolicited report lines apart from a command's own reply lines.
// A line is unsolicited when its prefix (the text before ':', or the whole
// line) is a key of the unsolicited-report table and the running command
// does not name that prefix, neither in its expected response prefix nor in
// its command line ("AT+CREG?" expects "+CREG: ..." lines as its reply).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace atserver {

class UrcFilter {
  public:
    UrcFilter();

    struct Verdict {
        bool unsolicited = false;
        size_t followingLines = 0;  // lines that belong to the report (an SMS PDU)
    };

    // atName and cmd of the running command; both empty when none runs.
    Verdict Check(std::string_view line, std::string_view atName, std::string_view cmd) const;

  private:
    // Report prefix -> number of lines that follow it.
    std::unordered_map<std::string, size_t> reports_;
};

}  // namespace atserver
