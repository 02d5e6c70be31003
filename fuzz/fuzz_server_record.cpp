// atserver's intake of request records: arbitrary bytes as a record of any
// received length. A record classified as a command must carry a terminated,
// non-empty single command line and a terminated name.
#include <cstdint>
#include <cstring>

#include "request_queues.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    AtSrvMsg msg{};
    std::memcpy(&msg, data, size < sizeof msg ? size : sizeof msg);
    const size_t payloadLen = size < sizeof msg.mtype ? 0 : size - sizeof msg.mtype;
    if (atserver::ClassifyRecord(msg, payloadLen) != atserver::RecordKind::kCommand) return 0;
    const AtSrvSndMsg &sMsg = msg.sndRcvMsg.sMsg;
    const void *cmdEnd = std::memchr(sMsg.atCmdStr, '\0', sizeof sMsg.atCmdStr);
    if (cmdEnd == nullptr || sMsg.atCmdStr[0] == '\0' ||
        std::memchr(sMsg.atName, '\0', sizeof sMsg.atName) == nullptr ||
        std::strpbrk(sMsg.atCmdStr, "\r\n") != nullptr) {
        __builtin_trap();
    }
    return 0;
}
