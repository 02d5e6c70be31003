// 64 callers sending at once never find atserver's request queue full: it
// takes each request off the queue as it arrives, so even the 10 records the
// kernel allows by default suffice. Where the kernel lets atserver size its
// queues, 64 requests also wait in them while atserver cannot run.
#include <dirent.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/msg.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "atapi/at_link.h"
#include "atapi/at_send.h"
#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

constexpr int kCallers = 64;

size_t RecordsHeld(int qid) {
    msqid_ds attrs{};
    if (msgctl(qid, IPC_STAT, &attrs) != 0) return 0;
    return attrs.msg_qbytes / AT_SRV_MSG_PAYLOAD;
}

AtSrvMsg Request(int caller) {
    AtSrvMsg msg;
    AtInitCommonMsgHandler(&msg, "AT+CGMI", nullptr, 0, 10);
    msg.mtype = ForeignMtype(caller);
    msg.seq = static_cast<uint32_t>(1000 + caller);
    return msg;
}

// Every thread of process pid onto one processor; false when one cannot be moved.
bool PinProcess(pid_t pid, const cpu_set_t &cpu) {
    const std::string tasks = "/proc/" + std::to_string(pid) + "/task";
    DIR *dir = opendir(tasks.c_str());
    if (dir == nullptr) return false;
    bool pinned = true;
    while (const dirent *entry = readdir(dir)) {
        if (entry->d_name[0] == '.') continue;
        pinned &= sched_setaffinity(std::atoi(entry->d_name), sizeof cpu, &cpu) == 0;
    }
    closedir(dir);
    return pinned;
}

// The processor this thread runs on, alone.
cpu_set_t ThisCpu() {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    return one;
}

void ExpectAnswered(const AtSrvMsg &reply, int caller) {
    EXPECT_EQ(reply.mtype, ForeignMtype(caller));
    EXPECT_EQ(reply.seq, static_cast<uint32_t>(1000 + caller));
    EXPECT_EQ(reply.sndRcvMsg.rMsg.retVal, AT_RET_OK);
    EXPECT_STREQ(reply.sndRcvMsg.rMsg.atReportStr, kManufacturer);
}

// atserver runs ahead of its callers, as its unit runs it at nice -10; here
// by construction rather than by chance: atserver and the callers share one
// processor and the callers run at idle priority, so a request handed to
// atserver's waiting msgrcv is taken before another caller runs. Requests
// that wait in the kernel queue for atserver's event loop instead fill it:
// no wake-up signal is sent, and the loop's tick comes every 100 ms.
TEST_F(E2eTest, QueueRoom_SixtyFourCallersAtOnceNeverFindItFull) {
    const int requestQid = AtsGetMsgQueueId(kServerRecvProjId);
    const int replyQid = AtsGetMsgQueueId(kServerSendProjId);
    ASSERT_NE(requestQid, -1);
    ASSERT_NE(replyQid, -1);
    if (RecordsHeld(requestQid) < kCallers) {
        EXPECT_TRUE(server_->WaitForLog("the request queue holds only")) << server_->Log();
    }
    const cpu_set_t cpu = ThisCpu();
    ASSERT_TRUE(PinProcess(server_->Pid(), cpu));
    std::latch start(kCallers);
    std::atomic<int> fullQueue{0};
    std::atomic<int> notBehind{0};
    std::vector<int> received(kCallers, -1);
    std::vector<AtSrvMsg> replies(kCallers, AtSrvMsg{});
    std::vector<std::thread> callers;
    for (int i = 0; i < kCallers; ++i) {
        callers.emplace_back([&, i] {
            AtSrvMsg msg = Request(i);
            const sched_param idle{};
            const bool behind = pthread_setaffinity_np(pthread_self(), sizeof cpu, &cpu) == 0 &&
                                pthread_setschedparam(pthread_self(), SCHED_IDLE, &idle) == 0;
            start.arrive_and_wait();
            if (!behind) {
                ++notBehind;
                return;
            }
            while (AtsMsgQueueExSend(requestQid, &msg, sizeof msg, 0) != 1) {
                if (errno != EAGAIN) return;
                ++fullQueue;
                usleep(1000);
            }
            received[i] =
                AtsMsgQueueExRecv(replyQid, &replies[i], sizeof replies[i], 20000, msg.mtype);
        });
    }
    for (std::thread &caller : callers) caller.join();
    ASSERT_EQ(notBehind.load(), 0) << "callers not moved to idle priority on one processor";
    EXPECT_EQ(fullQueue.load(), 0);
    for (int i = 0; i < kCallers; ++i) {
        SCOPED_TRACE(i);
        ASSERT_EQ(received[i], AT_SRV_MSG_PAYLOAD);
        ExpectAnswered(replies[i], i);
    }
}

TEST_F(E2eTest, QueueRoom_SixtyFourRequestsWaitInTheQueueWhereTheKernelAllows) {
    const int requestQid = AtsGetMsgQueueId(kServerRecvProjId);
    const int replyQid = AtsGetMsgQueueId(kServerSendProjId);
    ASSERT_NE(requestQid, -1);
    ASSERT_NE(replyQid, -1);
    if (RecordsHeld(requestQid) < kCallers || RecordsHeld(replyQid) < kCallers) {
        EXPECT_TRUE(server_->WaitForLog("the reply queue holds only")) << server_->Log();
        GTEST_SKIP() << "the kernel keeps atserver's queues below " << kCallers << " records";
    }
    // atserver stopped: every request waits in the queue at once.
    ASSERT_EQ(kill(server_->Pid(), SIGSTOP), 0);
    int sent = 0;
    for (int i = 0; i < kCallers; ++i) {
        AtSrvMsg msg = Request(i);
        sent += AtsMsgQueueExSend(requestQid, &msg, sizeof msg, 0);
    }
    ASSERT_EQ(kill(server_->Pid(), SIGCONT), 0);
    EXPECT_EQ(sent, kCallers);
    for (int i = 0; i < sent; ++i) {
        SCOPED_TRACE(i);
        AtSrvMsg reply{};
        ASSERT_EQ(AtsMsgQueueExRecv(replyQid, &reply, sizeof reply, 10000, ForeignMtype(i)),
                  AT_SRV_MSG_PAYLOAD);
        ExpectAnswered(reply, i);
    }
}

}  // namespace
}  // namespace atapi::e2e
