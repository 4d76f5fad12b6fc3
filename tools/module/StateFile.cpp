#include "StateFile.h"

#include <unistd.h>

#include "helpers/WholeFile.h"

namespace sb::module {

bool WriteStateFile(const std::string& path, const ModuleState& state) {
    if (path.empty()) return true;
    const std::string text = "Mode=" + state.mode + "\nDevice=" + state.device +
                             "\nProcessId=" + std::to_string(::getpid()) + "\nAppConfig=" + state.appConfig +
                             "\nTransfer=" + state.transfer + "\nFirmwareSize=" + std::to_string(state.firmwareSize) +
                             "\nFirmwareBlocks=" + std::to_string(state.firmwareBlocks) + "\n";
    return ReplaceFileAtomically(path, text);
}

}  // namespace sb::module
