#pragma once
#include <string>

#include "editing/ValueEntry.h"

// The decisions of frmIntValEdit: the radix switch of its three boxes and the
// test of an entry. The boxes stand for 32-bit unsigned numbers, shown as 8
// hex digits or as a decimal number.
namespace sb {

enum class Radix { Hex, Dec };

struct IntBoxes {
    std::string Min;    // txtMin
    std::string Max;    // txtMax
    std::string Value;  // txtOptValue
};

// Converts txtMax, txtMin and txtOptValue, in this order, into the radix
// switched to, without any test: whatever stands in a box goes through the
// conversion as it is. A number too large for four bytes stays as it was.
void SwitchIntRadix(IntBoxes& boxes, Radix to);

// cmdOK: the entry in txtOptValue read in the form's radix and held against
// txtMin and txtMax (both belong to the range). Accepted in "Hex" as the
// typed digits in upper case (1 to 8 of them), in "Dec" as 8 hex digits.
// A refusal puts editValue back, in the form's radix.
EntryCheck CheckIntEntry(Radix radix, const IntBoxes& boxes, const std::string& editValue);

}  // namespace sb
