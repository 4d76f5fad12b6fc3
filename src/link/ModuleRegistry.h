#pragma once
#include <string>
#include <vector>

// The folder in which each running virtual module publishes one small file,
// so that the port inventory lists it beside the system's serial ports.
namespace sb {

struct RegisteredModule {
    std::string DevicePath;   // the pseudo-terminal to open, e.g. /dev/pts/5
    std::string PNPDeviceID;  // e.g. USB\VID_0483&PID_5740\SB0001
    std::string Description;  // shown as tool tip
};

// $SERVICEBAY_REGISTRY, else $XDG_RUNTIME_DIR/servicebay, else /tmp/servicebay-<uid>.
std::string ModuleRegistryFolder();

// Writes (atomically) or replaces the entry named `entryName`.
void PublishModule(const std::string& entryName, const RegisteredModule& module);
void WithdrawModule(const std::string& entryName);

// The entries whose device still exists, in a stable order; entries that
// vanish while they are read are skipped.
std::vector<RegisteredModule> ListRegisteredModules();

}  // namespace sb
