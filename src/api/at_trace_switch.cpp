// The modem trace switch: one simple command, sent through the send
// primitives (the link below only carries it).
#include <cstdint>
#include <iterator>

#include "atapi/at_link.h"
#include "atapi/at_send.h"

namespace {

constexpr const char *kTraceCommands[] = {"AT^TRACEON=0", "AT^TRACEON=1"};

}  // namespace

extern "C" {

int32_t AtTraceOn(uint32_t on) {
    if (on >= std::size(kTraceCommands)) return -1;
    return AtSendSimpleCmd(kTraceCommands[on], nullptr, nullptr) == 0 ? 0 : -1;
}

}  // extern "C"
