#pragma once
#include <string>
#include <vector>

#include "configfiles/ConfigDocument.h"

// Every successful read of a module keeps its configuration in the user's
// data folder, one folder a serial number, one file a read named by its UTC
// time: <root>/<SN>/20240131T235959.123Z.sbconf. Only the newest
// kHistoryLimit files of a serial number stay. Reads whose serial number is
// empty or a failure word ("No answer", "Error!") share the group of the
// unknown module.
namespace sb {

inline constexpr size_t kHistoryLimit = 100;
inline constexpr const char* kUnknownModule = "(unknown module)";

// $XDG_DATA_HOME/servicebay/history, else ~/.local/share/servicebay/history.
// Throws ConfigFileError (CannotWrite) when there is no home folder.
std::string HistoryRoot();

// Writes the document as the newest file of its module's serial number,
// removes the oldest beyond the limit, and answers the file's path. A
// folder that cannot be made or written throws ConfigFileError
// (CannotWrite); the caller reports it and goes on.
std::string KeepInHistory(const ConfigDocument& document, const std::string& root,
                          TimePoint when = std::chrono::system_clock::now());

struct HistoryFile {
    std::string Path;
    std::string Stamp;  // the UTC time of its name, 20240131T235959.123Z
};

struct HistoryGroup {
    std::string SN;  // kUnknownModule for that group; cut, ending in "...", when too long for a folder name
    std::vector<HistoryFile> Files;  // newest first
};

// The kept files, grouped by serial number, the group with the newest file
// first; no root gives no groups. Files not named by the history are left
// out.
std::vector<HistoryGroup> ListHistory(const std::string& root);

}  // namespace sb
