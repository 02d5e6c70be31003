// Pieces of the SIM file access family shared by its source files, atcli
// and the tests; none of them is exported. The decoders take the hex text
// the module returns for a file and trust none of its lengths.
#pragma once

#include <cstddef>
#include <cstdint>

#include "atapi/ats_usim.h"

namespace atapi::usim {

// The card's type as the path tables know it (the "sim_type" of ^CARDMODE).
inline constexpr uint32_t kCardSim = 1;
inline constexpr uint32_t kCardUsim = 2;

// The directory of fileId on a card of cardMode, or null (logged) when the
// mode has no table or the table no path for the file.
const char *FilePath(uint32_t cardMode, int32_t fileId);

// Forgets the card's type so that the next AtCrsm asks the module. For
// tests only: no AtCrsm may run at the same time.
void ResetCardModeCache();

// The +CNUM lines of a reply's text into l: a heap array of one entry per
// line (name, number and type; the caller frees it) and its count. -1 when
// there is no line or more than 255, or a line does not parse or a text
// does not fit its field (count set to 0, nothing kept).
int32_t StoreCnumLines(const char *report, CnumList *l);

// The ICCID digits of EF ICCID's hex text: every pair of characters swapped,
// the 'F' filler at the end dropped. false (out empty) when hex is empty,
// longer than 64 characters, of odd length, or the digits do not fit out.
bool IccidFromBcd(const char *hex, char *out, size_t outSize);

// Two hex digits per byte into bytes (capacity bytes); the number of bytes,
// or -1 when hex has an odd length, a character that is not a hex digit, or
// more bytes than fit.
int32_t HexToBytes(const char *hex, unsigned char *bytes, size_t capacity);

// Appends " MCCMNC" to out for each PLMN of EF SPDI's bytes (a tag A3 and
// a PLMN list tag 80) while out is shorter than size; false when the bytes
// are not such a file.
bool AppendSpdiPlmns(const unsigned char *bytes, size_t count, char *out, size_t size);

// The MNC length of EF AD's hex text: the low digit of its fourth byte, or
// -1 when the text is too short or that character is not a hex digit.
int32_t MncLengthFromAd(const char *hex);

// The service provider name of EF SPN's hex text: the display condition
// byte skipped, the name's bytes up to the first 0xFF filler, each byte
// outside printable ASCII shown as '?'. false (out empty) when hex is not
// hex or the name does not fit out.
bool SpnFromHex(const char *hex, char *out, size_t outSize);

}  // namespace atapi::usim
