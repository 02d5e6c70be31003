// Per-thread events for the SMS service: the link's thread events, with their
// messages on standard output instead of the trace log.
#include <pthread.h>

#include <cstdio>

#include "atapi/at_link.h"
#include "link/ats_event_map.h"

namespace {

void PrintToStdout(const char *format, int value) { std::printf(format, value); }

constexpr atapi::EventMessages kStdoutMessages{
    "Error!pthread_sigmask fail, ret = %d\n",
    "Error!in AtsThreadEventSend, para is invaild, event:%d.\n",
    "Error!in AtsThreadEventSend, sig = -1\n",
    "Error!pthread_kill fail, ret = %d\n",
    "Error!in ATS_event_recv, sigwait failed. errno = %d\n",
    "Error!in ATS_event_recv, e = -1\n",
    PrintToStdout,
};

}  // namespace

extern "C" {

int32_t AtsThreadEventInit(uint32_t mask) { return atapi::ThreadEventInit(mask, kStdoutMessages); }

int32_t AtsThreadEventSend(pthread_t thread, uint32_t event) {
    return atapi::ThreadEventSend(thread, event, kStdoutMessages);
}

// Unlike AtsEventThreadRecv, the "-1" mask is not refused here.
int32_t AtsThreadEventRecv(uint32_t mask, uint32_t *event) {
    return atapi::ThreadEventRecv(mask, event, kStdoutMessages);
}

}  // extern "C"
