// The SIM's files read one by one through AtCrsm and decoded: ICCID,
// service provider name, APN control list, service provider display PLMNs,
// MNC length, home PLMN and group identifier.
#include <cstdlib>
#include <cstring>

#include "atapi/ats_comm.h"
#include "atapi/ats_usim.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "service/ats_usim_internal.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/ats_usim";

constexpr int32_t kEfIccid = 0x2FE2;
constexpr int32_t kEfSpn = 0x6F46;
constexpr int32_t kEfAcl = 0x6F57;
constexpr int32_t kEfSpdi = 0x6FCD;
constexpr int32_t kEfAd = 0x6FAD;
constexpr int32_t kEfGid1 = 0x6F3E;

constexpr char kMasterFile[] = "3F00";
constexpr char kAdfUsim[] = "3F007FFF";

// Status words of a read that ended normally, and of one that ended
// normally with extra information (any second word).
constexpr uint32_t kSwNormal = 144;
constexpr uint32_t kSwNormalWithInfo = 145;

constexpr size_t kMccDigits = 3;

// One file's content; the response text goes back with the reader.
class FileRead {
  public:
    FileRead() = default;
    ~FileRead() { std::free(result_.response); }
    FileRead(const FileRead &) = delete;
    FileRead &operator=(const FileRead &) = delete;

    // READ BINARY of p3 bytes of fileId (path: the one used unless the
    // card's table has the file). 0 or -1.
    int32_t Run(int32_t fileId, int32_t p3, const char *path) {
        CrsmRequest q{AT_CRSM_READ_BINARY, fileId, 0, 0, p3, nullptr, path};
        return AtCrsm(&q, &result_);
    }
    const char *Text() const { return result_.response != nullptr ? result_.response : ""; }
    bool Empty() const { return Text()[0] == '\0'; }
    bool EndedNormally() const { return result_.sw1 == kSwNormal && result_.sw2 == 0; }
    bool EndedWithInfo() const { return result_.sw1 == kSwNormalWithInfo; }

  private:
    CrsmResult result_{};
};

// A file's raw text into out; -1 with the log texts of the failure.
int32_t ReadFileText(int32_t fileId, int32_t p3, const char *path, char *out, uint32_t size) {
    if (out == nullptr || size == 0) return -1;
    FileRead file;
    if (file.Run(fileId, p3, path) != 0) {
        AT_LOG_ERR("AtCrsm failed");
        return -1;
    }
    if (file.Empty()) {
        AT_LOG_ERR("response invalid");
        return -1;
    }
    return strcpy_s(out, size, file.Text()) == 0 ? 0 : -1;
}

}  // namespace

extern "C" {

int32_t AtGetIccidByCrsm(IccidInfo *r) {
    if (r == nullptr) return -1;
    FileRead file;
    if (file.Run(kEfIccid, 10, kMasterFile) != 0) {
        AT_LOG_ERR("Read file failed");
        return -1;
    }
    char iccid[sizeof r->iccid];
    if (file.Empty() || !atapi::usim::IccidFromBcd(file.Text(), iccid, sizeof iccid)) return -1;
    std::memcpy(r->iccid, iccid, std::strlen(iccid) + 1);
    r->errorId = AT_ERRID_OK;
    AT_LOG_INFO("out");
    return 0;
}

int32_t AtGetSpnByCrsm(char *buf, uint32_t size) {
    return ReadFileText(kEfSpn, 17, kAdfUsim, buf, size);
}

int32_t AtGetSimGid(char *gid, uint32_t size) {
    if (ReadFileText(kEfGid1, 0, nullptr, gid, size) != 0) return -1;
    AT_LOG_INFO("get gid1 success[%s]", gid);
    return 0;
}

int32_t AtGetSimApn(SimApnNode **head) {
    if (head == nullptr) return -1;
    FileRead file;
    if (file.Run(kEfAcl, 255, nullptr) != 0) return -1;
    if (!file.EndedNormally() && !file.EndedWithInfo()) return -1;
    // The second byte is the first entry's tag; unused, the list is empty.
    const char *text = file.Text();
    if (strnlen(text, 3) < 3 || (text[2] == 'F' && text[3] == 'F')) return -1;
    SimApnNode *list = ParseSimApn(text);
    if (list == nullptr) return -1;
    AT_LOG_INFO("ParseSimApn succeed");
    *head = list;
    return 0;
}

void AtGetEfspdiPlmn(char *out, uint32_t size) {
    if (out == nullptr || size == 0) return;
    FileRead file;
    if (file.Run(kEfSpdi, 0, kAdfUsim) != 0 || !file.EndedNormally() || file.Empty()) return;
    unsigned char bytes[AT_REPORT_STR_LEN / 2];
    const int32_t count = atapi::usim::HexToBytes(file.Text(), bytes, sizeof bytes);
    if (count > 0) atapi::usim::AppendSpdiPlmns(bytes, static_cast<size_t>(count), out, size);
}

int32_t AtGetMncLength(void) {
    FileRead file;
    if (file.Run(kEfAd, 0, nullptr) != 0) return -1;
    if (!file.EndedNormally() && !file.EndedWithInfo()) return -1;
    return atapi::usim::MncLengthFromAd(file.Text());
}

int32_t AtAphPlmnByCrsm(AphPlmnInfo *r) {
    if (r == nullptr) return -1;
    IdentityText imsi{};
    imsi.errorId = AT_ERRID_NOT_COMPLETED;
    int32_t ret = -1;
    if (AtImsi(&imsi) != 0 || imsi.errorId != AT_ERRID_OK) {
        AT_LOG_ERR("AtImsi failed");
    } else {
        const int32_t mncLength = AtGetMncLength();
        AT_LOG_INFO("mncLength = %d", mncLength);
        const size_t digits = kMccDigits + static_cast<size_t>(mncLength);
        if (mncLength <= 0 || digits > strnlen(imsi.text, sizeof imsi.text)) {
            AT_LOG_ERR("mncLength invalid");
        } else if (strncpy_s(r->plmn, sizeof r->plmn, imsi.text, digits) == 0) {
            r->errorId = AT_ERRID_OK;
            AT_LOG_INFO("out");
            ret = 0;
        }
    }
    memset_s(&imsi, sizeof imsi, 0, sizeof imsi);
    return ret;
}

}  // extern "C"
