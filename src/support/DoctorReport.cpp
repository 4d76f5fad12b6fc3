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
        // A check that found nothing wrong here may still give advice: a rule
        // missing where the user reaches the module anyway.
        const char* mark = problem ? "PROBLEM " : finding.Fix.empty() ? "ok      " : "note    ";
        text += std::string(mark) + finding.Check + ": " + finding.What + "\n";
        if (!finding.Fix.empty()) text += "        fix: " + finding.Fix + "\n";
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
                        {"fix", finding.Fix.empty() ? Json() : JsonBytes(finding.Fix)}});
    }
    return {{"problems", problems}, {"findings", list}};
}

std::vector<std::string> ProgramFiles() { return {ModuleRegistryFolder(), HistoryRoot(), SnifferIniPath()}; }

}  // namespace sb::support
