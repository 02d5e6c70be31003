// Room in atserver's queues. A caller sends its request without waiting and
// tries again only 100 ms after finding the request queue full (atserver
// takes requests as they arrive, but a burst may come faster), and a reply
// that finds the reply queue full waits inside atserver until its caller's
// next 30 ms poll finds room; so each queue is given room for every caller
// that may wait at once, beyond the 16 KiB that the library's queue layer
// sets up.
#pragma once

#include <cstddef>

namespace atserver {

// Records each queue is sized for: 64 waiting callers, each with a request
// and the abort of an earlier one, or with a reply and a late one.
inline constexpr size_t kQueueRoomRecords = 128;

// Raises the byte limit of queue qid (never lowers it) so that it holds
// kQueueRoomRecords records. Beyond kernel.msgmnb the kernel allows that only
// to a privileged atserver; otherwise the limit goes up to msgmnb and a
// warning says what would give the room. Returns the records the queue holds
// (0 when its limit cannot be read).
size_t RaiseQueueRoom(int qid, const char *name);

}  // namespace atserver
