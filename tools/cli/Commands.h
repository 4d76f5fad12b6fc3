#pragma once
#include <CLI/CLI.hpp>

// Each group of commands registers itself on the application. A command that
// fails prints its reason on standard error and throws CLI::RuntimeError with
// its exit status (listed in the footer of --help).
namespace sb::cli {

// The exit statuses of all commands, as the footer of --help lists them.
inline constexpr int kExitUsage = 1;
inline constexpr int kExitCatalogRefused = 2;
inline constexpr int kExitNoModule = 3;  // or a port error
inline constexpr int kExitNotConfirmed = 4;
inline constexpr int kExitTransferFailed = 5;
inline constexpr int kExitNoFile = 6;  // firmware file missing, empty or unreadable
inline constexpr int kExitNoConfiguration = 7;

void AddCatalogCommands(CLI::App& app);  // decode, set
void AddDeviceCommands(CLI::App& app);   // ports, info, boot, run, write
void AddFlashCommand(CLI::App& app);     // flash

}  // namespace sb::cli
