#pragma once
#include <string>
#include <vector>

#include "production/FirmwareFile.h"
#include "production/ProductionLine.h"

// The program line that carries out one job of the line: a `boot` or a
// `flash` of servicebay-cli, one try each, for the line counts and logs each
// try itself. A download reads the sealed copy of the firmware, so every
// module gets the bytes whose SHA-256 the log names.
namespace sb {

struct JobProgram {
    std::string Program;      // servicebay-cli, by its path
    bool Production = false;  // the production record behind each download
    bool RunAfter = false;    // RUN behind each download
    // A recipe's path: each download carries out its steps instead, and
    // the recipe says whether to record and to run.
    std::string Recipe;
};

std::vector<std::string> JobCommand(const JobProgram& program, const FirmwareFile& firmware, const ModuleJob& job);

}  // namespace sb
