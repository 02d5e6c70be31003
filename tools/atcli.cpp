// atcli: the library's exported functions from the command line.
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "atcli_common.h"
#include "atcli_raw.h"
#include "atcli_subcommands.h"
#include "platform/trace.h"

namespace {

void PrintUsage(std::FILE *out) {
    std::fputs(
        "usage: atcli [-v] raw \"AT...\" [--prefix P] [--timeout SECONDS] [--json]\n"
        "       atcli --help | --version\n"
        "  raw   send one command line through atserver; prints the result class\n"
        "        (\"OK (2)\", \"CME ERROR (3)\", ...) and the reply text\n"
        "  -v    show the library's log\n"
        "exit status: 0 OK, 1 error reply or no reply, 2 atserver not running,\n"
        "             64 usage error\n",
        out);
    atcli::PrintSubCommandUsage(out);
}

}  // namespace

int main(int argc, char **argv) {
    std::vector<char *> args(argv + 1, argv + argc);
    bool verbose = false;
    if (!args.empty() && std::string_view(args.front()) == "-v") {
        verbose = true;
        args.erase(args.begin());
    }
    PlatformSetLogThreshold(verbose ? TRACE_LEVEL_DETAIL : 0);
    if (args.empty()) return atcli::UsageError("missing command");
    const std::string_view command = args.front();
    if (command == "-h" || command == "--help") {
        PrintUsage(stdout);
        return atcli::kExitOk;
    }
    if (command == "--version") {
        std::printf("atcli %s\n", ATAPI_VERSION);
        return atcli::kExitOk;
    }
    if (command == "raw") {
        return atcli::RunRaw(static_cast<int>(args.size() - 1), args.data() + 1, verbose);
    }
    if (const atcli::SubCommand *sub = atcli::FindSubCommand(command)) {
        return atcli::RunSubCommand(*sub, static_cast<int>(args.size() - 1), args.data() + 1);
    }
    return atcli::UsageError("unknown command: " + std::string(command));
}
