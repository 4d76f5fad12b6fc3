#include "Commands.h"

namespace sb::cli {

void AddDeviceCommands(CLI::App& app) {}

}  // namespace sb::cli
