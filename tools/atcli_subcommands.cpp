#include "atcli_subcommands.h"

#include <algorithm>
#include <iterator>

namespace atcli {
namespace {

constexpr SubCommand kSubCommands[] = {
    {"pin", PinActions},           {"pdp", PdpActions},       {"dial", DialActions},
    {"identity", IdentityActions}, {"device", DeviceActions}, {"time", TimeActions},
    {"call", CallActions},         {"ecall", ECallActions},   {"sim", SimActions},
    {"voice", VoiceActions},       {"v2x", V2xActions},       {"cell", CellActions},
    {"jamming", JammingActions},
};

}  // namespace

const SubCommand *FindSubCommand(std::string_view name) {
    const auto *it = std::find_if(std::begin(kSubCommands), std::end(kSubCommands),
                                  [name](const SubCommand &sub) { return sub.name == name; });
    return it != std::end(kSubCommands) ? it : nullptr;
}

int RunSubCommand(const SubCommand &sub, int argc, char **argv) {
    return DispatchAction(sub.name, sub.actions(), argc, argv);
}

void PrintSubCommandUsage(std::FILE *out) {
    for (const SubCommand &sub : kSubCommands) PrintActionUsage(out, sub.name, sub.actions());
    std::fputs(
        "  Secrets (PIN, PUK, password) are read from standard input, one per line, never\n"
        "  from the command line. Exit status: 0 done, 1 the modem answered with an error\n"
        "  (its error id on stderr), 2 no answer or atserver not running, 64 bad usage.\n",
        out);
}

}  // namespace atcli
