// Driver of bench/callgrind_parse.sh: parses the reply set once to warm the
// allocator, then the given number of passes inside RunReplySetPasses (the
// only function callgrind collects), then one counted pass; prints the set's
// shape and the parse layer's heap blocks per reply.
#include <cstdio>
#include <cstdlib>

#include "parse/at_parse_alloc.h"
#include "parse_reply_set.h"

namespace {

// Kept out of line: the script collects instructions inside it only.
[[gnu::noinline]] size_t RunReplySetPasses(long passes) {
    char work[AT_REPORT_STR_LEN];
    size_t bytes = 0;
    for (long pass = 0; pass < passes; ++pass) {
        for (size_t i = 0; i < atapi::bench::kReplySetSize; ++i) {
            atapi::bench::ParseReadFree(i, work, sizeof(work), &bytes);
        }
    }
    return bytes;
}

}  // namespace

int main(int argc, char **argv) {
    const long passes = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 100;
    const size_t fields = atapi::bench::CheckedSetFields();

    const size_t bytes = RunReplySetPasses(passes);

    // One more pass, outside the collected function, counts the blocks.
    uint64_t blocks = 0;
    atapi::AtParseAllocHooks hooks;
    hooks.ctx = &blocks;
    hooks.onAlloc = [](void *ctx, void *, size_t) { ++*static_cast<uint64_t *>(ctx); };
    atapi::AtParseSetAllocHooks(&hooks);
    char work[AT_REPORT_STR_LEN];
    size_t ignored = 0;
    for (size_t i = 0; i < atapi::bench::kReplySetSize; ++i) {
        atapi::bench::ParseReadFree(i, work, sizeof(work), &ignored);
    }
    atapi::AtParseSetAllocHooks(nullptr);

    const double replies = static_cast<double>(atapi::bench::kReplySetSize);
    std::printf("replies %zu fields %zu passes %ld bytes-read %zu\n", atapi::bench::kReplySetSize,
                fields, passes, bytes);
    std::printf("parse-layer heap blocks per reply %.2f per field %.2f\n",
                static_cast<double>(blocks) / replies,
                static_cast<double>(blocks) / static_cast<double>(fields));
    return 0;
}
