// Modules 8 to 13: SIM toolkit. "^STGI" stands in five of them because the
// same reply carries different fields for each kind of proactive command.
#include <iterator>

#include "atapi/at_parse.h"
#include "parse/tables/row_builder.h"

namespace {
using atapi::tables::Q;
using atapi::tables::RowMaker;
using atapi::tables::S;
}  // namespace

extern "C" {

// clang-format off
ATAPI_EXPORT extern constexpr AtParseHandler g_stkMenuCfgHandlers[] = {
    RowMaker{8}.Row("^STSF", Q("^STSF:Mode,Config,Timeout")),
    RowMaker{8}.Row("^STGI", S("^STGI:Identifier,NbItems,MenuName,HelpInfo")),
    RowMaker{8}.Row("^CSMN", Q("^CSMN:Len,CmdType,CmdData")),
    RowMaker{8}.End(),
};

ATAPI_EXPORT extern constexpr AtParseHandler g_stkTextCfgHandlers[] = {
    RowMaker{9}.Row("^STGI", S("^STGI:TextInfo,TextFormat,ClearMode,DurationTime")),
    RowMaker{9}.End(),
};

ATAPI_EXPORT extern constexpr AtParseHandler g_stkInputCfgHandlers[] = {
    RowMaker{10}.Row("^STGI", S("^STGI:TextInfo,TextCode,RspFormat,PackMode,EchoMode,SizeMin,SizeMax,HelpInfo,DefaultTextInfo,DefaultTextCode")),
    RowMaker{10}.End(),
};

ATAPI_EXPORT extern constexpr AtParseHandler g_stkRefreshCfgHandlers[] = {
    RowMaker{11}.Row("^STGI", S("^STGI:RefreshType")),
    RowMaker{11}.End(),
};

ATAPI_EXPORT extern constexpr AtParseHandler g_stkBrowserCfgHandlers[] = {
    RowMaker{12}.Row("^STGI", S("^STGI:URL,LaunchMode")),
    RowMaker{12}.End(),
};

ATAPI_EXPORT extern constexpr AtParseHandler g_stkActionCfgHandlers[] = {
    RowMaker{13}.Row("^CSTR", S("^CSTR:SW1,SW2")),
    RowMaker{13}.Row("^CSEN", S("^CSEN:SW1,SW2")),
    RowMaker{13}.End(),
};
// clang-format on

}  // extern "C"

static_assert(std::size(g_stkMenuCfgHandlers) == 4, "3 rows and the end entry");
static_assert(std::size(g_stkTextCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_stkInputCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_stkRefreshCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_stkBrowserCfgHandlers) == 2, "1 row and the end entry");
static_assert(std::size(g_stkActionCfgHandlers) == 3, "2 rows and the end entry");
