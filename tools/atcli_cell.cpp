// atcli cell: the serving cell (technology, channel, cell identity and area
// code) and the neighbour cells, the newer technologies first.
#include <string>
#include <vector>

#include "atapi/at_send.h"
#include "atapi/m2m_ats_network.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr const char *kRatNames[] = {"GSM", "WCDMA", "TD_SCDMA", "LTE", "NR"};

std::string RatName(int32_t rat) {
    if (rat < 0 || rat > AT_CELL_RAT_NR) return std::to_string(rat);
    return kRatNames[rat];
}

int Serving(const Args &args) {
    MonscInfo cell{};
    const CallCheck check("cell serving", AT_DEFAULT_TIMEOUT_SEC);
    const int32_t ret = AtGetMonsc(&cell);
    // Camping nowhere is an answer, not a failure of the command.
    if (ret != 0 && cell.errorId == AT_MONSC_ERRID_NO_SERVICE) {
        Fields().Text("rat", "NONE").Print(args.json);
        return kExitOk;
    }
    const int exitCode = check.Exit(ret);
    if (exitCode == kExitOk) {
        Fields()
            .Text("rat", RatName(cell.rat))
            .Number("arfcn", cell.arfcn)
            .Number("cell_id", static_cast<uint32_t>(cell.cellId))
            .Number("lac", static_cast<uint32_t>(cell.lac))
            .Print(args.json);
    }
    return exitCode;
}

int Neighbours(const Args &args) {
    MonncInfo list{};
    const CallCheck check("cell neighbours", AT_DEFAULT_TIMEOUT_SEC);
    const int exitCode = check.Exit(AtGetMonnc(&list));
    if (exitCode != kExitOk) return exitCode;
    std::vector<std::string> cells;
    for (uint32_t i = 0; i < list.count && i < AT_MONNC_MAX_NEIGHBORS; ++i) {
        cells.push_back(RatName(list.neighbors[i].rat) + " " +
                        std::to_string(list.neighbors[i].arfcn));
    }
    Fields().Number("count", list.count).List("neighbours", cells).Print(args.json);
    return kExitOk;
}

constexpr Action kActions[] = {
    {"serving", "", 0, 0, {}, {}, Serving},
    {"neighbours", "", 0, 0, {}, {}, Neighbours},
};

}  // namespace

std::span<const Action> CellActions() { return kActions; }

}  // namespace atcli
