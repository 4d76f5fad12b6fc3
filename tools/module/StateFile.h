#pragma once
#include <string>

namespace sb::module {

// Where the module stands, for tests and scripts: replaced as a whole on
// every change, so a reader never sees half of it. Lines KEY=VALUE:
//   Mode          running, boot, switching (between two devices), stopped, vanished
//   Device        the slave's path (empty while switching and at the end)
//   ProcessId     the module's process
//   AppConfig     the configuration image now, hex
//   Transfer      none, or the outcome of the last transfer (complete, ...)
//   FirmwareSize  bytes of the last image received whole, padding included
//   FirmwareBlocks  its blocks
struct ModuleState {
    std::string mode;
    std::string device;
    std::string appConfig;
    std::string transfer = "none";
    long firmwareSize = 0;
    int firmwareBlocks = 0;
};

// False when the file cannot be written; an empty path writes nothing.
bool WriteStateFile(const std::string& path, const ModuleState& state);

}  // namespace sb::module
