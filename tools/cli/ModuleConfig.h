#pragma once
#include <optional>
#include <string>

#include "config/Types.h"
#include "link/SerialPort.h"
#include "link/StatusText.h"

// The module's configuration as the configuration-file commands take it.
namespace sb::cli {

// On the open port: the module's catalog (GETINFOFILE), loaded; nothing when
// the module has none that LoadCatalog takes (reason says why, if it can).
std::optional<DeviceInfo> ReadModuleCatalog(SerialPort& port, StatusText& status, std::string& reason);

}  // namespace sb::cli
