#include "pattern.h"

#include <algorithm>
#include <cctype>

namespace atsim {
namespace {

bool SameChar(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
}

bool SameText(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), SameChar);
}

// Leftmost position of `needle` in `hay` at or after `from`, or npos.
std::size_t FindFrom(std::string_view hay, std::string_view needle, std::size_t from) {
    auto it = std::search(hay.begin() + static_cast<std::ptrdiff_t>(from), hay.end(),
                          needle.begin(), needle.end(), SameChar);
    return it == hay.end() && !needle.empty() ? std::string_view::npos
                                              : static_cast<std::size_t>(it - hay.begin());
}

std::vector<std::string_view> SplitAtWildcards(std::string_view pattern) {
    std::vector<std::string_view> segments;
    std::size_t start = 0;
    for (std::size_t star = pattern.find('*'); star != std::string_view::npos;
         star = pattern.find('*', start)) {
        segments.push_back(pattern.substr(start, star - start));
        start = star + 1;
    }
    segments.push_back(pattern.substr(start));
    return segments;
}

}  // namespace

std::size_t WildcardCount(std::string_view pattern) {
    return static_cast<std::size_t>(std::count(pattern.begin(), pattern.end(), '*'));
}

bool MatchPattern(std::string_view pattern, std::string_view line,
                  std::vector<std::string> *captures) {
    // With only '*' as a wildcard, placing every inner literal segment at its
    // leftmost possible position finds a match whenever one exists.
    const std::vector<std::string_view> segments = SplitAtWildcards(pattern);
    if (segments.size() == 1) {
        if (!SameText(pattern, line)) return false;
        if (captures) *captures = {std::string(line)};
        return true;
    }
    const std::string_view head = segments.front();
    const std::string_view tail = segments.back();
    if (line.size() < head.size() + tail.size()) return false;
    if (!SameText(line.substr(0, head.size()), head)) return false;
    if (!SameText(line.substr(line.size() - tail.size()), tail)) return false;

    const std::string_view middle = line.substr(0, line.size() - tail.size());
    std::vector<std::string> found{std::string(line)};
    std::size_t pos = head.size();
    for (std::size_t i = 1; i + 1 < segments.size(); ++i) {
        const std::size_t at = FindFrom(middle, segments[i], pos);
        if (at == std::string_view::npos) return false;
        found.emplace_back(line.substr(pos, at - pos));
        pos = at + segments[i].size();
    }
    found.emplace_back(middle.substr(pos));
    if (captures) *captures = std::move(found);
    return true;
}

}  // namespace atsim
