#pragma once
#include <cstdint>
#include <string>

#include "config/Types.h"

namespace sb {

// Parses device.InfoFile, the catalog document, into device.Options and
// device.PredefCfgs, which it empties first. False when the catalog is
// refused; the record then holds what was read up to that point, and
// callers drop it. reason says why: the parser's reason when the document
// is not well-formed, else the rule of the format that it breaks, naming
// options and configurations by their index, never by their texts. It is
// empty after a load. notWellFormed, where given, tells whether the reason
// is the parser's: the window shows only that one in a box of its own, ahead
// of its message, while the command-line tool and the file reader say every
// reason. Throws nothing but std::bad_alloc: what the helpers refuse leaves
// its field at its default.
bool LoadCatalog(DeviceInfo& device, std::string& reason, bool* notWellFormed = nullptr);

// The index of the first predefined configuration whose Id equals id
// exactly, or -1.
int32_t FindPredefCfgById(const DeviceInfo& device, const std::string& id);

}  // namespace sb
