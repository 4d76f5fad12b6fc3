#include "update/ChooserPlace.h"

#include "helpers/IniFile.h"

namespace sb {

ChooserPlace ReadChooserPlace(const std::string& iniPath, const std::string& fallback) {
    const auto read = [&](const char* key) { return IniReadValue(kChooserSection, key, fallback, iniPath); };
    return {read(kChooserDirKey), read(kChooserDriveKey), read(kChooserPathKey)};
}

bool WriteChooserPlace(const ChooserPlace& place, const std::string& iniPath) {
    return IniWriteValues({{kChooserSection, kChooserDirKey, place.Dir},
                           {kChooserSection, kChooserDriveKey, place.Drive},
                           {kChooserSection, kChooserPathKey, place.Path}},
                          iniPath);
}

}  // namespace sb
