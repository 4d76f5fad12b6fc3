#pragma once
#include <string>

namespace sb::ui {

inline constexpr const char* kConfigOptionsName = "ConfigOptions.xml";

// Where the offline run finds ConfigOptions.xml: beside the program when it
// is there, else in the user's configuration folder of the program
// (~/.config/servicebay), else the sample catalog of an installed program
// (/usr/share/servicebay/SampleCatalog.xml). When none is there, the place
// beside the program, so that the message names where to put it.
std::string DefaultConfigOptionsPath();

// The first of the three places that holds a file; else the first place.
std::string FirstExistingConfigOptions(const std::string& beside, const std::string& inConfig,
                                       const std::string& installedSample);

}  // namespace sb::ui
