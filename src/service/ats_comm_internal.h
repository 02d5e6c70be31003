// Pieces of the device identity and radio settings family shared by its
// source files and reached by its tests; none of them is exported.
#pragma once

#include <cstddef>
#include <cstdint>

#include "api/command.h"
#include "atapi/ats_comm.h"

namespace atapi::comm {

// The accepted range of the fields read as non-negative 32-bit numbers.
inline constexpr int64_t kNonNegative = 2147483647;

// What the settings log when a line was not built.
inline constexpr char kFormatError[] = "snprintf_s error";

// Forgets the published versions so that the next AtVersion asks the
// module. For tests only: no AtVersion may run at the same time.
void ResetVersionCache();

// The reply decoders, each over text the module sent; they trust none of it.

// One line of a ^PHYNUM reply as a PhyNumList keeps it.
inline constexpr size_t kPhyNumLineSize = sizeof PhyNumList::lines[0];

// The text after the line's first ':' up to the line end, without the blanks
// in front, into out; false (out as the bounded copy left it) when the line
// has no ':' or the text does not fit.
bool StorePhyNumLine(const char *line, char (&out)[kPhyNumLineSize]);

// Stores a ^VERSION value in the field of v of the first keyword it contains
// (EXTD, EXTH, EXTS, INI, EXTU, tried in that order) and clears v.errorId;
// false when it contains none, or does not fit that field (left empty).
bool StoreVersionLine(const char *value, VersionInfo &v);

// The text behind the five-character keyword (colon included) in line, with
// line cut at its first line end; null (line untouched) without the keyword.
const char *CutVersionText(const char *keyword, char *line);

}  // namespace atapi::comm
