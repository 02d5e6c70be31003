// The V2X walks over parsed rows built from arbitrary text: the mode, the
// channel busy ratio, the sync source, the counters, RSSI and RSRP. Their
// replies never parse in the library (module 31 has no handler table), so
// the rows are built here. Input: selector byte, then the rows: rows apart
// by '\n', fields by ',', "name=value" (no '=': no value; "=value": no name).
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "atapi/at_parse.h"
#include "fuzz_checks.h"
#include "fuzz_parse_input.h"
#include "parse/at_parse_alloc.h"
#include "parse/at_parse_rows.h"
#include "telematics/m2m_ats_v2x_read.h"

namespace {

using atapi::ParseRows;
using atapi::fuzz::Check;
using atapi::fuzz::Guarded;
using atapi::fuzz::Holds;

constexpr uint8_t kUnwritten = 0x5A;

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (size_t end = text.find(separator); end != std::string_view::npos;
         end = text.find(separator)) {
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    pieces.push_back(text);
    return pieces;
}

// The rows of text (the caller's to free); rows that could not be built are
// left out.
AtCmdParseNode *BuildRows(std::string_view text) {
    ParseRows rows;
    for (const std::string_view line : Split(text, '\n')) {
        const std::vector<std::string_view> fields = Split(line, ',');
        std::vector<char *> names(fields.size(), nullptr);
        std::vector<char *> values(fields.size(), nullptr);
        for (size_t i = 0; i < fields.size(); ++i) {
            const size_t eq = fields[i].find('=');
            const std::string_view name = fields[i].substr(0, eq);
            if (!name.empty()) names[i] = atapi::AtParseStrDup(name);
            if (eq != std::string_view::npos)
                values[i] = atapi::AtParseStrDup(fields[i].substr(eq + 1));
        }
        rows.Append(
            GreatLinkListAt(names.data(), values.data(), static_cast<uint32_t>(fields.size())));
    }
    return rows.Release();
}

// Each walk writes its record and nothing behind it.
template <typename Record, typename Walk>
void Walked(const AtCmdParseNode *first, Walk walk) {
    Guarded<Record> record;
    walk(first, record.record);
    Check(record.Intact());
}

void Mode(const AtCmdParseNode *first) { Walked<AtsV2xModeCfgInfo>(first, atapi::v2x::ReadMode); }
void Pdcp(const AtCmdParseNode *first) {
    Walked<AtsV2xPdcpPacketStat>(first, atapi::v2x::ReadPdcpStats);
}
void Phy(const AtCmdParseNode *first) {
    Walked<AtsV2xPhyPacketStats>(first, atapi::v2x::ReadPhyStats);
}
void Rssi(const AtCmdParseNode *first) { Walked<AtsV2xRssiInfo>(first, atapi::v2x::ReadRssi); }
void Sync(const AtCmdParseNode *first) {
    Walked<AtsV2xSyncInfo>(first, [](const AtCmdParseNode *row, AtsV2xSyncInfo &info) {
        return AtsV2xGetAccessSyncInfo(row, &info);
    });
}

// The flag is set to 1 or left; nothing else.
void Cbr(const AtCmdParseNode *first) {
    Guarded<AtsV2xCbrInfo> info;
    info.record.cbrPscchValid = kUnwritten;
    AtsV2xGetCbrInfo(first, &info.record);
    Check(info.Intact());
    Check(info.record.cbrPscchValid == kUnwritten || info.record.cbrPscchValid == 1);
}

size_t CountTokens(const char *text) {
    size_t count = 0;
    for (const std::string_view token : Split(text, ' ')) count += token.empty() ? 0 : 1;
    return count;
}

// Stored only from exactly seven numbers: any other count leaves the values.
void Rsrp(const AtCmdParseNode *first) {
    Guarded<AtsV2xRsrpInfo> info;
    std::memset(&info.record, kUnwritten, sizeof info.record);
    const int32_t ret = atapi::v2x::ReadRsrp(first, info.record);
    Check(info.Intact());
    const AtCmdParseNode *values = first != nullptr ? first->nextRow : nullptr;
    const size_t tokens = values != nullptr && values->atFieldValue != nullptr
                              ? CountTokens(values->atFieldValue)
                              : 0;
    if (ret == 0) Check(tokens == ATS_V2X_RSRP_NUM);
    if (tokens != ATS_V2X_RSRP_NUM) Check(Holds(info.record, kUnwritten));
}

using Walk = void (*)(const AtCmdParseNode *first);
constexpr Walk kWalks[] = {Mode, Pdcp, Phy, Rssi, Sync, Cbr, Rsrp};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    atapi::fuzz::InputReader input(data, size);
    const uint8_t selector = input.Byte();
    const std::string text = input.Rest();
    const ParseRows rows(BuildRows(text));
    kWalks[selector % std::size(kWalks)](rows.Get());
    return 0;
}
