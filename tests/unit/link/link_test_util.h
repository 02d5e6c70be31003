// Helpers shared by the server link suites.
#pragma once

#include <chrono>
#include <cstring>
#include <functional>
#include <string>
#include <thread>

#include "atapi/at_link.h"
#include "link/at_lib_state.h"
#include "link/ats_paths.h"

namespace atapi::test {

// A zeroed ordinary request of the calling thread, as a send primitive builds it.
inline AtSrvMsg MakeRequest(const std::string &cmd, const std::string &atName = "",
                            int32_t timeoutSec = 30) {
    AtSrvMsg msg;
    std::memset(&msg, 0, sizeof msg);
    msg.mtype = CurrentTid();
    msg.timeoutSec = timeoutSec;
    std::strncpy(msg.sndRcvMsg.sMsg.atName, atName.c_str(), AT_NAME_LEN - 1);
    std::strncpy(msg.sndRcvMsg.sMsg.atCmdStr, cmd.c_str(), AT_CMD_STR_LEN - 1);
    return msg;
}

// Waits (a bounded while) for another thread to make done() true.
inline bool Eventually(const std::function<bool()> &done) {
    for (int i = 0; i < 500 && !done(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return done();
}

// atserver's queues with nobody serving them; the runtime root removes them.
struct ServerQueues {
    int recv = AtsMsgQueueCreate(kServerRecvProjId, 10, AT_SRV_MSG_SIZE);
    int send = AtsMsgQueueCreate(kServerSendProjId, 10, AT_SRV_MSG_SIZE);
};

}  // namespace atapi::test
