#include "editing/ConfigList.h"

#include "helpers/HexText.h"

namespace sb {

ConfigInfoView InfoOfEntry(const DeviceInfo& device, int listIndex, int listCount) {
    if (listIndex >= 0 && listIndex < listCount && listIndex < device.PredefCfgs.Count()) {
        const PredefCfg& entry = device.PredefCfgs.Items[static_cast<size_t>(listIndex)];
        return {entry.Info, kShortInfoFor + entry.Name};
    }
    return {"", kShortInfo};
}

ReadedConfig AppendReadedConfig(DeviceInfo& device) {
    device.AppConfig = NormalizeHex(device.AppConfig);
    // Hex digits against bytes: the module must give two digits a byte.
    if (static_cast<int64_t>(device.AppConfig.size()) != 2 * static_cast<int64_t>(device.Options.CfgLen))
        return ReadedConfig::WrongLength;

    PredefCfg read;
    read.Name = kReadedConfigName;
    read.Data = HexToBytes(device.AppConfig);
    // The first four bytes, least significant first; BytesToUint32 counts
    // no more than them.
    read.Id = Uint32ToHex(BytesToUint32(HexToBytes(device.AppConfig.substr(0, 10))));
    read.Info = kNoInfo;
    read.ExtraMask = "0";
    read.DisabledMask = "0";
    read.VisibleMask = "0";
    for (const PredefCfg& entry : device.PredefCfgs.Items) {
        if (entry.Id != read.Id) continue;
        read.DisabledMask = entry.DisabledMask;
        read.ExtraMask = entry.ExtraMask;
        read.VisibleMask = entry.VisibleMask;
        read.Info = entry.Info;
        break;
    }
    device.PredefCfgs.Items.push_back(std::move(read));
    return ReadedConfig::Appended;
}

}  // namespace sb
