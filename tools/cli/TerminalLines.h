#pragma once
#include <string>

namespace sb::cli {

// Messages of the core end their lines with CR LF; a terminal wants LF.
inline std::string TerminalLines(std::string text) {
    for (auto at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n", at)) text.erase(at, 1);
    return text;
}

}  // namespace sb::cli
