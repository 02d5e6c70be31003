#include "urc_filter.h"

#include <cctype>
#include <cstring>

#include "atapi/at_parse.h"

namespace atserver {
namespace {

std::string_view LinePrefix(std::string_view line) {
    const size_t colon = line.find(':');
    std::string_view prefix = colon == std::string_view::npos ? line : line.substr(0, colon);
    while (!prefix.empty() && prefix.back() == ' ') prefix.remove_suffix(1);
    return prefix;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (std::toupper(static_cast<unsigned char>(a[i])) !=
            std::toupper(static_cast<unsigned char>(b[i]))) {
            return false;
        }
    }
    return true;
}

bool IsNameChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

// True when text holds prefix as a whole name: "AT+CREG?" names "+CREG",
// "AT+CREGX" and "AT+CGREG?" do not.
bool NamesPrefix(std::string_view text, std::string_view prefix) {
    if (prefix.empty() || text.size() < prefix.size()) return false;
    for (size_t at = 0; at + prefix.size() <= text.size(); ++at) {
        if (!EqualNoCase(text.substr(at, prefix.size()), prefix)) continue;
        const size_t end = at + prefix.size();
        if (end == text.size() || !IsNameChar(text[end])) return true;
    }
    return false;
}

// An SMS report template has its PDU on a line of its own.
size_t FollowingLines(const AtParseHandler &entry) {
    const char *tmpl = entry.atTemplate[AT_PARSE_REPORT];
    return tmpl != nullptr && std::strstr(tmpl, "\r\n") != nullptr ? 1 : 0;
}

}  // namespace

UrcFilter::UrcFilter() {
    for (const AtParseHandler *entry = g_initialReportHandlers; entry->atName != nullptr; ++entry) {
        reports_.emplace(entry->atName, FollowingLines(*entry));
    }
}

UrcFilter::Verdict UrcFilter::Check(std::string_view line, std::string_view atName,
                                    std::string_view cmd) const {
    const std::string_view prefix = LinePrefix(line);
    const auto found = reports_.find(std::string(prefix));
    if (found == reports_.end()) return {};
    if (NamesPrefix(atName, prefix) || NamesPrefix(cmd, prefix)) return {};
    return {true, found->second};
}

}  // namespace atserver
