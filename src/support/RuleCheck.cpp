#include <algorithm>

#include "support/Doctor.h"
#include "support/UdevRules.h"

// The udev rule: installed for both faces of the module, and applied to the
// modules that are plugged in (its marks show in udev's record of the device).
namespace sb::support {
namespace {

constexpr const char* kCheck = "udev rule";
constexpr const char* kReload = "sudo udevadm control --reload && sudo udevadm trigger --subsystem-match=tty";

std::string UsbName(const UsbIdentity& identity) {
    return std::string(identity.Vendor) + ":" + identity.Product + " (" + identity.Name + ")";
}

const RuleFile* RuleFor(const std::vector<RuleFile>& rules, const UsbIdentity& identity) {
    for (const auto& rule : rules)
        if (rule.Text.find("ID_MM_DEVICE_IGNORE") != std::string::npos &&
            MatchingLine(rule.Text, identity.Vendor, identity.Product) != 0)
            return &rule;
    return nullptr;
}

bool RuleApplied(const SerialDevice& device) {
    const auto ignore = device.Properties.find("ID_MM_DEVICE_IGNORE");
    const bool seat = std::find(device.Tags.begin(), device.Tags.end(), "uaccess") != device.Tags.end();
    return seat && ignore != device.Properties.end() && ignore->second == "1";
}

}  // namespace

std::vector<Finding> CheckUdevRule(const SystemView& system, const std::vector<SerialDevice>& modules, bool needed) {
    const auto rules = InstalledRules(system);
    // Without the rule, a user of the dialout group reaches the module as
    // well, as long as ModemManager leaves it alone.
    const Trouble missing = needed ? Trouble::Access : Trouble::None;
    std::vector<Finding> findings;
    bool installed = true;
    for (const UsbIdentity* identity : {&kRunningUsb, &kBootUsb}) {
        if (const RuleFile* rule = RuleFor(rules, *identity)) {
            findings.push_back({kCheck, Trouble::None, "installed for " + UsbName(*identity) + ": " + rule->Path, ""});
            continue;
        }
        installed = false;
        findings.push_back({kCheck, missing, "no rule gives " + UsbName(*identity) + " to the user and keeps ModemManager off it",
                            "sudo cp /usr/lib/udev/rules.d/70-servicebay.rules /etc/udev/rules.d/ (from the sources: "
                            "packaging/70-servicebay.rules), then " + std::string(kReload) + ", and plug the module in again"});
    }
    if (!installed) return findings;
    for (const auto& device : modules) {
        if (RuleApplied(device))
            findings.push_back({kCheck, Trouble::None, "applied to " + device.DevNode, ""});
        else
            findings.push_back({kCheck, missing, "installed but not applied to " + device.DevNode + " (not loaded yet)",
                                std::string(kReload) + ", or plug the module in again"});
    }
    return findings;
}

}  // namespace sb::support
