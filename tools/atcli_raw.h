// atcli raw "AT..." [--prefix P] [--timeout S] [--json]: one command line
// through atserver, its result class and reply text printed.
#pragma once

namespace atcli {

// argv starts behind "raw"; returns the exit code.
int RunRaw(int argc, char **argv, bool verbose);

}  // namespace atcli
