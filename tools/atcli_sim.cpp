// atcli sim: what the SIM holds: its ICCID, the service provider name, the
// home PLMN and the PLMNs shown as home, the subscriber numbers and the APN
// control list.
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "atapi/at_send.h"
#include "atapi/ats_usim.h"
#include "atcli_actions.h"
#include "atcli_subcommands.h"
#include "service/ats_usim_internal.h"

namespace atcli {
namespace {

// A file read may first ask for the card's type: two exchanges.
constexpr uint32_t kFileTimeoutSec = 2 * AT_DEFAULT_TIMEOUT_SEC;
constexpr uint32_t kNumbersTimeoutSec = 5;

// The readers that keep no error id: a file that was read counts as answered.
template <typename Read>
int ReadFileChecked(const char *what, Read read) {
    int32_t errorId = 0;
    const CallCheck check(what, kFileTimeoutSec, &errorId);
    const int32_t ret = read();
    if (ret == 0) errorId = AT_ERRID_OK;
    return check.Exit(ret);
}

int ReadIccid(Fields *fields) {
    IccidInfo r{};
    const CallCheck check("iccid", kFileTimeoutSec, &r.errorId);
    const int exitCode = check.Exit(AtGetIccidByCrsm(&r));
    if (exitCode == kExitOk) fields->Text("iccid", FieldText(r.iccid));
    return exitCode;
}

// The name as text, and the file as the card holds it.
int ReadSpn(Fields *fields) {
    char hex[80];
    const int exitCode = ReadFileChecked("spn", [&hex] { return AtGetSpnByCrsm(hex, sizeof hex); });
    if (exitCode != kExitOk) return exitCode;
    char name[20];
    if (!atapi::usim::SpnFromHex(hex, name, sizeof name)) name[0] = '\0';
    fields->Text("spn", name).Text("spn_file", hex);
    return kExitOk;
}

int ReadPlmns(Fields *fields) {
    AphPlmnInfo r{};
    const CallCheck check("home plmn", kFileTimeoutSec, &r.errorId);
    const int exitCode = check.Exit(AtAphPlmnByCrsm(&r));
    if (exitCode != kExitOk) return exitCode;
    char display[128] = "";
    AtGetEfspdiPlmn(display, sizeof display);
    std::vector<std::string> plmns;
    std::istringstream words(display);
    for (std::string plmn; words >> plmn;) plmns.push_back(plmn);
    fields->Text("home_plmn", FieldText(r.plmn)).List("display_plmns", plmns);
    return kExitOk;
}

int ReadNumbers(Fields *fields) {
    CnumList l{};
    const CallCheck check("numbers", kNumbersTimeoutSec, &l.errorId);
    const int exitCode = check.Exit(AtCnumQuery(&l));
    std::vector<std::string> numbers;
    for (int32_t i = 0; l.entries != nullptr && i < l.count; ++i) {
        numbers.push_back(FieldText(l.entries[i].num));
    }
    std::free(l.entries);
    if (exitCode == kExitOk) fields->List("numbers", numbers);
    return exitCode;
}

int ReadApns(Fields *fields) {
    SimApnNode *head = nullptr;
    const int exitCode = ReadFileChecked("apns", [&head] { return AtGetSimApn(&head); });
    std::vector<std::string> apns;
    for (const SimApnNode *n = head; n != nullptr; n = n->next) apns.push_back(FieldText(n->apn));
    FreeApnList(&head);
    if (exitCode == kExitOk) fields->List("apns", apns);
    return exitCode;
}

constexpr FieldsReader kReads[] = {ReadIccid, ReadSpn, ReadPlmns, ReadNumbers, ReadApns};

int All(const Args &args) { return PrintReads(kReads, args); }

constexpr Action kActions[] = {
    {"all", "", 0, 0, {}, {}, All},
    {"iccid", "", 0, 0, {}, {}, PrintRead<ReadIccid>},
    {"spn", "", 0, 0, {}, {}, PrintRead<ReadSpn>},
    {"plmn", "", 0, 0, {}, {}, PrintRead<ReadPlmns>},
    {"numbers", "", 0, 0, {}, {}, PrintRead<ReadNumbers>},
    {"apns", "", 0, 0, {}, {}, PrintRead<ReadApns>},
};

}  // namespace

std::span<const Action> SimActions() { return kActions; }

}  // namespace atcli
