#pragma once
#include <memory>
#include <string>

#include "CommandSet.h"
#include "Faults.h"
#include "LinkPath.h"
#include "Profile.h"
#include "PseudoTerminal.h"
#include "StateFile.h"
#include "Wire.h"

namespace sb::module {

struct ModuleSettings {
    ModuleProfile profile;
    ModuleFaults faults;
    bool startInBoot = false;
    std::string entryName;    // of the registry entry
    std::string linkPath;     // empty: no link
    std::string statePath;    // empty: no state file
    int reenumerateMs = 200;  // how long the module is away when it changes its mode
    Delivery delivery = Delivery::UsbPackets;
    bool quiet = false;
};

// The module on a pseudo-terminal. Running its firmware it answers nothing;
// an opening at 300 baud held for a while and closed sends it to its boot
// loader, which answers the framed commands, receives firmware behind
// CR "BOOT" CR, and starts the firmware again on "RUN". Each change of mode
// is a new device, as a real module re-enumerates on USB: the old device
// goes away, and a moment later a new one appears in the registry, at the
// link path, in the state file and as a line on standard output.
class VirtualModule {
public:
    // stopFd turns readable when the module is to end.
    VirtualModule(ModuleSettings settings, int stopFd);
    ~VirtualModule();
    VirtualModule(const VirtualModule&) = delete;
    VirtualModule& operator=(const VirtualModule&) = delete;

    // Serves until a stop or until the device vanishes; throws
    // std::system_error when the platform fails it.
    void Run();

private:
    enum class Mode { Running, Boot };

    void Appear();
    void Disappear() noexcept;
    void Reenumerate(Mode to);
    bool ServeRunning(Wire& wire);
    bool ServeBoot(Wire& wire);
    bool TakeLine(Wire& wire, const std::string& line);
    void Reply(Wire& wire, const std::string& line);
    void ReceiveFirmware(Wire& wire);
    bool StoreFirmware(const std::string& image);
    void SaveState(const std::string& mode, const std::string& device);
    void Log(const std::string& text) const;

    ModuleSettings settings_;
    int stopFd_;
    CommandSet commands_;
    std::unique_ptr<PseudoTerminal> pty_;
    LinkPath link_;
    Mode mode_;
    ModuleState state_;
    int commandsAnswered_ = 0;
    bool published_ = false;
};

}  // namespace sb::module
