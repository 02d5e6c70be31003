// Drives the library's secret-bearing paths with the planted secrets, for
// the freed-block scan that watches this process:
//   secret_driver parse   parse routines over replies that carry a secret
//   secret_driver send    every secret-bearing command function, through the
//                         atserver of $ATAPI_ROOT (scenario: secrets.scn)
//   secret_driver leak    frees one unwiped copy of a secret: the scan's own
//                         proof that it sees what it should
// Exits 0 when every step gave its expected result; each failed step is
// named on stderr (never with its secret).
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "api/command_description.h"
#include "atapi/at_parse.h"
#include "atapi/ats_ndis.h"
#include "atapi/ats_security.h"
#include "planted_secrets.h"
#include "platform/bounded.h"

namespace {

using namespace atapi::secrets;
namespace module = atapi::api::module;

constexpr char kUser[] = "e2e-user";

// ---- parse ------------------------------------------------------------------

struct ParseCase {
    const char *prefix;
    int32_t moduleId;
    uint32_t mode;
    const char *reply;  // "%s" stands for the secret
    const char *secret;
};

const ParseCase kParseCases[] = {
    {"^AUTHDATA", module::kAuthData, 0,
     "^AUTHDATA: 1,1,\"%s\",\"e2e-user\",\"\"\r\n^AUTHDATA: 2,0,\"\",\"\",\"\"", kPassword},
    {"^NDISDUP", module::kNdisEx, 0, "^NDISDUP: 1,1,\"internet\",\"e2e-user\",\"%s\",1", kPassword},
    {"^HFOTA", module::kReport, 3, "^HFOTA: 1,\"fota\",\"e2e-user\",\"%s\",1,\"IP\",0", kPin},
};

// True when some field of the result's first row holds exactly secret: the
// secret went through the parser, not around it.
bool FirstRowHolds(const AtCmdParseNode *row, const char *secret) {
    for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
        if (node->atFieldValue != nullptr && std::strcmp(node->atFieldValue, secret) == 0) {
            return true;
        }
    }
    return false;
}

bool RunParseCase(const ParseCase &c) {
    char reply[512];
    bool ok = snprintf_s(reply, sizeof reply, sizeof reply - 1, c.reply, c.secret) > 0;
    AtCmdParseNode *rows = nullptr;
    ok = ok && ParseAtCmdFunc(&rows, c.prefix, reply, c.moduleId, c.mode) == 0 &&
         FirstRowHolds(rows, c.secret);
    FreeAtCmd(rows);
    memset_s(reply, sizeof reply, 0, sizeof reply);
    return ok;
}

// The multi-line split hands out one heap piece per line.
bool RunSplit() {
    char text[256];
    bool ok = snprintf_s(text, sizeof text, sizeof text - 1,
                         "^AUTHDATA: 1,1,\"%s\",\"\",\"\"\r\n^AUTHDATA: 2,1,\"%s\",\"\",\"\"",
                         kPassword, kPin) > 0;
    char *pieces[4] = {};
    int32_t count = 4;
    if (ok) GetSubstring(text, pieces, &count, "^AUTHDATA");
    ok = ok && count == 2 && std::strstr(pieces[0], kPassword) != nullptr &&
         std::strstr(pieces[1], kPin) != nullptr;
    ReleaseSubstring(pieces, count);
    memset_s(text, sizeof text, 0, sizeof text);
    return ok;
}

int Parse() {
    int failures = 0;
    for (const ParseCase &c : kParseCases) {
        if (!RunParseCase(c)) {
            std::fprintf(stderr, "parse %s: no field holds the secret\n", c.prefix);
            ++failures;
        }
    }
    if (!RunSplit()) {
        std::fprintf(stderr, "split: the pieces lost their secrets\n");
        ++failures;
    }
    return failures == 0 ? 0 : 1;
}

// ---- send -------------------------------------------------------------------

struct Outcome {
    int32_t result;
    int32_t errorId;
};

// A record that may hold a secret, wiped when the step is done.
template <typename Record>
struct Wiped {
    Record r{};
    ~Wiped() { memset_s(&r, sizeof r, 0, sizeof r); }
};

Outcome WriteAuthData() {
    Wiped<AuthDataInfo> a;
    a.r.cid = 1;
    a.r.authType = 1;
    std::strcpy(a.r.passwd, kPassword);
    std::strcpy(a.r.username, kUser);
    return {AtAuthDataHandler(&a.r), a.r.errorId};
}

// The password comes back in a reply: through atserver and the parser.
Outcome ReadAuthData() {
    Wiped<AuthDataInfo> a;
    const int32_t result = AtGetAuthDataByCid(&a.r, 1);
    return {result == 0 && std::strcmp(a.r.passwd, kPassword) != 0 ? -100 : result, a.r.errorId};
}

template <int32_t kConnect>
Outcome DialUp() {
    Wiped<NdisDupProfile> p;
    p.r.apnIsStatic = 1;
    std::strcpy(p.r.apn, "internet");
    std::strcpy(p.r.username, kUser);
    std::strcpy(p.r.passwd, kPassword);
    p.r.authType = '1';
    return {AtNdisDup(1, kConnect, &p.r), p.r.errorId};
}

struct SendStep {
    const char *what;
    Outcome (*run)();
    Outcome expected;
};

// In order against secrets.scn: a wrong PIN, the PIN (^CPIN), a lock set
// with it, a PIN change, a PUK with a new PIN on a card that needs none, the
// unlock code, authentication data written and read back, and a dial-up
// with a password, then down.
const SendStep kSendSteps[] = {
    {"+CPIN, wrong PIN",
     [] {
         CpinInfo r{};
         return Outcome{AtPinManagement(1, kWrongPin, "", &r), r.errorId};
     },
     {0, AT_RET_CME_ERROR}},
    {"^CPIN, PIN",
     [] {
         CpinExInfo r{};
         return Outcome{AtPinManagementEx(1, kPin, nullptr, &r), r.errorId};
     },
     {0, AT_ERRID_OK}},
    {"+CLCK with the PIN",
     [] {
         ClckRequest q{"SC", "1", kPin};
         ClckResult r{};
         return Outcome{AtPinEnableDisableCmd(1, &q, &r), r.errorId};
     },
     {0, AT_ERRID_OK}},
    {"+CPWD",
     [] {
         int32_t errorId = 0;
         return Outcome{AtPinModify("SC", kPin, kNewPin, &errorId), errorId};
     },
     {0, AT_ERRID_OK}},
    {"+CPIN, PUK and new PIN",
     [] {
         CpinInfo r{};
         return Outcome{AtPinManagement(1, kPuk, kNewPin, &r), r.errorId};
     },
     {0, AT_RET_CME_ERROR}},
    {"^CARDLOCK",
     [] {
         CardLockInfo r{};
         return Outcome{AtSimLock(1, kUnlockCode, &r), r.errorId};
     },
     {0, AT_ERRID_OK}},
    {"^AUTHDATA set", WriteAuthData, {0, AT_ERRID_OK}},
    {"^AUTHDATA query", ReadAuthData, {0, 0}},  // the by-cid reader clears the whole record
    {"^NDISDUP up", DialUp<1>, {0, AT_ERRID_OK}},
    {"^NDISDUP down", DialUp<0>, {0, AT_ERRID_OK}},
};

int Send() {
    int failures = 0;
    for (const SendStep &step : kSendSteps) {
        const Outcome got = step.run();
        if (got.result == step.expected.result && got.errorId == step.expected.errorId) continue;
        std::fprintf(stderr, "%s: result %d, error id %d (expected %d, %d)\n", step.what,
                     got.result, got.errorId, step.expected.result, step.expected.errorId);
        ++failures;
    }
    return failures == 0 ? 0 : 1;
}

// ---- leak -------------------------------------------------------------------

// Kept where the compiler cannot see it unused, so that the copy is made.
char *volatile g_leaked = nullptr;

int Leak() {
    g_leaked = static_cast<char *>(std::malloc(sizeof kPin));
    if (g_leaked == nullptr) return 1;
    std::memcpy(g_leaked, kPin, sizeof kPin);
    std::free(g_leaked);
    return 0;
}

}  // namespace

int main(int argc, char **argv) {
    const std::string_view mode = argc == 2 ? argv[1] : "";
    if (mode == "parse") return Parse();
    if (mode == "send") return Send();
    if (mode == "leak") return Leak();
    std::fprintf(stderr, "usage: secret_driver parse|send|leak\n");
    return 64;
}
