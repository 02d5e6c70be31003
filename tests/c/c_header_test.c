/* The public headers compile as C11 and the records keep their layout. */
#include <atapi/atapi.h>
#include <stdio.h>
#include <string.h>

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
    return 0;
}
