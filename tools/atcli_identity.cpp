// atcli identity: the module's identities (IMSI, IMEI, serial number,
// manufacturer, model) and firmware versions.
#include <string>
#include <string_view>

#include "atapi/at_send.h"
#include "atapi/ats_comm.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr uint32_t kManufacturerTimeoutSec = 5;
constexpr int32_t kVersionFound = 0;  // the version reader's error id when it found its lines

struct IdentityRead {
    const char *name;
    int32_t (*read)(IdentityText *r);
    uint32_t timeoutSec;
};
constexpr IdentityRead kImsi{"imsi", AtImsi, AT_DEFAULT_TIMEOUT_SEC};
constexpr IdentityRead kImei{"imei", AtImei, AT_DEFAULT_TIMEOUT_SEC};
constexpr IdentityRead kSerial{"serial", AtSn, AT_DEFAULT_TIMEOUT_SEC};
constexpr IdentityRead kManufacturer{"manufacturer", AtCgmi, kManufacturerTimeoutSec};
constexpr IdentityRead kModel{"model", AtCgmm, AT_DEFAULT_TIMEOUT_SEC};
constexpr const IdentityRead *kReads[] = {&kImsi, &kImei, &kSerial, &kManufacturer, &kModel};

// The version lines, each headed by its keyword ("EXTS:12.605.02.00.00").
struct VersionLine {
    const char *name;
    std::string (*text)(const VersionInfo &v);
};
constexpr VersionLine kVersionLines[] = {
    {"software", [](const VersionInfo &v) { return FieldText(v.extsVersion); }},
    {"hardware", [](const VersionInfo &v) { return FieldText(v.exthVersion); }},
    {"web_ui", [](const VersionInfo &v) { return FieldText(v.extdVersion); }},
    {"product", [](const VersionInfo &v) { return FieldText(v.extuVersion); }},
    {"config", [](const VersionInfo &v) { return FieldText(v.iniVersion); }},
};

std::string Trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

int ReadIdentity(const IdentityRead &read, Fields *fields) {
    IdentityText identity{};
    const CallCheck check(read.name, read.timeoutSec, &identity.errorId);
    const int exitCode = check.Exit(read.read(&identity));
    if (exitCode == kExitOk) fields->Text(read.name, Trimmed(FieldText(identity.text)));
    return exitCode;
}

// Each version without its keyword ("EXTS:12.605" gives "12.605"); a line the
// reader left empty is left out.
int ReadVersions(Fields *fields) {
    VersionInfo versions{};
    const CallCheck check("versions", AT_DEFAULT_TIMEOUT_SEC, &versions.errorId);
    const int exitCode = check.Exit(AtVersion(&versions), kVersionFound);
    if (exitCode != kExitOk) return exitCode;
    for (const VersionLine &line : kVersionLines) {
        const std::string text = line.text(versions);
        const auto colon = text.find(':');
        if (!text.empty()) {
            fields->Text(line.name, Trimmed(colon == std::string::npos
                                                ? std::string_view(text)
                                                : std::string_view(text).substr(colon + 1)));
        }
    }
    return kExitOk;
}

template <const IdentityRead &Read>
int One(const Args &args) {
    Fields fields;
    const int exitCode = ReadIdentity(Read, &fields);
    if (exitCode == kExitOk) fields.Print(args.json);
    return exitCode;
}

int Versions(const Args &args) {
    Fields fields;
    const int exitCode = ReadVersions(&fields);
    if (exitCode == kExitOk) fields.Print(args.json);
    return exitCode;
}

int All(const Args &args) {
    Fields fields;
    for (const IdentityRead *read : kReads) {
        if (const int exitCode = ReadIdentity(*read, &fields); exitCode != kExitOk) return exitCode;
    }
    if (const int exitCode = ReadVersions(&fields); exitCode != kExitOk) return exitCode;
    fields.Print(args.json);
    return kExitOk;
}

constexpr Action kActions[] = {
    {"all", "", 0, 0, {}, {}, All},
    {kImsi.name, "", 0, 0, {}, {}, One<kImsi>},
    {kImei.name, "", 0, 0, {}, {}, One<kImei>},
    {kSerial.name, "", 0, 0, {}, {}, One<kSerial>},
    {kManufacturer.name, "", 0, 0, {}, {}, One<kManufacturer>},
    {kModel.name, "", 0, 0, {}, {}, One<kModel>},
    {"versions", "", 0, 0, {}, {}, Versions},
};

}  // namespace

std::span<const Action> IdentityActions() { return kActions; }

}  // namespace atcli
