#pragma once
#include <CLI/CLI.hpp>

// Each group of commands registers itself on the application. A command that
// fails prints its reason on standard error and throws CLI::RuntimeError with
// its exit status (listed in the footer of --help).
namespace sb::cli {

void AddCatalogCommands(CLI::App& app);  // decode, set
void AddDeviceCommands(CLI::App& app);   // ports, info, boot, run, write
void AddFlashCommand(CLI::App& app);     // flash

}  // namespace sb::cli
