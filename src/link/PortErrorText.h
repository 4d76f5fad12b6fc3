#pragma once
#include <string>

#include "link/SerialPort.h"

namespace sb {

// A port error message: the action's own words on the first line, the port
// and the system's reason on the second, with a pointer to where the README
// explains access rights to serial devices.
std::string PortErrorText(const std::string& caption, const PortError& failure);

}  // namespace sb
