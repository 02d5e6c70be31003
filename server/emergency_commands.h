// Which requests go ahead of the others in the queue: a dial of an emergency
// number and the steps of an eCall.
//
// The command line is read without its spaces and without regard to case.
// - eCall steps: AT^ECLSTART, AT^ECLMSD, AT^ECLPUSH, AT^ECLSTOP and
//   AT^ECLABORT in any form (action, "=", "?", "=?"). The eCall settings
//   (^ECLMODE, ^ECLCFG, ^ECLIMSCFG) are ordinary requests.
// - Dialling: "ATD" followed by a dial string (up to ';' or the end of the
//   line) that, without the modifiers T and P (tone, pulse) and I and G
//   (caller id, closed group), equals one of the emergency numbers exactly.
//   "ATD 112;", "atdt112;" and "ATD112I;" dial 112; "ATD01121234;" does not,
//   and neither does "ATD+112;": '+' makes an international number, which is
//   emergency only when the list names it as it is dialled ("+112"). Memory
//   dialling (ATD>..., ATDL) does not show the number and is ordinary.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace atserver {

using EmergencyNumbers = std::vector<std::string>;

// 112 and 911.
const EmergencyNumbers &DefaultEmergencyNumbers();

// Parses a comma-separated list ("112,911,999") into *out; false when the
// list or one of its numbers is empty or a number holds anything but the
// digits, '*', '#' and '+'.
bool ParseEmergencyNumbers(std::string_view list, EmergencyNumbers *out);

bool IsEmergencyCommand(std::string_view command, const EmergencyNumbers &numbers);

}  // namespace atserver
