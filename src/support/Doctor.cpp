#include "support/Doctor.h"

#include "support/UdevRules.h"

namespace sb::support {
namespace {

std::string DevicePath(const std::string& port) { return port.find('/') == std::string::npos ? "/dev/" + port : port; }

std::string Parent(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

std::vector<SerialDevice> ModuleDevices(const SystemView& system, const std::string& port) {
    std::vector<SerialDevice> modules;
    for (auto& device : system.SerialDevices())
        if (ModuleIdentity(device) && (port.empty() || device.DevNode == DevicePath(port)))
            modules.push_back(std::move(device));
    return modules;
}

std::vector<Finding> CheckMode(const DoctorRequest& request) {
    constexpr const char* kCheck = "mode";
    if (request.Port.empty() || request.Needed == ModuleMode::None) return {};
    const ModuleMode mode = ModeOfPort(request.PNPDeviceID);
    const std::string& port = request.Port;
    if (mode == ModuleMode::None)
        return {{kCheck, Trouble::NoModule, port + " shows neither of the module's USB identities",
                 "servicebay-cli ports lists the module's ports"}};
    if (mode == request.Needed)
        return {{kCheck, Trouble::None, port + (mode == ModuleMode::Boot ? " is in its boot loader" : " runs its firmware"), ""}};
    if (mode == ModuleMode::Running)
        return {{kCheck, Trouble::Mode, "the module on " + port + " runs its firmware; reading, writing and flashing need its boot loader",
                 "servicebay-cli boot --port " + port + " (in the window: \"Enter Boot\")"}};
    return {{kCheck, Trouble::Mode, "the module on " + port + " is in its boot loader; this needs its firmware running",
             "servicebay-cli run --port " + port + " (in the window: \"Leave Boot\")"}};
}

std::vector<Finding> CheckFolders(const SystemView& system, const std::vector<std::string>& paths) {
    constexpr const char* kCheck = "files";
    std::vector<Finding> findings;
    for (const auto& path : paths) {
        // What is not there yet is made in the nearest folder that is.
        std::string existing = path;
        while (!system.Exists(existing) && existing != "/") existing = Parent(existing);
        if (system.MayWrite(existing))
            findings.push_back({kCheck, Trouble::None, path + " can be written", ""});
        else
            findings.push_back({kCheck, Trouble::Folder, path + " cannot be written (" + existing + " is not yours to write)",
                                "sudo chown " + system.UserName() + " " + existing});
    }
    return findings;
}

std::vector<Finding> RunDoctor(const SystemView& system, const DoctorRequest& request) {
    const auto modules = ModuleDevices(system, request.Port);
    std::vector<std::string> nodes;
    if (!request.Port.empty()) nodes.push_back(DevicePath(request.Port));
    else
        for (const auto& device : modules) nodes.push_back(device.DevNode);

    std::vector<Finding> findings;
    if (nodes.empty())
        findings.push_back({"module", Trouble::NoModule, "no module is plugged in (no serial device of USB c252:17xx or 0483:5740)",
                            "plug the module in; lsusb lists it as c252:17xx (running) or 0483:5740 (boot loader)"});
    const auto access = CheckAccess(system, nodes, modules);
    const bool ruleNeeded = nodes.empty() || WorstTrouble(access) != Trouble::None || IsRunning(system, "ModemManager");
    for (auto&& part : {CheckUdevRule(system, modules, ruleNeeded), access, CheckModemManager(system, modules),
                        CheckBrltty(system), CheckPortHolders(system, nodes), CheckMode(request),
                        CheckFolders(system, request.Folders)})
        findings.insert(findings.end(), part.begin(), part.end());
    return findings;
}

Trouble WorstTrouble(const std::vector<Finding>& findings) {
    Trouble worst = Trouble::None;
    for (const auto& finding : findings)
        if (finding.Kind != Trouble::None && (worst == Trouble::None || finding.Kind < worst)) worst = finding.Kind;
    return worst;
}

}  // namespace sb::support
