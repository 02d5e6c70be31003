// Reading V2X replies: the base-10 conversions, which fail when errno is set,
// and the walks that store a parsed reply's fields into the V2X records.
// Each walk returns 0, or -1 at the first bad field (the fields stored
// before it keep their values).
#pragma once

#include <cstdint>

#include "atapi/m2m_ats_v2x.h"

namespace atapi::v2x {

// text in base 10 into out; 0, or the errno of a failed conversion. A value
// outside the 32-bit field is ERANGE, as it is where long has 32 bits; a
// negative text wraps in the unsigned form, as strtoul does.
int ToSigned(const char *text, int32_t &out);
int ToUnsigned(const char *text, uint32_t &out);

// The fields of one row (nextField onwards).
int32_t ReadMode(const AtCmdParseNode *row, AtsV2xModeCfgInfo &info);
int32_t ReadPdcpStats(const AtCmdParseNode *row, AtsV2xPdcpPacketStat &stat);
int32_t ReadPhyStats(const AtCmdParseNode *row, AtsV2xPhyPacketStats &stats);
int32_t ReadRssi(const AtCmdParseNode *row, AtsV2xRssiInfo &info);
// The first row's value is the count of results; the next row's value holds
// the seven values, separated by spaces.
int32_t ReadRsrp(const AtCmdParseNode *first, AtsV2xRsrpInfo &info);

}  // namespace atapi::v2x
