#pragma once
#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "link/SerialPort.h"

// --trace FILE on the device commands: every port a command opens tells each
// byte that passes to FILE (README, "The wire trace"). The commands take
// their ports from MakePort, so the trace is fed from that one place.
namespace sb::cli {

void AddTraceOptions(CLI::App* command);

// The system's port, traced when --trace was given.
std::unique_ptr<SerialPort> MakePort();

// The arguments that give a child working on one port its own trace file:
// FILE with the port's name added ("run.trace.ttyACM0"); none without --trace.
std::vector<std::string> TraceArguments(const std::string& port);

}  // namespace sb::cli
