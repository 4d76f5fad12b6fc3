#pragma once
#include <string>
#include <vector>

#include "link/PortLists.h"
#include "support/SystemView.h"

// The link doctor: the few well-known reasons why a module cannot be reached
// on a Linux machine, each looked for by a check of its own that says what is
// wrong and the command or step that puts it right.
namespace sb::support {

// What kind of trouble a finding names; the command line ends with a status
// for the first kind found, in this order: without a module the rest says
// little.
enum class Trouble {
    None,
    NoModule,      // no module is plugged in, or the port is none of the module's
    Access,        // rights on the device node, the udev rule
    OtherProgram,  // ModemManager, brltty, a program holding the port
    Mode,          // the module runs where its boot loader is needed, or the reverse
    Folder,        // a folder the program writes cannot be written
};

struct Finding {
    std::string Check;  // short name of the check: "udev rule", "access", ...
    Trouble Kind = Trouble::None;  // None: the check found nothing wrong
    std::string What;   // what the check saw
    std::string Fix;    // the command or step that fixes it; empty when nothing is wrong
};

struct DoctorRequest {
    // The module asked about: its device path (or port name) and its
    // identity as the inventory gives it; empty: every module plugged in.
    std::string Port;
    std::string PNPDeviceID;
    ModuleMode Needed = ModuleMode::None;  // the mode the next command needs; None: either
    std::vector<std::string> Folders;      // what the program writes: files and folders
};

std::vector<Finding> RunDoctor(const SystemView& system, const DoctorRequest& request);

// The worst trouble of the findings (the first in the order of Trouble).
Trouble WorstTrouble(const std::vector<Finding>& findings);

// The checks one by one. `modules` are the serial devices with one of the
// module's USB identities (of the port asked about, when one is).
std::vector<SerialDevice> ModuleDevices(const SystemView& system, const std::string& port);
// The rule is needed where a module cannot be reached without it: a node
// that cannot be opened, ModemManager running, or no module to tell.
std::vector<Finding> CheckUdevRule(const SystemView& system, const std::vector<SerialDevice>& modules, bool needed);
std::vector<Finding> CheckAccess(const SystemView& system, const std::vector<std::string>& nodes,
                                 const std::vector<SerialDevice>& modules);
std::vector<Finding> CheckModemManager(const SystemView& system, const std::vector<SerialDevice>& modules);
std::vector<Finding> CheckBrltty(const SystemView& system);
std::vector<Finding> CheckPortHolders(const SystemView& system, const std::vector<std::string>& nodes);
std::vector<Finding> CheckMode(const DoctorRequest& request);
std::vector<Finding> CheckFolders(const SystemView& system, const std::vector<std::string>& paths);

// The names of running programs by process id, from /proc/<pid>/comm.
std::vector<std::pair<pid_t, std::string>> Processes(const SystemView& system);
bool IsRunning(const SystemView& system, const std::string& program);

}  // namespace sb::support
