#pragma once
#include <cstdint>
#include <string>

#include "config/Types.h"

// The details pane beside the option tree: what one option is and where
// its value stands.
namespace sb {

// The lines that describe the option at optionIndex of the catalog: name,
// type, bits, the value of CfgImage in hex and decimal with the units, the
// range, the list entries or bit-field members, whether the image's
// configuration hides or locks it, its value in the predefined
// configuration at chosenIndex (none when out of range) and the value that
// was read. Empty for an index outside the catalog.
std::string OptionDetails(const DeviceInfo& device, int32_t optionIndex, int32_t chosenIndex);

}  // namespace sb
