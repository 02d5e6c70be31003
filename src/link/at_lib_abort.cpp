// Abort and clear requests, and the wait for atserver's ready flag.
#include <cstdint>

#include "atapi/at_link.h"
#include "link/at_lib_state.h"
#include "link/at_log.h"
#include "link/ats_paths.h"
#include "platform/bounded.h"
#include "platform/osa.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/at_lib";

constexpr int kReadyChecks = 302;  // about 30 s, 100 ms apart
constexpr uint32_t kReadyPauseMs = 100;
constexpr int32_t kControlTimeoutSec = 30;
constexpr char kBareCommand[] = "AT";

}  // namespace

extern "C" {

int32_t AtAbortAndClearAllCommand(uint32_t reqType, const char *cmd, uint32_t cmdLen) {
    AT_LOG_INFO("------ Enter AT_abort_cur_command\n");
    if (reqType < AT_REQ_ABORT || reqType > AT_REQ_CLEAR_ALL) {
        AT_LOG_ERR("reqType: %d is not a abort or clear type!!!\n", static_cast<int>(reqType));
        return -1;
    }
    AtSrvMsg msg;
    memset_s(&msg, sizeof msg, 0, sizeof msg);
    msg.mtype = atapi::CurrentTid();
    msg.reqType = reqType;
    msg.timeoutSec = kControlTimeoutSec;

    char *text = msg.sndRcvMsg.sMsg.atCmdStr;
    if (cmd != nullptr && cmdLen >= 1 && cmdLen <= AT_CMD_STR_LEN) {
        const errno_t ret = memcpy_s(text, AT_CMD_STR_LEN, cmd, cmdLen);
        if (ret != 0) AT_LOG_ERR("atCmdStr copy fail. ret: %d\n", ret);
        text[AT_CMD_STR_LEN - 1] = '\0';
    } else {
        strcpy_s(text, AT_CMD_STR_LEN, kBareCommand);
    }

    const int32_t ret = GetDataFromAtServer(&msg);
    memset_s(&msg, sizeof msg, 0, sizeof msg);  // the command may hold a secret
    if (ret != 0) {
        AT_LOG_ERR("send cmd fail\n");
        return -1;
    }
    AT_LOG_INFO("AT_abort_all_command out, ret=%d\n", ret);
    return 0;
}

int32_t CheckAtServerReady(void) {
    OsaFileStat status;
    return OSA_StatFile(atapi::ReadyFlagPath(), &status) == 0 ? 0 : -1;
}

int32_t M2mGetAtsTaskId(void) {
    for (int check = 1; check <= kReadyChecks; ++check) {
        if (CheckAtServerReady() == 0) return AtsTaskNameToId(atapi::kServerTaskName);
        if (check < kReadyChecks) AtsSleep(kReadyPauseMs);
    }
    AT_LOG_ERR("main already wait for atserver 30s\n");
    return AtsTaskNameToId(atapi::kServerTaskName);
}

}  // extern "C"
