// The cell monitoring and jamming detection decoders on arbitrary reply
// text: the serving cell (^MONSC), the neighbour cells (^MONNC), the
// per-technology entries of ^JDSWITCH, ^JDCFG and ^EMRSSICFG, and ^EMRSSIRPT.
// Input: selector byte, control byte (allocation failure in the parse), reply
// text.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

#include "atapi/at_types.h"
#include "fuzz_checks.h"
#include "fuzz_parse_input.h"
#include "telematics/m2m_ats_network_read.h"

namespace {

using atapi::fuzz::Check;
using atapi::fuzz::Guarded;
using atapi::fuzz::Holds;
using atapi::fuzz::ReplyCopy;

constexpr uint8_t kUnwritten = 0x5A;

bool KnownRat(int32_t rat) { return rat >= AT_CELL_RAT_GSM && rat <= AT_CELL_RAT_NR; }

// A read cell has a known technology; a failed one says why in errorId.
void Serving(const std::string &text) {
    ReplyCopy reply(text);
    Guarded<MonscInfo> out;
    const int32_t ret = atapi::network::MonscResultParse(reply.Get(), out.record);
    Check(out.Intact());
    if (ret == 0) {
        Check(KnownRat(out.record.rat) && out.record.errorId == AT_ERRID_NOT_COMPLETED);
    } else {
        Check(ret == -1);
        Check(out.record.errorId == AT_ERRID_NOT_COMPLETED ||
              out.record.errorId == AT_MONSC_ERRID_NO_SERVICE);
    }
}

// At most six neighbours, newest technology first; the slots behind the
// count stay clear.
void Neighbors(const std::string &text) {
    ReplyCopy reply(text);
    Guarded<MonncInfo> out;
    const int32_t ret = atapi::network::MonncResultParse(reply.Get(), out.record);
    Check(out.Intact());
    if (ret != 0) return;
    const MonncInfo &r = out.record;
    Check(r.count <= AT_MONNC_MAX_NEIGHBORS);
    for (uint32_t i = 0; i < AT_MONNC_MAX_NEIGHBORS; ++i) {
        const MonncNeighbor &n = r.neighbors[i];
        if (i >= r.count) {
            Check(n.rat == 0 && n.arfcn == 0);
            continue;
        }
        Check(KnownRat(n.rat) && (i == 0 || n.rat <= r.neighbors[i - 1].rat));
    }
}

// Each technology's entry is left as it was or holds a row of that
// technology.
template <typename Info, typename Entry, size_t N>
void ByRat(const std::string &text, int32_t (*decode)(char *, Info &), Entry (Info::*entries)[N]) {
    ReplyCopy reply(text);
    Guarded<Info> info;
    std::memset(&info.record, kUnwritten, sizeof info.record);
    decode(reply.Get(), info.record);
    Check(info.Intact());
    for (size_t rat = 0; rat < N; ++rat) {
        const Entry &entry = (info.record.*entries)[rat];
        Check(Holds(entry, kUnwritten) || entry.rat == static_cast<int32_t>(rat));
    }
}

void Switches(const std::string &text) {
    ByRat(text, atapi::network::JammingSwitchFromReply, &JammingDetectSwitchInfo::entry);
}
void Thresholds(const std::string &text) {
    ByRat(text, atapi::network::JammingCfgFromReply, &JammingDetectCfgInfo::cfg);
}
void RssiThresholds(const std::string &text) {
    ByRat(text, atapi::network::EmRssiCfgFromReply, &EmRssiCfgInfo::cfg);
}

// n is written only from a reply that parses.
void RssiReport(const std::string &text) {
    constexpr int32_t kUnset = -77;
    ReplyCopy reply(text);
    int32_t n = kUnset;
    if (atapi::network::EmRssiRptFromReply(reply.Get(), n) != 0) Check(n == kUnset);
}

using Decoder = void (*)(const std::string &text);
constexpr Decoder kDecoders[] = {Serving,    Neighbors,      Switches,
                                 Thresholds, RssiThresholds, RssiReport};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    return atapi::fuzz::RunSelectedDecoder(data, size, kDecoders);
}
