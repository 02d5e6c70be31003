#include "text.h"

#include <cctype>
#include <charconv>

namespace atsim {
namespace {

void AppendLiteral(Text *out, std::string_view literal) {
    if (literal.empty()) return;
    if (out->pieces.empty() || out->pieces.back().kind != Piece::Kind::kLiteral) {
        out->pieces.push_back(Piece{});
    }
    out->pieces.back().literal.append(literal);
}

bool ParseInt(std::string_view text, std::int64_t *value) {
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), *value);
    return ec == std::errc() && end == text.data() + text.size();
}

// "${...}" body: a variable name or "rand LO HI".
bool CompileBraced(std::string_view body, const SlotOf &slotOf, Text *out, std::string *error) {
    Piece piece;
    if (body.substr(0, 5) == "rand ") {
        const std::string_view range = body.substr(5);
        const std::size_t space = range.find(' ');
        if (space == std::string_view::npos || !ParseInt(range.substr(0, space), &piece.low) ||
            !ParseInt(range.substr(space + 1), &piece.high) || piece.low > piece.high) {
            *error = "bad random range '${" + std::string(body) + "}' (want ${rand LO HI})";
            return false;
        }
        piece.kind = Piece::Kind::kRandom;
    } else if (IsVariableName(body)) {
        piece.kind = Piece::Kind::kVariable;
        piece.index = slotOf(std::string(body));
    } else {
        *error = "bad substitution '${" + std::string(body) + "}'";
        return false;
    }
    out->pieces.push_back(std::move(piece));
    return true;
}

}  // namespace

bool CompileText(std::string_view raw, std::size_t captureCount, const SlotOf &slotOf, Text *out,
                 std::string *error) {
    Text text;
    std::size_t i = 0;
    while (i < raw.size()) {
        const std::size_t dollar = raw.find('$', i);
        if (dollar == std::string_view::npos || dollar + 1 == raw.size()) {
            AppendLiteral(&text, raw.substr(i));
            break;
        }
        AppendLiteral(&text, raw.substr(i, dollar - i));
        const char next = raw[dollar + 1];
        if (next == '$') {
            AppendLiteral(&text, "$");
            i = dollar + 2;
        } else if (std::isdigit(static_cast<unsigned char>(next))) {
            const std::size_t number = static_cast<std::size_t>(next - '0');
            if (number > captureCount) {
                // Appended piece by piece: g++ -O3 misreads the operator+ chain (-Wrestrict).
                std::string message = "$";
                message += next;
                message += " but the pattern has only ";
                message += std::to_string(captureCount);
                message += " wildcard(s)";
                *error = std::move(message);
                return false;
            }
            Piece piece;
            piece.kind = Piece::Kind::kCapture;
            piece.index = number;
            text.pieces.push_back(std::move(piece));
            i = dollar + 2;
        } else if (next == '{') {
            const std::size_t close = raw.find('}', dollar + 2);
            if (close == std::string_view::npos) {
                *error = "unclosed '${'";
                return false;
            }
            if (!CompileBraced(raw.substr(dollar + 2, close - dollar - 2), slotOf, &text, error)) {
                return false;
            }
            i = close + 1;
        } else {
            AppendLiteral(&text, "$");
            i = dollar + 1;
        }
    }
    *out = std::move(text);
    return true;
}

std::string ExpandText(const Text &text, const ExpandContext &context) {
    std::string result;
    for (const Piece &piece : text.pieces) {
        switch (piece.kind) {
            case Piece::Kind::kLiteral:
                result += piece.literal;
                break;
            case Piece::Kind::kCapture:
                if (piece.index < context.captures.size()) result += context.captures[piece.index];
                break;
            case Piece::Kind::kVariable:
                if (piece.index < context.variables.size())
                    result += context.variables[piece.index];
                break;
            case Piece::Kind::kRandom: {
                std::uniform_int_distribution<std::int64_t> pick(piece.low, piece.high);
                result += std::to_string(pick(context.random));
                break;
            }
        }
    }
    return result;
}

bool IsVariableName(std::string_view name) {
    if (name.empty() || std::isdigit(static_cast<unsigned char>(name.front()))) return false;
    for (char c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
    }
    return true;
}

}  // namespace atsim
