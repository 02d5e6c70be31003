// Texts with substitutions, as written in scenario files:
//   $0 the whole command line, $1..$9 what each '*' of the pattern matched,
//   ${name} a scenario variable, ${rand LO HI} a random number, $$ a '$'.
// Any other '$' stands for itself.
#pragma once

#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "scenario.h"

namespace atsim {

// Gives the slot of a variable name (the parser records names as it meets them).
using SlotOf = std::function<std::size_t(const std::string &name)>;

// Compiles `raw`. Fails with `error` on a malformed ${...} or on a capture
// number above `captureCount`.
bool CompileText(std::string_view raw, std::size_t captureCount, const SlotOf &slotOf, Text *out,
                 std::string *error);

struct ExpandContext {
    const std::vector<std::string> &variables;
    const std::vector<std::string> &captures;  // [0] is the whole line
    std::mt19937 &random;
};

std::string ExpandText(const Text &text, const ExpandContext &context);

// Variable names: a letter or '_', then letters, digits or '_'.
bool IsVariableName(std::string_view name);

}  // namespace atsim
