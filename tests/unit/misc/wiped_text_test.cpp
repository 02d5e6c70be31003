// The wiping text owner: every buffer goes back exactly once, whole (its
// full size is what gets wiped), whichever way ownership ends or moves.

#include "platform/wiped_text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace {

struct Release {
    std::string text;  // the buffer as it was handed back
    size_t bytes;
    bool operator==(const Release &) const = default;
};

std::vector<Release> g_releases;

void RecordRelease(void *block, size_t bytes) {
    if (block == nullptr) return;
    g_releases.push_back({static_cast<const char *>(block), bytes});
    platform::WipeAndFree(block, bytes);
}

using Owner = platform::WipedText<RecordRelease>;

Owner Make(const char *text, size_t bytes) {
    auto *block = static_cast<char *>(std::calloc(1, bytes));
    std::snprintf(block, bytes, "%s", text);
    return Owner(block, bytes);
}

struct OwnerCase {
    const char *name;
    std::function<void()> run;
    std::vector<Release> releases;  // in order
};

TEST(WipedText, ReleasesEachBufferOnceWhole) {
    const std::vector<OwnerCase> cases = {
        {"end of scope", [] { const Owner a = Make("pin", 8); }, {{"pin", 8}}},
        {"reset, then end of scope",
         [] {
             Owner a = Make("pin", 8);
             a.Reset();
             EXPECT_EQ(a.Get(), nullptr);
         },
         {{"pin", 8}}},
        {"moved into a new owner",
         [] {
             Owner a = Make("pin", 8);
             const Owner b(std::move(a));
             EXPECT_EQ(a.Get(), nullptr);
             EXPECT_EQ(b.Size(), 8u);
         },
         {{"pin", 8}}},
        {"moved over a held buffer: the held one goes first",
         [] {
             Owner a = Make("old", 4);
             a = Make("new", 16);
             EXPECT_EQ(a.Size(), 16u);
         },
         {{"old", 4}, {"new", 16}}},
        {"moved onto itself",
         [] {
             Owner a = Make("pin", 8);
             Owner &self = a;
             a = std::move(self);
             EXPECT_STREQ(a.Get(), "pin");
         },
         {{"pin", 8}}},
        {"failed allocation", [] { const Owner a(nullptr, 32); }, {}},
    };
    for (const OwnerCase &c : cases) {
        SCOPED_TRACE(c.name);
        g_releases.clear();
        c.run();
        EXPECT_EQ(g_releases, c.releases);
    }
}

}  // namespace
