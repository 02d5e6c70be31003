/* The public headers compile as C11 and the records keep their layout; a
 * user of the library sees those headers and none of its internal ones. */
#include <atapi/atapi.h>
#include <stdio.h>
#include <string.h>

/* One header of each internal folder, and the platform folder's own names. */
#if defined(__has_include)
#if __has_include("platform/bounded.h") || __has_include("link/at_log.h")
#error "the library's internal headers are on a user's include path"
#elif __has_include("parse/at_parse_alloc.h") || __has_include("api/command.h")
#error "the library's internal headers are on a user's include path"
#elif __has_include("bounded.h") || __has_include("sink_slot.h")
#error "the platform stand-ins' headers are on a user's include path"
#endif
#endif

int main(void) {
    AtSrvMsg msg;
    memset(&msg, 0, sizeof msg);
    if (sizeof msg != 1636 || offsetof(AtSrvMsg, sndRcvMsg.rMsg.retVal) != 1624) {
        puts("AtSrvMsg layout broken");
        return 1;
    }
    if (AtInitCommonMsgHandler(&msg, "AT+CGMI", "+CGMI", 0, 30) != 0 || msg.timeoutSec != 30 ||
        strcmp(msg.sndRcvMsg.sMsg.atCmdStr, "AT+CGMI") != 0) {
        puts("AtInitCommonMsgHandler from C failed");
        return 1;
    }
    if (ErrorStrToErrorId("+CME ERROR: 10") != 13 || SafeStrCmp(NULL, NULL) != 0) {
        puts("error mapping from C failed");
        return 1;
    }
    AtCmdParseNode *rows = NULL;
    char reply[] = "+CPIN: READY";
    if (ParseAtCmdFunc(&rows, "+CPIN", reply, 2, AT_PARSE_QUERY) != 0 || rows == NULL) {
        puts("parse from C failed");
        return 1;
    }
    FreeAtCmd(rows);
    AtsTimeInfo utc = {0, 10, 0, 1, 1, 2024, {0, 0, 0, 0, 0}, -1};
    AtsTimeInfo local;
    memset(&local, 0, sizeof local);
    if (AtsUniversalTimeToLocalTime(&utc, &local) != 0 || local.tm_year != 2023 ||
        local.tm_mon != 12 || local.tm_mday != 31 || local.tm_hour != 23 || local.tm_min != 55) {
        puts("time translation from C failed");
        return 1;
    }
    return 0;
}
