#include "config/Catalog.h"

#include <array>
#include <cmath>

#include "config/CatalogDocument.h"
#include "helpers/BitMasks.h"
#include "helpers/HexText.h"
#include "helpers/Overflow.h"

namespace sb {
namespace {

constexpr std::array<const char*, 2> kOptionList = {"CFG", "OPTS"};
constexpr std::array<const char*, 3> kOptions = {"CFG", "OPTS", "O"};
constexpr std::array<const char*, 3> kConfigurations = {"CFG", "PDF", "C"};

constexpr int32_t kMaxHexText = 32767;
constexpr int32_t kMinCfgLen = 5;
constexpr int32_t kMaxCfgLen = kMaxHexText / 2;  // the most bytes that a hex text converts to
constexpr double kMaxInt32 = 2147483647.0;

// Reads of the catalog that fail (a text beyond the helpers' limits, a
// number out of range) leave their field as it was and the load goes on.
template <class Step>
void Tolerate(Step step) {
    try {
        step();
    } catch (const OverflowError&) {
    }
}

// A hexadecimal number of up to 8 digits; 0 when absent, unreadable, or
// too large for a 32-bit signed field.
int32_t NumberAttribute(pugi::xml_node node, const char* name) {
    int32_t number = 0;
    Tolerate([&] {
        const double value = HexToUint32(AttributeText(node, name));
        if (value <= kMaxInt32) number = static_cast<int32_t>(value);
    });
    return number;
}

// Empty when absent or not hex after cleaning.
std::string CleanHexAttribute(pugi::xml_node node, const char* name) {
    return NormalizeHex(AttributeText(node, name));
}

// The last 8 characters of "00000000" followed by the text.
std::string FillTo8(const std::string& text) {
    const std::string filled = "00000000" + text;
    return filled.substr(filled.size() - 8);
}

// "F" for every 4 bits, then 1, 3 or 7 for the bits left over: the digit
// stands behind the F's, so 10 bits give FF3. A mask too long for a hex
// text fails like any text beyond that limit.
std::string DefaultMask(int32_t bitLen) {
    const int32_t digits = bitLen / 4 + (bitLen % 4 != 0 ? 1 : 0);
    if (digits > kMaxHexText) throw OverflowError("mask longer than a hex text may be");
    std::string mask(static_cast<size_t>(bitLen / 4), 'F');
    if (bitLen % 4 != 0) mask += "137"[bitLen % 4 - 1];
    return mask;
}

void CompleteIntLimits(OptionRec& option) {
    if (option.MinValue.empty()) option.MinValue = "0";
    option.MinValue = FillTo8(option.MinValue);
    if (option.MaxValue.empty()) {
        // 2^BitLen - 1 in 64-bit floating point; past the double range the
        // number fails and the limit is filled from nothing.
        if (option.BitLen < 1024)
            Tolerate([&] { option.MaxValue = Uint32ToHex(std::ldexp(1.0, option.BitLen) - 1); });
    }
    option.MaxValue = FillTo8(option.MaxValue);
}

// False when the entry has no hex value: that refuses the whole catalog.
// Indexes count from 0, as the option tree's keys do.
bool ReadValue(pugi::xml_node element, const OptionRec& option, OptValue& entry) {
    entry.Value = CleanHexAttribute(element, "V");
    if (entry.Value.empty()) return false;
    entry.Mask = CleanHexAttribute(element, "M");
    if (entry.Mask.empty()) Tolerate([&] { entry.Mask = DefaultMask(option.BitLen); });
    entry.SetMask = CleanHexAttribute(element, "SM");
    if (entry.SetMask.empty()) entry.SetMask = entry.Mask;
    entry.SetValue = CleanHexAttribute(element, "SV");
    if (entry.SetValue.empty()) entry.SetValue = entry.Value;
    entry.ResetMask = CleanHexAttribute(element, "RM");
    if (entry.ResetMask.empty()) entry.ResetMask = entry.Mask;
    entry.ResetValue = CleanHexAttribute(element, "RV");
    if (entry.ResetValue.empty()) Tolerate([&] { entry.ResetValue = HexNot(entry.Value); });
    if (option.Type == "INT") entry.Value = FillTo8(entry.Value);
    entry.Text = ElementText(element);
    return true;
}

bool ReadOption(pugi::xml_node element, int32_t index, OptionRec& option, std::string& reason) {
    option.Name = AttributeText(element, "N");
    option.BitPos = NumberAttribute(element, "S");
    option.BitLen = NumberAttribute(element, "L");
    option.MinValue = AttributeText(element, "m");
    option.MaxValue = AttributeText(element, "M");
    option.Type = AttributeText(element, "T");
    option.Units = AttributeText(element, "U");
    if (option.Type == "INT") CompleteIntLimits(option);
    for (pugi::xml_node valueElement : element.children("L")) {
        option.Values.Items.emplace_back();
        if (ReadValue(valueElement, option, option.Values.Items.back())) continue;
        reason = "Option " + std::to_string(index) + ", list entry " + std::to_string(option.Values.Count() - 1) +
                 ": the value V is missing or no hex";
        return false;
    }
    return true;
}

// A mask that is absent, or that has no option to speak of, is "0".
std::string MaskOrZero(const std::string& mask, const OptionList& options) {
    return mask.empty() || options.Count() == 0 ? "0" : mask;
}

// False when the configuration's bytes don't number CfgLen.
bool ReadConfiguration(pugi::xml_node element, int32_t index, const OptionList& options, PredefCfg& cfg,
                       std::string& reason) {
    std::string digits;
    Tolerate([&] { digits = NormalizeHex(ElementText(element)); });
    Tolerate([&] { cfg.Data = HexToBytes(digits); });
    if (cfg.Data.size() != static_cast<size_t>(options.CfgLen)) {
        reason = "Configuration " + std::to_string(index) + ": its image has " + std::to_string(digits.size()) +
                 " hex digits, not the " + std::to_string(2 * options.CfgLen) + " of " +
                 std::to_string(options.CfgLen) + " bytes";
        return false;
    }
    cfg.Id = CleanHexAttribute(element, "I");
    cfg.DisabledMask = CleanHexAttribute(element, "D");
    cfg.VisibleMask = CleanHexAttribute(element, "V");
    cfg.ExtraMask = CleanHexAttribute(element, "E");
    cfg.Info = HasAttribute(element, "H") ? AttributeText(element, "H") : "No info about configuration";
    cfg.Id = cfg.Id.empty() ? Uint32ToHex(BytesToUint32(cfg.Data.substr(0, 4))) : FillTo8(cfg.Id);
    cfg.DisabledMask = MaskOrZero(cfg.DisabledMask, options);
    cfg.VisibleMask = MaskOrZero(cfg.VisibleMask, options);
    cfg.ExtraMask = MaskOrZero(cfg.ExtraMask, options);
    cfg.Name = AttributeText(element, "N");
    if (cfg.Name.empty()) cfg.Name = "Unnamed configuration " + Uint32ToHex(index);
    return true;
}

}  // namespace

bool LoadCatalog(DeviceInfo& device, std::string& reason, bool* notWellFormed) {
    reason.clear();
    device.PredefCfgs = {};
    device.Options = {};

    CatalogDocument document;
    if (!document.LoadText(device.InfoFile)) {
        reason = document.Reason();
        if (notWellFormed) *notWellFormed = true;
        return false;
    }
    const pugi::xml_node top = document.Top();

    OptionList& options = device.Options;
    options.CfgLen = NumberAttribute(FirstElement(top, kOptionList), "L");
    const bool optionsRead = ForEachElement(top, kOptions, [&](pugi::xml_node element) {
        const int32_t index = options.Count();
        options.Items.emplace_back();
        return ReadOption(element, index, options.Items.back(), reason);
    });
    if (!optionsRead) return false;
    // No configuration could have a longer image: say so rather than blame
    // the first one.
    if (options.CfgLen < kMinCfgLen || options.CfgLen > kMaxCfgLen) {
        reason = "The image length L of /CFG/OPTS is " +
                 (options.CfgLen == 0 ? std::string("missing or unreadable")
                                      : std::to_string(options.CfgLen) + " bytes") +
                 "; a catalog's images have " + std::to_string(kMinCfgLen) + " to " + std::to_string(kMaxCfgLen) +
                 " bytes";
        return false;
    }

    PredefCfgList& cfgs = device.PredefCfgs;
    const bool cfgsRead = ForEachElement(top, kConfigurations, [&](pugi::xml_node element) {
        const int32_t index = cfgs.Count();
        cfgs.Items.emplace_back();
        return ReadConfiguration(element, index, options, cfgs.Items.back(), reason);
    });
    if (cfgsRead && cfgs.Count() == 0) reason = "No predefined configuration: /CFG/PDF holds no C";
    return cfgsRead && cfgs.Count() > 0;
}

int32_t FindPredefCfgById(const DeviceInfo& device, const std::string& id) {
    const auto& items = device.PredefCfgs.Items;
    for (size_t i = 0; i < items.size(); ++i)
        if (items[i].Id == id) return static_cast<int32_t>(i);
    return -1;
}

}  // namespace sb
