// Per-thread events for the SMS service: the same signals as the link's
// thread events, with messages on standard output instead of the trace log.
#include <pthread.h>

#include <csignal>
#include <cstdio>

#include "atapi/at_link.h"
#include "link/ats_event_map.h"

extern "C" {

int32_t AtsThreadEventInit(uint32_t mask) {
    sigset_t set;
    atapi::EventMaskToSignals(mask, &set);
    const int ret = pthread_sigmask(SIG_BLOCK, &set, nullptr);
    if (ret != 0) std::printf("Error!pthread_sigmask fail, ret = %d\n", ret);
    return ret;
}

int32_t AtsThreadEventSend(pthread_t thread, uint32_t event) {
    if (thread == pthread_t{} || event == atapi::kAllEvents) {
        std::printf("Error!in AtsThreadEventSend, para is invaild, event:%d.\n",
                    static_cast<int>(event));
        return -1;
    }
    const int sig = atapi::EventToSignal(event);
    if (sig == -1) {
        std::puts("Error!in AtsThreadEventSend, sig = -1");
        return 0;
    }
    const int ret = pthread_kill(thread, sig);
    if (ret != 0) std::printf("Error!pthread_kill fail, ret = %d\n", ret);
    return ret;
}

int32_t AtsThreadEventRecv(uint32_t mask, uint32_t *event) {
    if (event == nullptr) return 0;
    sigset_t set;
    atapi::EventMaskToSignals(mask, &set);
    if (pthread_sigmask(SIG_BLOCK, &set, nullptr) != 0) return 0;
    int sig = 0;
    const int err = sigwait(&set, &sig);
    if (err != 0) {
        std::printf("Error!in ATS_event_recv, sigwait failed. errno = %d\n", err);
        return 0;
    }
    const int32_t got = atapi::SignalToEvent(sig);
    if (got == -1) {
        std::puts("Error!in ATS_event_recv, e = -1");
        return 0;
    }
    *event = static_cast<uint32_t>(got);
    return 1;
}

}  // extern "C"
