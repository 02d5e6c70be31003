// atcli's family sub-commands, one per file (atcli_pin.cpp, ...), each a
// table of actions over the library's exported functions.
#pragma once

#include <cstdio>
#include <span>
#include <string_view>

#include "atcli_actions.h"

namespace atcli {

std::span<const Action> PinActions();
std::span<const Action> PdpActions();
std::span<const Action> DialActions();
std::span<const Action> IdentityActions();
std::span<const Action> DeviceActions();
std::span<const Action> TimeActions();
std::span<const Action> CallActions();
std::span<const Action> ECallActions();
std::span<const Action> SimActions();
std::span<const Action> VoiceActions();
std::span<const Action> V2xActions();
std::span<const Action> CellActions();
std::span<const Action> JammingActions();

struct SubCommand {
    std::string_view name;
    std::span<const Action> (*actions)();
};

// The sub-command called name, or null.
const SubCommand *FindSubCommand(std::string_view name);
// argv starts behind the sub-command's name; returns the exit code.
int RunSubCommand(const SubCommand &sub, int argc, char **argv);
// The usage lines of every sub-command.
void PrintSubCommandUsage(std::FILE *out);

}  // namespace atcli
