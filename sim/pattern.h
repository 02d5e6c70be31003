// Command patterns: literal text with '*' wildcards, compared without regard to case.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace atsim {

// Number of '*' wildcards in a pattern.
std::size_t WildcardCount(std::string_view pattern);

// True when `line` matches `pattern`. On a match, `captures` (if given) holds the
// whole line first, then the text each '*' stood for; earlier wildcards take the
// shortest text that still lets the rest match.
bool MatchPattern(std::string_view pattern, std::string_view line,
                  std::vector<std::string> *captures);

}  // namespace atsim
