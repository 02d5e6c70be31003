// Tasks and events: the event table, the mask mapping, the two return
// conventions of the process and thread families, signals to self, the pid
// file lookup, and the clock, sleep and notification forwarders.

#include <pthread.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <ctime>
#include <string>
#include <vector>

#include "atapi/at_link.h"
#include "fake_clock.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"
#include "link/ats_paths.h"
#include "notify.h"
#include "trace_capture.h"

namespace atapi::test {
namespace {

constexpr int kEventSignals[] = {SIGUSR1, SIGUSR2, SIGSYS, SIGINT};

// Restores the calling thread's signal mask and drops what a test left
// pending. A wake-up event of an earlier exchange (SIGUSR1, sent to this
// process while blocked) is dropped first, so that unblocking cannot kill us.
class SignalMaskGuard {
  public:
    SignalMaskGuard() {
        pthread_sigmask(SIG_SETMASK, nullptr, &saved_);
        Drain(SIGUSR1);
    }
    ~SignalMaskGuard() {
        Drain(SIGUSR2);
        pthread_sigmask(SIG_SETMASK, &saved_, nullptr);
    }
    // Takes every pending instance of sig (it must be blocked).
    static void Drain(int sig) {
        sigset_t one;
        sigemptyset(&one);
        sigaddset(&one, sig);
        const timespec now{0, 0};
        while (sigtimedwait(&one, nullptr, &now) == sig) {
        }
    }

  private:
    sigset_t saved_;
};

std::vector<int> BlockedEventSignals() {
    sigset_t current;
    pthread_sigmask(SIG_SETMASK, nullptr, &current);
    std::vector<int> blocked;
    for (int sig : kEventSignals) {
        if (sigismember(&current, sig) == 1) blocked.push_back(sig);
    }
    return blocked;
}

TEST(EventMap, HoldsTheFourEventsAndTheEndRow) {
    const AtsEventMap expected[] = {{1, 10}, {2, 12}, {4, 31}, {8, 2}, {-1, -1}};
    for (size_t row = 0; row < 5; ++row) {
        SCOPED_TRACE(row);
        EXPECT_EQ(g_atsEventMaps[row].event, expected[row].event);
        EXPECT_EQ(g_atsEventMaps[row].signal, expected[row].signal);
    }
}

TEST(EventMask, OnlyTheLowFourBitsSelectRows) {
    struct Case {
        uint32_t mask;
        std::vector<int> blocked;
    };
    const std::vector<Case> cases = {
        {0x0, {}},
        {0x2, {SIGUSR2}},
        {0x5, {SIGUSR1, SIGSYS}},
        {0xF0, {}},
        {0x18, {SIGINT}},
        {0xFFFFFFF0, {}},
        {0xF, {SIGUSR1, SIGUSR2, SIGSYS, SIGINT}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.mask);
        SignalMaskGuard guard;
        sigset_t none;
        sigemptyset(&none);
        for (int sig : kEventSignals) sigaddset(&none, sig);
        pthread_sigmask(SIG_UNBLOCK, &none, nullptr);
        EXPECT_EQ(AtsEventThreadInit(c.mask), 0);
        EXPECT_EQ(BlockedEventSignals(), c.blocked);
    }
}

TEST(EventSend, RefusesWithoutSignalling) {
    struct Case {
        const char *name;
        int32_t pid;
        uint32_t event;
        const char *log;  // expected error line, or null
    };
    const Case cases[] = {
        {"pid 0 (own process group)", 0, 2, nullptr},
        {"negative pid (a group)", -1, 2, nullptr},
        {"all-bits event", getpid(), 0xFFFFFFFF, nullptr},
        {"event without a row", getpid(), 3, "Error!, sig = -1"},
        {"event 16", getpid(), 16, "Error!, sig = -1"},
        {"no such process", INT_MAX, 2, "kill Error, errno["},
    };
    SignalMaskGuard guard;
    ASSERT_EQ(AtsEventInit(0x2), 1);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        TraceCapture trace;
        EXPECT_EQ(AtsEventSend(c.pid, c.event), 0);
        if (c.log != nullptr) {
            EXPECT_TRUE(trace.Contains(c.log));
        }
        sigset_t pending;
        sigpending(&pending);
        EXPECT_EQ(sigismember(&pending, SIGUSR2), 0);
    }
}

TEST(EventRecv, SignalToSelfArrivesAsItsEvent) {
    SignalMaskGuard guard;
    FakeClock clock;
    ASSERT_EQ(AtsEventInit(0x2), 1);
    ASSERT_EQ(AtsEventSend(getpid(), 2), 1);
    uint32_t event = 0;
    EXPECT_EQ(AtsEventRecv(0x2, 5, &event), 1);
    EXPECT_EQ(event, 2u);
    EXPECT_EQ(clock.Alarms(), (std::vector<unsigned>{5, 0}));

    ASSERT_EQ(AtsEventSend(getpid(), 2), 1);
    EXPECT_EQ(AtsEventRecv(0x2, -1, &event), 1) << "no limit: no alarm";
    EXPECT_EQ(clock.Alarms().size(), 2u);
    EXPECT_EQ(AtsEventRecv(0x2, 5, nullptr), 0);
}

TEST(EventRecv, AlarmEndsTheWaitAsAFailure) {
    SignalMaskGuard guard;
    TraceCapture trace;
    uint32_t event = 77;
    EXPECT_EQ(AtsEventRecv(0x2, 1, &event), 0);
    EXPECT_EQ(event, 77u);
    EXPECT_TRUE(trace.Contains("Error!, tmpEvent = -1"));
}

// The thread family reports an unknown event with 0, the same value as its
// success; the process family's 0 means failure. Neither sends anything.
TEST(EventThreadSend, ConventionsDifferFromTheProcessFamily) {
    struct Case {
        const char *name;
        pthread_t thread;
        uint32_t event;
        int32_t result;
        const char *log;
    };
    const Case cases[] = {
        {"null thread", pthread_t{}, 2, -1,
         "Error!in AtsEventThreadSend, para is invaild, event:2"},
        {"all-bits event", pthread_self(), 0xFFFFFFFF, -1,
         "Error!in AtsEventThreadSend, para is invaild, event:-1"},
        {"event without a row", pthread_self(), 3, 0, "Error!in AtsEventThreadSend, sig = -1"},
    };
    SignalMaskGuard guard;
    ASSERT_EQ(AtsEventThreadInit(0x2), 0);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        TraceCapture trace;
        EXPECT_EQ(AtsEventThreadSend(c.thread, c.event), c.result);
        EXPECT_TRUE(trace.Contains(c.log));
        sigset_t pending;
        sigpending(&pending);
        EXPECT_EQ(sigismember(&pending, SIGUSR2), 0);
    }
    EXPECT_EQ(AtsEventSend(getpid(), 3), 0);
}

TEST(EventThreadRecv, ThreadSignalArrivesAsItsEvent) {
    SignalMaskGuard guard;
    ASSERT_EQ(AtsEventThreadInit(0x2), 0);
    ASSERT_EQ(AtsEventThreadSend(pthread_self(), 2), 0);
    uint32_t event = 0;
    EXPECT_EQ(AtsEventThreadRecv(0x2, &event), 1);
    EXPECT_EQ(event, 2u);
    EXPECT_EQ(AtsEventThreadRecv(0xFFFFFFFF, &event), 0);
    EXPECT_EQ(AtsEventThreadRecv(0x2, nullptr), 0);
}

TEST(ThreadEventTrio, MessagesGoToStandardOutput) {
    SignalMaskGuard guard;
    ASSERT_EQ(AtsThreadEventInit(0x2), 0);
    testing::internal::CaptureStdout();
    EXPECT_EQ(AtsThreadEventSend(pthread_t{}, 2), -1);
    EXPECT_EQ(AtsThreadEventSend(pthread_self(), 0xFFFFFFFF), -1);
    EXPECT_EQ(AtsThreadEventSend(pthread_self(), 3), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Error!in AtsThreadEventSend, para is invaild, event:2.\n"
              "Error!in AtsThreadEventSend, para is invaild, event:-1.\n"
              "Error!in AtsThreadEventSend, sig = -1\n");

    // Unlike the link's thread family, the all-bits mask is accepted.
    ASSERT_EQ(AtsThreadEventSend(pthread_self(), 2), 0);
    uint32_t event = 0;
    EXPECT_EQ(AtsThreadEventRecv(0xFFFFFFFF, &event), 1);
    EXPECT_EQ(event, 2u);
}

TEST(TaskNameToId, ReadsThePidFile) {
    struct Case {
        const char *name;
        const char *content;  // null: no pid file
        int32_t pid;
    };
    const Case cases[] = {
        {"pid and newline", "1234\n", 1234},
        {"pid without newline", "77", 77},
        {"leading blanks", "  42\n", 42},
        {"zero", "0", -1},
        {"empty file", "", -1},
        {"not a number", "abc\n", -1},
        {"no file", nullptr, -1},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        IsolatedRuntime runtime;
        if (c.content != nullptr) runtime.WritePidFile(c.content);
        EXPECT_EQ(AtsTaskNameToId("atserver"), c.pid);
        EXPECT_EQ(AtsTaskNameToId("other"), -1) << "another task has no pid file";
    }
}

TEST(TaskNameToId, PathFailuresAreLogged) {
    IsolatedRuntime runtime;
    runtime.WritePidFile("1234\n");
    TraceCapture trace;
    EXPECT_EQ(AtsTaskNameToId(nullptr), -1);
    EXPECT_EQ(AtsTaskNameToId(std::string(300, 'x').c_str()), -1);
    EXPECT_EQ(trace.Count("AtsFileRealPath failed"), 1u);

    SetRuntimeRoot((runtime.Root() + "/missing").c_str());
    EXPECT_EQ(AtsTaskNameToId("atserver"), -1);
    EXPECT_TRUE(trace.Contains("realPath failed"));
    EXPECT_EQ(trace.Count("AtsFileRealPath failed"), 2u);
}

TEST(TaskHelpers, StrlenExistGetId) {
    EXPECT_EQ(AtsStrlen(nullptr), 0u);
    EXPECT_EQ(AtsStrlen("AT+CGMI"), 7u);
    EXPECT_EQ(AtsTaskExist(-1), 0);
    EXPECT_EQ(AtsTaskExist(0), 1) << "any id but -1 counts";
    EXPECT_EQ(AtsTaskGetId(), getpid());
}

TEST(ClockForwarders, ElapseAndSleepUseTheSeam) {
    FakeClock clock;
    const int32_t start = AtsElapse();
    ASSERT_GE(start, 0);
    AtsSleep(2500);
    AtsSleep(0);
    EXPECT_EQ(clock.Sleeps(), (std::vector<uint32_t>{2500000, 0}));
    EXPECT_EQ(AtsElapse(), start + 2);
    clock.FailMonotonic(1);
    EXPECT_EQ(AtsElapse(), -1);
    EXPECT_EQ(AtsElapse(), start + 2);
}

struct PostedNotify {
    int simple;
    uint32_t args[4];
};

int32_t RecordNotify(void *ctx, int simple, uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    static_cast<std::vector<PostedNotify> *>(ctx)->push_back({simple, {a, b, c, d}});
    return 40 + simple;
}

TEST(NotifyForwarders, ReachThePlatformClientUnchanged) {
    std::vector<PostedNotify> posted;
    PlatformSetNotifySink(RecordNotify, &posted);
    EXPECT_EQ(AtsPostNotify(1, 2, 3, 4), 41);
    EXPECT_EQ(AtsPostNotifyExt(5, 6, 7, 0xFFFFFFFF), 40);
    PlatformSetNotifySink(nullptr, nullptr);
    ASSERT_EQ(posted.size(), 2u);
    EXPECT_EQ(posted[0].simple, 1);
    EXPECT_EQ(posted[0].args[0], 1u);
    EXPECT_EQ(posted[0].args[3], 4u);
    EXPECT_EQ(posted[1].simple, 0);
    EXPECT_EQ(posted[1].args[2], 7u);
    EXPECT_EQ(posted[1].args[3], 0xFFFFFFFFu);
}

}  // namespace
}  // namespace atapi::test
