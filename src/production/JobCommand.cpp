#include "production/JobCommand.h"

namespace sb {

std::vector<std::string> JobCommand(const JobProgram& program, const FirmwareFile& firmware, const ModuleJob& job) {
    if (job.Step == JobStep::EnterBoot) return {program.Program, "boot", "--port", job.Port, "--json"};
    std::vector<std::string> argv = {program.Program, "flash", "--port", job.Port, firmware.CopyPath(), "--json",
                                     "--progress-json"};
    // The child checks the recipe again, and the copy's bytes against it.
    if (!program.Recipe.empty()) {
        argv.insert(argv.end(), {"--recipe", program.Recipe, "--line-child"});
        return argv;
    }
    if (program.Production) argv.push_back("--production");
    if (program.RunAfter) argv.push_back("--run-after");
    return argv;
}

}  // namespace sb
