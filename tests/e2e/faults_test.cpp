// Faults on both sides of atserver, one after another on the same server:
// what the caller sees, what atserver logs, and that the next exchange works.
#include <unistd.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "atapi/at_link.h"
#include "e2e_fixture.h"
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

// Short, long and of an unknown request type (lengths include the type word).
void SendMalformedRecords(pid_t server) {
    const int qid = AtsGetMsgQueueId(kServerRecvProjId);
    ASSERT_NE(qid, -1);
    const std::pair<uint32_t, uint32_t> records[] = {
        {104, AT_REQ_COMMAND}, {3004, AT_REQ_COMMAND}, {AT_SRV_MSG_SIZE, 42}};
    for (const auto &[length, reqType] : records) {
        std::vector<char> buf(length, 'A');
        const int32_t mtype = ForeignMtype(20);
        std::memcpy(buf.data(), &mtype, sizeof mtype);
        std::memcpy(buf.data() + 4, &reqType, sizeof reqType);
        ASSERT_TRUE(SendRaw(qid, buf.data(), length)) << length;
    }
    ASSERT_EQ(AtsEventSend(server, 1), 1);
}

// Noise stays out of the reply: no control byte, nothing of the over-long line.
void ExpectCleanReply(const Exchange &reply) {
    ASSERT_EQ(reply.status, 0);
    EXPECT_EQ(reply.retVal, AT_RET_OK);
    EXPECT_EQ(reply.text.find(std::string(100, 'A')), std::string::npos);
    for (const char c : reply.text) {
        EXPECT_TRUE(c == '\r' || c == '\n' || c == '\t' || static_cast<unsigned char>(c) >= 0x20)
            << "control byte " << static_cast<int>(c);
    }
}

TEST_F(E2eTest, Faults_CallerSeesEachAndTheNextExchangeWorks) {
    struct Fault {
        const char *name;
        std::function<void()> provoke;  // checks what the caller sees
        std::string logged;             // by atserver
        size_t times;
    };
    const Fault faults[] = {
        {"malformed records in the request queue", [&] { SendMalformedRecords(server_->Pid()); },
         "dropped a malformed record", 3},
        {"binary noise and an over-long line", [] { ExpectCleanReply(Send("AT+GARBAGE")); },
         "dropped an over-long modem line", 1},
        {"the modem closes its port: ERROR, and atsim is started again",
         [] {
             const Exchange hangup = Send("AT+HANGUP", 5);
             ASSERT_EQ(hangup.status, 0);
             EXPECT_EQ(hangup.retVal, AT_RET_ERROR);
             EXPECT_EQ(hangup.text, "ERROR");
         },
         "modem port closed", 1},
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
        EXPECT_EQ(Occurrences(server_->Log(), fault.logged), fault.times) << server_->Log();
    }
}

}  // namespace
}  // namespace atapi::e2e
