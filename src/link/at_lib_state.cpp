#include "link/at_lib_state.h"

#include <sys/syscall.h>
#include <unistd.h>

extern "C" {
int32_t g_atsLibTaskId = -1;
int32_t g_atsRecvMsgQueueId = -1;
int32_t g_atsSendMsgQueueId = -1;
uint32_t g_atsMsgSeq = 1;
}

namespace atapi {

int32_t CurrentTid() { return static_cast<int32_t>(syscall(SYS_gettid)); }

void ResetLinkStateForTest() {
    g_atsLibTaskId = -1;
    g_atsRecvMsgQueueId = -1;
    g_atsSendMsgQueueId = -1;
    g_atsMsgSeq = 1;
}

}  // namespace atapi
