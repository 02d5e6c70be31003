// PIN and card lock. The query forms count an error reply whose id went
// into errorId as a completed query; the set forms look at the stored error
// id instead of the result. Both conventions are the interface's.
#include "atapi/ats_security.h"

#include <cstring>

#include "api/command.h"
#include "api/conventions.h"
#include "link/at_log.h"

namespace {

using namespace atapi::api;

constexpr char kTraceSrc[] = "atapi/src/ats_security";
constexpr char kFormatFailed[] = "snprintf_s failed";

constexpr uint32_t kPinTimeoutSec = 5;  // every ^CPIN and +CLCK exchange

constexpr CommandDescription kCpinQuery = Reads("AT+CPIN?", "+CPIN", module::kPin);
constexpr CommandDescription kCpinEnter = SecretLine("AT+CPIN=\"%s\"", "+CPIN");
constexpr CommandDescription kCpinReplace = kCpinEnter.WithFormat("AT+CPIN=\"%s\",\"%s\"");
constexpr auto kCpinFields = FieldList(Field<&CpinInfo::code>("code"));

constexpr CommandDescription kCpinExQuery =
    Reads("AT^CPIN?", "^CPIN", module::kPin).WithTimeout(kPinTimeoutSec);
constexpr CommandDescription kCpinExEnter = SecretLine("AT^CPIN=\"%s\"", "^CPIN", kPinTimeoutSec);
constexpr CommandDescription kCpinExReplace = kCpinExEnter.WithFormat("AT^CPIN=\"%s\",\"%s\"");
constexpr auto kCpinExFields = FieldList(
    Field<&CpinExInfo::code>("code"), Field<&CpinExInfo::times>("times"),
    Field<&CpinExInfo::pukTimes>("puk_times"), Field<&CpinExInfo::pinTimes>("pin_times"),
    Field<&CpinExInfo::puk2Times>("puk2_times"), Field<&CpinExInfo::pin2Times>("pin2_times"));

constexpr CommandDescription kCardLockQuery = Reads("AT^CARDLOCK?", "^CARDLOCK", module::kPin);
constexpr CommandDescription kCardLockUnlock = SecretLine("AT^CARDLOCK=\"%s\"", "^CARDLOCK");
constexpr auto kCardLockFields =
    FieldList(Field<&CardLockInfo::state>("state"), Field<&CardLockInfo::times>("times"));

constexpr CommandDescription kClckQuery = Reads("AT+CLCK=\"%s\",%s", "+CLCK", module::kPin)
                                              .WithMode(AT_PARSE_SET)
                                              .WithTimeout(kPinTimeoutSec);
constexpr CommandDescription kClckSet =
    SecretLine("AT+CLCK=\"%s\",%s,\"%s\"", "+CLCK", kPinTimeoutSec);
constexpr auto kClckFields = FieldList(Field<&ClckResult::status>("status"));

constexpr CommandDescription kCpwd = SecretLine("AT+CPWD=\"%s\",\"%s\",\"%s\"", "+CPWD");

// A query form, its result logged with retLog: an error reply (3, 4) has
// stored its id and counts as done.
template <typename Record, size_t N>
int32_t QueryForm(const Command &cmd, const Fields<Record, N> &fields, Record &r,
                  const char *retLog) {
    const int32_t ret = cmd.Query(fields, r, &r.errorId);
    AT_LOG_INFO(retLog, ret);
    if (QueryDone(ret)) return 0;
    AT_LOG_ERR("failed");
    return -1;
}

// A set form, its result and stored id logged with log: done when sent, or
// when the stored error id is 3 or 4.
int32_t SetForm(const Command &cmd, int32_t &errorId,
                const char *log = "ret = %d, atExeResult = %d") {
    const int32_t ret = SendOrLog(kTraceSrc, kFormatFailed, cmd, &errorId);
    AT_LOG_INFO(log, ret, errorId);
    if (SetDone(ret, errorId)) return 0;
    AT_LOG_ERR("failed");
    return -1;
}

}  // namespace

extern "C" {

int32_t AtPinManagement(uint32_t op, const char *pin, const char *newPin, CpinInfo *r) {
    if (op == kQueryForm) {
        AT_LOG_INFO("enter");
        if (r == nullptr) return -1;
        return QueryForm(Command(kCpinQuery), kCpinFields, *r, "ret = [%d]");
    }
    if (op != kSetForm || pin == nullptr || r == nullptr) return -1;
    const bool replace = newPin != nullptr && newPin[0] != '\0';
    return SetForm(replace ? Command(kCpinReplace, pin, newPin) : Command(kCpinEnter, pin),
                   r->errorId, "ret = [%d], atExeResult= %d");
}

int32_t AtPinManagementEx(uint32_t op, const char *pin, const char *newPin, CpinExInfo *r) {
    if (op == kQueryForm) {
        AT_LOG_INFO("enter");
        if (r == nullptr) return -1;
        return QueryForm(Command(kCpinExQuery), kCpinExFields, *r, "ret = %d");
    }
    if (op != kSetForm || pin == nullptr || r == nullptr) return -1;
    return SetForm(
        newPin != nullptr ? Command(kCpinExReplace, pin, newPin) : Command(kCpinExEnter, pin),
        r->errorId);
}

int32_t AtSimLock(uint32_t op, const char *code, CardLockInfo *r) {
    if (op == kQueryForm) {
        AT_LOG_INFO("enter");
        if (r == nullptr) return -1;
        return QueryForm(Command(kCardLockQuery), kCardLockFields, *r, "ret = [%d]");
    }
    if (op != kSetForm || code == nullptr || r == nullptr) return -1;
    return SetForm(Command(kCardLockUnlock, code), r->errorId);
}

int32_t AtPinEnableDisableCmd(uint32_t op, ClckRequest *q, ClckResult *r) {
    if (q == nullptr || r == nullptr) return -1;
    AT_LOG_INFO("enter");
    if (op != kSetForm) return -1;
    if (std::strcmp(q->mode, "2") == 0) {
        return QueryForm(Command(kClckQuery, q->fac, q->mode), kClckFields, *r, "ret = [%d]");
    }
    if (std::strcmp(q->mode, "0") != 0 && std::strcmp(q->mode, "1") != 0) return -1;
    if (q->passwd == nullptr) return -1;
    return SetForm(Command(kClckSet, q->fac, q->mode, q->passwd), r->errorId);
}

int32_t AtPinModify(const char *fac, const char *oldPwd, const char *newPwd, int32_t *errorId) {
    if (fac == nullptr || oldPwd == nullptr || newPwd == nullptr || errorId == nullptr) return -1;
    return SetForm(Command(kCpwd, fac, oldPwd, newPwd), *errorId);
}

}  // extern "C"
