// Prints what every routine of the parse layer gives for a fixed, large set
// of inputs: the fuzz corpora, the benchmark's reply set, a reply built for
// every handler row and seeded random texts; each call once as it is and
// once per allocation failed in turn, with the log lines it wrote. Two builds
// that print the same bytes behave the same on all of it:
//   parse_outputs <corpus dir> > out.txt
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "atapi/at_parse.h"
#include "parse/at_parse_alloc.h"
#include "parse/handler_tables.h"
#include "parse_reply_set.h"
#include "platform/trace.h"

namespace {

std::string g_out;
std::string g_log;

void Put(std::string_view text) { g_out.append(text); }

void PutEscaped(const char *text) {
    if (text == nullptr) {
        Put("<null>");
        return;
    }
    Put("\"");
    for (const char *p = text; *p != '\0'; ++p) {
        const auto c = static_cast<unsigned char>(*p);
        if (c >= 0x20 && c < 0x7F && c != '\\' && c != '"') {
            g_out.push_back(static_cast<char>(c));
        } else {
            char esc[8];
            std::snprintf(esc, sizeof esc, "\\x%02x", c);
            Put(esc);
        }
    }
    Put("\"");
}

void PutRows(const AtCmdParseNode *first) {
    for (const AtCmdParseNode *row = first; row != nullptr; row = row->nextRow) {
        Put(" [");
        for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
            Put(" ");
            PutEscaped(node->atFieldName);
            Put("=");
            PutEscaped(node->atFieldValue);
        }
        Put(" ]");
    }
}

void Flush() {
    std::fwrite(g_out.data(), 1, g_out.size(), stdout);
    g_out.clear();
}

// Lines that carry the process id show it as "pid = P": runs must compare equal.
void OnLog(void *, const char *channel, const char *, int level, const char *text) {
    std::string line = text;
    const size_t pid = line.find("pid = ");
    if (pid != std::string::npos) {
        const size_t digits = pid + 6;
        line.replace(digits, line.find_first_not_of("0123456789", digits) - digits, "P");
    }
    g_log += std::string(channel) + ":" + std::to_string(level) + ":" + line;
}

// Deterministic on every platform (no library engine).
class Random {
  public:
    uint32_t Next() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return static_cast<uint32_t>(state_ >> 11);
    }
    uint32_t Below(uint32_t n) { return Next() % n; }

  private:
    uint64_t state_ = 0x9E3779B97F4A7C15ull;
};

// Text heavy in the characters the parsers react to.
std::string RandomText(Random *rng, size_t maxLen, const std::vector<std::string> &prefixes) {
    static constexpr std::string_view kAlphabet = ",,,,\"\"\"  \r\n::()()-.+^0123456789abcXYZ";
    std::string text;
    const size_t len = rng->Below(static_cast<uint32_t>(maxLen) + 1);
    while (text.size() < len) {
        const uint32_t pick = rng->Below(16);
        if (pick == 0 && !prefixes.empty()) {
            text += prefixes[rng->Below(static_cast<uint32_t>(prefixes.size()))];
        } else if (pick == 1) {
            text += ": ";
        } else {
            text.push_back(kAlphabet[rng->Below(static_cast<uint32_t>(kAlphabet.size()))]);
        }
    }
    return text;
}

class FailAt {
  public:
    explicit FailAt(uint64_t n) {
        atapi::AtParseAllocHooks hooks;
        hooks.ctx = &count_;
        hooks.onAlloc = [](void *ctx, void *, size_t) { ++*static_cast<uint64_t *>(ctx); };
        hooks.failAt = n;
        atapi::AtParseSetAllocHooks(&hooks);
    }
    ~FailAt() { atapi::AtParseSetAllocHooks(nullptr); }
    uint64_t Allocations() const { return count_; }

  private:
    uint64_t count_ = 0;
};

// Runs call once without failures, then failing each of its allocations (and
// one more) in turn; call prints what it got.
template <typename Call>
void Sweep(Call call) {
    uint64_t allocations = 0;
    {
        FailAt none(0);
        call();
        allocations = none.Allocations();
    }
    const uint64_t last = allocations + 1 < 48 ? allocations + 1 : 48;
    for (uint64_t n = 1; n <= last; ++n) {
        Put(" fail" + std::to_string(n) + ":");
        FailAt failing(n);
        call();
    }
    Put("\n");
}

void PutLog() {
    if (!g_log.empty()) {
        Put(" log");
        PutEscaped(g_log.c_str());
        g_log.clear();
    }
}

// One parse of a copy of reply: its status, rows, the copy where the parse
// changed it, and its log lines.
template <typename Parse>
void PutParse(const std::string &reply, Parse parse) {
    std::string work = reply;
    AtCmdParseNode *out = nullptr;
    Put(" " + std::to_string(parse(&out, work.data())));
    PutRows(out);
    if (work != reply) {
        Put(" reply");
        PutEscaped(work.c_str());
    }
    PutLog();
    FreeAtCmd(out);
}

void RunRoutine(const char *label, AtParseFn parse, const std::string &atTemplate,
                const std::string &prefix, const std::string &reply) {
    Put(label);
    Sweep([&] {
        PutParse(reply, [&](AtCmdParseNode **out, char *work) {
            return parse(out, atTemplate.c_str(), work, prefix.c_str());
        });
    });
}

void RunSplitters(const std::string &names, const std::string &values) {
    Put("ParseField");
    Sweep([&] {
        AtCmdParseNode *out = nullptr;
        Put(" " + std::to_string(ParseField(&out, names.c_str(), values.c_str())));
        PutRows(out);
        PutLog();
        FreeAtCmd(out);
    });
    for (uint32_t capacity : {0u, 1u, 3u, 40u}) {
        Put("AtConstParse" + std::to_string(capacity));
        Sweep([&] {
            std::vector<char *> pieces(capacity + 1, nullptr);
            uint32_t count = 77;
            Put(" " +
                std::to_string(AtConstParse(pieces.data(), capacity, values.c_str(), &count)));
            Put(" n" + std::to_string(count));
            for (uint32_t i = 0; i < count && i < capacity; ++i) {
                Put(" ");
                PutEscaped(pieces[i]);
            }
            PutLog();
            ReleaseSubstring(pieces.data(), static_cast<int32_t>(count < capacity ? count : 0));
        });
    }
}

void RunSubstring(const std::string &buffer, const std::string &needle) {
    for (int32_t capacity : {0, 2, 40}) {
        Put("GetSubstring" + std::to_string(capacity));
        Sweep([&] {
            std::vector<char *> pieces(static_cast<size_t>(capacity) + 1, nullptr);
            int32_t count = capacity;
            GetSubstring(buffer.c_str(), pieces.data(), &count, needle.c_str());
            Put(" n" + std::to_string(count));
            for (int32_t i = 0; i < count; ++i) {
                Put(" ");
                PutEscaped(pieces[i]);
            }
            PutLog();
            ReleaseSubstring(pieces.data(), count);
        });
    }
}

void RunTemplateRoutines(const std::string &atTemplate, const std::string &prefix,
                         const std::string &reply) {
    Put("# ");
    PutEscaped(atTemplate.c_str());
    Put(" ");
    PutEscaped(prefix.c_str());
    Put(" ");
    PutEscaped(reply.c_str());
    Put("\n");
    RunRoutine("Common", ParseCommonAtStr, atTemplate, prefix, reply);
    RunRoutine("Soft", ParseSoftStr, atTemplate, prefix, reply);
    RunRoutine("Ndis", ParseNdisStateQueryAtStr, atTemplate, prefix, reply);
    RunSplitters(atTemplate, reply);
    RunSubstring(reply, prefix);
    Flush();
}

void RunDispatch(const char *atName, const std::vector<std::string> &replies, int32_t moduleId) {
    for (uint32_t mode = 0; mode <= AT_PARSE_MODE_COUNT; ++mode) {
        for (const std::string &reply : replies) {
            Put("Dispatch " + std::to_string(moduleId) + " " + std::to_string(mode) + " ");
            PutEscaped(atName);
            Put(" ");
            PutEscaped(reply.c_str());
            Sweep([&] {
                PutParse(reply, [&](AtCmdParseNode **out, char *work) {
                    return ParseAtCmdFunc(out, atName, work, moduleId, mode);
                });
            });
        }
        Flush();
    }
}

std::vector<std::string> ReadCorpus(const std::filesystem::path &dir) {
    std::vector<std::string> files;
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(dir)) {
        if (entry.is_regular_file()) paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    for (const auto &path : paths) {
        std::ifstream in(path, std::ios::binary);
        files.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    return files;
}

// The segments of a template-parser corpus input (control byte, template,
// prefix, reply).
std::vector<std::string> Segments(const std::string &input, size_t count) {
    std::vector<std::string> segments;
    std::string_view rest = input.empty() ? std::string_view() : std::string_view(input).substr(1);
    while (segments.size() + 1 < count) {
        const size_t end = rest.find('\0');
        segments.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    segments.emplace_back(rest);
    return segments;
}

// The text up to its first NUL (what a C routine sees).
std::string CText(const std::string &text) { return std::string(text.c_str()); }

}  // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <corpus dir>\n", argv[0]);
        return 2;
    }
    PlatformSetLogSink(OnLog, nullptr);
    const std::filesystem::path corpus = argv[1];

    std::vector<std::string> templates;
    std::vector<std::string> prefixes;
    std::set<std::string> seenTemplates;
    std::set<std::string> seenPrefixes;
    for (const AtParseModule &module : atapi::g_atParseModules) {
        for (const AtParseHandler *row = module.handlers; row->atName != nullptr; ++row) {
            if (seenPrefixes.insert(row->atName).second) prefixes.emplace_back(row->atName);
            for (const char *t : row->atTemplate) {
                if (t != nullptr && seenTemplates.insert(t).second) templates.emplace_back(t);
            }
        }
    }

    std::vector<std::string> replies;
    for (const std::string &input : ReadCorpus(corpus)) replies.push_back(CText(input));
    for (const std::string &text : atapi::bench::ReplyTexts()) replies.push_back(text);
    Random rng;
    for (int i = 0; i < 400; ++i) replies.push_back(RandomText(&rng, 120, prefixes));

    // The template parser's own corpus, as its fuzz target reads it.
    for (const std::string &input : ReadCorpus(corpus / "fuzz_parse_common")) {
        const std::vector<std::string> s = Segments(input, 3);
        RunTemplateRoutines(CText(s[0]), CText(s[1]), CText(s[2]));
    }
    // Every table template against replies with and without its prefix.
    for (const std::string &atTemplate : templates) {
        const std::string &prefix = prefixes[rng.Below(static_cast<uint32_t>(prefixes.size()))];
        const std::string reply = prefix + ": " + RandomText(&rng, 80, {prefix});
        RunTemplateRoutines(atTemplate, prefix, reply);
    }
    for (int i = 0; i < 1500; ++i) {
        const std::string atTemplate =
            rng.Below(2) == 0 ? templates[rng.Below(static_cast<uint32_t>(templates.size()))]
                              : RandomText(&rng, 60, prefixes);
        std::string prefix = prefixes[rng.Below(static_cast<uint32_t>(prefixes.size()))];
        if (rng.Below(8) == 0) prefix = RandomText(&rng, 3, {});
        const std::string reply = replies[rng.Below(static_cast<uint32_t>(replies.size()))];
        RunTemplateRoutines(atTemplate, prefix, rng.Below(2) == 0 ? reply : prefix + ": " + reply);
    }

    // The dispatcher: every row of every module, and names no table holds.
    std::vector<int32_t> moduleIds;
    for (const AtParseModule &module : atapi::g_atParseModules)
        moduleIds.push_back(module.moduleId);
    for (int32_t id : {-1, 26, 29, 31, 33, 35, 100, 102}) moduleIds.push_back(id);
    for (size_t m = 0; m < atapi::kModuleCount; ++m) {
        const AtParseModule &module = atapi::g_atParseModules[m];
        for (const AtParseHandler *row = module.handlers; row->atName != nullptr; ++row) {
            std::vector<std::string> rowReplies;
            for (const char *t : row->atTemplate) {
                if (t != nullptr) rowReplies.push_back(std::string(row->atName) + ": " + t);
            }
            for (int i = 0; i < 6; ++i) {
                rowReplies.push_back(std::string(row->atName) + ": " +
                                     replies[rng.Below(static_cast<uint32_t>(replies.size()))]);
            }
            RunDispatch(row->atName, rowReplies, module.moduleId);
        }
    }
    for (int32_t id : moduleIds) {
        for (const char *atName :
             {"", "+", "+CREG", "+creg", "RING", "+CABTSR", "^CPIN", "+ZZZZ"}) {
            RunDispatch(atName, {std::string(atName) + ": 1,2"}, id);
        }
    }
    for (const std::string &reply : replies) {
        const std::string &prefix = prefixes[rng.Below(static_cast<uint32_t>(prefixes.size()))];
        const int32_t id = moduleIds[rng.Below(static_cast<uint32_t>(moduleIds.size()))];
        RunDispatch(prefix.c_str(), {reply}, id);
    }
    Flush();
    PlatformSetLogSink(nullptr, nullptr);
    return 0;
}
