#include "Commands.h"

namespace sb::cli {

void AddCatalogCommands(CLI::App& app) {}

}  // namespace sb::cli
