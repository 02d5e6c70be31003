// Process-wide state of the exchange with atserver. Plain globals by design:
// every writer stores the same values (see at_lib_exchange.cpp).
#pragma once

#include <cstdint>

extern "C" {
extern int32_t g_atsLibTaskId;       // atserver's pid, -1 until resolved
extern int32_t g_atsRecvMsgQueueId;  // requests queue (project id 2)
extern int32_t g_atsSendMsgQueueId;  // replies queue (project id 1)
extern uint32_t g_atsMsgSeq;         // next sequence number, starts at 1
}

namespace atapi {

// Kernel thread id of the calling thread (the message type of its requests).
int32_t CurrentTid();

// Restores the load-time values (tests only).
void ResetLinkStateForTest();

}  // namespace atapi
