#pragma once
#include <string>

#include "config/Latin1Text.h"

namespace sb::cli {

// Messages of the core end their lines with CR LF; a terminal wants LF.
inline std::string TerminalLines(std::string text) {
    for (auto at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n", at)) text.erase(at, 1);
    return text;
}

// A message that carries the module's own bytes (the report behind a
// transfer): its line breaks as the terminal wants them, and every other
// control code in the terminal-safe form, so that no module can move the
// cursor, clear the screen or write over a line.
inline std::string TerminalSafeLines(const std::string& text) {
    std::string lines;
    for (size_t from = 0;;) {
        const auto end = text.find("\r\n", from);
        lines += Latin1ToTerminal(std::string_view(text).substr(from, end == std::string::npos ? end : end - from));
        if (end == std::string::npos) return lines;
        lines += '\n';
        from = end + 2;
    }
}

}  // namespace sb::cli
