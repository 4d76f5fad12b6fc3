#pragma once
#include <CLI/CLI.hpp>
#include <string>

// flash --all, flash --log and station: the production line from the command
// line. Each module's download runs as `servicebay-cli flash --port P ...
// --json --progress-json` of its own; this program only starts them, shows
// their progress, writes the log and the summary.
namespace sb::cli {

struct ProductionOptions {
    std::string file;
    bool production = false;
    int retries = 0;
    std::string log;
    std::string station;  // the station's name in the log
    bool runAfter = false;
    bool all = false;  // flash only
    int count = 0;     // station only
    std::string recipe;  // its steps for each module; file, production and runAfter are then its
};

// Adds --all, --log and --station to the flash command and returns --all; the
// caller runs FlashAll when --all or --log was given.
CLI::Option* AddFlashAllOptions(CLI::App* flash, ProductionOptions& options);
// Every module in boot mode, or the one on port; with a recipe, its steps.
void FlashAll(ProductionOptions options, const std::string& port = "");

void AddStationCommand(CLI::App& app);  // station

}  // namespace sb::cli
