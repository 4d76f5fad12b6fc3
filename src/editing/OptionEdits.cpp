#include "editing/OptionEdits.h"

#include <algorithm>

#include "config/ConfigTool.h"
#include "helpers/BitMasks.h"
#include "helpers/HexText.h"

namespace sb {

int FormLength(const OptionRec& option) { return std::max(0, option.BitLen / 8); }

FormStart StartValueForForm(const OptionRec& option, const std::string& tag) {
    const size_t length = static_cast<size_t>(FormLength(option));
    if (option.Type == "INT") {
        if (IsHexText(tag)) return {tag, false};
        return {option.MinValue, true};
    }
    if (option.Type == "BIN") {
        if (IsHexText(NormalizeHex(tag))) return {tag, false};
        return {std::string(2 * length, '0'), true};
    }
    if (tag.size() == length) return {tag, false};
    return {std::string(length, '0'), true};
}

std::string OptionNodeText(const OptionRec& option, const std::string& shown) { return option.Name + ":" + shown; }

bool IsLocked(const PredefCfg& cfg, int32_t optionIndex) { return TestBit(cfg.DisabledMask, optionIndex, 1); }

std::string AllowedValue(const PredefCfg& cfg, int32_t optionIndex, const OptionRec& option) {
    if (!IsLocked(cfg, optionIndex)) return {};
    std::string shown;
    return GetOptionValue(cfg.Data, option, shown);
}

std::string SwitchMember(const std::string& current, const OptValue& member, bool on) {
    const std::string& mask = on ? member.SetMask : member.ResetMask;
    const std::string& bits = on ? member.SetValue : member.ResetValue;
    return HexOr(HexAnd(current, HexNot(mask)), bits);
}

bool IsListType(const std::string& type) { return type == "INT" || type == "BIN" || type == "STR"; }

}  // namespace sb
