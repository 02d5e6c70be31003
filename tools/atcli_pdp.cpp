// atcli pdp: the PDP contexts: list them, define one (with its S-NSSAI) or
// undefine one.
#include <vector>

#include "atapi/at_send.h"
#include "atapi/ats_ndis.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"

namespace atcli {
namespace {

constexpr uint32_t kMaxCid = 255;
// A cid no module reports: the by-cid reader misses it and is left holding
// the last context of the reply.
constexpr uint32_t kNoSuchCid = UINT32_MAX;

Fields ContextFields(const PdpContextInfo &context) {
    Fields fields;
    fields.Number("cid", context.cid)
        .Text("type", FieldText(context.pdpType))
        .Text("apn", FieldText(context.apn));
    if (context.sNssai[0] != '\0') fields.Text("s_nssai", FieldText(context.sNssai));
    return fields;
}

void PrintContexts(const std::vector<PdpContextInfo> &contexts, bool json) {
    if (json) {
        std::string out = "{\"contexts\":[";
        for (const PdpContextInfo &context : contexts) {
            if (&context != &contexts.front()) out += ",";
            out += ContextFields(context).Json();
        }
        std::printf("%s]}\n", out.c_str());
        return;
    }
    for (const PdpContextInfo &context : contexts) {
        std::printf("%u %s \"%s\"\n", context.cid, FieldText(context.pdpType).c_str(),
                    FieldText(context.apn).c_str());
    }
}

int List(const Args &args) {
    PdpContextInfo first{};
    const CallCheck check("pdp list", AT_DEFAULT_TIMEOUT_SEC, &first.errorId);
    const int exitCode = check.Exit(AtGetCgdCont(&first));
    if (exitCode != kExitOk) return exitCode;
    std::vector<PdpContextInfo> contexts{first};
    PdpContextInfo last{};
    static_cast<void>(AtGetCgdContByCid(&last, kNoSuchCid));  // a miss, by design
    for (uint32_t cid = first.cid + 1; cid <= last.cid && cid <= kMaxCid; ++cid) {
        PdpContextInfo context{};
        if (AtGetCgdContByCid(&context, cid) == 0) contexts.push_back(context);
    }
    PrintContexts(contexts, args.json);
    return kExitOk;
}

bool ParseCid(const char *text, uint32_t *cid) {
    return ParseNumber(text, kMaxCid, cid) ||
           Refuse("a cid is a number from 0 to " + std::to_string(kMaxCid));
}

// Sends the definition in context; prints what was done.
int Write(const Args &args, const char *what, PdpContextInfo &context, const Fields &done) {
    const CallCheck check(what, AT_DEFAULT_TIMEOUT_SEC, &context.errorId);
    const int exitCode = check.Exit(AtCgdContHandler(&context));
    if (exitCode == kExitOk) done.Print(args.json);
    return exitCode;
}

int Set(const Args &args) {
    PdpContextInfo context{};
    if (!ParseCid(args.positional[0], &context.cid)) return kExitUsage;
    const char *nssai = args.Option("--nssai");
    if (!IsQuotable(args.positional[1]) || !CopyField(context.pdpType, args.positional[1])) {
        return UsageError("PDP type: at most 34 characters, no '\"'");
    }
    if (!IsQuotable(args.positional[2]) || !CopyField(context.apn, args.positional[2])) {
        return UsageError("APN: at most 99 characters, no '\"'");
    }
    if (nssai != nullptr &&
        (*nssai == '\0' || !IsQuotable(nssai) || !CopyField(context.sNssai, nssai))) {
        return UsageError("S-NSSAI: 1 to 99 characters, no '\"'");
    }
    return Write(args, "pdp set", context, ContextFields(context));
}

// A definition with an empty type and APN undefines the context.
int Delete(const Args &args) {
    PdpContextInfo context{};
    if (!ParseCid(args.positional[0], &context.cid)) return kExitUsage;
    Fields done;
    done.Number("cid", context.cid).Text("result", "deleted");
    return Write(args, "pdp delete", context, done);
}

constexpr Action kActions[] = {
    {"list", "", 0, 0, {}, {}, List},
    {"set", "CID TYPE APN [--nssai S-NSSAI]", 3, 3, {"--nssai"}, {}, Set},
    {"delete", "CID", 1, 1, {}, {}, Delete},
};

}  // namespace

std::span<const Action> PdpActions() { return kActions; }

}  // namespace atcli
