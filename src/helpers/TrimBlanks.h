#pragma once
#include <string>

namespace sb {

// Strips blank, tab, line feed and carriage return at both ends.
std::string TrimBlanks(const std::string& text);

}  // namespace sb
