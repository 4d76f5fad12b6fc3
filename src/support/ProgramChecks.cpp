#include <algorithm>
#include <cctype>

#include "support/Doctor.h"
#include "support/UdevRules.h"

// Other programs that get between the tool and the module: ModemManager
// probing the port with AT commands (a boot loader takes them as input),
// brltty claiming the device as a braille display, and whoever holds the
// port open.
namespace sb::support {
namespace {

bool IsNumber(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

bool Ignored(const SerialDevice& device) {
    for (const char* property : {"ID_MM_DEVICE_IGNORE", "ID_MM_PORT_IGNORE"}) {
        const auto found = device.Properties.find(property);
        if (found != device.Properties.end() && found->second == "1") return true;
    }
    return false;
}

bool IgnoredByRule(const SystemView& system, const UsbIdentity& identity) {
    for (const auto& rule : InstalledRules(system)) {
        if (rule.Text.find("ID_MM_DEVICE_IGNORE") == std::string::npos &&
            rule.Text.find("ID_MM_PORT_IGNORE") == std::string::npos)
            continue;
        if (MatchingLine(rule.Text, identity.Vendor, identity.Product) != 0) return true;
    }
    return false;
}

}  // namespace

std::vector<std::pair<pid_t, std::string>> Processes(const SystemView& system) {
    std::vector<std::pair<pid_t, std::string>> processes;
    for (const auto& entry : system.List("/proc")) {
        if (!IsNumber(entry)) continue;
        std::string name = system.Read("/proc/" + entry + "/comm").value_or("");
        while (!name.empty() && (name.back() == '\n' || name.back() == '\r')) name.pop_back();
        if (!name.empty()) processes.emplace_back(static_cast<pid_t>(std::stol(entry)), name);
    }
    std::sort(processes.begin(), processes.end());
    return processes;
}

bool IsRunning(const SystemView& system, const std::string& program) {
    const auto processes = Processes(system);
    return std::any_of(processes.begin(), processes.end(), [&](const auto& p) { return p.second == program; });
}

std::vector<Finding> CheckModemManager(const SystemView& system, const std::vector<SerialDevice>& modules) {
    constexpr const char* kCheck = "ModemManager";
    constexpr const char* kFix = "install the udev rule (see the udev rule check), or: sudo systemctl stop ModemManager";
    if (!IsRunning(system, "ModemManager")) return {{kCheck, Trouble::None, "not running", ""}};
    std::vector<Finding> findings;
    for (const auto& device : modules) {
        if (Ignored(device))
            findings.push_back({kCheck, Trouble::None, "running, and told to leave " + device.DevNode + " alone", ""});
        else
            findings.push_back({kCheck, Trouble::OtherProgram,
                                "running, and free to probe " + device.DevNode + " with AT commands", kFix});
    }
    for (const UsbIdentity* identity : {&kRunningUsb, &kBootUsb})
        if (!IgnoredByRule(system, *identity))
            findings.push_back({kCheck, Trouble::OtherProgram,
                                std::string("running, and no rule keeps it off the module's ") + identity->Name, kFix});
    if (findings.empty()) findings.push_back({kCheck, Trouble::None, "running, and the rules keep it off the module", ""});
    return findings;
}

std::vector<Finding> CheckBrltty(const SystemView& system) {
    constexpr const char* kCheck = "brltty";
    std::vector<Finding> findings;
    bool present = IsRunning(system, "brltty");
    for (const auto& rule : InstalledRules(system)) {
        if (rule.Path.find("brltty") == std::string::npos) continue;
        present = true;
        for (const UsbIdentity* identity : {&kRunningUsb, &kBootUsb})
            if (const int line = MatchingLine(rule.Text, identity->Vendor, identity->Product))
                findings.push_back({kCheck, Trouble::OtherProgram,
                                    rule.Path + ":" + std::to_string(line) + " claims the module's " + identity->Name +
                                        " as a braille display",
                                    "when no braille display is used: sudo apt remove brltty (or: sudo systemctl mask "
                                    "brltty-udev.service), then plug the module in again"});
    }
    if (findings.empty())
        findings.push_back({kCheck, Trouble::None, present ? "present, and claims no module" : "not installed", ""});
    return findings;
}

std::vector<Finding> CheckPortHolders(const SystemView& system, const std::vector<std::string>& nodes) {
    constexpr const char* kCheck = "port in use";
    std::vector<Finding> findings;
    const auto processes = Processes(system);
    for (const auto& node : nodes) {
        bool held = false;
        for (const auto& [pid, name] : processes) {
            if (pid == system.Pid()) continue;
            const std::string fds = "/proc/" + std::to_string(pid) + "/fd";
            const auto entries = system.List(fds);
            if (std::none_of(entries.begin(), entries.end(), [&](const std::string& fd) { return system.Link(fds + "/" + fd) == node; }))
                continue;
            held = true;
            findings.push_back({kCheck, Trouble::OtherProgram,
                                node + " is held by " + name + " (pid " + std::to_string(pid) + ")",
                                "close " + name + ", or: kill " + std::to_string(pid)});
        }
        if (!held) findings.push_back({kCheck, Trouble::None, "no other program holds " + node, ""});
    }
    return findings;
}

}  // namespace sb::support
