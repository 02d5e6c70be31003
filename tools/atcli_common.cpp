#include "atcli_common.h"

#include <signal.h>

#include <cerrno>
#include <cstdio>

#include "atapi/at_link.h"
#include "link/ats_paths.h"

namespace atcli {

int UsageError(const std::string &what) {
    std::fprintf(stderr, "atcli: %s (atcli --help lists the commands)\n", what.c_str());
    return kExitUsage;
}

const char *ResultClassName(int32_t retVal) {
    switch (retVal) {
        case AT_RET_OK:
            return "OK";
        case AT_RET_CME_ERROR:
            return "CME ERROR";
        case AT_RET_CMS_ERROR:
            return "CMS ERROR";
        case AT_RET_ERROR:
            return "ERROR";
        case AT_RET_ABORTED:
            return "ABORTED";
        default:
            return "UNKNOWN";
    }
}

std::string JsonString(const std::string &text) {
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
                    out += escaped;
                } else {
                    out += c;
                }
        }
    }
    return out + "\"";
}

// The library would wait about 30 s for a server that is not there; a person
// at a prompt wants to know at once.
bool ServerIsRunning() {
    if (CheckAtServerReady() != 0) {
        std::fprintf(stderr, "atcli: atserver is not running (no ready flag at %s)\n",
                     atapi::ReadyFlagPath());
        return false;
    }
    const int32_t pid = AtsTaskNameToId(atapi::kServerTaskName);
    if (pid == -1) {
        std::fprintf(stderr, "atcli: atserver is not running (no pid file in %s)\n",
                     atapi::PidFileDir());
        return false;
    }
    if (kill(pid, 0) != 0 && errno == ESRCH) {
        std::fprintf(stderr, "atcli: atserver is not running (pid %d in %s is gone)\n", pid,
                     atapi::PidFileDir());
        return false;
    }
    return true;
}

}  // namespace atcli
