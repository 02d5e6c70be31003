// Hostile input on both sides of atserver: broken records in its request
// queue and a modem that closes its port (noise and over-long lines:
// overlong_line_test.cpp).
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "atapi/at_link.h"
#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

void ExpectServing() {
    const Exchange reply = Send("AT+CGMI");
    ASSERT_EQ(reply.status, 0);
    EXPECT_EQ(reply.text, kManufacturer);
}

TEST_F(E2eTest, Malformed_RecordsAreDroppedAndTheServerGoesOn) {
    const int qid = AtsGetMsgQueueId(kServerRecvProjId);
    ASSERT_NE(qid, -1);
    // Short, long, and of an unknown request type (lengths include the type word).
    const std::pair<uint32_t, uint32_t> records[] = {
        {104, AT_REQ_COMMAND}, {3004, AT_REQ_COMMAND}, {AT_SRV_MSG_SIZE, 42}};
    for (const auto &[length, reqType] : records) {
        std::vector<char> buf(length, 'A');
        const int32_t mtype = ForeignMtype(20);
        std::memcpy(buf.data(), &mtype, sizeof mtype);
        std::memcpy(buf.data() + 4, &reqType, sizeof reqType);
        ASSERT_TRUE(SendRaw(qid, buf.data(), length)) << length;
    }
    ASSERT_EQ(AtsEventSend(server_->Pid(), 1), 1);
    ExpectServing();
    const std::string log = server_->Log();
    const std::string needle = "dropped a malformed record";
    size_t dropped = 0;
    for (size_t at = log.find(needle); at != std::string::npos; at = log.find(needle, at + 1)) {
        ++dropped;
    }
    EXPECT_EQ(dropped, 3u) << log;
}

TEST_F(E2eTest, Modem_ClosedPortAnswersErrorAndTheServerRecovers) {
    const Exchange hangup = Send("AT+HANGUP", 5);
    ASSERT_EQ(hangup.status, 0);
    EXPECT_EQ(hangup.retVal, AT_RET_ERROR);
    EXPECT_EQ(hangup.text, "ERROR");
    EXPECT_TRUE(server_->WaitForLog("modem port closed"));
    EXPECT_TRUE(server_->Alive());

    // atsim is started again; until then requests are answered ERROR.
    Exchange reply;
    for (int attempt = 0; attempt < 50 && reply.retVal != AT_RET_OK; ++attempt) {
        reply = Send("AT+CGMI", 5);
        if (reply.retVal != AT_RET_OK) usleep(100000);
    }
    EXPECT_EQ(reply.text, kManufacturer) << server_->Log();
}

}  // namespace
}  // namespace atapi::e2e
