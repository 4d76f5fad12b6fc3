#pragma once
#include <string>

#include "config/OptionTree.h"
#include "config/Types.h"

// One option in and out of the bit-packed configuration image, and the
// option tree that shows an image. Nothing here shows a message. The only
// failure thrown is OverflowError (helpers/Overflow.h), where a text passes
// the helpers' limits: a BIN or BITFIELD field of more than 32,767 bytes,
// which no image of a loaded catalog holds, or an over-long value to set.
namespace sb {

// The refusal of the image codec, as the user sees it.
inline constexpr const char* kWrongValue = "Wrong Value";

// The Id that the image names: its first four bytes as a number, least
// significant byte first, in 8 hex digits. Missing bytes count as zero.
std::string ImageId(const std::string& image);

// The option's raw value in the image: INT as 8 hex digits, BIN and
// BITFIELD as hex text of the field's bytes, STR as the bytes themselves.
// shown receives what the user sees: the text of the first list entry of
// that value or the raw value, with the units behind (a BITFIELD shows its
// raw value alone). An option that doesn't lie wholly inside the image, or
// of an unknown type, gives the empty text and shows "Wrong Value".
std::string GetOptionValue(const std::string& image, const OptionRec& option, std::string& shown);

// Writes value, in the raw form of the option's type, into the option's
// bits of the image and answers the shown text of that value. "INT" takes
// any text that HexToUint32 reads, "BIN" and "BITFIELD" any text that
// HexToBytes reads (and which it may clean in the caller's value). A value
// with fewer bytes than the field, an option beyond the image or of an
// unknown type is refused with "Wrong Value" and leaves the image alone.
std::string SetOptionValue(std::string& image, const OptionRec& option, std::string& value);

// Makes tree show the image: the configuration whose Id the image's first
// four bytes name, with the options its VisibleMask shows, their values,
// and which list entries or members are in force. When the tree already
// shows that configuration its nodes stay and only their texts, tags and
// states change; another configuration clears it first. False when no
// configuration has the image's Id: the tree is then empty.
bool BuildOptionTree(const std::string& image, const DeviceInfo& device, OptionTree& tree);

}  // namespace sb
