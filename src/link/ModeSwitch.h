#pragma once
#include <functional>
#include <optional>
#include <string>

#include "link/SerialPort.h"
#include "link/StatusText.h"

// The module's two faces on USB, and the way from one to the other. Each step
// of a switch that fails on the port is skipped and the next one runs; the
// waits pass even when the port could not be opened. Neither switch scans:
// the caller does that behind it, and a module that re-enumerates comes back
// under a new name.
namespace sb {

inline constexpr double kBootOpeningMs = 500;

// Opens the port of a running module at 300 baud, holds it 500 ms and closes
// it: the module takes that as the order to restart into its boot loader.
// Answers the failure of the opening, if there was one.
std::optional<PortError> SwitchToBoot(SerialPort& port, const std::string& portName);

// Probes a module in boot mode with GETSN at 115200 baud, drops what came,
// sends the run command and hands what the module said to it, as it came
// (also when empty), to showAnswer. showAnswer is not called when that input
// could not be read. Answers the failure of the opening, if there was one.
std::optional<PortError> SwitchToRunning(SerialPort& port, const std::string& portName, StatusText& status,
                                         const std::function<void(const std::string&)>& showAnswer);

}  // namespace sb
