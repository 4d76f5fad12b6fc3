#pragma once
#include <optional>
#include <string>
#include <vector>

#include "support/Doctor.h"

// The support bundle: one gzip-compressed tar archive of what support needs
// to see of a machine and its last contact with a module, with a manifest of
// what each part holds and which part could not be collected.
namespace sb::support {

// Each part is cut to this many bytes (a trace keeps its newest lines).
inline constexpr std::size_t kBundlePartLimit = 4 << 20;

struct BundleSources {
    std::vector<Finding> Findings;
    std::string Versions;                  // the program's and the system's, one a line
    std::optional<std::string> WireTrace;  // the trace's lines; nullopt: none to be had
    std::string WireTraceMissing;          // why not, when there is none
    std::string HistoryRoot;               // the last read's configuration file is the newest in it
    std::vector<std::string> LogPaths;     // the files and folders the program writes
    bool WithVin = false;
};

// Writes the archive to path (through a temporary file beside it); throws
// std::runtime_error naming what failed.
void WriteSupportBundle(const std::string& path, const BundleSources& sources);

// The system's side of the versions: kernel and distribution.
std::string SystemVersions(const SystemView& system);

// A trace with the answers to GETVIN left out: every line that came in
// after the command, up to the prompt, is replaced by a line that says so.
std::string WithoutVin(const std::string& trace);

}  // namespace sb::support
