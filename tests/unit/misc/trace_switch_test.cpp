// The modem trace switch against the scripted modem: the line for each
// setting, no response prefix, the default timeout, and how a refusal or an
// unknown setting comes back (the other result classes are the send
// primitive's, tested with it).

#include <cstdint>

#include "atapi/at_link.h"
#include "atapi/at_send.h"
#include "command_cases.h"

namespace atapi::test {
namespace {

struct NoRecord {
    char unused;
};

auto Switch(uint32_t on) {
    return [on](NoRecord &) { return AtTraceOn(on); };
}

Step Sent(const char *command) { return Ok(command).Prefix("").Timeout(AT_DEFAULT_TIMEOUT_SEC); }

TEST(AtTraceOn, SendsOneCommandPerSetting) {
    RunCommandCases<NoRecord>(
        {
            {"off", Switch(0), {Sent("AT^TRACEON=0")}, 0},
            {"on", Switch(1), {Sent("AT^TRACEON=1")}, 0},
            {"refused", Switch(1), {Fails("AT^TRACEON=1", AT_RET_CME_ERROR, "+CME ERROR: 3")}, -1},
            {"unknown setting, nothing sent", Switch(2), {}, -1},
            {"largest setting, nothing sent", Switch(UINT32_MAX), {}, -1},
        },
        Filled<NoRecord>(0));
}

}  // namespace
}  // namespace atapi::test
