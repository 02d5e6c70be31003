// Final result codes: the lines that end a command, and the result class
// each one gives the requester.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace atserver {

// The class of a final result line, or nothing for any other line.
std::optional<int32_t> ClassifyFinalResult(std::string_view line);

}  // namespace atserver
