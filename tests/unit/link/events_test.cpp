// Tasks and events: the event table, the mask mapping, the two return
// conventions of the process and thread families, signals to self, and the
// pid file lookup.

#include <pthread.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <ctime>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "atapi/at_link.h"
#include "fake_clock.h"
#include "gtest/gtest.h"
#include "isolated_runtime.h"

namespace atapi::test {
namespace {

constexpr int kEventSignals[] = {SIGUSR1, SIGUSR2, SIGSYS, SIGINT};

// Takes every pending instance of sig (it must be blocked).
void Drain(int sig) {
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, sig);
    const timespec now{0, 0};
    while (sigtimedwait(&one, nullptr, &now) == sig) {
    }
}

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

  private:
    sigset_t saved_;
};

bool Usr2Pending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGUSR2) == 1;
}

// Bit n of a mask blocks the signal of row n of the event table; bits above
// the fourth select nothing.
TEST(EventMap, MaskBitsBlockTheirSignals) {
    const std::pair<uint32_t, std::vector<int>> cases[] = {
        {0x7, {SIGUSR1, SIGUSR2, SIGSYS}}, {0x18, {SIGINT}}, {0xFFFFFFF0, {}}};
    for (const auto &[mask, expectedBlocked] : cases) {
        SignalMaskGuard guard;
        sigset_t events;
        sigemptyset(&events);
        for (int sig : kEventSignals) sigaddset(&events, sig);
        pthread_sigmask(SIG_UNBLOCK, &events, nullptr);
        EXPECT_EQ(AtsEventThreadInit(mask), 0);
        sigset_t now;
        pthread_sigmask(SIG_SETMASK, nullptr, &now);
        std::vector<int> blocked;
        for (int sig : kEventSignals) {
            if (sigismember(&now, sig) == 1) blocked.push_back(sig);
        }
        EXPECT_EQ(blocked, expectedBlocked) << mask;
    }
}

// The process family answers 1 for sent and 0 for anything refused (process
// groups, the all-bits event, an event without a row, no such process); a
// signal to self arrives as its event, with the wait limited by an alarm.
TEST(EventSend, RefusesWithoutSignallingAndDeliversToSelf) {
    const std::pair<int32_t, uint32_t> refused[] = {
        {0, 2}, {-1, 2}, {getpid(), 0xFFFFFFFF}, {getpid(), 3}, {INT_MAX, 2}};
    SignalMaskGuard guard;
    ASSERT_EQ(AtsEventInit(0x2), 1);
    for (const auto &[pid, event] : refused) {
        EXPECT_EQ(AtsEventSend(pid, event), 0) << pid << " " << event;
        EXPECT_FALSE(Usr2Pending()) << pid << " " << event;
    }

    FakeClock clock;
    ASSERT_EQ(AtsEventSend(getpid(), 2), 1);
    uint32_t event = 0;
    EXPECT_EQ(AtsEventRecv(0x2, 5, &event), 1);
    EXPECT_EQ(event, 2u);
    EXPECT_EQ(clock.Alarms(), (std::vector<unsigned>{5, 0}));
}

// The thread family reports an unknown event with 0, the same value as its
// success; its refusals are -1.
TEST(EventThreadSend, UnknownEventLooksLikeSuccess) {
    const std::tuple<pthread_t, uint32_t, int32_t> cases[] = {
        {pthread_t{}, 2, -1}, {pthread_self(), 0xFFFFFFFF, -1}, {pthread_self(), 3, 0}};
    SignalMaskGuard guard;
    ASSERT_EQ(AtsEventThreadInit(0x2), 0);
    for (const auto &[thread, event, result] : cases) {
        EXPECT_EQ(AtsEventThreadSend(thread, event), result) << event;
        EXPECT_FALSE(Usr2Pending()) << event;
    }

    ASSERT_EQ(AtsEventThreadSend(pthread_self(), 2), 0);
    uint32_t event = 0;
    EXPECT_EQ(AtsEventThreadRecv(0x2, &event), 1);
    EXPECT_EQ(event, 2u);
    EXPECT_EQ(AtsEventThreadRecv(0xFFFFFFFF, &event), 0);
}

TEST(TaskNameToId, ReadsThePidFile) {
    const std::pair<const char *, int32_t> cases[] = {{"1234\n", 1234}, {"77", 77}, {"  42\n", 42},
                                                      {"0", -1},        {"", -1},   {"abc\n", -1},
                                                      {nullptr, -1}};  // null: no pid file
    for (const auto &[content, pid] : cases) {
        SCOPED_TRACE(content != nullptr ? content : "no file");
        IsolatedRuntime runtime;
        if (content != nullptr) runtime.WritePidFile(content);
        EXPECT_EQ(AtsTaskNameToId("atserver"), pid);
        EXPECT_EQ(AtsTaskNameToId("other"), -1) << "another task has no pid file";
        EXPECT_EQ(AtsTaskNameToId(nullptr), -1);
    }
}

}  // namespace
}  // namespace atapi::test
