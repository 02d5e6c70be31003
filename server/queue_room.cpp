#include "queue_room.h"

#include <sys/ipc.h>
#include <sys/msg.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "atapi/at_types.h"
#include "server_log.h"

namespace atserver {
namespace {

constexpr char kSystemLimitPath[] = "/proc/sys/kernel/msgmnb";
// The kernel counts the bytes behind each record's type word.
constexpr msglen_t kWantedBytes = kQueueRoomRecords * AT_SRV_MSG_PAYLOAD;

// The largest byte limit an unprivileged owner may set (0 when unknown).
msglen_t SystemByteLimit() {
    FILE *file = std::fopen(kSystemLimitPath, "r");
    if (file == nullptr) return 0;
    unsigned long bytes = 0;
    if (std::fscanf(file, "%lu", &bytes) != 1) bytes = 0;
    std::fclose(file);
    return bytes;
}

// Raises the queue's byte limit to at least bytes; false (errno set) when refused.
bool RaiseByteLimit(int qid, msglen_t bytes) {
    msqid_ds attrs{};
    if (msgctl(qid, IPC_STAT, &attrs) != 0) return false;
    if (attrs.msg_qbytes >= bytes) return true;
    attrs.msg_qbytes = bytes;
    return msgctl(qid, IPC_SET, &attrs) == 0;
}

size_t RecordsHeld(int qid) {
    msqid_ds attrs{};
    if (msgctl(qid, IPC_STAT, &attrs) != 0) return 0;
    return attrs.msg_qbytes / AT_SRV_MSG_PAYLOAD;
}

}  // namespace

size_t RaiseQueueRoom(int qid, const char *name) {
    if (RaiseByteLimit(qid, kWantedBytes)) {
        const size_t records = RecordsHeld(qid);
        Logf("the %s queue holds %zu records", name, records);
        return records;
    }
    const int refused = errno;
    const msglen_t systemLimit = SystemByteLimit();
    if (systemLimit > 0 && systemLimit < kWantedBytes) RaiseByteLimit(qid, systemLimit);
    const size_t records = RecordsHeld(qid);
    LogWarn(
        "the %s queue holds only %zu records (%s): more callers at once than that may find it "
        "full; set kernel.msgmnb to %lu or give atserver CAP_SYS_RESOURCE",
        name, records, std::strerror(refused), static_cast<unsigned long>(kWantedBytes));
    return records;
}

}  // namespace atserver
