#include "atcli_actions.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "atapi/at_send.h"
#include "atapi/at_types.h"
#include "platform/bounded.h"

namespace atcli {
namespace {

const Action *FindAction(std::span<const Action> actions, std::string_view name) {
    const auto it = std::find_if(actions.begin(), actions.end(),
                                 [name](const Action &action) { return action.name == name; });
    return it != actions.end() ? &*it : nullptr;
}

template <std::size_t N>
bool Listed(const std::array<std::string_view, N> &names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// False, with the reason on stderr, when argv does not fit the action.
bool ParseArgs(const Action &action, int argc, char **argv, Args *args) {
    for (int i = 0; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--json") {
            args->json = true;
        } else if (word.starts_with("--") && Listed(action.flags, word)) {
            args->flags.push_back(word);
        } else if (word.starts_with("--") && Listed(action.options, word)) {
            if (i + 1 >= argc) return Refuse(std::string(word) + " needs a value");
            args->options.emplace_back(word, argv[++i]);
        } else if (word.starts_with("--")) {
            return Refuse("unknown option " + std::string(word));
        } else {
            args->positional.push_back(argv[i]);
        }
    }
    if (args->positional.size() < action.minArgs || args->positional.size() > action.maxArgs) {
        return Refuse("wrong number of arguments");
    }
    return true;
}

}  // namespace

const char *Args::Option(std::string_view name) const {
    for (const auto &[option, value] : options) {
        if (option == name) return value;
    }
    return nullptr;
}

bool Args::Flag(std::string_view name) const {
    return std::find(flags.begin(), flags.end(), name) != flags.end();
}

void PrintActionUsage(std::FILE *out, std::string_view subCommand,
                      std::span<const Action> actions) {
    for (const Action &action : actions) {
        std::fprintf(out, "  atcli %.*s %.*s [--json]%s%.*s\n", static_cast<int>(subCommand.size()),
                     subCommand.data(), static_cast<int>(action.name.size()), action.name.data(),
                     action.synopsis.empty() ? "" : " ", static_cast<int>(action.synopsis.size()),
                     action.synopsis.data());
    }
}

int DispatchAction(std::string_view subCommand, std::span<const Action> actions, int argc,
                   char **argv) {
    const std::string_view name = argc > 0 ? argv[0] : "";
    if (name == "--help" || name == "-h") {
        PrintActionUsage(stdout, subCommand, actions);
        return kExitOk;
    }
    const Action *action = FindAction(actions, name);
    if (action == nullptr) {
        Refuse(name.empty() ? "missing action" : "unknown action \"" + std::string(name) + "\"");
        PrintActionUsage(stderr, subCommand, actions);
        return kExitUsage;
    }
    Args args;
    if (!ParseArgs(*action, argc - 1, argv + 1, &args)) {
        PrintActionUsage(stderr, subCommand, std::span<const Action>(action, 1));
        return kExitUsage;
    }
    if (!ServerIsRunning()) return kExitNoServer;
    return action->run(args);
}

CallCheck::CallCheck(const char *what, uint32_t timeoutSec, int32_t *errorId)
    : what_(what),
      errorId_(errorId),
      timeout_(std::chrono::seconds(timeoutSec)),
      start_(std::chrono::steady_clock::now()) {
    *errorId = kNoErrorId;
}

CallCheck::CallCheck(const char *what, uint32_t timeoutSec)
    : CallCheck(what, timeoutSec, &noErrorId_) {}

int CallCheck::Exit(int32_t ret, int32_t okId) const {
    const int32_t errorId = *errorId_;
    if (ret == 0 && (errorId == okId || errorId_ == &noErrorId_)) return kExitOk;
    if (errorId != kNoErrorId && errorId != okId) {
        std::fprintf(stderr, "atcli: %s: the modem answered with an error (error id %d)\n", what_,
                     errorId);
        return kExitErrorReply;
    }
    if (errorId == okId) {
        std::fprintf(stderr, "atcli: %s: the modem's reply could not be read\n", what_);
        return kExitErrorReply;
    }
    // Nothing stored: no reply in time, a server gone, or an error reply
    // without a cause, which the simple send calls do not map.
    if (std::chrono::steady_clock::now() - start_ >= timeout_) {
        std::fprintf(stderr, "atcli: %s: no reply within %lld s\n", what_,
                     static_cast<long long>(
                         std::chrono::duration_cast<std::chrono::seconds>(timeout_).count()));
        return kExitNoServer;
    }
    if (!ServerIsRunning()) return kExitNoServer;
    std::fprintf(stderr, "atcli: %s: the modem answered with an error (error id %d)\n", what_,
                 AT_ERRID_UNMAPPED);
    return kExitErrorReply;
}

int RunBareCall(const Args &args, const char *what, int32_t (*call)(), const char *done) {
    const CallCheck check(what, AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(call());
    if (exitCode == kExitOk) Fields().Text("result", done).Print(args.json);
    return exitCode;
}

bool ParseValue(const char *text, int32_t *out) {
    uint32_t value = 0;
    if (!ParseNumber(text, INT32_MAX, &value)) return false;
    *out = static_cast<int32_t>(value);
    return true;
}

Fields &Fields::Text(std::string name, std::string value) {
    fields_.push_back({std::move(name), JsonString(value), value});
    return *this;
}

Fields &Fields::Number(std::string name, int64_t value) {
    const std::string text = std::to_string(value);
    fields_.push_back({std::move(name), text, text});
    return *this;
}

Fields &Fields::List(std::string name, const std::vector<std::string> &values) {
    std::string json = "[";
    std::string plain;
    for (const std::string &value : values) {
        json += (json.size() > 1 ? "," : "") + JsonString(value);
        plain += (plain.empty() ? "" : ", ") + value;
    }
    fields_.push_back({std::move(name), json + "]", plain});
    return *this;
}

std::string Fields::Json() const {
    std::string out = "{";
    for (const Field &field : fields_) {
        if (out.size() > 1) out += ",";
        out += JsonString(field.name) + ":" + field.value;
    }
    return out + "}";
}

void Fields::Print(bool json) const {
    if (json) {
        std::printf("%s\n", Json().c_str());
        return;
    }
    for (const Field &field : fields_) {
        std::printf("%s: %s\n", field.name.c_str(), field.plain.c_str());
    }
}

bool CopyField(char *field, std::size_t size, std::string_view text) {
    if (text.size() >= size) {
        field[0] = '\0';
        return false;
    }
    return strncpy_s(field, size, text.data(), text.size()) == 0;
}

bool IsQuotable(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c >= ' ' && c <= '~' && c != '"'; });
}

bool ParseNumber(const char *text, uint32_t max, uint32_t *out) {
    if (text == nullptr || *text < '0' || *text > '9') return false;
    char *end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(text, &end, 10);
    if (*end != '\0' || errno != 0 || value > max) return false;
    *out = static_cast<uint32_t>(value);
    return true;
}

int PrintReads(std::span<const FieldsReader> readers, const Args &args) {
    Fields fields;
    for (const FieldsReader read : readers) {
        if (const int exitCode = read(&fields); exitCode != kExitOk) return exitCode;
    }
    fields.Print(args.json);
    return kExitOk;
}

bool Refuse(const std::string &what) {
    std::fprintf(stderr, "atcli: %s\n", what.c_str());
    return false;
}

}  // namespace atcli
