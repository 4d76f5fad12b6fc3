// LoadCatalog and BuildOptionTree on any document: nothing may crash, hang
// or grow without bound, a loaded catalog keeps its invariants, writing back
// what was read leaves an image as it was, and an update in place adds no
// node.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "config/MemoryOptionTree.h"
#include "helpers/Overflow.h"

namespace {

// Images of the data model are at most 16,383 bytes.
constexpr size_t kMaxImage = 16383;
// Enough to meet every kind of option without making each run slow.
constexpr size_t kMaxOptionsWritten = 64;
constexpr size_t kMaxConfigurations = 8;

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckInvariants(const sb::DeviceInfo& device) {
    const auto& options = device.Options;
    Require(options.CfgLen >= 5);
    for (const sb::OptionRec& option : options.Items) {
        const bool isInt = option.Type == "INT";
        if (isInt) Require(option.MinValue.size() == 8 && option.MaxValue.size() == 8);
        for (const sb::OptValue& entry : option.Values.Items) {
            Require(!entry.Value.empty());
            if (isInt) Require(entry.Value.size() == 8);
        }
    }
    Require(device.PredefCfgs.Count() >= 1);
    for (const sb::PredefCfg& cfg : device.PredefCfgs.Items) {
        Require(cfg.Data.size() == static_cast<size_t>(options.CfgLen));
        Require(cfg.Id.size() == 8);
        Require(!cfg.DisabledMask.empty() && !cfg.VisibleMask.empty() && !cfg.ExtraMask.empty());
    }
}

// Builds the tree of the image, then writes every option back as it reads
// and builds again in place.
void BuildAndRewrite(std::string image, const sb::DeviceInfo& device) {
    sb::MemoryOptionTree tree;
    const bool found = sb::BuildOptionTree(image, device, tree);
    Require(found == (sb::FindPredefCfgById(device, sb::ImageId(image)) >= 0));
    if (!found) {
        Require(tree.Size() == 0);
        return;
    }
    const size_t nodes = tree.Size();
    const std::string original = image;
    for (size_t i = 0; i < device.Options.Items.size() && i < kMaxOptionsWritten; ++i) {
        const sb::OptionRec& option = device.Options.Items[i];
        std::string shown;
        std::string raw = sb::GetOptionValue(image, option, shown);
        if (shown == sb::kWrongValue) continue;
        sb::SetOptionValue(image, option, raw);
        Require(image == original);
    }
    Require(sb::BuildOptionTree(image, device, tree));
    Require(tree.Size() == nodes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    sb::DeviceInfo device;
    device.InfoFile.assign(reinterpret_cast<const char*>(data), size);
    std::string reason;
    if (!sb::LoadCatalog(device, reason)) return 0;
    CheckInvariants(device);
    try {
        for (size_t i = 0; i < device.PredefCfgs.Items.size() && i < kMaxConfigurations; ++i)
            BuildAndRewrite(device.PredefCfgs.Items[i].Data, device);
        BuildAndRewrite(device.InfoFile.substr(0, kMaxImage), device);
    } catch (const sb::OverflowError&) {
        // A mask or value text beyond the helpers' limits; the helpers'
        // failure, met by the caller as any other.
    }
    return 0;
}
