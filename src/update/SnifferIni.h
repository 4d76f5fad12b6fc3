#pragma once
#include <string>

// Where sniffer.ini lives: the production records (sections STAT and STAT_...)
// and the file chooser's remembered place (FRMLOAD) share it.
namespace sb {

inline constexpr const char* kSnifferIniName = "sniffer.ini";

// The program's directory followed by "/sniffer.ini" when that directory is
// writable; else the same name in the user's configuration folder of the
// program ($XDG_CONFIG_HOME/servicebay, or ~/.config/servicebay), which is
// made when it is missing. Both programs, the window and servicebay-cli,
// come to the same file.
std::string SnifferIniPath();

// Puts another file in its place for the rest of the process (tests); an
// empty path brings the usual place back.
void OverrideSnifferIniPath(const std::string& path);

// The folder of the running program (the file chooser starts there).
std::string ProgramDirectory();

}  // namespace sb
