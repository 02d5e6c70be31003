// The card beyond its files: subscriber numbers, raw APDUs, the SIM slots
// and the card type.
#include <cstdlib>
#include <cstring>

#include "api/command.h"
#include "api/reply.h"
#include "atapi/at_text.h"
#include "atapi/ats_usim.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "service/ats_usim_internal.h"

namespace {

using namespace atapi::api;

constexpr char kTraceSrc[] = "atapi/src/ats_usim";

constexpr CommandDescription kCnum = Reads("AT+CNUM", "+CNUM", module::kSysCfg).WithTimeout(5);
constexpr int32_t kCnumMaxLines = 255;

constexpr CommandDescription kCsim = Reads("AT+CSIM=%u,\"%s\"", "+CSIM", module::kSysCfg);
constexpr auto kCsimFields =
    FieldList(Field<&CsimInfo::rspLength>("length"), Field<&CsimInfo::response>("response"));
constexpr uint32_t kCsimMinLength = 10;
constexpr uint32_t kCsimMaxLength = 520;

constexpr CommandDescription kHvsst{.format = "AT^HVSST=%d,%d"};

constexpr CommandDescription kSimSwitchQuery =
    Reads("AT^SIMSWITCH?", "^SIMSWITCH:", "^SIMSWITCH", module::kSysCfg);
constexpr CommandDescription kSimSwitchSet{.format = "AT^SIMSWITCH=%d"};
constexpr auto kSimSwitchFields = FieldList(Field<&SimSwitchInfo::simType>("sim_type"));

constexpr CommandDescription kCardType = Reads("AT^CARDTYPE?", "^CARDTYPE", module::kPin);
constexpr auto kCardTypeFields =
    FieldList(Field<&CardTypeInfo::cardMode>("cardMode"), Field<&CardTypeInfo::hasCdma>("hasCdma"),
              Field<&CardTypeInfo::hasGsm>("hasGsm"));

// One +CNUM line into entry; false when it has no fields or one does not fit.
bool StoreCnumLine(char *line, CnumEntry &entry) {
    int32_t status = AT_PARSE_OK;
    const atapi::ParseRows rows = ParseReply(kCnum, line, &status);
    if (status != AT_PARSE_OK || rows.Get() == nullptr) return false;
    bool stored = true;
    ForEachField(rows.Get(), [&entry, &stored](const char *name, const char *value) {
        if (std::strcmp(name, "name") == 0) {
            stored = stored && strcpy_s(entry.name, sizeof entry.name, value) == 0;
        } else if (std::strcmp(name, "num") == 0) {
            stored = stored && strcpy_s(entry.num, sizeof entry.num, value) == 0;
        } else if (std::strcmp(name, "type") == 0) {
            entry.type = static_cast<uint32_t>(SafeStrAtoi(value));
        }
    });
    return stored;
}

}  // namespace

namespace atapi::usim {

int32_t StoreCnumLines(const char *report, CnumList *l) {
    ReplyLines<kCnumMaxLines + 1> lines;
    int32_t count = lines.kCapacity;
    GetSubstring(report, lines.Slots(), &count, kCnum.rspPrefix);
    lines.SetCount(count);
    if (count < 1 || count > kCnumMaxLines) return -1;
    const size_t bytes = static_cast<size_t>(count) * sizeof(CnumEntry);
    auto *entries = static_cast<CnumEntry *>(std::malloc(bytes));
    if (entries == nullptr) return -1;
    std::memset(entries, 0, bytes);
    for (int32_t i = 0; i < count; ++i) {
        if (!StoreCnumLine(lines[i], entries[i])) {
            memset_s(entries, bytes, 0, bytes);
            std::free(entries);
            l->count = 0;
            return -1;
        }
    }
    l->entries = entries;
    l->count = count;
    return 0;
}

}  // namespace atapi::usim

extern "C" {

int32_t AtCnumQuery(CnumList *l) {
    AT_LOG_INFO("in");
    AT_LOG_INFO("enter");
    if (l == nullptr) return -1;
    Reply reply{Command(kCnum)};
    if (reply.Status() != 0) return -1;
    if (const auto done = ErrorReplyDone(reply, l->errorId)) return *done;
    l->errorId = AT_ERRID_OK;
    if (reply.Text()[0] == '\0') return 0;
    return atapi::usim::StoreCnumLines(reply.Text(), l);
}

int32_t AtCsim(CsimInfo *c) {
    if (c == nullptr || c->length < kCsimMinLength || c->length > kCsimMaxLength ||
        strnlen(c->command, sizeof c->command) == sizeof c->command) {
        return -1;
    }
    return Command(kCsim, c->length, c->command).Query(kCsimFields, *c, &c->errorId);
}

int32_t AtHvsstSet(HvsstRequest *r) {
    if (r == nullptr) return -1;
    return Command(kHvsst, static_cast<int32_t>(r->index), static_cast<int32_t>(r->enable))
        .Send(&r->errorId);
}

int32_t AtSimSwitch(uint32_t op, SimSwitchInfo *s) {
    if (s == nullptr) return -1;
    if (op == AT_SIMSWITCH_QUERY) {
        return Command(kSimSwitchQuery).Query(kSimSwitchFields, *s, &s->errorId);
    }
    if (op == AT_SIMSWITCH_SET) {
        return Command(kSimSwitchSet, static_cast<int32_t>(s->simType)).Send(&s->errorId);
    }
    return -1;
}

int32_t AtCardType(CardTypeInfo *c) {
    if (c == nullptr) return -1;
    return Command(kCardType).Query(kCardTypeFields, *c, &c->errorId);
}

}  // extern "C"
