// Hostile input on both sides of atserver: broken records in its request
// queue and a modem that sends noise or closes its port.
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "atapi/at_link.h"
#include "e2e_fixture.h"
#include "link/ats_paths.h"

namespace atapi::e2e {
namespace {

size_t CountOf(const std::string &text, const std::string &needle) {
    size_t count = 0;
    for (size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1)) {
        ++count;
    }
    return count;
}

void ExpectServing() {
    const Exchange reply = Send("AT+CGMI");
    ASSERT_EQ(reply.status, 0);
    EXPECT_EQ(reply.retVal, AT_RET_OK);
    EXPECT_EQ(reply.text, kManufacturer);
}

TEST_F(E2eTest, Malformed_RecordsAreDroppedAndTheServerGoesOn) {
    const int qid = AtsGetMsgQueueId(kServerRecvProjId);
    ASSERT_NE(qid, -1);
    struct BadRecord {
        const char *what;
        uint32_t length;  // including the type word
        uint32_t reqType;
    };
    const BadRecord records[] = {
        {"short", 104, AT_REQ_COMMAND},
        {"long", 3004, AT_REQ_COMMAND},
        {"unknown type", AT_SRV_MSG_SIZE, 42},
    };
    for (const BadRecord &bad : records) {
        std::vector<char> buf(bad.length, 'A');
        const int32_t mtype = ForeignMtype(20);
        std::memcpy(buf.data(), &mtype, sizeof mtype);
        std::memcpy(buf.data() + 4, &bad.reqType, sizeof bad.reqType);
        ASSERT_TRUE(SendRaw(qid, buf.data(), bad.length)) << bad.what;
    }
    ASSERT_EQ(AtsEventSend(server_->Pid(), 1), 1);
    ExpectServing();
    EXPECT_EQ(CountOf(server_->Log(), "dropped a malformed record"), 3u) << server_->Log();
}

TEST_F(E2eTest, Malformed_CommandsThatCannotBeSentAreAnsweredError) {
    const int32_t requester = ForeignMtype(30);
    AtSrvMsg twoLines{};
    std::strcpy(twoLines.sndRcvMsg.sMsg.atCmdStr, "AT\rAT+CGMI");
    AtSrvMsg empty{};
    AtSrvMsg unterminated{};
    std::memset(unterminated.sndRcvMsg.sMsg.atCmdStr, 'A', AT_CMD_STR_LEN);
    const int reqQid = AtsGetMsgQueueId(kServerRecvProjId);
    const int replyQid = AtsGetMsgQueueId(kServerSendProjId);
    for (AtSrvMsg *msg : {&twoLines, &empty, &unterminated}) {
        msg->mtype = requester;
        ASSERT_TRUE(SendRaw(reqQid, msg, sizeof *msg));
        ASSERT_EQ(AtsEventSend(server_->Pid(), 1), 1);
        AtSrvMsg reply{};
        ASSERT_EQ(AtsMsgQueueExRecv(replyQid, &reply, sizeof reply, 5000, requester),
                  AT_SRV_MSG_PAYLOAD);
        EXPECT_EQ(reply.sndRcvMsg.rMsg.retVal, AT_RET_ERROR);
        EXPECT_STREQ(reply.sndRcvMsg.rMsg.atReportStr, "ERROR");
    }
    ExpectServing();
}

TEST_F(E2eTest, Modem_BinaryNoiseAndAnOverLongLineStayOutOfTheReply) {
    const Exchange reply = Send("AT+GARBAGE");
    ASSERT_EQ(reply.status, 0);
    EXPECT_EQ(reply.retVal, AT_RET_OK);
    EXPECT_EQ(reply.reportLen, static_cast<int32_t>(reply.text.size()));
    EXPECT_EQ(reply.text.find(std::string(100, 'A')), std::string::npos);
    for (const char c : reply.text) {
        EXPECT_TRUE(c == '\r' || c == '\n' || c == '\t' || static_cast<unsigned char>(c) >= 0x20)
            << "control byte " << static_cast<int>(c);
    }
    EXPECT_NE(server_->Log().find("dropped an over-long modem line"), std::string::npos);
    ExpectServing();
}

TEST_F(E2eTest, Modem_ClosedPortAnswersErrorAndTheServerRecovers) {
    const Exchange hangup = Send("AT+HANGUP", 5);
    ASSERT_EQ(hangup.status, 0);
    EXPECT_EQ(hangup.retVal, AT_RET_ERROR);
    EXPECT_EQ(hangup.text, "ERROR");
    EXPECT_TRUE(server_->Alive());
    EXPECT_TRUE(server_->WaitForLog("modem port closed"));

    // atsim is started again; until then requests are answered ERROR.
    Exchange reply;
    for (int attempt = 0; attempt < 50 && reply.retVal != AT_RET_OK; ++attempt) {
        reply = Send("AT+CGMI", 5);
        if (reply.retVal != AT_RET_OK) usleep(100000);
    }
    EXPECT_EQ(reply.retVal, AT_RET_OK) << server_->Log();
    EXPECT_EQ(reply.text, kManufacturer);
}

}  // namespace
}  // namespace atapi::e2e
