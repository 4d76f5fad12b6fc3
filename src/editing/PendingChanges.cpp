#include "editing/PendingChanges.h"

#include <algorithm>

#include "editing/ConfigList.h"

namespace sb {

std::string ReadImage(const DeviceInfo& device) {
    const auto& entries = device.PredefCfgs.Items;
    if (entries.empty() || entries.back().Name != kReadedConfigName) return {};
    return entries.back().Data;
}

namespace {

// The options whose bits differ between the two images (a byte that only
// one image has counts as differing): an option whose bits are the same in
// both cannot differ, so only these need the comparison.
std::vector<int32_t> TouchedOptions(const OptionList& options, const std::string& a, const std::string& b) {
    // differing[n]: how many of the first n bytes differ.
    const size_t length = std::max(a.size(), b.size());
    std::vector<size_t> differing(length + 1, 0);
    for (size_t n = 0; n < length; ++n)
        differing[n + 1] = differing[n] + (n >= a.size() || n >= b.size() || a[n] != b[n] ? 1 : 0);
    std::vector<int32_t> touched;
    for (int32_t i = 0; i < options.Count(); ++i) {
        const OptionRec& option = options.Items[static_cast<size_t>(i)];
        const int64_t first = std::max<int64_t>(option.BitPos, 0) / 8;
        const int64_t last = (static_cast<int64_t>(option.BitPos) + std::max<int64_t>(option.BitLen, 1) - 1) / 8;
        const auto from = static_cast<size_t>(std::min<int64_t>(first, static_cast<int64_t>(length)));
        const auto to = static_cast<size_t>(std::clamp<int64_t>(last + 1, first, static_cast<int64_t>(length)));
        if (differing[to] > differing[from]) touched.push_back(i);
    }
    return touched;
}

}  // namespace

ConfigComparison PendingChanges(const DeviceInfo& device) {
    const std::string read = ReadImage(device);
    if (read.empty()) return {};
    // The comparison over a catalog of the touched options alone; the
    // indexes are then put back into the whole catalog's.
    const std::vector<int32_t> touched = TouchedOptions(device.Options, read, device.CfgImage);
    DeviceInfo catalog;
    catalog.Options.CfgLen = device.Options.CfgLen;
    for (const int32_t i : touched) catalog.Options.Items.push_back(device.Options.Items[static_cast<size_t>(i)]);
    ConfigComparison comparison = CompareConfigurations(catalog, read, catalog, device.CfgImage);
    for (OptionComparison& option : comparison.Options) {
        option.A.Index = touched[static_cast<size_t>(option.A.Index)];
        option.B.Index = touched[static_cast<size_t>(option.B.Index)];
    }
    return comparison;
}

std::vector<bool> ChangedOptions(const DeviceInfo& device) {
    std::vector<bool> changed(device.Options.Items.size(), false);
    for (const OptionComparison& option : PendingChanges(device).Options) changed[static_cast<size_t>(option.A.Index)] = true;
    return changed;
}

}  // namespace sb
