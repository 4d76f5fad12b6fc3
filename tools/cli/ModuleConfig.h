#pragma once
#include <optional>
#include <string>

#include "config/Types.h"
#include "link/SerialPort.h"
#include "link/ReadModule.h"
#include "link/StatusText.h"

// The module's configuration as the configuration-file commands take it.
namespace sb::cli {

// On the open port: the module's catalog (GETINFOFILE), loaded.
using sb::ReadModuleCatalog;

}  // namespace sb::cli
