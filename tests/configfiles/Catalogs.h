#pragma once
#include <gtest/gtest.h>

#include <string>

#include "CatalogText.h"
#include "config/ConfigTool.h"

namespace sb::test {

// Option 0 Mod\xE9 (a list; its name has a byte beyond ASCII), 1 Hidden,
// 2 Limit. The passenger car (Id 00000004) shows options 0 and 2.
inline const std::string kCatalog = CatalogXml(
    "8",
    "<O N=\"Mod\xE9\" S=\"20\" L=\"8\" T=\"INT\"><L V=\"0\">Off</L><L V=\"1\">On</L></O>"
    R"(<O N="Hidden" S="28" L="8" T="INT"/>)"
    R"(<O N="Limit" S="30" L="10" T="INT" U=" km/h"/>)",
    R"(<C N="Truck" V="7">0300000001000000</C>)"
    R"(<C N="Passenger car" I="00000004" V="0005" D="04">0400000000002C01</C>)");

inline DeviceInfo LoadedDevice(const std::string& xml = kCatalog) {
    LoadResult r = Load(xml);
    EXPECT_TRUE(r.ok) << r.reason;
    return r.device;
}

// The passenger car's image with one option set to a raw value.
inline std::string WithOption(const DeviceInfo& device, int index, std::string value) {
    std::string image = device.PredefCfgs.Items[1].Data;
    SetOptionValue(image, device.Options.Items[static_cast<size_t>(index)], value);
    return image;
}

}  // namespace sb::test
