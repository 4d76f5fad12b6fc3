#pragma once
#include <string>

#include "../helpers/TempFolder.h"
#include "config/Catalog.h"
#include "config/Types.h"

namespace sb::test {

// A catalog document of the given option list and configurations.
inline std::string CatalogXml(const std::string& cfgLen, const std::string& options, const std::string& cfgs) {
    return "<CFG><OPTS L=\"" + cfgLen + "\">" + options + "</OPTS><PDF>" + cfgs + "</PDF></CFG>";
}

struct LoadResult {
    bool ok = false;
    std::string reason;
    DeviceInfo device;
};

inline LoadResult Load(const std::string& xml) {
    LoadResult result;
    result.device.InfoFile = xml;
    result.ok = LoadCatalog(result.device, result.reason);
    return result;
}

// A list entry with its text and value alone.
inline OptValue Entry(const std::string& text, const std::string& value) { return {text, value, {}, {}, {}, {}, {}}; }

}  // namespace sb::test
