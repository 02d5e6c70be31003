#include "emergency_commands.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>

namespace atserver {
namespace {

constexpr std::string_view kEcallSteps[] = {"^ECLSTART", "^ECLMSD", "^ECLPUSH", "^ECLSTOP",
                                            "^ECLABORT"};
// Dial modifiers that do not change the number dialled.
constexpr std::string_view kDialModifiers = "TPIG";
constexpr std::string_view kDialCharacters = "0123456789*#+";

std::string Normalised(std::string_view command) {
    std::string line;
    for (const char c : command) {
        if (c != ' ') line += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return line;
}

// body: the command line after "AT".
bool IsEcallStep(std::string_view body) {
    return std::any_of(std::begin(kEcallSteps), std::end(kEcallSteps), [&](std::string_view step) {
        if (!body.starts_with(step)) return false;
        const std::string_view rest = body.substr(step.size());
        return rest.empty() || rest.front() == '=' || rest.front() == '?' || rest.front() == ';';
    });
}

// dial: the command line after "ATD".
std::string DialledNumber(std::string_view dial) {
    std::string number;
    for (const char c : dial.substr(0, dial.find(';'))) {
        if (kDialModifiers.find(c) == std::string_view::npos) number += c;
    }
    return number;
}

}  // namespace

const EmergencyNumbers &DefaultEmergencyNumbers() {
    static const EmergencyNumbers numbers{"112", "911"};
    return numbers;
}

bool ParseEmergencyNumbers(std::string_view list, EmergencyNumbers *out) {
    EmergencyNumbers numbers;
    while (true) {
        const size_t comma = list.find(',');
        const std::string_view number = list.substr(0, comma);
        if (number.empty() || number.find_first_not_of(kDialCharacters) != std::string_view::npos) {
            return false;
        }
        numbers.emplace_back(number);
        if (comma == std::string_view::npos) break;
        list.remove_prefix(comma + 1);
    }
    *out = std::move(numbers);
    return true;
}

bool IsEmergencyCommand(std::string_view command, const EmergencyNumbers &numbers) {
    const std::string line = Normalised(command);
    if (!line.starts_with("AT")) return false;
    const std::string_view body = std::string_view(line).substr(2);
    if (IsEcallStep(body)) return true;
    if (!body.starts_with('D')) return false;
    const std::string number = DialledNumber(body.substr(1));
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

}  // namespace atserver
