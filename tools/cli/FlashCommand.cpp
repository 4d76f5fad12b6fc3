#include "Commands.h"

namespace sb::cli {

void AddFlashCommand(CLI::App& app) {}

}  // namespace sb::cli
