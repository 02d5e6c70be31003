// The identity and version decoders on arbitrary reply text: a ^PHYNUM line,
// a ^VERSION value stored by its keyword, and a version line cut behind its
// keyword. Input: selector byte, reply text.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

#include "fuzz_checks.h"
#include "fuzz_parse_input.h"
#include "service/ats_comm_internal.h"

namespace {

using atapi::fuzz::Check;
using atapi::fuzz::Guarded;
using atapi::fuzz::ReplyCopy;
using atapi::fuzz::Terminated;

// A stored line is text behind a ':' of the line: no line end in it, no
// blank in front.
void PhyNumLine(uint8_t, const std::string &text) {
    ReplyCopy line(text);
    Guarded<char[atapi::comm::kPhyNumLineSize]> out;
    const bool stored = atapi::comm::StorePhyNumLine(line.Get(), out.record);
    Check(out.Intact() && Terminated(out.record));
    if (!stored) return;
    Check(std::strpbrk(out.record, "\r\n") == nullptr && out.record[0] != ' ');
    const char *colon = std::strchr(line.Get(), ':');
    Check(colon != nullptr && std::strstr(colon + 1, out.record) != nullptr);
}

// A stored value lands whole in one terminated field and clears errorId;
// a refused one leaves errorId.
void VersionValue(uint8_t, const std::string &text) {
    constexpr int32_t kUnread = 7;
    ReplyCopy value(text);
    Guarded<VersionInfo> v;
    v.record.errorId = kUnread;
    const bool stored = atapi::comm::StoreVersionLine(value.Get(), v.record);
    const VersionInfo &r = v.record;
    Check(v.Intact() && Terminated(r.extdVersion) && Terminated(r.exthVersion) &&
          Terminated(r.extsVersion) && Terminated(r.iniVersion) && Terminated(r.extuVersion));
    Check(r.errorId == (stored ? 0 : kUnread));
    if (!stored) return;
    const char *fields[] = {r.extdVersion, r.exthVersion, r.extsVersion, r.iniVersion,
                            r.extuVersion};
    size_t holding = 0;
    for (const char *field : fields) holding += std::strcmp(field, value.Get()) == 0 ? 1 : 0;
    Check(holding >= 1);
}

// The version record's line buffer, cut in place: the text returned sits
// right behind the keyword and ends inside the buffer.
void VersionCut(uint8_t selector, const std::string &text) {
    const char *keyword = (selector & 0x80) != 0 ? "EXTH:" : "EXTS:";
    Guarded<char[sizeof VersionInfo::extsVersion]> line;
    std::strncpy(line.record, text.c_str(), sizeof line.record - 1);
    const char *cut = atapi::comm::CutVersionText(keyword, line.record);
    Check(line.Intact());
    if (cut == nullptr) return;
    Check(cut >= line.record + 5 && cut <= line.record + sizeof line.record - 1);
    Check(std::memcmp(cut - 5, keyword, 5) == 0);
    Check(std::memchr(cut, '\0', static_cast<size_t>(line.record + sizeof line.record - cut)));
}

using Decoder = void (*)(uint8_t selector, const std::string &text);
constexpr Decoder kDecoders[] = {PhyNumLine, VersionValue, VersionCut};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    const uint8_t selector = input.Byte();
    kDecoders[selector % std::size(kDecoders)](selector, input.Rest());
    return 0;
}
