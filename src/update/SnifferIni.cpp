#include "update/SnifferIni.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace sb {
namespace {

std::string overridden;

std::filesystem::path UserConfigFolder() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && *config == '/') return std::filesystem::path(config) / "servicebay";
    const char* home = std::getenv("HOME");
    if (home && *home) return std::filesystem::path(home) / ".config" / "servicebay";
    return {};
}

bool Writable(const std::filesystem::path& directory) { return ::access(directory.c_str(), W_OK) == 0; }

}  // namespace

std::string ProgramDirectory() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (error ? std::filesystem::current_path(error) : program.parent_path()).string();
}

std::string SnifferIniPath() {
    if (!overridden.empty()) return overridden;
    const std::filesystem::path program = ProgramDirectory();
    const auto config = UserConfigFolder();
    if (Writable(program) || config.empty()) return program.string() + "/" + kSnifferIniName;
    // A new folder of the user's own; a write into it makes the file.
    std::error_code ignored;
    std::filesystem::create_directories(config, ignored);
    return config.string() + "/" + kSnifferIniName;
}

void OverrideSnifferIniPath(const std::string& path) { overridden = path; }

}  // namespace sb
