// LoadCatalog and BuildOptionTree on any document: nothing may crash, hang
// or grow without bound, a loaded catalog keeps its invariants, writing back
// what was read leaves an image as it was, and an update in place adds no
// node.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "config/MemoryOptionTree.h"
#include "helpers/Overflow.h"

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckInvariants(const sb::DeviceInfo& device) {
    Require(device.Options.CfgLen >= 5 && device.PredefCfgs.Count() >= 1);
    for (const sb::OptionRec& option : device.Options.Items) {
        const bool isInt = option.Type == "INT";
        Require(!isInt || (option.MinValue.size() == 8 && option.MaxValue.size() == 8));
        for (const sb::OptValue& entry : option.Values.Items)
            Require(!entry.Value.empty() && (!isInt || entry.Value.size() == 8));
    }
    for (const sb::PredefCfg& cfg : device.PredefCfgs.Items)
        Require(cfg.Data.size() == static_cast<size_t>(device.Options.CfgLen) && cfg.Id.size() == 8 &&
                !cfg.DisabledMask.empty() && !cfg.VisibleMask.empty() && !cfg.ExtraMask.empty());
}

// Builds the tree of the image, then writes back the first options as they
// read and builds again in place.
void BuildAndRewrite(std::string image, const sb::DeviceInfo& device) {
    sb::MemoryOptionTree tree;
    const bool found = sb::BuildOptionTree(image, device, tree);
    Require(found == (sb::FindPredefCfgById(device, sb::ImageId(image)) >= 0) && (found || tree.Size() == 0));
    if (!found) return;
    const size_t nodes = tree.Size();
    const std::string original = image;
    for (size_t i = 0; i < device.Options.Items.size() && i < 64; ++i) {
        std::string shown, raw = sb::GetOptionValue(image, device.Options.Items[i], shown);
        if (shown != sb::kWrongValue) sb::SetOptionValue(image, device.Options.Items[i], raw);
        Require(image == original);
    }
    Require(sb::BuildOptionTree(image, device, tree) && tree.Size() == nodes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    sb::DeviceInfo device;
    device.InfoFile.assign(reinterpret_cast<const char*>(data), size);
    std::string reason;
    if (!sb::LoadCatalog(device, reason)) return 0;
    CheckInvariants(device);
    try {
        for (size_t i = 0; i < device.PredefCfgs.Items.size() && i < 8; ++i)
            BuildAndRewrite(device.PredefCfgs.Items[i].Data, device);
        BuildAndRewrite(device.InfoFile.substr(0, 16383), device);  // images hold at most 16,383 bytes
    } catch (const sb::OverflowError&) {
        // A text beyond the helpers' limits: their failure, met as any other.
    }
    return 0;
}
