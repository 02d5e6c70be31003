// The high-frequency information decoder on arbitrary report text: the
// ^HFREQINFO lines cut apart, parsed and read into band lists. Input: control
// byte (allocation failure in the parse), report text.
#include <cstddef>
#include <cstdint>
#include <string>

#include "atapi/ats_device.h"
#include "fuzz_checks.h"
#include "fuzz_parse_input.h"
#include "service/ats_device_internal.h"

namespace {

using atapi::fuzz::Check;

constexpr int32_t kSysmodeLte = 6;
constexpr int32_t kSysmodeNr = 7;

bool NrBandClass(int32_t band) {
    return (band >= 1 && band <= 86) || band == 257 || band == 258 || band == 260 || band == 261;
}

// Every band of a list carries the list's sysmode and a switch of 0 or 1;
// an NR band's class is one NR defines, or 0 when the module named another.
void CheckList(const HfreqBandInfo *band, int32_t sysmode) {
    for (; band != nullptr; band = band->next) {
        Check(band->sysmode == sysmode && (band->hfreqSwitch == 0 || band->hfreqSwitch == 1));
        if (sysmode == kSysmodeNr) Check(band->bandClass == 0 || NrBandClass(band->bandClass));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    atapi::fuzz::AllocFailure failure(input.Byte());
    atapi::fuzz::ReplyCopy report(input.Rest());
    HfreqInfoResult r{nullptr, nullptr};
    atapi::device::HfreqFromReport(report.Get(), &r);
    CheckList(r.lteList, kSysmodeLte);
    CheckList(r.nrList, kSysmodeNr);
    HfreqInfoExFree(&r);
    return 0;
}
