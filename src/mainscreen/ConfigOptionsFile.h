#pragma once
#include <string>

namespace sb::ui {

inline constexpr const char* kConfigOptionsName = "ConfigOptions.xml";

// Where the offline run finds ConfigOptions.xml: beside the program when it
// is there, else in the user's configuration folder of the program
// (~/.config/servicebay). When neither holds one, the place beside the
// program, so that the message names where to put it.
std::string DefaultConfigOptionsPath();

}  // namespace sb::ui
