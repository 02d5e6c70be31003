#include "scenario.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string_view>

#include "pattern.h"
#include "text.h"

namespace atsim {
namespace {

constexpr std::size_t kMaxIncludeDepth = 16;

constexpr std::array<std::string_view, 7> kPlainResults = {
    "OK", "ERROR", "NO CARRIER", "BUSY", "NO ANSWER", "NO DIALTONE", "CONNECT"};
constexpr std::array<std::string_view, 2> kCodedResults = {"+CME ERROR: ", "+CMS ERROR: "};
// The RESULT of a fail rule that answers nothing at all.
constexpr std::string_view kNoReply = "silent";

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

// Splits "word rest" at the first blank; rest is trimmed.
std::pair<std::string_view, std::string_view> SplitWord(std::string_view text) {
    const auto blank = text.find_first_of(" \t");
    if (blank == std::string_view::npos) return {text, {}};
    return {text.substr(0, blank), Trim(text.substr(blank))};
}

bool IsFinalResult(std::string_view text) {
    for (std::string_view plain : kPlainResults) {
        if (text == plain) return true;
    }
    for (std::string_view coded : kCodedResults) {
        if (text.size() > coded.size() && text.substr(0, coded.size()) == coded) return true;
    }
    return false;
}

struct OperatorSpelling {
    std::string_view spelling;
    CompareOp op;
};
// Two-character spellings first, so that "<=" is not read as "<".
constexpr std::array<OperatorSpelling, 6> kOperators = {{{"==", CompareOp::kEqual},
                                                         {"!=", CompareOp::kNotEqual},
                                                         {"<=", CompareOp::kLessEqual},
                                                         {">=", CompareOp::kGreaterEqual},
                                                         {"<", CompareOp::kLess},
                                                         {">", CompareOp::kGreater}}};

// Leftmost comparison operator of a condition: its position and entry.
std::optional<std::pair<std::size_t, OperatorSpelling>> FindOperator(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        for (const OperatorSpelling &entry : kOperators) {
            if (text.substr(i, entry.spelling.size()) == entry.spelling) {
                return std::make_pair(i, entry);
            }
        }
    }
    return std::nullopt;
}

class Parser {
  public:
    Parser(const FileReader &reader, Scenario *out) : reader_(reader), out_(out) {}

    bool ParseFile(const std::string &path) {
        std::string content;
        if (!reader_(path, &content)) {
            return Fail(includeStack_.empty() ? path + ": cannot read the scenario file"
                                              : Here() + "cannot read '" + path + "'");
        }
        includeStack_.push_back(path);
        std::istringstream lines(content);
        std::string raw;
        unsigned number = 0;
        while (std::getline(lines, raw)) {
            ++number;
            here_ = Location{path, number};
            const std::string_view line = Trim(raw);
            if (line.empty() || line.front() == '#') continue;
            if (!ParseStatement(line)) return false;
        }
        includeStack_.pop_back();
        EndRule();
        return true;
    }

    // Every event triggered somewhere must be declared somewhere.
    bool CheckEvents() {
        for (const auto &trigger : triggers_) {
            const std::string &name = trigger.first;
            const auto &events = out_->events;
            if (std::none_of(events.begin(), events.end(), [&name](const Rule &event) {
                    return MatchPattern(name, event.pattern, nullptr);
                })) {
                here_ = trigger.second;
                return Fail(Here() + "unknown event '" + name + "' (declare it with 'event')");
            }
        }
        return true;
    }

    // Every variable used somewhere must be declared somewhere.
    bool CheckVariables() {
        for (const auto &[name, use] : variables_) {
            if (!use.declared) {
                here_ = use.firstUse;
                return Fail(Here() + "unknown variable '" + name + "' (declare it with 'var')");
            }
        }
        return true;
    }

    const std::string &error() const { return error_; }

  private:
    struct VariableUse {
        std::size_t slot = 0;
        bool declared = false;
        Location firstUse;
    };
    using Handler = bool (Parser::*)(std::string_view);
    struct Statement {
        std::string_view keyword;
        Handler handler;
        bool inRule;   // a statement of a rule's body
        bool inEvent;  // ... that an event's body may hold too
    };
    static const std::array<Statement, 19> kStatements;

    std::string Here() const { return here_.file + ":" + std::to_string(here_.line) + ": "; }

    bool Fail(std::string message) {
        error_ = std::move(message);
        return false;
    }

    bool ParseStatement(std::string_view line) {
        const auto [keyword, rest] = SplitWord(line);
        for (const Statement &statement : kStatements) {
            if (keyword != statement.keyword) continue;
            if (statement.inRule && !rule_) {
                return Fail(Here() + "'" + std::string(keyword) +
                            "' outside a rule (start one with 'on')");
            }
            if (statement.inRule && event_ && !statement.inEvent) {
                return Fail(Here() + "'" + std::string(keyword) +
                            "' in an event (an event sends unsolicited lines, never a reply)");
            }
            if (!statement.inRule) EndRule();
            return (this->*statement.handler)(rest);
        }
        return Fail(Here() + "unknown statement '" + std::string(keyword) + "'");
    }

    void EndRule() {
        if (rule_) (event_ ? out_->events : out_->rules).push_back(std::move(*rule_));
        rule_.reset();
        event_ = false;
        ruleEnded_ = false;
        ruleHungUp_ = false;
    }

    std::size_t SlotOf(const std::string &name) {
        auto [it, added] = variables_.try_emplace(name);
        if (added) {
            it->second.slot = out_->variableNames.size();
            it->second.firstUse = here_;
            out_->variableNames.push_back(name);
            out_->initialValues.emplace_back();
        }
        return it->second.slot;
    }

    bool Compile(std::string_view raw, std::size_t captures, Text *out) {
        std::string why;
        if (!CompileText(
                raw, captures, [this](const std::string &n) { return SlotOf(n); }, out, &why)) {
            return Fail(Here() + why);
        }
        return true;
    }

    std::size_t Captures() const { return rule_ ? WildcardCount(rule_->pattern) : 0; }

    bool NeedArgument(std::string_view rest, std::string_view what) {
        return rest.empty() ? Fail(Here() + "missing " + std::string(what)) : true;
    }

    // Adds a step to the open rule; only delayed lines may follow the end of a
    // reply, and nothing a hang-up.
    bool AddStep(Step step) {
        if (ruleHungUp_) return Fail(Here() + "nothing may follow 'hangup'");
        if (ruleEnded_ && step.kind != StepKind::kAfter && step.kind != StepKind::kTrigger) {
            return Fail(Here() + "nothing but 'after' or 'trigger' may follow the end of a reply");
        }
        step.where = here_;
        ruleHungUp_ = step.kind == StepKind::kHangup;
        ruleEnded_ = ruleEnded_ || step.kind == StepKind::kFinal || step.kind == StepKind::kSilent;
        rule_->steps.push_back(std::move(step));
        return true;
    }

    bool AddTextStep(StepKind kind, std::string_view rest, std::string_view what) {
        Step step;
        step.kind = kind;
        return NeedArgument(rest, what) && Compile(rest, Captures(), &step.text) &&
               AddStep(std::move(step));
    }

    bool AddBareStep(StepKind kind, std::string_view rest) {
        if (!rest.empty()) return Fail(Here() + "unexpected text '" + std::string(rest) + "'");
        Step step;
        step.kind = kind;
        return AddStep(std::move(step));
    }

    // "name = value" of 'var' and 'set'.
    bool SplitAssignment(std::string_view rest, std::string_view *name, std::string_view *value) {
        const auto equal = rest.find('=');
        if (equal == std::string_view::npos) return Fail(Here() + "expected 'name = value'");
        *name = Trim(rest.substr(0, equal));
        *value = Trim(rest.substr(equal + 1));
        if (!IsVariableName(*name)) {
            return Fail(Here() + "bad variable name '" + std::string(*name) + "'");
        }
        return true;
    }

    bool OnInclude(std::string_view rest) {
        if (!NeedArgument(rest, "file name")) return false;
        if (rest.size() >= 2 && rest.front() == '"' && rest.back() == '"') {
            rest = rest.substr(1, rest.size() - 2);
        }
        std::filesystem::path target(rest);
        if (target.is_relative()) {
            target = std::filesystem::path(here_.file).parent_path() / target;
        }
        const std::string path = target.lexically_normal().string();
        for (const std::string &open : includeStack_) {
            if (open == path) return Fail(Here() + "include cycle through '" + path + "'");
        }
        if (includeStack_.size() >= kMaxIncludeDepth)
            return Fail(Here() + "includes nested too deep");
        const Location from = here_;
        if (!ParseFile(path)) return false;
        here_ = from;
        return true;
    }

    bool OnVar(std::string_view rest) {
        std::string_view name, value;
        if (!SplitAssignment(rest, &name, &value)) return false;
        const std::size_t slot = SlotOf(std::string(name));
        variables_[std::string(name)].declared = true;
        out_->initialValues[slot] = std::string(value);
        return true;
    }

    bool OnPeriodic(std::string_view rest) {
        const auto [count, text] = SplitWord(rest);
        Periodic periodic;
        const auto [end, ec] =
            std::from_chars(count.data(), count.data() + count.size(), periodic.every);
        if (ec != std::errc() || end != count.data() + count.size() || periodic.every == 0) {
            return Fail(Here() + "expected 'periodic <every n-th tick> <line>'");
        }
        if (!NeedArgument(text, "line") || !Compile(text, 0, &periodic.text)) return false;
        out_->periodics.push_back(std::move(periodic));
        return true;
    }

    bool OnRule(std::string_view rest) {
        if (!NeedArgument(rest, "command pattern")) return false;
        if (WildcardCount(rest) > 9) return Fail(Here() + "more than 9 wildcards");
        rule_.emplace();
        rule_->where = here_;
        rule_->pattern = std::string(rest);
        return true;
    }

    bool OnEvent(std::string_view rest) {
        if (!NeedArgument(rest, "event name")) return false;
        if (!IsVariableName(rest))
            return Fail(Here() + "bad event name '" + std::string(rest) + "'");
        rule_.emplace();
        rule_->where = here_;
        rule_->pattern = std::string(rest);
        event_ = true;
        return true;
    }

    bool OnWhen(std::string_view rest) {
        if (!rule_->steps.empty())
            return Fail(Here() + "'when' must come before the rule's actions");
        const auto found = FindOperator(rest);
        if (!found) return Fail(Here() + "expected '<left> <op> <right>' with op == != < <= > >=");
        const auto [position, entry] = *found;
        Condition condition;
        condition.op = entry.op;
        return Compile(Trim(rest.substr(0, position)), Captures(), &condition.left) &&
               Compile(Trim(rest.substr(position + entry.spelling.size())), Captures(),
                       &condition.right) &&
               (rule_->conditions.push_back(std::move(condition)), true);
    }

    bool OnLine(std::string_view rest) { return AddTextStep(StepKind::kLine, rest, "line text"); }
    bool OnPart(std::string_view rest) { return AddTextStep(StepKind::kPart, rest, "line text"); }
    bool OnUrc(std::string_view rest) { return AddTextStep(StepKind::kUrc, rest, "line text"); }

    bool OnDelay(std::string_view rest) {
        Step step;
        step.kind = StepKind::kDelay;
        return NeedArgument(rest, "milliseconds") && Compile(rest, Captures(), &step.amount) &&
               AddStep(std::move(step));
    }

    bool OnSet(std::string_view rest) {
        std::string_view name, value;
        Step step;
        step.kind = StepKind::kSet;
        if (!SplitAssignment(rest, &name, &value)) return false;
        step.slot = SlotOf(std::string(name));
        return Compile(value, Captures(), &step.text) && AddStep(std::move(step));
    }

    bool OnAdd(std::string_view rest) {
        const auto [name, amount] = SplitWord(rest);
        if (!IsVariableName(name) || amount.empty())
            return Fail(Here() + "expected 'add <name> <number>'");
        Step step;
        step.kind = StepKind::kAdd;
        step.slot = SlotOf(std::string(name));
        return Compile(amount, Captures(), &step.amount) && AddStep(std::move(step));
    }

    bool OnAfter(std::string_view rest) {
        const auto [delay, line] = SplitWord(rest);
        Step step;
        step.kind = StepKind::kAfter;
        return NeedArgument(line, "'after <ms> <line>'") &&
               Compile(delay, Captures(), &step.amount) && Compile(line, Captures(), &step.text) &&
               AddStep(std::move(step));
    }

    bool OnTrigger(std::string_view rest) {
        const auto [delay, name] = SplitWord(rest);
        if (!IsVariableName(name)) return Fail(Here() + "expected 'trigger <ms> <event name>'");
        Step step;
        step.kind = StepKind::kTrigger;
        step.text.pieces.push_back({Piece::Kind::kLiteral, std::string(name), 0, 0, 0});
        triggers_.emplace_back(std::string(name), here_);
        return Compile(delay, Captures(), &step.amount) && AddStep(std::move(step));
    }

    // "cancel PATTERN": the pending events whose names match, at once.
    bool OnCancel(std::string_view rest) {
        if (!NeedArgument(rest, "event name pattern")) return false;
        Step step;
        step.kind = StepKind::kCancel;
        step.text.pieces.push_back({Piece::Kind::kLiteral, std::string(rest), 0, 0, 0});
        triggers_.emplace_back(std::string(rest), here_);
        return AddStep(std::move(step));
    }

    bool OnGarbage(std::string_view rest) { return AddBareStep(StepKind::kGarbage, rest); }
    bool OnHangup(std::string_view rest) { return AddBareStep(StepKind::kHangup, rest); }
    bool OnSilent(std::string_view rest) { return AddBareStep(StepKind::kSilent, rest); }

    bool OnFinal(std::string_view rest) {
        // A coded result may take its number from a substitution ("+CME ERROR: ${code}").
        if (!IsFinalResult(rest)) {
            return Fail(Here() + "bad final result '" + std::string(rest) +
                        "' (OK, ERROR, NO CARRIER, BUSY, NO ANSWER, NO DIALTONE, CONNECT, "
                        "+CME ERROR: <n>, +CMS ERROR: <n>)");
        }
        return AddTextStep(StepKind::kFinal, rest, "final result");
    }

    const FileReader &reader_;
    Scenario *out_;
    std::map<std::string, VariableUse> variables_;
    std::vector<std::string> includeStack_;
    // Event names (or the patterns of 'cancel') and where they stand.
    std::vector<std::pair<std::string, Location>> triggers_;
    std::optional<Rule> rule_;
    bool event_ = false;  // the open rule is an event
    bool ruleEnded_ = false;
    bool ruleHungUp_ = false;
    Location here_;
    std::string error_;
};

const std::array<Parser::Statement, 19> Parser::kStatements = {{
    {"include", &Parser::OnInclude, false, false},
    {"var", &Parser::OnVar, false, false},
    {"periodic", &Parser::OnPeriodic, false, false},
    {"on", &Parser::OnRule, false, false},
    {"event", &Parser::OnEvent, false, false},
    {"when", &Parser::OnWhen, true, true},
    {"line", &Parser::OnLine, true, true},
    {"part", &Parser::OnPart, true, false},
    {"urc", &Parser::OnUrc, true, false},
    {"delay", &Parser::OnDelay, true, false},
    {"set", &Parser::OnSet, true, true},
    {"add", &Parser::OnAdd, true, true},
    {"after", &Parser::OnAfter, true, true},
    {"trigger", &Parser::OnTrigger, true, true},
    {"cancel", &Parser::OnCancel, true, true},
    {"garbage", &Parser::OnGarbage, true, false},
    {"hangup", &Parser::OnHangup, true, false},
    {"silent", &Parser::OnSilent, true, false},
    {"final", &Parser::OnFinal, true, false},
}};

}  // namespace

bool ReadWholeFile(const std::string &path, std::string *content) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return false;
    std::ostringstream buffer;
    buffer << file.rdbuf();
    *content = buffer.str();
    return !file.bad();
}

bool LoadScenario(const std::string &path, const FileReader &reader, Scenario *out,
                  std::string *error) {
    Scenario scenario;
    Parser parser(reader, &scenario);
    if (!parser.ParseFile(path) || !parser.CheckEvents() || !parser.CheckVariables()) {
        *error = parser.error();
        return false;
    }
    *out = std::move(scenario);
    return true;
}

bool AddFailRule(const std::string &spec, Scenario *scenario, std::string *error) {
    const auto equals = spec.rfind('=');
    const std::string_view result = equals == std::string::npos
                                        ? std::string_view{}
                                        : Trim(std::string_view(spec).substr(equals + 1));
    const bool silent = result == kNoReply;
    if (equals == 0 || (!silent && !IsFinalResult(result))) {
        *error = "--fail " + spec + ": expected PATTERN=RESULT with a final result or " +
                 std::string(kNoReply);
        return false;
    }
    Rule rule;
    rule.where = {"--fail", 0};
    rule.pattern = spec.substr(0, equals);
    Step step;
    step.kind = silent ? StepKind::kSilent : StepKind::kFinal;
    if (!silent) step.text.pieces.push_back({Piece::Kind::kLiteral, std::string(result), 0, 0, 0});
    step.where = rule.where;
    rule.steps.push_back(std::move(step));
    scenario->rules.insert(scenario->rules.begin(), std::move(rule));
    return true;
}

}  // namespace atsim
