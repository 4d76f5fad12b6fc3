#include "editing/PendingChanges.h"

#include "editing/ConfigList.h"

namespace sb {

std::string ReadImage(const DeviceInfo& device) {
    const auto& entries = device.PredefCfgs.Items;
    if (entries.empty() || entries.back().Name != kReadedConfigName) return {};
    return entries.back().Data;
}

ConfigComparison PendingChanges(const DeviceInfo& device) {
    const std::string read = ReadImage(device);
    if (read.empty()) return {};
    return CompareConfigurations(device, read, device, device.CfgImage);
}

std::vector<bool> ChangedOptions(const DeviceInfo& device) {
    std::vector<bool> changed(device.Options.Items.size(), false);
    for (const OptionComparison& option : PendingChanges(device).Options)
        if (option.A.Index >= 0 && static_cast<size_t>(option.A.Index) < changed.size()) changed[option.A.Index] = true;
    return changed;
}

}  // namespace sb
