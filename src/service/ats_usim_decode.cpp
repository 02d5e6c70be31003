// Decoders of the SIM's elementary files, as the module returns them: hex
// text whose lengths come from the card and are checked before every use.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "api/command_line.h"
#include "atapi/ats_usim.h"
#include "link/at_log.h"
#include "platform/bounded.h"
#include "service/ats_usim_internal.h"

namespace {

constexpr char kTraceSrc[] = "atapi/src/ats_usim";

constexpr size_t kIccidMaxDigits = 64;
constexpr unsigned char kSpdiTag = 0xA3;
constexpr unsigned char kPlmnListTag = 0x80;
constexpr size_t kSpdiFirstPlmn = 4;
constexpr size_t kPlmnBytes = 3;
constexpr unsigned char kUnusedByte = 0xFF;
constexpr size_t kAdMncDigit = 7;
constexpr size_t kApnMaxChars = sizeof(SimApnNode::apn) - 1;
constexpr char kApnTag[] = "DD";
constexpr size_t kFileMaxBytes = 256;

int32_t HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// The byte written by the two hex digits at text, or -1.
int32_t HexByte(const char *text) {
    const int32_t high = HexValue(text[0]);
    const int32_t low = high < 0 ? -1 : HexValue(text[1]);
    return low < 0 ? -1 : high * 16 + low;
}

// One APN of EF ACL: length-prefixed labels in bytes[0..length), written
// dotted into apn. Bytes at or above 128 are stored as 0, as the card's
// text has no such characters; false for an empty label or one that runs
// past the entry.
bool DecodeApnLabels(const unsigned char *bytes, size_t length, char *apn) {
    size_t written = 0;
    const auto put = [&written, apn](char c) {
        if (written < kApnMaxChars) apn[written++] = c;
    };
    for (size_t at = 0; at < length;) {
        const size_t label = bytes[at++];
        if (label == 0 || label > length - at) return false;
        if (written != 0) put('.');
        for (size_t i = 0; i < label; ++i, ++at)
            put(bytes[at] < 128 ? static_cast<char>(bytes[at]) : '\0');
    }
    apn[written] = '\0';
    return true;
}

// The entry of EF ACL that starts at hex (rest characters left): "DD", a
// length byte and as many bytes. A new node, and *used the characters it
// took; null when malformed or out of memory.
SimApnNode *ParseApnEntry(const char *hex, size_t rest, size_t *used) {
    constexpr size_t kHeader = sizeof kApnTag - 1 + 2;
    if (rest < kHeader || std::strncmp(hex, kApnTag, sizeof kApnTag - 1) != 0) return nullptr;
    const int32_t length = HexByte(hex + 2);
    if (length < 1 || rest - kHeader < 2 * static_cast<size_t>(length)) return nullptr;
    unsigned char bytes[kFileMaxBytes];
    for (int32_t i = 0; i < length; ++i) {
        const int32_t b = HexByte(hex + kHeader + 2 * static_cast<size_t>(i));
        if (b < 0) return nullptr;
        bytes[i] = static_cast<unsigned char>(b);
    }
    auto *node = static_cast<SimApnNode *>(std::malloc(sizeof(SimApnNode)));
    if (node == nullptr) return nullptr;
    std::memset(node, 0, sizeof *node);
    if (!DecodeApnLabels(bytes, static_cast<size_t>(length), node->apn)) {
        std::free(node);
        return nullptr;
    }
    *used = kHeader + 2 * static_cast<size_t>(length);
    return node;
}

}  // namespace

namespace atapi::usim {

bool IccidFromBcd(const char *hex, char *out, size_t outSize) {
    if (out == nullptr || outSize == 0) return false;
    out[0] = '\0';
    const size_t length = hex != nullptr ? strnlen(hex, kIccidMaxDigits + 1) : 0;
    AT_LOG_INFO("start, srcLength = %u", static_cast<unsigned>(length));
    if (length % 2 != 0) AT_LOG_ERR("input is odd number");
    if (length == 0 || length > kIccidMaxDigits || length % 2 != 0) {
        AT_LOG_ERR("atIccidInverted Failed");
        return false;
    }
    size_t kept = 0;  // up to the last character that is not filler
    char digits[kIccidMaxDigits];
    for (size_t i = 0; i < length; i += 2) {
        digits[i] = hex[i + 1];
        digits[i + 1] = hex[i];
        if (digits[i] != 'F') kept = i + 1;
        if (digits[i + 1] != 'F') kept = i + 2;
    }
    if (kept >= outSize) {
        AT_LOG_ERR("atIccidInverted Failed");
        return false;
    }
    std::memcpy(out, digits, kept);
    out[kept] = '\0';
    AT_LOG_INFO("end,dstLength = %u", static_cast<unsigned>(kept));
    return true;
}

int32_t HexToBytes(const char *hex, unsigned char *bytes, size_t capacity) {
    if (hex == nullptr || bytes == nullptr) return -1;
    const size_t length = strnlen(hex, 2 * capacity + 1);
    if (length % 2 != 0 || length > 2 * capacity) return -1;
    for (size_t i = 0; i < length / 2; ++i) {
        const int32_t b = HexByte(hex + 2 * i);
        if (b < 0) return -1;
        bytes[i] = static_cast<unsigned char>(b);
    }
    return static_cast<int32_t>(length / 2);
}

bool AppendSpdiPlmns(const unsigned char *bytes, size_t count, char *out, size_t size) {
    if (bytes == nullptr || out == nullptr || count < kSpdiFirstPlmn) return false;
    if (bytes[0] != kSpdiTag || bytes[2] != kPlmnListTag) return false;
    // The outer length decides, not the list's own: so the card writes it.
    const size_t plmns = bytes[1] / kPlmnBytes;
    for (size_t i = 0; i < plmns; ++i) {
        const size_t at = kSpdiFirstPlmn + i * kPlmnBytes;
        if (count - at < kPlmnBytes || bytes[at] == kUnusedByte) break;
        const unsigned char plmn[kPlmnBytes + 1] = {bytes[at], bytes[at + 1], bytes[at + 2], 0};
        char text[8] = "";
        ExtractMccMncFromPlmnId(plmn, text, sizeof text);
        if (text[0] == '\0') continue;
        if (strnlen(out, size) >= size || !api::AppendFormat(out, size, " %s", text)) break;
    }
    return true;
}

int32_t MncLengthFromAd(const char *hex) {
    if (hex == nullptr || strnlen(hex, kAdMncDigit + 1) <= kAdMncDigit) {
        AT_LOG_ERR("response data length error");
        return -1;
    }
    return HexValue(hex[kAdMncDigit]);
}

bool SpnFromHex(const char *hex, char *out, size_t outSize) {
    if (out == nullptr || outSize == 0) return false;
    out[0] = '\0';
    unsigned char bytes[kFileMaxBytes];
    const int32_t count = HexToBytes(hex, bytes, sizeof bytes);
    if (count < 1) return false;
    size_t length = 0;
    for (int32_t i = 1; i < count && bytes[i] != kUnusedByte; ++i) {
        if (length + 1 >= outSize) {
            out[0] = '\0';
            return false;
        }
        const bool printable = bytes[i] >= 0x20 && bytes[i] < 0x7F;
        out[length++] = printable ? static_cast<char>(bytes[i]) : '?';
    }
    out[length] = '\0';
    return true;
}

}  // namespace atapi::usim

extern "C" {

void ExtractMccMncFromPlmnId(const unsigned char *plmn, char *out, int32_t size) {
    // The bytes are BCD: a zero byte is a pair of zero digits (MCC 310 with a
    // three-digit MNC stores 13 00 ..), not the end of the id.
    if (plmn == nullptr || out == nullptr || size < 2) return;
    const unsigned mcc = (plmn[0] & 0x0Fu) * 100 + (plmn[0] >> 4) * 10 + (plmn[1] & 0x0Fu);
    const unsigned mncDigit3 = plmn[1] >> 4;
    char text[16];
    if (mncDigit3 < 15) {
        const unsigned mnc = (plmn[2] & 0x0Fu) * 100 + (plmn[2] >> 4) * 10 + mncDigit3;
        std::snprintf(text, sizeof text, "%03u%03u", mcc, mnc);
    } else {
        std::snprintf(text, sizeof text, "%03u%02u", mcc, (plmn[2] & 0x0Fu) * 10 + (plmn[2] >> 4));
    }
    if (strcpy_s(out, static_cast<size_t>(size), text) != 0) return;
    AT_LOG_INFO("plmn = %s", out);
}

SimApnNode *ParseSimApn(const char *hex) {
    const int32_t entries = hex != nullptr ? HexByte(hex) : -1;
    if (entries <= 0) return nullptr;
    SimApnNode *head = nullptr;
    SimApnNode **tail = &head;
    size_t at = 2;
    const size_t length = std::strlen(hex);
    for (int32_t i = 0; i < entries; ++i) {
        size_t used = 0;
        SimApnNode *node = ParseApnEntry(hex + at, length - at, &used);
        if (node == nullptr) {
            FreeApnList(&head);
            return nullptr;
        }
        *tail = node;
        tail = &node->next;
        at += used;
    }
    return head;
}

void FreeApnList(SimApnNode **head) {
    if (head == nullptr) return;
    while (*head != nullptr) {
        SimApnNode *next = (*head)->next;
        std::free(*head);
        *head = next;
    }
}

}  // extern "C"
