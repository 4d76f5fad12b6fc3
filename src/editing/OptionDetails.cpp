#include "editing/OptionDetails.h"

#include <cstdint>

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "editing/PendingChanges.h"
#include "helpers/BitMasks.h"
#include "helpers/HexText.h"

namespace sb {
namespace {

constexpr size_t kDecimalDigitsMax = 8;  // hex digits that a decimal form is given for

// The decimal form of a hex value of up to 32 bits; empty for a longer one
// or for text that is no hex.
std::string Decimal(const std::string& hex) {
    if (hex.empty() || hex.size() > kDecimalDigitsMax || !IsHexText(hex)) return {};
    return std::to_string(static_cast<uint64_t>(HexToUint32(hex)));
}

// "0000001A = 26 km/h"; a string shows as itself.
std::string Both(const OptionRec& option, const std::string& raw) {
    if (option.Type == "STR") return "\"" + raw + "\"";
    const std::string decimal = Decimal(raw);
    std::string text = raw.empty() ? std::string(kWrongValue) : raw;
    if (!decimal.empty()) text += " = " + decimal;
    if (!raw.empty()) text += option.Units;  // as the tree shows them, blanks included
    return text;
}

std::string ValueIn(const std::string& image, const OptionRec& option) {
    std::string shown;
    const std::string raw = GetOptionValue(image, option, shown);
    return raw.empty() ? std::string(kWrongValue) : shown + "  (" + Both(option, raw) + ")";
}

std::string Entries(const OptionRec& option) {
    std::string lines;
    const bool members = option.Type == "BITFIELD";
    for (const OptValue& entry : option.Values.Items) {
        lines += "  " + entry.Text + ": ";
        lines += members ? "mask " + entry.Mask + ", value " + entry.Value : Both(option, entry.Value);
        lines += "\n";
    }
    return lines.empty() ? std::string() : (members ? "Members:\n" : "Entries:\n") + lines;
}

std::string Standing(const DeviceInfo& device, int32_t optionIndex) {
    const int32_t cfg = FindPredefCfgById(device, ImageId(device.CfgImage));
    if (cfg < 0) return "Configuration: none has the image's Id\n";
    const PredefCfg& entry = device.PredefCfgs.Items[static_cast<size_t>(cfg)];
    const bool shown = TestBit(entry.VisibleMask, optionIndex, 1);
    const bool locked = TestBit(entry.DisabledMask, optionIndex, 1);
    return "Configuration " + entry.Name + ": " + (shown ? "shown" : "hidden") + ", " + (locked ? "locked" : "free") +
           "\n";
}

}  // namespace

std::string OptionDetails(const DeviceInfo& device, int32_t optionIndex, int32_t chosenIndex) {
    if (optionIndex < 0 || optionIndex >= device.Options.Count()) return {};
    const OptionRec& option = device.Options.Items[static_cast<size_t>(optionIndex)];
    std::string text = "Name: " + option.Name + "\nType: " + option.Type + "\n";
    text += "Bits: position " + std::to_string(option.BitPos) + ", length " + std::to_string(option.BitLen) + "\n";
    text += "Value: " + ValueIn(device.CfgImage, option) + "\n";
    if (option.Type == "INT")
        text += "Range: " + Decimal(option.MinValue) + " to " + Decimal(option.MaxValue) + " (" + option.MinValue +
                " to " + option.MaxValue + ")\n";
    text += Entries(option);
    text += Standing(device, optionIndex);
    if (chosenIndex >= 0 && chosenIndex < device.PredefCfgs.Count()) {
        const PredefCfg& chosen = device.PredefCfgs.Items[static_cast<size_t>(chosenIndex)];
        text += "In " + chosen.Name + ": " + ValueIn(chosen.Data, option) + "\n";
    }
    const std::string read = ReadImage(device);
    if (!read.empty()) text += "Read: " + ValueIn(read, option) + "\n";
    return text;
}

}  // namespace sb
