// Test builds keep every runtime path under a private root.

#include <string>

#include "gtest/gtest.h"
#include "isolated_runtime.h"
#include "link/ats_paths.h"

namespace atapi::test {
namespace {

TEST(RuntimePaths, TestBuildsRebaseEveryPathUnderThePrivateRoot) {
    ASSERT_TRUE(PathsAreIsolated());
    IsolatedRuntime runtime;
    EXPECT_EQ(std::string(RuntimeRoot()), runtime.Root());
    EXPECT_EQ(std::string(QueueKeyDir()), runtime.Root() + "/var/run");
    EXPECT_EQ(std::string(PidFileDir()), runtime.Root() + "/var/run/pidfile/");
    EXPECT_EQ(std::string(ReadyFlagPath()), runtime.Root() + "/var/ats_ready.flg");
}

}  // namespace
}  // namespace atapi::test
