#pragma once
#include <string>

namespace sb::module {

// Texts of the profile and of the command line may carry any byte: \r, \n,
// \t, \\, \" and \xHH (two hex digits) stand for the byte. A backslash
// before any other character, or a broken \x, throws std::invalid_argument.
std::string UnescapeText(const std::string& text);

}  // namespace sb::module
