// A command as data: its line format, where its reply goes and how it is
// parsed. Every command function declares its commands as constexpr
// CommandDescription values beside its field lists.
#pragma once

#include <cstdint>

#include "atapi/at_send.h"
#include "atapi/at_types.h"

namespace atapi::api {

// Parse module ids: which handler table a reply is parsed with.
namespace module {
inline constexpr int32_t kReport = 0;
inline constexpr int32_t kNetwork = 1;
inline constexpr int32_t kPin = 2;
inline constexpr int32_t kSms = 3;
inline constexpr int32_t kDeviceInfo = 4;
inline constexpr int32_t kCall = 5;
inline constexpr int32_t kCcwaReport = 6;
inline constexpr int32_t kSysCfg = 14;
inline constexpr int32_t kConnStat = 17;
inline constexpr int32_t kDhcp = 21;
inline constexpr int32_t kRaInfo = 23;
inline constexpr int32_t kAuthData = 24;
inline constexpr int32_t kPdpContext = 25;
inline constexpr int32_t kPosition = 27;
inline constexpr int32_t kFeature = 28;
inline constexpr int32_t kChipTemp = 30;
inline constexpr int32_t kNdisEx = 34;
}  // namespace module

// Whether the command line carries a PIN, PUK, password or unlock code: such
// lines are wiped after use and sent through the secure primitive.
enum class Secrecy : uint8_t { kPlain, kSecret };

struct CommandDescription {
    const char *format;               // printf format of the whole command line
    const char *rspPrefix = nullptr;  // sent as atName; null sends none
    const char *parsePrefix = nullptr;
    uint32_t parseMode = AT_PARSE_QUERY;
    int32_t moduleId = module::kReport;
    uint32_t timeoutSec = AT_DEFAULT_TIMEOUT_SEC;
    Secrecy secrecy = Secrecy::kPlain;

    constexpr AtCmdDesc Desc(const char *line) const {
        return {line, rspPrefix, parsePrefix, parseMode, moduleId};
    }

    // The other forms of one command: a copy with one member changed.
    constexpr CommandDescription WithFormat(const char *line) const {
        CommandDescription d = *this;
        d.format = line;
        return d;
    }
    constexpr CommandDescription WithTimeout(uint32_t seconds) const {
        CommandDescription d = *this;
        d.timeoutSec = seconds;
        return d;
    }
    constexpr CommandDescription WithMode(uint32_t mode) const {
        CommandDescription d = *this;
        d.parseMode = mode;
        return d;
    }
};

// A command whose line carries a PIN, PUK, password or unlock code.
consteval CommandDescription SecretLine(const char *format, const char *rspPrefix = nullptr,
                                        uint32_t timeoutSec = AT_DEFAULT_TIMEOUT_SEC) {
    return {.format = format,
            .rspPrefix = rspPrefix,
            .timeoutSec = timeoutSec,
            .secrecy = Secrecy::kSecret};
}

// A command whose reply is parsed under the prefix it is sent with:
//   constexpr auto kChipTemp = Reads("AT^CHIPTEMP?", "^CHIPTEMP", module::kChipTemp);
consteval CommandDescription Reads(const char *format, const char *prefix, int32_t moduleId) {
    return {.format = format, .rspPrefix = prefix, .parsePrefix = prefix, .moduleId = moduleId};
}
// ... or under a parse prefix of its own (rspPrefix may carry the ':' or be null).
consteval CommandDescription Reads(const char *format, const char *rspPrefix,
                                   const char *parsePrefix, int32_t moduleId) {
    return {
        .format = format, .rspPrefix = rspPrefix, .parsePrefix = parsePrefix, .moduleId = moduleId};
}

}  // namespace atapi::api
