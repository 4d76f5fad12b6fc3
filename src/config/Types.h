#pragma once
#include <cstdint>
#include <string>
#include <vector>

// The records of a module and its catalog. Plain values: a copy is a deep
// copy. Texts and byte strings are std::string; hex texts are upper case.
namespace sb {

// One named value of an option, or one member of a BITFIELD option.
struct OptValue {
    std::string Text;
    std::string Value;       // hex; for INT always 8 digits
    std::string Mask;        // hex; BITFIELD members only
    std::string SetValue;    // switching on: (value AND NOT SetMask) OR SetValue
    std::string SetMask;
    std::string ResetValue;  // switching off: (value AND NOT ResetMask) OR ResetValue
    std::string ResetMask;
};

struct OptValueList {
    std::vector<OptValue> Items;
    int32_t Count() const { return static_cast<int32_t>(Items.size()); }
};

struct OptionRec {
    std::string Name;
    int32_t BitPos = 0;
    int32_t BitLen = 0;
    OptValueList Values;
    std::string Type;      // "INT", "BIN", "STR", "BITFIELD"; anything else reads as "Wrong Value"
    std::string MinValue;  // INT: 8 hex digits
    std::string MaxValue;  // INT: 8 hex digits
    std::string Units;
};

struct OptionList {
    int32_t CfgLen = 0;  // image length in bytes
    std::vector<OptionRec> Items;
    int32_t Count() const { return static_cast<int32_t>(Items.size()); }
};

// One predefined configuration.
struct PredefCfg {
    std::string Name;
    std::string Data;          // byte string of CfgLen bytes
    std::string Info;
    std::string ExtraMask;     // stored and copied only
    std::string DisabledMask;  // hex number: bit i locks option i
    std::string VisibleMask;   // hex number: bit i shows option i
    std::string Id;            // 8 hex digits
};

struct PredefCfgList {
    std::vector<PredefCfg> Items;
    int32_t Count() const { return static_cast<int32_t>(Items.size()); }
};

// All that is known of the attached module, with its catalog and the
// working image.
struct DeviceInfo {
    std::string FWName;
    std::string FWVer;
    std::string HWVer;
    std::string PName;
    std::string PVer;
    std::string SN;
    std::string PDate;
    std::string VIN;
    std::string AppConfig;  // hex text as the module reported it
    std::string CfgImage;   // byte string: the configuration under edit
    OptionList Options;
    PredefCfgList PredefCfgs;
    std::string InfoFile;   // the catalog document
    std::string AppInfo;
};

}  // namespace sb
