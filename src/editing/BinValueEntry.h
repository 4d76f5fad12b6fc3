#pragma once
#include <string>

#include "editing/ValueEntry.h"

namespace sb {

// cmdOK of frmBinValEdit: hex text of exactly `length` bytes. Blanks, line
// ends and 0x prefixes may stand in the entry, in either case; the accepted
// value is the bytes' hex text with one blank between bytes. A refusal puts
// editValue back.
EntryCheck CheckBinEntry(const std::string& entry, int length, const std::string& editValue);

// The number in txtLen, " 3" for three bytes.
int LengthOfBox(const std::string& lenText);
// The text a caller puts into txtLen: the length in decimal behind one blank.
std::string LengthBoxText(int length);

}  // namespace sb
