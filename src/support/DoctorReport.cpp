#include "support/DoctorReport.h"

#include "configfiles/ConfigHistory.h"
#include "link/ModuleRegistry.h"
#include "update/SnifferIni.h"

namespace sb::support {

std::string FindingsText(const std::vector<Finding>& findings) {
    std::string text;
    int problems = 0;
    for (const auto& finding : findings) {
        const bool problem = finding.Kind != Trouble::None;
        problems += problem;
        text += std::string(problem ? "PROBLEM " : "ok      ") + finding.Check + ": " + finding.What + "\n";
        if (problem) text += "        fix: " + finding.Fix + "\n";
    }
    return text + (problems == 0 ? "Nothing wrong found.\n"
                                 : std::to_string(problems) + (problems == 1 ? " problem" : " problems") + " found.\n");
}

Json FindingsJson(const std::vector<Finding>& findings) {
    Json list = Json::array();
    int problems = 0;
    for (const auto& finding : findings) {
        const bool problem = finding.Kind != Trouble::None;
        problems += problem;
        list.push_back({{"check", finding.Check}, {"problem", problem}, {"what", JsonBytes(finding.What)},
                        {"fix", problem ? JsonBytes(finding.Fix) : Json()}});
    }
    return {{"problems", problems}, {"findings", list}};
}

std::vector<std::string> ProgramFiles() { return {ModuleRegistryFolder(), HistoryRoot(), SnifferIniPath()}; }

}  // namespace sb::support
