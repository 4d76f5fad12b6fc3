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
inline constexpr int kExitSerialUnknown = 10;
inline constexpr int kExitSerialAmbiguous = 11;
inline constexpr int kExitModuleFailed = 12;  // flash --all, station: a module was not programmed
inline constexpr int kExitNoLog = 13;
inline constexpr int kExitFirmwareChanged = 14;

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
    {kExitSerialUnknown, "no module has the serial"},
    {kExitSerialAmbiguous, "two or more modules have the serial"},
    {kExitModuleFailed, "a module of the run was not programmed"},
    {kExitNoLog, "the log file cannot be written"},
    {kExitFirmwareChanged, "the firmware file changed or went away while the station ran"},
};

void AddCatalogCommands(CLI::App& app);  // decode, set
void AddDeviceCommands(CLI::App& app);   // ports, info, boot, run, write
void AddFlashCommand(CLI::App& app);     // flash
void AddStationCommand(CLI::App& app);   // station

}  // namespace sb::cli
