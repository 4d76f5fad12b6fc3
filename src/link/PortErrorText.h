#pragma once
#include <string>

#include "link/SerialPort.h"

namespace sb {

// A port error message: the action's own words on the first line, the port
// and the system's reason on the second, with a pointer to where the README
// explains access rights to serial devices and to the doctor, which names
// the cause on this machine.
inline constexpr const char* kAccessSection = "Serial port access";
inline constexpr const char* kDoctorPointer = "Help > Diagnose connection or servicebay-cli doctor names the cause";
std::string PortErrorText(const std::string& caption, const PortError& failure);

}  // namespace sb
