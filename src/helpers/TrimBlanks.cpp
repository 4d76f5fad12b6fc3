#include "helpers/TrimBlanks.h"

namespace sb {

std::string TrimBlanks(const std::string& text) {
    constexpr const char* blanks = " \t\n\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return {};
    const auto last = text.find_last_not_of(blanks);
    return text.substr(first, last - first + 1);
}

}  // namespace sb
