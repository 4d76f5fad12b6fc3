#include "link/ModuleRegistry.h"

#include <dirent.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "helpers/WholeFile.h"

// One file a module, "<entry>.module", of lines KEY=VALUE. Files are replaced
// by a rename, so a reader sees an old entry or a new one, never half of one.
// The publisher's process id is written too, so that the entry of a module
// that was killed without withdrawing it is not listed.
namespace sb {
namespace {

constexpr const char* kEntrySuffix = ".module";
constexpr int64_t kLongestEntry = 64 * 1024;

std::string EntryPath(const std::string& entryName) {
    if (entryName.empty() || entryName.front() == '.' || entryName.find('/') != std::string::npos)
        throw std::invalid_argument("not a usable name for a registry entry: \"" + entryName + "\"");
    return ModuleRegistryFolder() + "/" + entryName + kEntrySuffix;
}

bool HasEntrySuffix(const std::string& name) {
    const std::string suffix = kEntrySuffix;
    return name.size() > suffix.size() && name.front() != '.' &&
           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// A value may hold no line break: the entry is one line a field.
std::string Field(const std::string& key, const std::string& value) {
    if (value.find_first_of("\r\n") != std::string::npos)
        throw std::invalid_argument("a registry field holds a line break: " + key);
    return key + "=" + value + "\n";
}

struct Entry {
    RegisteredModule module;
    long processId = 0;  // 0: not written
};

Entry ParseEntry(const std::string& text) {
    Entry entry;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        const std::string line = text.substr(start, end - start);
        start = end + 1;
        const size_t equals = line.find('=');
        if (equals == std::string::npos) continue;
        const std::string key = line.substr(0, equals);
        const std::string value = line.substr(equals + 1);
        if (key == "DevicePath") entry.module.DevicePath = value;
        if (key == "PNPDeviceID") entry.module.PNPDeviceID = value;
        if (key == "Description") entry.module.Description = value;
        if (key == "ProcessId") entry.processId = std::strtol(value.c_str(), nullptr, 10);
    }
    return entry;
}

bool DeviceExists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISCHR(status.st_mode);
}

bool ProcessAlive(long processId) {
    if (processId <= 0) return true;
    // EPERM: the process is there, only not ours to signal.
    return ::kill(static_cast<pid_t>(processId), 0) == 0 || errno == EPERM;
}

std::vector<std::string> EntryNames(const std::string& folder) {
    std::vector<std::string> names;
    DIR* directory = ::opendir(folder.c_str());
    if (!directory) return names;
    while (const dirent* item = ::readdir(directory)) {
        if (HasEntrySuffix(item->d_name)) names.emplace_back(item->d_name);
    }
    ::closedir(directory);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

std::string ModuleRegistryFolder() {
    if (const char* folder = std::getenv("SERVICEBAY_REGISTRY"); folder && *folder) return folder;
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && *runtime)
        return std::string(runtime) + "/servicebay";
    return "/tmp/servicebay-" + std::to_string(::getuid());
}

void PublishModule(const std::string& entryName, const RegisteredModule& module) {
    const std::string path = EntryPath(entryName);
    std::error_code error;
    // Only its owner may write in a folder that can lie in /tmp.
    if (std::filesystem::create_directories(ModuleRegistryFolder(), error))
        std::filesystem::permissions(ModuleRegistryFolder(), std::filesystem::perms::owner_all, error);
    if (error) throw std::system_error(error, "cannot create the module registry " + ModuleRegistryFolder());
    const std::string text = Field("DevicePath", module.DevicePath) + Field("PNPDeviceID", module.PNPDeviceID) +
                             Field("Description", module.Description) + Field("ProcessId", std::to_string(::getpid()));
    if (!ReplaceFileAtomically(path, text))
        throw std::system_error(errno, std::generic_category(), "cannot write the registry entry " + path);
}

void WithdrawModule(const std::string& entryName) {
    const std::string path = EntryPath(entryName);
    if (::unlink(path.c_str()) != 0 && errno != ENOENT)
        throw std::system_error(errno, std::generic_category(), "cannot remove the registry entry " + path);
}

std::vector<RegisteredModule> ListRegisteredModules() {
    const std::string folder = ModuleRegistryFolder();
    std::vector<RegisteredModule> modules;
    for (const std::string& name : EntryNames(folder)) {
        // An entry withdrawn since the folder was read is simply not there.
        std::string text;
        const WholeFileRead read = ReadWholeFile(folder + "/" + name, text, kLongestEntry);
        if (read != WholeFileRead::Complete) continue;
        const Entry entry = ParseEntry(text);
        if (entry.module.DevicePath.empty() || entry.module.PNPDeviceID.empty()) continue;
        if (!DeviceExists(entry.module.DevicePath) || !ProcessAlive(entry.processId)) continue;
        modules.push_back(entry.module);
    }
    return modules;
}

}  // namespace sb
