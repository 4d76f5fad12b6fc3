#pragma once
#include <optional>

#include "config/Types.h"
#include "link/SerialPort.h"
#include "link/StatusText.h"

namespace sb {

// The eleven exchanges of a read, in their order, on an open port, each into
// its field of info: GETSN, GETVER, GETNAME, GETPDATE, GETVIN, GETAPPNAME,
// GETAPPVER, GETHWVER, GETAPPCFG, GETINFOFILE trimmed, GETAPPINFO as it came.
// No wait between them and no test of an answer. An exchange whose port
// operation fails is skipped and leaves its field as it was; the first such
// failure is answered.
std::optional<PortError> ReadModuleInfo(SerialPort& port, StatusText& status, DeviceInfo& info);

// On the open port: the module's catalog (GETINFOFILE), loaded; nothing when
// the module has none that LoadCatalog takes (reason says why, if it can).
// A failing port operation throws PortError.
std::optional<DeviceInfo> ReadModuleCatalog(SerialPort& port, StatusText& status, std::string& reason);

}  // namespace sb
