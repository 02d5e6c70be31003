// Translation between event masks, events and the signals that carry them
// (g_atsEventMaps), shared by the process-wide and per-thread event families.
#pragma once

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

}  // namespace atapi
