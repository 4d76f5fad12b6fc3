#pragma once
#include <CLI/CLI.hpp>

// Each group of commands registers itself on the application. A command that
// fails prints its reason on standard error and throws CLI::RuntimeError with
// its exit status (listed in the footer of --help).
namespace sb::cli {

// The exit statuses of all commands: the one table of them, from which the
// footer of --help is written (the README repeats it).
inline constexpr int kExitSuccess = 0;
inline constexpr int kExitUsage = 1;
inline constexpr int kExitCatalogRefused = 2;
inline constexpr int kExitNoModule = 3;  // or a port error
inline constexpr int kExitNotConfirmed = 4;
inline constexpr int kExitTransferFailed = 5;
inline constexpr int kExitNoFile = 6;  // firmware file missing, empty or unreadable
inline constexpr int kExitNoConfiguration = 7;

struct ExitStatus {
    int Code;
    const char* Meaning;
};
inline constexpr ExitStatus kExitStatuses[] = {
    {kExitSuccess, "success"},
    {kExitUsage, "usage error"},
    {kExitCatalogRefused, "catalog refused"},
    {kExitNoModule, "no module or port error"},
    {kExitNotConfirmed, "the module did not confirm"},
    {kExitTransferFailed, "firmware transfer failed"},
    {kExitNoFile, "firmware file missing, empty or unreadable"},
    {kExitNoConfiguration, "no configuration of the catalog has the image's Id"},
};

void AddCatalogCommands(CLI::App& app);  // decode, set
void AddDeviceCommands(CLI::App& app);   // ports, info, boot, run, write
void AddFlashCommand(CLI::App& app);     // flash

}  // namespace sb::cli
