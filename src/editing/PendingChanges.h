#pragma once
#include <string>
#include <vector>

#include "config/Types.h"
#include "configfiles/ConfigCompare.h"

// What a write would change: the working image against the configuration
// that was read from the module or opened from a file (the entry "READED
// CONFIG" that stands last in the list), compared option by option as the
// configuration files compare.
namespace sb {

// The image that was read or opened; empty when the list holds none.
std::string ReadImage(const DeviceInfo& device);

// The options whose value in CfgImage differs from the read one, in catalog
// order; nothing when no image was read. Side A is the read image, side B
// the working one; neither tells whether a configuration hides the option.
ConfigComparison PendingChanges(const DeviceInfo& device);

// One flag a catalog option: whether it is among the pending changes.
std::vector<bool> ChangedOptions(const DeviceInfo& device);

}  // namespace sb
