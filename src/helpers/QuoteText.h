#pragma once
#include <string>

namespace sb {

// The text between two double quotes, not escaped.
std::string QuoteText(const std::string& text);

}  // namespace sb
