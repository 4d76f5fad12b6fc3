#pragma once
#include <string>

#include "config/Types.h"

// The list of whole configurations beside the option tree (cmbConfigList):
// the catalog's predefined configurations and, behind them, the one read
// from the module.
namespace sb {

inline constexpr const char* kReadedConfigName = "READED CONFIG";
inline constexpr const char* kNoInfo = "No info about configuration";
inline constexpr const char* kShortInfo = "Short info";
inline constexpr const char* kShortInfoFor = "Short info for configuration: ";

// What txtConfigInfo and the caption of lblShortInfoCfgName show for the
// entry at listIndex: the entry's info and name, or empty and "Short info"
// when no entry of the list and the record is selected.
struct ConfigInfoView {
    std::string Info;
    std::string Caption;
};
ConfigInfoView InfoOfEntry(const DeviceInfo& device, int listIndex, int listCount);

enum class ReadedConfig { Appended, WrongLength };

// Takes a configuration read from the module into the list: AppConfig is
// normalized, and when it holds exactly CfgLen bytes it is appended as
// "READED CONFIG", its Id read from its first four bytes and its info and
// masks taken from the first entry of the same Id (else "No info about
// configuration" and all masks "0").
ReadedConfig AppendReadedConfig(DeviceInfo& device);

}  // namespace sb
