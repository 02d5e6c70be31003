#include "atcli_raw.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "atapi/at_link.h"
#include "atapi/at_send.h"
#include "atcli_common.h"

namespace atcli {
namespace {

struct RawArgs {
    const char *command = nullptr;
    const char *prefix = nullptr;
    int32_t timeoutSec = AT_DEFAULT_TIMEOUT_SEC;
    bool json = false;
};

bool ParseTimeout(const char *text, int32_t *out) {
    char *end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (*text == '\0' || *end != '\0' || value < 0 || value > 3600) return false;
    *out = static_cast<int32_t>(value);
    return true;
}

// Empty when argv is good, else what is wrong with it.
std::string ParseRawArgs(int argc, char **argv, RawArgs *args) {
    for (int i = 0; i < argc; ++i) {
        const std::string opt = argv[i];
        if ((opt == "--prefix" || opt == "--timeout") && i + 1 == argc) {
            return "raw: missing value for " + opt;
        }
        if (opt == "--json") {
            args->json = true;
        } else if (opt == "--prefix") {
            args->prefix = argv[++i];
        } else if (opt == "--timeout") {
            if (!ParseTimeout(argv[++i], &args->timeoutSec)) {
                return "raw: bad value for --timeout: " + std::string(argv[i]);
            }
        } else if (args->command == nullptr && !opt.starts_with("--")) {
            args->command = argv[i];
        } else {
            return (opt.starts_with("--") ? "raw: unknown option: " : "raw: a second command: ") +
                   opt;
        }
    }
    return args->command == nullptr ? "raw: missing the command line" : "";
}

void PrintReply(const RawArgs &args, const AtSrvMsg &msg) {
    const AtSrvRcvMsg &reply = msg.sndRcvMsg.rMsg;
    const std::string text(reply.atReportStr, strnlen(reply.atReportStr, sizeof reply.atReportStr));
    if (args.json) {
        std::printf("{\"command\":%s,\"class\":%s,\"retVal\":%d,\"text\":%s}\n",
                    JsonString(args.command).c_str(),
                    JsonString(ResultClassName(reply.retVal)).c_str(), reply.retVal,
                    JsonString(text).c_str());
        return;
    }
    std::printf("%s (%d)\n", ResultClassName(reply.retVal), reply.retVal);
    if (!text.empty()) std::printf("%s\n", text.c_str());
}

}  // namespace

int RunRaw(int argc, char **argv, bool verbose) {
    RawArgs args;
    if (const std::string error = ParseRawArgs(argc, argv, &args); !error.empty()) {
        return UsageError(error);
    }
    if (!ServerIsRunning()) return kExitNoServer;
    AtSrvMsg msg;
    if (AtInitCommonMsgHandler(&msg, args.command, args.prefix, 0, args.timeoutSec) != 0) {
        std::fprintf(stderr, "atcli: command or prefix too long\n");
        return kExitNoServer;
    }
    if (GetDataFromAtServer(&msg) != 0) {
        std::fprintf(stderr, "atcli: no reply from atserver within %d s%s\n", args.timeoutSec,
                     verbose ? "" : " (-v shows the library's log)");
        return kExitErrorReply;
    }
    PrintReply(args, msg);
    return msg.sndRcvMsg.rMsg.retVal == AT_RET_OK ? kExitOk : kExitErrorReply;
}

}  // namespace atcli
