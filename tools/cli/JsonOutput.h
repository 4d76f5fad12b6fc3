#pragma once
#include <iostream>

#include "configfiles/JsonBytes.h"

namespace sb::cli {

// A command's result for scripts: one JSON object on one line of standard
// output. The module's texts go in through JsonBytes, one character a byte.
inline void PrintJson(const Json& value) { std::cout << value.dump() << '\n' << std::flush; }

}  // namespace sb::cli
