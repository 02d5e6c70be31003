// atcli dial: bring the data connection of a context up or down and read
// its state. A password, when a user name is given, comes from stdin.
#include <algorithm>
#include <iterator>
#include <string_view>

#include "atapi/at_send.h"
#include "atapi/ats_ndis.h"
#include "atcli_actions.h"
#include "atcli_secret.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr uint32_t kDefaultCid = 1;
constexpr uint32_t kMaxCid = 255;
constexpr uint32_t kStateTimeoutSec = 5;  // every ^NDISSTATQRY exchange
constexpr std::size_t kPasswordCapacity = sizeof(NdisDupProfile::passwd) - 1;

struct AuthName {
    std::string_view name;
    char code;  // as the dial-up line carries it
};
constexpr AuthName kAuthNames[] = {{"none", '0'}, {"pap", '1'}, {"chap", '2'}};

// Dial-up states as ^NDISSTATQRY reports them.
constexpr const char *kStateNames[] = {"down", "up", "connecting", "disconnecting"};

const char *StateName(uint32_t stat) {
    return stat < std::size(kStateNames) ? kStateNames[stat] : "unknown";
}

bool CidArgument(const Args &args, uint32_t *cid) {
    *cid = kDefaultCid;
    return args.positional.empty() || ParseNumber(args.positional[0], kMaxCid, cid) ||
           Refuse("a cid is a number from 0 to " + std::to_string(kMaxCid));
}

// The dial-up profile from the options: the APN when given, the user name
// with its password from stdin, the authentication type (none by default).
// False after a usage error.
bool FillProfile(const Args &args, NdisDupProfile &profile) {
    profile.authType = kAuthNames[0].code;
    if (const char *auth = args.Option("--auth")) {
        const auto *it = std::find_if(std::begin(kAuthNames), std::end(kAuthNames),
                                      [auth](const AuthName &a) { return a.name == auth; });
        if (it == std::end(kAuthNames)) return Refuse("--auth takes none, pap or chap");
        profile.authType = it->code;
    }
    if (const char *apn = args.Option("--apn")) {
        if (!IsQuotable(apn) || !CopyField(profile.apn, apn)) {
            return Refuse("APN: at most 99 characters, no '\"'");
        }
        profile.apnIsStatic = 1;
    }
    if (const char *user = args.Option("--user")) {
        if (!IsQuotable(user) || !CopyField(profile.username, user)) {
            return Refuse("user name: at most 127 characters, no '\"'");
        }
        Secret<kPasswordCapacity> password;
        if (!ReadSecretLine("password", &password) || !IsQuotable(password.Get()) ||
            !CopyField(profile.passwd, password.Get())) {
            return Refuse("password expected on standard input: at most 127 characters, no '\"'");
        }
    }
    return true;
}

int Connect(const Args &args, int32_t connect, const char *what) {
    uint32_t cid = 0;
    if (!CidArgument(args, &cid)) return kExitUsage;
    WipedRecord<NdisDupProfile> profile;
    if (!FillProfile(args, profile.Get())) return kExitUsage;
    const CallCheck check(what, AT_DEFAULT_TIMEOUT_SEC, &profile.Get().errorId);
    const int exitCode = check.Exit(AtNdisDup(static_cast<int32_t>(cid), connect, &profile.Get()));
    if (exitCode == kExitOk) {
        Fields()
            .Number("cid", cid)
            .Text("requested", connect == 1 ? "up" : "down")
            .Print(args.json);
    }
    return exitCode;
}

int Up(const Args &args) { return Connect(args, 1, "dial up"); }
int Down(const Args &args) { return Connect(args, 0, "dial down"); }

int State(const Args &args) {
    uint32_t cid = 0;
    if (!CidArgument(args, &cid)) return kExitUsage;
    NdisStatInfo info{};
    const CallCheck check("dial state", kStateTimeoutSec, &info.errorId);
    const int exitCode = check.Exit(AtNdisStatQryState(static_cast<int32_t>(cid), &info));
    if (exitCode != kExitOk) return exitCode;
    Fields fields;
    fields.Number("cid", cid);
    if (args.json) {
        fields.Number("ipv4_stat", info.ipv4Stat)
            .Number("ipv6_stat", info.ipv6Stat)
            .Number("err_code", info.errCode);
    }
    fields.Text("ipv4", StateName(info.ipv4Stat)).Text("ipv6", StateName(info.ipv6Stat));
    fields.Print(args.json);
    return kExitOk;
}

constexpr Action kActions[] = {
    {"up",
     "[CID] [--apn APN] [--user NAME] [--auth none|pap|chap]  (stdin: the password with --user)",
     0,
     1,
     {"--apn", "--user", "--auth"},
     {},
     Up},
    {"down", "[CID]", 0, 1, {}, {}, Down},
    {"state", "[CID]", 0, 1, {}, {}, State},
};

}  // namespace

std::span<const Action> DialActions() { return kActions; }

}  // namespace atcli
