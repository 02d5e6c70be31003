/* The public headers compile as C11 (their layout checks with them) and a C
 * program calls through them; a user of the library sees those headers and
 * none of its internal ones. */
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
    if (AtInitCommonMsgHandler(&msg, "AT+CGMI", "+CGMI", 0, 30) != 0 || msg.timeoutSec != 30 ||
        strcmp(msg.sndRcvMsg.sMsg.atCmdStr, "AT+CGMI") != 0) {
        puts("AtInitCommonMsgHandler from C failed");
        return 1;
    }
    AtCmdParseNode *rows = NULL;
    char reply[] = "+CPIN: READY";
    if (ParseAtCmdFunc(&rows, "+CPIN", reply, 2, AT_PARSE_QUERY) != 0 || rows == NULL ||
        strcmp(rows->atFieldValue, "READY") != 0) {
        puts("parse from C failed");
        return 1;
    }
    FreeAtCmd(rows);
    return 0;
}
