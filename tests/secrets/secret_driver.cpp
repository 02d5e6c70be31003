// Drives the library's secret-bearing paths with the planted secrets, for
// the freed-block scan preloaded into it (secrets_test.cpp):
//   secret_driver       parses replies that carry a secret, then calls every
//                       secret-bearing command function through the atserver
//                       of $ATAPI_ROOT (scenario: secrets.scn)
//   secret_driver leak  frees one unwiped copy of a secret: the scan's own
//                       proof that it sees what it should
// Exits 0 when every step gave its expected result; each failed step is
// named on stderr (never with its secret).
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "api/command_description.h"
#include "atapi/at_parse.h"
#include "atapi/ats_ndis.h"
#include "atapi/ats_security.h"
#include "planted_secrets.h"
#include "platform/bounded.h"

namespace {

using namespace atapi::secrets;
namespace module = atapi::api::module;

// A record that may hold a secret, wiped when the step is done.
template <typename Record>
struct Wiped {
    Record r{};
    ~Wiped() { memset_s(&r, sizeof r, 0, sizeof r); }
};

// Replies that carry a secret ("%s" stands for it) and the parse step of each.
struct ParseCase {
    const char *prefix;
    int32_t moduleId;
    uint32_t mode;
    const char *format;
    const char *secret;
};

// clang-format off
const ParseCase kParseCases[] = {
    {"^AUTHDATA", module::kAuthData, 0,
     "^AUTHDATA: 1,1,\"%s\",\"u\",\"\"\r\n^AUTHDATA: 2,0,\"\",\"\",\"\"", kPassword},
    {"^NDISDUP", module::kNdisEx, 0, "^NDISDUP: 1,1,\"internet\",\"u\",\"%s\",1", kPassword},
    {"^HFOTA", module::kReport, 3, "^HFOTA: 1,\"fota\",\"u\",\"%s\",1,\"IP\",0", kPin},
};
// clang-format on

// Whether a field of the first row holds exactly the secret: it went
// through the parser, not around it.
bool Parses(const ParseCase &c) {
    char reply[512];
    AtCmdParseNode *rows = nullptr;
    bool held = false;
    if (snprintf_s(reply, sizeof reply, sizeof reply - 1, c.format, c.secret) > 0 &&
        ParseAtCmdFunc(&rows, c.prefix, reply, c.moduleId, c.mode) == 0) {
        for (const AtCmdParseNode *n = rows; n != nullptr; n = n->nextField) {
            held =
                held || (n->atFieldValue != nullptr && std::strcmp(n->atFieldValue, c.secret) == 0);
        }
    }
    FreeAtCmd(rows);
    memset_s(reply, sizeof reply, 0, sizeof reply);
    return held;
}

// The multi-line split hands out one heap piece per line.
bool Splits() {
    char text[256];
    char *pieces[4] = {};
    int32_t count = 4;
    const bool made =
        snprintf_s(text, sizeof text, sizeof text - 1,
                   "^AUTHDATA: 1,1,\"%s\",\"\",\"\"\r\n^AUTHDATA: 2,1,\"%s\",\"\",\"\"", kPassword,
                   kPin) > 0;
    if (made) GetSubstring(text, pieces, &count, "^AUTHDATA");
    const bool ok = made && count == 2 && std::strstr(pieces[0], kPassword) != nullptr &&
                    std::strstr(pieces[1], kPin) != nullptr;
    ReleaseSubstring(pieces, count);
    memset_s(text, sizeof text, 0, sizeof text);
    return ok;
}

bool DialUp(int32_t connect) {
    Wiped<NdisDupProfile> p;
    p.r.apnIsStatic = 1;
    std::strcpy(p.r.apn, "internet");
    std::strcpy(p.r.passwd, kPassword);
    p.r.authType = '1';
    return AtNdisDup(1, connect, &p.r) == 0 && p.r.errorId == AT_ERRID_OK;
}

struct Step {
    const char *what;
    bool (*run)();
};

// In order against secrets.scn: a wrong PIN, the PIN (^CPIN), a lock set
// with it, a PIN change, a PUK with a new PIN on a card that needs none, the
// unlock code, authentication data written and read back (through atserver
// and the parser), and a dial-up with a password, then down.
// clang-format off
const Step kSteps[] = {
    {"split", Splits},
    {"+CPIN, wrong PIN", [] { CpinInfo r{};
        return AtPinManagement(1, kWrongPin, "", &r) == 0 && r.errorId == AT_RET_CME_ERROR; }},
    {"^CPIN, PIN", [] { CpinExInfo r{};
        return AtPinManagementEx(1, kPin, nullptr, &r) == 0 && r.errorId == AT_ERRID_OK; }},
    {"+CLCK with the PIN", [] { ClckRequest q{"SC", "1", kPin}; ClckResult r{};
        return AtPinEnableDisableCmd(1, &q, &r) == 0 && r.errorId == AT_ERRID_OK; }},
    {"+CPWD", [] { int32_t errorId = -1;
        return AtPinModify("SC", kPin, kNewPin, &errorId) == 0 && errorId == AT_ERRID_OK; }},
    {"+CPIN, PUK and new PIN", [] { CpinInfo r{};
        return AtPinManagement(1, kPuk, kNewPin, &r) == 0 && r.errorId == AT_RET_CME_ERROR; }},
    {"^CARDLOCK", [] { CardLockInfo r{};
        return AtSimLock(1, kUnlockCode, &r) == 0 && r.errorId == AT_ERRID_OK; }},
    {"^AUTHDATA set", [] { Wiped<AuthDataInfo> a; a.r.cid = 1; a.r.authType = 1;
        std::strcpy(a.r.passwd, kPassword);
        return AtAuthDataHandler(&a.r) == 0 && a.r.errorId == AT_ERRID_OK; }},
    {"^AUTHDATA query", [] { Wiped<AuthDataInfo> a;
        return AtGetAuthDataByCid(&a.r, 1) == 0 && std::strcmp(a.r.passwd, kPassword) == 0; }},
    {"^NDISDUP up", [] { return DialUp(1); }},
    {"^NDISDUP down", [] { return DialUp(0); }},
};
// clang-format on

// Kept where the compiler cannot see it unused, so that the copy is made.
char *volatile g_leaked = nullptr;

}  // namespace

int main(int argc, char **argv) {
    if (argc == 2 && std::strcmp(argv[1], "leak") == 0) {
        g_leaked = static_cast<char *>(std::malloc(sizeof kPin));
        if (g_leaked == nullptr) return 1;
        std::memcpy(g_leaked, kPin, sizeof kPin);
        std::free(g_leaked);
        return 0;
    }
    int failures = 0;
    for (const ParseCase &c : kParseCases) {
        if (Parses(c)) continue;
        std::fprintf(stderr, "parse %s: no field holds the secret\n", c.prefix);
        ++failures;
    }
    for (const Step &step : kSteps) {
        if (step.run()) continue;
        std::fprintf(stderr, "%s: not the expected result\n", step.what);
        ++failures;
    }
    return failures == 0 ? 0 : 1;
}
