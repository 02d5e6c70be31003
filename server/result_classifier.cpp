#include "result_classifier.h"

#include "atapi/at_types.h"

namespace atserver {
namespace {

enum class Match { kExact, kPrefix };

struct FinalResult {
    std::string_view text;
    Match match;
    int32_t retVal;
};

constexpr FinalResult kFinalResults[] = {
    {"OK", Match::kExact, AT_RET_OK},
    {"+CME ERROR:", Match::kPrefix, AT_RET_CME_ERROR},
    {"+CMS ERROR:", Match::kPrefix, AT_RET_CMS_ERROR},
    {"ERROR", Match::kExact, AT_RET_ERROR},
    {"NO CARRIER", Match::kExact, AT_RET_ERROR},
    {"BUSY", Match::kExact, AT_RET_ERROR},
    {"NO ANSWER", Match::kExact, AT_RET_ERROR},
    {"NO DIALTONE", Match::kExact, AT_RET_ERROR},
};

std::string_view TrimTrailingBlanks(std::string_view line) {
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
    return line;
}

}  // namespace

std::optional<int32_t> ClassifyFinalResult(std::string_view line) {
    line = TrimTrailingBlanks(line);
    for (const FinalResult &result : kFinalResults) {
        const bool hit =
            result.match == Match::kExact ? line == result.text : line.starts_with(result.text);
        if (hit) return result.retVal;
    }
    return std::nullopt;
}

}  // namespace atserver
