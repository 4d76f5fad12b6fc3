#pragma once
#include <cstdint>
#include <string>

#include "config/Types.h"

// The decisions behind an edit in the option tree, over plain records.
namespace sb {

// The length in bytes that the BIN and STR forms ask for: BitLen / 8,
// truncated (never below 0).
int FormLength(const OptionRec& option);

// What a form opens with. A node's tag that doesn't fit its form (INT: no hex
// text; BIN: no hex text once cleaned; STR: not of the form's length) is
// replaced by a default, which then also becomes the node's tag: INT the
// option's MinValue, BIN "0" for every digit, STR the character "0" for
// every byte.
struct FormStart {
    std::string Value;
    bool TagReplaced = false;
};
FormStart StartValueForForm(const OptionRec& option, const std::string& tag);

// The text of an option node: the name, ":" and the shown value, no blanks.
std::string OptionNodeText(const OptionRec& option, const std::string& shown);

// An option locked by the configuration (its bit in DisabledMask) may only
// hold the value that the configuration's data gives it; that value, or the
// empty text when any value goes.
std::string AllowedValue(const PredefCfg& cfg, int32_t optionIndex, const OptionRec& option);

bool IsLocked(const PredefCfg& cfg, int32_t optionIndex);

// A bit-field member switched on: the bits of SetMask cleared, then those of
// SetValue set; switched off: the same with ResetMask and ResetValue.
std::string SwitchMember(const std::string& current, const OptValue& member, bool on);

bool IsListType(const std::string& type);  // "INT", "BIN", "STR"

}  // namespace sb
