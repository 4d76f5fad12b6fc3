#pragma once
#include <string>

#include "editing/ValueEntry.h"

// The decisions of frmStrValEdit. Its EditValue is a byte string; the value
// box holds it as hex text ("Hex") or as the characters themselves ("ASCII").
namespace sb {

enum class TextMode { Hex, Ascii };

// cmdOK: an entry of exactly `length` bytes. In "Hex" the box is read as hex
// text and a refusal shows editValue as hex with blanks between the bytes;
// in "ASCII" the box's characters are the bytes and a refusal shows editValue
// itself.
EntryCheck CheckStrEntry(TextMode mode, const std::string& entry, int length, const std::string& editValue);

// The box's text after a switch of the mode, without any test: to "Hex" the
// hex text of the characters, to "ASCII" the bytes of the hex text (empty for
// an odd number of digits; characters that are no digits are dropped). A box
// beyond the conversions' limit of 32,767 characters is refused like a bad
// entry ("Wrong value entered"): it shows editValue, the last good value, in
// the mode switched to.
struct ModeSwitch {
    bool Refused = false;
    std::string BoxText;
};
ModeSwitch SwitchTextMode(const std::string& box, TextMode to, const std::string& editValue);

}  // namespace sb
