#include "configfiles/ConfigDocument.h"

#include "ProgramVersion.h"
#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "helpers/BitMasks.h"
#include "helpers/HexText.h"

namespace sb {
namespace {

// The options that the tree of the image shows: those of the image's
// configuration's VisibleMask; none when the catalog has no configuration
// of the image's Id.
std::vector<ShownOption> VisibleOptions(const DeviceInfo& device, const std::string& image) {
    std::vector<ShownOption> shown;
    const int32_t cfg = FindPredefCfgById(device, ImageId(image));
    if (cfg < 0) return shown;
    const std::string& visible = device.PredefCfgs.Items[static_cast<size_t>(cfg)].VisibleMask;
    for (int32_t i = 0; i < device.Options.Count(); ++i) {
        if (!TestBit(visible, i, 1)) continue;
        const OptionRec& option = device.Options.Items[static_cast<size_t>(i)];
        ShownOption entry{i, option.Name, {}, {}};
        entry.Value = GetOptionValue(image, option, entry.Shown);
        shown.push_back(std::move(entry));
    }
    return shown;
}

}  // namespace

ModuleIdentity IdentityOf(const DeviceInfo& device) {
    return {device.SN, device.PVer, device.PName, device.PDate, device.VIN, device.FWName, device.FWVer, device.HWVer};
}

void ApplyIdentity(const ModuleIdentity& identity, DeviceInfo& device) {
    device.SN = identity.SN;
    device.PVer = identity.PVer;
    device.PName = identity.PName;
    device.PDate = identity.PDate;
    device.VIN = identity.VIN;
    device.FWName = identity.FWName;
    device.FWVer = identity.FWVer;
    device.HWVer = identity.HWVer;
}

ConfigDocument MakeConfigDocument(const DeviceInfo& device, const std::string& image, TimePoint savedAt) {
    ConfigDocument document;
    document.SavedAt = IsoUtcText(savedAt);
    document.Program = std::string(kProgramName) + " " + kProgramVersion;
    document.Module = IdentityOf(device);
    document.InfoFile = device.InfoFile;
    document.Image = BytesToHex(image);
    document.Id = ImageId(image);
    document.Options = VisibleOptions(device, image);
    return document;
}

}  // namespace sb
