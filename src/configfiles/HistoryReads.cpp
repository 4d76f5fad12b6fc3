#include "configfiles/HistoryReads.h"

#include <algorithm>
#include <optional>

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "configfiles/ConfigCompare.h"
#include "configfiles/ConfigFile.h"

namespace sb {
namespace {

std::optional<LoadedConfig> ReadOrNothing(const std::string& path) {
    try {
        return ReadConfigFile(path);
    } catch (const ConfigFileError&) {
        return std::nullopt;  // the list still shows the file; opening it says why
    }
}

std::string ConfigurationName(const DeviceInfo& device) {
    const int32_t index = FindPredefCfgById(device, ImageId(device.CfgImage));
    return index < 0 ? "Id " + ImageId(device.CfgImage) : device.PredefCfgs.Items[static_cast<size_t>(index)].Name;
}

int Differing(const DeviceInfo& older, const DeviceInfo& newer) {
    const ConfigComparison comparison = CompareConfigurations(older, older.CfgImage, newer, newer.CfgImage);
    return static_cast<int>(std::count_if(comparison.Options.begin(), comparison.Options.end(),
                                          [](const OptionComparison& option) { return option.Differs(); }));
}

}  // namespace

std::vector<HistoryRead> DescribeHistory(const HistoryGroup& group) {
    std::vector<std::optional<LoadedConfig>> configs;
    for (const HistoryFile& file : group.Files) configs.push_back(ReadOrNothing(file.Path));
    std::vector<HistoryRead> reads;
    for (size_t i = 0; i < configs.size(); ++i) {
        HistoryRead read{group.Files[i], {}, -1};
        if (configs[i]) read.Name = ConfigurationName(configs[i]->Device);
        if (configs[i] && i + 1 < configs.size() && configs[i + 1])
            read.Differing = Differing(configs[i + 1]->Device, configs[i]->Device);
        reads.push_back(std::move(read));
    }
    return reads;
}

}  // namespace sb
