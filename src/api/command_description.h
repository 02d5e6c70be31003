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
};

}  // namespace atapi::api
