/* File status and numeric checks of the platform's utility library. */
#ifndef ATAPI_PLATFORM_OSA_H
#define ATAPI_PLATFORM_OSA_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The 48-byte file status record. */
typedef struct OsaFileStat {
    uint64_t size;
    int64_t modifiedSec;
    int64_t changedSec;
    uint32_t mode;
    uint32_t uid;
    uint32_t gid;
    uint32_t links;
    uint64_t inode;
} OsaFileStat;

/* 0 when path exists (status stored in *status when not null), -1 otherwise. */
int32_t OSA_StatFile(const char *path, OsaFileStat *status);

/* 0 when text is an optionally signed decimal number within [minVal, maxVal],
 * -1 otherwise (null, empty, other characters, out of range). */
int32_t CheckValidNum(const char *text, int64_t minVal, int64_t maxVal);

#ifdef __cplusplus
}
#endif

#endif
