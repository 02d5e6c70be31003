// Feeds arbitrary reply text to the special response parsers. The first byte
// selects the parser (with the template and prefix of its handler entry);
// the rest is the reply, handed over as a NUL-terminated heap copy.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include "atapi/at_parse.h"

namespace {

struct SpecialParser {
    AtParseFn parse;
    const char *atTemplate;
    const char *prefix;
};

const SpecialParser kParsers[] = {
    {ParseCmgiListAtStr, "^CMGI:index_0,...indexN", "^CMGI"},
    {ParseSmsCmgrAtStr, "+CMGR:stat,reserved,length\r\npdu", "+CMGR"},
    {ParseAtCgasStr, "arfcn,bsic,rxlev", "^CGAS"},
    {ParseEonsAtStr, "^EONS:type,plmn_id,plmn_long,plmn_short,spn_cond,spn", "^EONS"},
    {ParseSysCfgAtStr, "^SYSCFG:(modes),(acqorders),((band,band_name)),(roman),(srvdomain)",
     "^SYSCFG"},
    {ParseSysCfgExAtStr,
     "^SYSCFGEX:(acqorders),((band,band_name)),(roams),(srvdomains),((lteband,lteband_name))",
     "^SYSCFGEX"},
    {ParseLteProfileAtStr,
     "^LTEPROFILE:(mode1,mode2),(indexs),maximsiprefixlen,maxapnlen,maxusernamelen,"
     "maxuserpwdlen,(authtypes)",
     "^LTEPROFILE"},
    {ParseCopsAtStr,
     "+COPS:(stat,long_oper,short_oper,numeric_oper,rat),,(mode_0,mode_1,mode_2,mode_3,mode_4),"
     "(format_0,format_1,format_2)",
     "+COPS"},
    {ParseSmsMediaAtStr, "+CPMS:(mem1,mem2),...", "+CPMS"},
    {ParseSmsIndexListAtStr, "+CMGD:index_0,...indexN", "+CMGD"},
};

struct FreeDeleter {
    void operator()(char *p) const { std::free(p); }
};

// Walks every row and field, as a reader of the result would.
size_t CountNodes(const AtCmdParseNode *first) {
    size_t count = 0;
    for (const AtCmdParseNode *row = first; row != nullptr; row = row->nextRow) {
        for (const AtCmdParseNode *node = row; node != nullptr; node = node->nextField) {
            if (node->atFieldName != nullptr) count += std::strlen(node->atFieldName);
            if (node->atFieldValue != nullptr) count += std::strlen(node->atFieldValue);
            ++count;
        }
    }
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const SpecialParser &parser = kParsers[data[0] % std::size(kParsers)];
    const size_t replySize = size - 1;
    std::unique_ptr<char, FreeDeleter> reply(static_cast<char *>(std::malloc(replySize + 1)));
    if (reply == nullptr) return 0;
    if (replySize != 0) std::memcpy(reply.get(), data + 1, replySize);
    reply.get()[replySize] = '\0';

    AtCmdParseNode *result = nullptr;
    parser.parse(&result, parser.atTemplate, reply.get(), parser.prefix);
    volatile size_t nodes = CountNodes(result);
    (void)nodes;
    FreeAtCmd(result);
    return 0;
}
