#pragma once
#include <CLI/CLI.hpp>

#include "configfiles/ConfigFileError.h"
#include "production/Recipe.h"

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
// A configuration file that cannot be taken, one status for each fault.
inline constexpr int kExitFileUnreadable = 8;
inline constexpr int kExitFileNotJson = 9;
inline constexpr int kExitFileCutShort = 10;
inline constexpr int kExitFileOtherFormat = 11;
inline constexpr int kExitFileOtherVersion = 12;
inline constexpr int kExitFileBadField = 13;
inline constexpr int kExitFileCatalogRefused = 14;
inline constexpr int kExitFileWrongLength = 15;
inline constexpr int kExitFileNotHex = 16;
inline constexpr int kExitFileCannotWrite = 17;
inline constexpr int kExitDoesNotFit = 18;
inline constexpr int kExitNotVerified = 19;
inline constexpr int kExitDiffer = 20;
inline constexpr int kExitSerialUnknown = 21;
inline constexpr int kExitSerialAmbiguous = 22;
inline constexpr int kExitModuleFailed = 23;  // flash --all, station: a module was not programmed
inline constexpr int kExitNoLog = 24;
inline constexpr int kExitFirmwareChanged = 25;
// Production recipes.
inline constexpr int kExitRecipeUnreadable = 30;
inline constexpr int kExitRecipeBadField = 31;
inline constexpr int kExitRecipeFileMissing = 32;
inline constexpr int kExitRecipeHashDiffers = 33;
inline constexpr int kExitRecipeStepFailed = 34;

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
    {kExitFileUnreadable, "configuration file missing or unreadable"},
    {kExitFileNotJson, "configuration file not JSON"},
    {kExitFileCutShort, "configuration file cut short"},
    {kExitFileOtherFormat, "not a configuration file"},
    {kExitFileOtherVersion, "configuration file of another version"},
    {kExitFileBadField, "configuration file with a field missing or wrong"},
    {kExitFileCatalogRefused, "the configuration's catalog refused"},
    {kExitFileWrongLength, "the configuration's image of the wrong length"},
    {kExitFileNotHex, "the configuration's image no hex text"},
    {kExitFileCannotWrite, "configuration file cannot be written"},
    {kExitDoesNotFit, "the configuration does not fit the module"},
    {kExitNotVerified, "the module holds another configuration than was written"},
    {kExitDiffer, "the configurations differ"},
    {kExitSerialUnknown, "no module has the serial"},
    {kExitSerialAmbiguous, "two or more modules have the serial"},
    {kExitModuleFailed, "a module of the run was not programmed"},
    {kExitNoLog, "the log file cannot be written"},
    {kExitFirmwareChanged, "the firmware file changed or went away while the station ran"},
    {kExitRecipeUnreadable, "recipe missing, unreadable or not JSON"},
    {kExitRecipeBadField, "not a recipe, or a field of the recipe missing, wrong or unknown"},
    {kExitRecipeFileMissing, "a file of the recipe missing, unreadable or refused"},
    {kExitRecipeHashDiffers, "a file of the recipe has another SHA-256 than the recipe gives"},
    {kExitRecipeStepFailed, "the module failed a step of the recipe"},
};

inline constexpr int ExitStatusOf(ConfigFault fault) {
    switch (fault) {
        case ConfigFault::Unreadable: return kExitFileUnreadable;
        case ConfigFault::NotJson: return kExitFileNotJson;
        case ConfigFault::CutShort: return kExitFileCutShort;
        case ConfigFault::OtherFormat: return kExitFileOtherFormat;
        case ConfigFault::OtherVersion: return kExitFileOtherVersion;
        case ConfigFault::BadField: return kExitFileBadField;
        case ConfigFault::CatalogRefused: return kExitFileCatalogRefused;
        case ConfigFault::WrongImageLength: return kExitFileWrongLength;
        case ConfigFault::NotHex: return kExitFileNotHex;
        case ConfigFault::CannotWrite: return kExitFileCannotWrite;
    }
    return kExitUsage;
}

void AddCatalogCommands(CLI::App& app);  // decode, set
void AddDeviceCommands(CLI::App& app);   // ports, info, boot, run, write
void AddFlashCommand(CLI::App& app);     // flash
void AddConfigFileCommands(CLI::App& app);  // save, diff

// Whether a path names a configuration file (by its extension) rather than
// a catalog document.
bool IsConfigFilePath(const std::string& path);
void AddStationCommand(CLI::App& app);   // station
void AddRecipeCommands(CLI::App& app);   // recipe check

// The recipe at path when nothing speaks against it; otherwise every reason
// on standard error, and the exit status of the first one.
Recipe RecipeOrFail(const std::string& path);

}  // namespace sb::cli
