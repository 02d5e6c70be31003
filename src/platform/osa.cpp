#include "platform/osa.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

static_assert(sizeof(OsaFileStat) == 48, "the platform's status record is 48 bytes");

extern "C" {

int32_t OSA_StatFile(const char *path, OsaFileStat *status) {
    if (path == nullptr) return -1;
    struct stat st {};
    if (stat(path, &st) != 0) return -1;
    if (status != nullptr) {
        status->size = static_cast<uint64_t>(st.st_size);
        status->modifiedSec = st.st_mtim.tv_sec;
        status->changedSec = st.st_ctim.tv_sec;
        status->mode = st.st_mode;
        status->uid = st.st_uid;
        status->gid = st.st_gid;
        status->links = static_cast<uint32_t>(st.st_nlink);
        status->inode = st.st_ino;
    }
    return 0;
}

int32_t CheckValidNum(const char *text, int64_t minVal, int64_t maxVal) {
    if (text == nullptr || *text == '\0') return -1;
    const char *digits = (*text == '-' || *text == '+') ? text + 1 : text;
    if (*digits == '\0') return -1;
    for (const char *p = digits; *p != '\0'; ++p) {
        if (*p < '0' || *p > '9') return -1;
    }
    errno = 0;
    char *end = nullptr;
    const long long value = std::strtoll(text, &end, 10);
    if (errno == ERANGE || value < minVal || value > maxVal) return -1;
    return 0;
}

}  // extern "C"
