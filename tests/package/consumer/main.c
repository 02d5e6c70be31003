/* Asks the modem behind atserver for its manufacturer through one call of
 * the library and prints the answer. */
#include <atapi/atapi.h>
#include <stdio.h>

int main(void) {
    char maker[64];
    int32_t errCode = 0;
    if (AtSendAndGetSingleStrRsp("AT+CGMI", NULL, maker, sizeof maker, &errCode) != 0) {
        fprintf(stderr, "AT+CGMI failed (error id %d)\n", (int)errCode);
        return 1;
    }
    printf("%s\n", maker);
    return 0;
}
