// Scenario model of the simulated modem: what a scenario file compiles into.
// The file format itself is documented at the top of scenarios/default.scn.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace atsim {

// One piece of a text with substitutions: literal text, a wildcard capture ($N),
// a scenario variable (${name}) or a random number (${rand LO HI}).
struct Piece {
    enum class Kind { kLiteral, kCapture, kVariable, kRandom };
    Kind kind = Kind::kLiteral;
    std::string literal;
    std::size_t index = 0;  // capture number or variable slot
    std::int64_t low = 0;
    std::int64_t high = 0;
};

// A text compiled once at load time; expanded when a rule runs.
struct Text {
    std::vector<Piece> pieces;
};

struct Location {
    std::string file;
    unsigned line = 0;
};

enum class CompareOp { kEqual, kNotEqual, kLess, kLessEqual, kGreater, kGreaterEqual };

struct Condition {
    Text left;
    CompareOp op = CompareOp::kEqual;
    Text right;
};

enum class StepKind {
    kLine,     // information line of the reply
    kPart,     // the start of an information line, without its end
    kUrc,      // unsolicited line inside the reply, before the final result
    kDelay,    // wait, then go on with the next step
    kSet,      // variable = text
    kAdd,      // variable += number
    kGarbage,  // binary noise and an over-long line
    kHangup,   // close the port and exit
    kSilent,   // end without any final result
    kFinal,    // final result code; ends the reply
    kAfter,    // unsolicited line some time after the reply
    kTrigger,  // runs an event some time after the reply
    kCancel,   // drops the pending events whose names match
};

struct Step {
    StepKind kind = StepKind::kLine;
    Text text;             // line, value, final result, the line of kAfter, the event of
                           // kTrigger, the event pattern of kCancel
    Text amount;           // delay, kAfter or kTrigger milliseconds, kAdd increment
    std::size_t slot = 0;  // variable of kSet / kAdd
    Location where;
};

// A command rule, or an event rule that a 'trigger' runs: the same form, but
// an event's lines are unsolicited and it sends no final result.
struct Rule {
    Location where;
    std::string pattern;  // '*' wildcards, matched without regard to case; an event's name
    std::vector<Condition> conditions;
    std::vector<Step> steps;  // run in order; a rule without kFinal/kSilent ends in OK
};

struct Periodic {
    unsigned every = 1;  // emitted on every n-th tick of the unsolicited timer
    Text text;
};

struct Scenario {
    std::vector<std::string> variableNames;
    std::vector<std::string> initialValues;
    std::vector<Rule> rules;   // first matching rule wins, in file order (includes in place)
    std::vector<Rule> events;  // the same for the events that 'trigger' runs
    std::vector<Periodic> periodics;
};

// Reads a whole file; false when it cannot be read.
using FileReader = std::function<bool(const std::string &path, std::string *content)>;

bool ReadWholeFile(const std::string &path, std::string *content);

// Loads a scenario file and its includes. On failure returns false and sets
// `error` to "<file>:<line>: <what>" (or "<file>: <what>" for the top file).
bool LoadScenario(const std::string &path, const FileReader &reader, Scenario *out,
                  std::string *error);

// Puts a rule "PATTERN=RESULT" in front of every rule of the scenario: the
// commands that match PATTERN are answered with the final result RESULT
// (e.g. "AT+CGDCONT?=+CME ERROR: 10"), or not at all when RESULT is "silent".
// False, with the reason in error, for any other RESULT.
bool AddFailRule(const std::string &spec, Scenario *scenario, std::string *error);

}  // namespace atsim
