// Translation between event masks, events and the signals that carry them
// (g_atsEventMaps), shared by the process-wide and per-thread event families.
#pragma once

#include <pthread.h>

#include <csignal>
#include <cstdint>

namespace atapi {

// Fills set with the signals of the mask's low four bits (by table row).
void EventMaskToSignals(uint32_t mask, sigset_t *set);
// The signal of an event value, or -1 when the table has no such row.
int EventToSignal(uint32_t event);
// The event carried by a signal, or -1.
int32_t SignalToEvent(int signal);

inline constexpr uint32_t kAllEvents = 0xFFFFFFFFu;  // the "-1" event or mask

// How one event family words its failures: a printf-style format per fault
// (each takes one int: a return code, errno or the event) and where it goes.
struct EventMessages {
    const char *sigmaskFailed;  // pthread_sigmask failed (its result)
    const char *badArguments;   // null thread or the "-1" event (the event)
    const char *noSignal;       // the event has no row in g_atsEventMaps
    const char *killFailed;     // pthread_kill failed (its result)
    const char *sigwaitFailed;  // sigwait failed (its result)
    const char *noEvent;        // the signal received carries no event
    void (*print)(const char *format, int value);
};

// The per-thread event operations shared by both families: the result
// conventions are those of AtsEventThreadInit/Send/Recv.
int32_t ThreadEventInit(uint32_t mask, const EventMessages &messages);
int32_t ThreadEventSend(pthread_t thread, uint32_t event, const EventMessages &messages);
int32_t ThreadEventRecv(uint32_t mask, uint32_t *event, const EventMessages &messages);
// sigwait on set; the event of the signal received, or -1 (reported).
int32_t WaitForEvent(const sigset_t &set, const EventMessages &messages);

}  // namespace atapi
