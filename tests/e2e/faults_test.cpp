// Faults on both sides of atserver, one after another on the same server (or
// the one started after it): what the caller sees, what atserver logs, and
// that the next exchange works. Noise and over-long lines: exchange_test.cpp.
#include <sys/msg.h>
#include <unistd.h>

#include <climits>
#include <thread>

#include "atapi/at_link.h"
#include "e2e_fixture.h"
#include "link/at_lib_state.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

size_t Occurrences(const std::string &text, const std::string &needle) {
    size_t count = 0;
    for (size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1)) {
        ++count;
    }
    return count;
}

// Short, long, of an unknown request type, and a bare type word of the
// highest type (lengths include the type word).
void SendMalformedRecords(pid_t server) {
    const int qid = AtsGetMsgQueueId(kServerRecvProjId);
    struct Record {
        uint32_t length;
        int32_t mtype;
        uint32_t reqType;
    };
    for (const Record &record :
         {Record{104, ForeignMtype(20), AT_REQ_COMMAND},
          Record{3004, ForeignMtype(20), AT_REQ_COMMAND},
          Record{AT_SRV_MSG_SIZE, ForeignMtype(20), 42}, Record{4, INT32_MAX, AT_REQ_COMMAND}}) {
        std::vector<int32_t> words(record.length / 4 + 1, 0x41414141);
        words[0] = record.mtype;
        words[1] = static_cast<int32_t>(record.reqType);
        ASSERT_TRUE(SendRaw(qid, words.data(), record.length)) << record.length;
    }
    ASSERT_EQ(AtsEventSend(server, 1), 1);
}

// Removes atserver's request queue; with remake, a queue of the same key
// takes its place at once.
void RemoveRequestQueue(bool remake) {
    ASSERT_EQ(msgctl(AtsGetMsgQueueId(kServerRecvProjId), IPC_RMID, nullptr), 0);
    if (remake) {
        ASSERT_NE(msgget(ftok(QueueKeyDir(), kServerRecvProjId), IPC_CREAT | 0600), -1);
    }
}

// A record on the reply queue for mtype (length includes the type word).
void PutReply(int32_t mtype, uint32_t length) {
    AtSrvMsg record{};
    record.mtype = mtype;
    record.sndRcvMsg.rMsg.retVal = AT_RET_OK;
    ASSERT_TRUE(SendRaw(AtsGetMsgQueueId(kServerSendProjId), &record, length));
}

TEST_F(E2eTest, Faults_CallerSeesEachAndTheNextExchangeWorks) {
    const auto restart = [this](int signo) {
        server_->Stop(signo);
        server_->Start(scenario_, ServerArgs());
        ASSERT_TRUE(server_->WaitForLog("ready after")) << server_->Log();
        const std::string pid = std::to_string(server_->Pid()) + "\n";
        ASSERT_TRUE(WaitUntil([&] { return ReadFile(PidFile()) == pid; }, std::chrono::seconds(5)))
            << "pid file: " << ReadFile(PidFile()) << "\n"
            << server_->Log();
    };
    struct Fault {
        const char *name;
        std::function<void()> provoke;  // checks what the caller sees
        std::string logged;             // by atserver (the server started last); empty: nothing
        size_t times;
    };
    const Fault faults[] = {
        {"malformed records in the request queue", [&] { SendMalformedRecords(server_->Pid()); },
         "dropped a malformed record", 4},
        {"lines reach atserver in pieces, split inside a quoted value",
         [] {
             const Exchange split = Send("AT+SPLIT");
             EXPECT_EQ(split.retVal, AT_RET_OK);
             EXPECT_EQ(split.text, "+SPLIT: 1,\"ab\"\r\n+SPLIT: 2");
         },
         "", 0},
        {"the modem closes its port mid-reply: ERROR, nothing of the cut reply, atsim again",
         [] {
             const Exchange hangup = Send("AT+HANGUP", 5);
             ASSERT_EQ(hangup.status, 0);
             EXPECT_EQ(hangup.retVal, AT_RET_ERROR);
             EXPECT_EQ(hangup.text, "ERROR");
         },
         "modem port closed", 1},
        {"a reply of the wrong size for this thread fails its exchange",
         [] {
             PutReply(CurrentTid(), AT_SRV_MSG_SIZE - 100);
             EXPECT_EQ(Send("AT+CGMI", 5).status, -1);
         },
         "modem port closed", 1},
        {"a reply for another thread is left alone",
         [] {
             PutReply(ForeignMtype(21), AT_SRV_MSG_SIZE);
             EXPECT_EQ(Send("AT+CGMI", 5).text, kManufacturer);
         },
         "modem port closed", 1},
        {"the request queue removed", [] { RemoveRequestQueue(false); }, "was removed: serving on",
         1},
        {"the request queue removed and made again by another process",
         [] { RemoveRequestQueue(true); }, "was removed: serving on", 2},
        {"atserver stopped between two calls and started again, no reset",
         [&] { restart(SIGTERM); }, "ready after", 1},
        // The caller waits out its timeout: the reply queue it polls was replaced.
        {"atserver killed while a caller waits for its reply, started again",
         [&] {
             Exchange waiting;
             std::thread caller([&waiting] { waiting = Send("AT+SLOW=5000", 3); });
             EXPECT_TRUE(server_->WaitForLog("sent \"AT+SLOW="));
             restart(SIGKILL);
             caller.join();
             EXPECT_EQ(waiting.status, -1);
         },
         "left by an earlier run", 2},
        {"atserver killed between two calls, started again, reset",
         [&] {
             restart(SIGKILL);
             AtMicResetAtsTaskId();
             EXPECT_EQ(Send("AT").retVal, AT_RET_OK);
             EXPECT_EQ(g_atsLibTaskId, server_->Pid());
         },
         "left by an earlier run", 2},
    };
    for (const Fault &fault : faults) {
        SCOPED_TRACE(fault.name);
        fault.provoke();
        Exchange next;
        // Until a restarted atsim answers, requests are answered ERROR.
        for (int attempt = 0; attempt < 50 && next.retVal != AT_RET_OK; ++attempt) {
            if (attempt > 0) usleep(100000);
            next = Send("AT+CGMI", 5);
        }
        EXPECT_EQ(next.text, kManufacturer) << server_->Log();
        EXPECT_TRUE(server_->Alive());
        if (!fault.logged.empty()) {
            EXPECT_EQ(Occurrences(server_->Log(), fault.logged), fault.times) << server_->Log();
        }
    }
}

}  // namespace
}  // namespace atapi::e2e
