// atcli v2x: the V2X mode (read or set) and the packet statistics (PDCP and
// physical layer). The library's V2X calls return only 0 or -1: a failure
// with atserver up and in time is an error reply or a reply the library
// could not read, which atcli cannot tell apart.
#include <chrono>
#include <cstdio>

#include "atapi/at_send.h"
#include "atapi/m2m_ats_v2x.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr int32_t kQuery = 0;
constexpr int32_t kSet = 1;
constexpr uint32_t kMaxMode = 1;

// The exit code of one V2X call, made before the call.
class V2xCheck {
  public:
    explicit V2xCheck(const char *what) : what_(what), start_(std::chrono::steady_clock::now()) {}

    int Exit(int32_t ret) const {
        if (ret == 0) return kExitOk;
        if (std::chrono::steady_clock::now() - start_ >=
            std::chrono::seconds(AT_DEFAULT_TIMEOUT_SEC)) {
            std::fprintf(stderr, "atcli: %s: no reply within %d s\n", what_,
                         AT_DEFAULT_TIMEOUT_SEC);
            return kExitNoServer;
        }
        if (!ServerIsRunning()) return kExitNoServer;
        std::fprintf(stderr,
                     "atcli: %s: failed: an error reply, or a reply that could not be read\n",
                     what_);
        return kExitErrorReply;
    }

  private:
    const char *what_;
    std::chrono::steady_clock::time_point start_;
};

int Mode(const Args &args) {
    const bool set = !args.positional.empty();
    uint32_t value = 0;
    if (set && !ParseNumber(args.positional[0], kMaxMode, &value)) {
        return UsageError("a V2X mode is 0 or 1");
    }
    AtsV2xModeCfgInfo cfg{0, static_cast<int32_t>(value)};
    const int exitCode = V2xCheck("v2x mode").Exit(AtsV2xModeCfg(set ? kSet : kQuery, &cfg));
    if (exitCode == kExitOk) Fields().Number("mode", cfg.mode).Print(args.json);
    return exitCode;
}

int Stats(const Args &args) {
    AtsV2xPdcpPacketStat pdcp{};
    if (const int exitCode = V2xCheck("v2x stats").Exit(AtsV2xGetPdcpPacketStats(&pdcp));
        exitCode != kExitOk) {
        return exitCode;
    }
    AtsV2xPhyPacketStats phy{};
    const int exitCode = V2xCheck("v2x stats").Exit(AtsV2xGetPhyPacketStats(&phy));
    if (exitCode == kExitOk) {
        Fields()
            .Number("tx_bytes", pdcp.txBytes)
            .Number("rx_bytes", pdcp.rxBytes)
            .Number("tx_packets", pdcp.txPackets)
            .Number("rx_packets", pdcp.rxPackets)
            .Number("first_sa_decoded", phy.firSaDecSucSum)
            .Number("second_sa_decoded", phy.secSaDecSucSum)
            .Number("third_sa_decoded", phy.twiSaDecSucSum)
            .Number("ul_packets", phy.ulPackSum)
            .Number("dl_packets", phy.dlPackSum)
            .Number("dsp_version", phy.dspVersion)
            .Print(args.json);
    }
    return exitCode;
}

constexpr Action kActions[] = {
    {"mode", "[0|1]", 0, 1, {}, {}, Mode},
    {"stats", "", 0, 0, {}, {}, Stats},
};

}  // namespace

std::span<const Action> V2xActions() { return kActions; }

}  // namespace atcli
