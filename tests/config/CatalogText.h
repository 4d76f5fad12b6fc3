#pragma once
#include <string>

#include "config/Catalog.h"
#include "config/Types.h"

namespace sb::test {

// A catalog document of the given option list and configurations.
inline std::string CatalogXml(const std::string& cfgLen, const std::string& options, const std::string& cfgs) {
    return "<CFG><OPTS L=\"" + cfgLen + "\">" + options + "</OPTS><PDF>" + cfgs + "</PDF></CFG>";
}

// A configuration element of CfgLen 5 (10 digits).
inline std::string Cfg5(const std::string& attributes = "", const std::string& data = "0000000000") {
    return "<C " + attributes + ">" + data + "</C>";
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
