// Cost of turning replies into rows: nanoseconds and heap blocks per reply,
// over one synthetic reply per handler-table row and mode, over the reply set
// of parse_reply_set.h (parse, read every field, free) and over a few single
// replies (a multi-row PDP context list among them).
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "atapi/at_parse.h"
#include "parse/at_parse_alloc.h"
#include "parse/handler_tables.h"
#include "parse_reply_set.h"

namespace {

struct Reply {
    std::string prefix;
    int32_t moduleId;
    uint32_t mode;
    std::string text;
};

// A plausible value for one template field; brackets around the name (group
// templates) and a line break inside it (SMS records) are kept.
std::string ValueFor(std::string_view field, size_t index) {
    const size_t lineBreak = field.find("\r\n");
    if (lineBreak != std::string_view::npos) {
        return ValueFor(field.substr(0, lineBreak), index) + "\r\n07911326040000F0040B9113";
    }
    const size_t open = field.find_first_not_of("( ");
    const size_t close = field.find_last_not_of(") ");
    if (open == std::string_view::npos) return std::string(field);
    const std::string_view name = field.substr(open, close - open + 1);
    std::string value;
    if (name.find("name") != std::string_view::npos || name.find("apn") != std::string_view::npos ||
        name.find("APN") != std::string_view::npos || name.find("oper") != std::string_view::npos ||
        name.find("type") != std::string_view::npos) {
        value = "\"text " + std::to_string(index) + "\"";
    } else {
        value = std::to_string(index % 7);
    }
    return std::string(field.substr(0, open)) + value + std::string(field.substr(close + 1));
}

// "<prefix>: v1,v2,..." for the fields of a template.
std::string ReplyFor(const char *prefix, std::string_view atTemplate) {
    const size_t colon = atTemplate.find(':');
    if (colon == std::string_view::npos && atTemplate.find('.') != std::string_view::npos) {
        return std::string(prefix) + ": 21.110.00.00.00";  // the version form
    }
    std::string_view fields =
        colon == std::string_view::npos ? atTemplate : atTemplate.substr(colon + 1);
    std::string reply = std::string(prefix) + ": ";
    for (size_t index = 0;; ++index) {
        const size_t comma = fields.find(',');
        reply += ValueFor(fields.substr(0, comma), index);
        if (comma == std::string_view::npos) break;
        reply += ',';
        fields.remove_prefix(comma + 1);
    }
    return reply;
}

std::vector<Reply> TableCorpus() {
    std::vector<Reply> corpus;
    for (const AtParseModule &module : atapi::g_atParseModules) {
        for (const AtParseHandler *row = module.handlers; row->atName != nullptr; ++row) {
            for (uint32_t mode = 0; mode < AT_PARSE_MODE_COUNT; ++mode) {
                if (row->parseFn[mode] == nullptr || row->atTemplate[mode] == nullptr) continue;
                corpus.push_back({row->atName, module.moduleId, mode,
                                  ReplyFor(row->atName, row->atTemplate[mode])});
            }
        }
    }
    return corpus;
}

std::string CgdcontRows(int rows) {
    std::string text;
    for (int cid = 1; cid <= rows; ++cid) {
        if (cid > 1) text += "\r\n";
        const std::string n = std::to_string(cid);
        text += "+CGDCONT: " + n + ",\"IP\",\"apn" + n + ".example\",\"10.0.0." + n +
                "\",0,0,0,0,0,0,1";
    }
    return text;
}

// Counts the parse layer's allocations while in scope.
class AllocCounter {
  public:
    AllocCounter() {
        atapi::AtParseAllocHooks hooks;
        hooks.ctx = &count_;
        hooks.onAlloc = [](void *ctx, void *, size_t) { ++*static_cast<uint64_t *>(ctx); };
        atapi::AtParseSetAllocHooks(&hooks);
    }
    ~AllocCounter() { atapi::AtParseSetAllocHooks(nullptr); }
    uint64_t Count() const { return count_; }

  private:
    uint64_t count_ = 0;
};

// Parses every reply once per iteration; the reply is copied into a work
// buffer first because some routines write into it.
void RunCorpus(benchmark::State &state, const std::vector<Reply> &corpus) {
    char buffer[AT_REPORT_STR_LEN];
    uint64_t rows = 0;
    AllocCounter allocs;
    for (auto _ : state) {
        for (const Reply &reply : corpus) {
            std::memcpy(buffer, reply.text.c_str(), reply.text.size() + 1);
            AtCmdParseNode *out = nullptr;
            ParseAtCmdFunc(&out, reply.prefix.c_str(), buffer, reply.moduleId, reply.mode);
            for (const AtCmdParseNode *row = out; row != nullptr; row = row->nextRow) ++rows;
            benchmark::DoNotOptimize(out);
            FreeAtCmd(out);
        }
    }
    const double replies = static_cast<double>(state.iterations()) * corpus.size();
    state.SetItemsProcessed(static_cast<int64_t>(replies));
    state.counters["replies"] = static_cast<double>(corpus.size());
    // Seconds of CPU per reply (printed with an SI prefix: 1.2u is 1.2 us).
    state.counters["time_per_reply"] =
        benchmark::Counter(replies, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["allocs_per_reply"] = static_cast<double>(allocs.Count()) / replies;
    state.counters["rows_per_reply"] = static_cast<double>(rows) / replies;
}

void BM_EveryTableRow(benchmark::State &state) {
    static const std::vector<Reply> corpus = TableCorpus();
    RunCorpus(state, corpus);
}
BENCHMARK(BM_EveryTableRow);

void BM_ReplySet(benchmark::State &state) {
    const size_t fields = atapi::bench::CheckedSetFields();
    char work[AT_REPORT_STR_LEN];
    size_t bytes = 0;
    AllocCounter allocs;
    for (auto _ : state) {
        for (size_t i = 0; i < atapi::bench::kReplySetSize; ++i) {
            atapi::bench::ParseReadFree(i, work, sizeof(work), &bytes);
        }
    }
    benchmark::DoNotOptimize(bytes);
    const double passes = static_cast<double>(state.iterations());
    const double replies = passes * atapi::bench::kReplySetSize;
    state.SetItemsProcessed(static_cast<int64_t>(replies));
    state.counters["time_per_reply"] =
        benchmark::Counter(replies, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["allocs_per_reply"] = static_cast<double>(allocs.Count()) / replies;
    state.counters["allocs_per_field"] = static_cast<double>(allocs.Count()) / (passes * fields);
}
BENCHMARK(BM_ReplySet);

void BM_Reply(benchmark::State &state, Reply reply) { RunCorpus(state, {reply}); }
BENCHMARK_CAPTURE(BM_Reply, cpin_ready, Reply{"+CPIN", 2, AT_PARSE_QUERY, "+CPIN: READY"});
BENCHMARK_CAPTURE(BM_Reply, cpin_counts,
                  Reply{"^CPIN", 2, AT_PARSE_QUERY, "^CPIN: SIM PIN,3,10,3,10,3"});
BENCHMARK_CAPTURE(BM_Reply, nwtime_report,
                  Reply{"^NWTIME", 0, AT_PARSE_REPORT, "^NWTIME: 24/01/01,12:30:00+32,00"});
BENCHMARK_CAPTURE(BM_Reply, cgdcont_1_row, Reply{"+CGDCONT", 25, AT_PARSE_QUERY, CgdcontRows(1)});
BENCHMARK_CAPTURE(BM_Reply, cgdcont_8_rows, Reply{"+CGDCONT", 25, AT_PARSE_QUERY, CgdcontRows(8)});
BENCHMARK_CAPTURE(BM_Reply, cops_test,
                  Reply{"+COPS", 1, AT_PARSE_TEST,
                        "+COPS: (2,\"Acme, Mobile\",\"Acme\",\"00101\",7),(1,\"Other\",\"Oth\","
                        "\"00102\",2),,(0,1,2,3,4),(0,1,2)"});

}  // namespace

BENCHMARK_MAIN();
