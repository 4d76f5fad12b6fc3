#pragma once
#include <CLI/CLI.hpp>
#include <string>

// flash --all and station: the production line from the command line. Each
// module's download runs as `servicebay-cli flash --port P ... --json
// --progress-json` of its own; this program only starts them, shows their
// progress, writes the log and the summary.
namespace sb::cli {

struct ProductionOptions {
    std::string file;
    bool production = false;
    int retries = 0;
    std::string log;
    bool all = false;  // flash only
    // station only
    bool runAfter = false;
    int count = 0;
};

// Adds --all and --log to the flash command; the caller runs FlashAll when
// the option that is returned was given.
CLI::Option* AddFlashAllOptions(CLI::App* flash, ProductionOptions& options);
void FlashAll(const ProductionOptions& options);

void AddStationCommand(CLI::App& app);  // station

}  // namespace sb::cli
