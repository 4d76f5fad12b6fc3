#include "configfiles/ConfigHistory.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <regex>

#include "configfiles/ConfigFile.h"

namespace sb {
namespace fs = std::filesystem;
namespace {

const char* kFolderOfNone = "(none)";  // for an empty serial number; "(" is never kept as it is

// A serial number is the module's bytes: anything but letters, digits, "-",
// "_" and an inner "." is written %XX, so that no answer can climb out of
// the history or hide its folder.
std::string FolderName(const std::string& sn) {
    if (sn.empty()) return kFolderOfNone;
    static const char digits[] = "0123456789ABCDEF";
    std::string name;
    for (size_t i = 0; i < sn.size(); ++i) {
        const auto c = static_cast<unsigned char>(sn[i]);
        if (std::isalnum(c) || c == '-' || c == '_' || (c == '.' && i > 0)) {
            name += static_cast<char>(c);
        } else {
            name += '%';
            name += digits[c >> 4];
            name += digits[c & 0x0F];
        }
    }
    return name;
}

std::string SerialNumber(const std::string& folder) {
    if (folder == kFolderOfNone) return {};
    std::string sn;
    for (size_t i = 0; i < folder.size(); ++i) {
        if (folder[i] == '%' && i + 2 < folder.size() && std::isxdigit(static_cast<unsigned char>(folder[i + 1])) &&
            std::isxdigit(static_cast<unsigned char>(folder[i + 2]))) {
            sn += static_cast<char>(std::stoi(folder.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            sn += folder[i];
        }
    }
    return sn;
}

// Files of the history, newest first: their names sort by time.
std::vector<HistoryFile> FilesIn(const fs::path& folder) {
    static const std::regex kName(R"((\d{8}T\d{6}\.\d{3}Z)\.sbconf)");
    std::vector<HistoryFile> files;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        std::smatch stamp;
        const std::string name = entry.path().filename().string();
        if (std::regex_match(name, stamp, kName) && entry.is_regular_file(error))
            files.push_back({entry.path().string(), stamp[1]});
    }
    std::sort(files.begin(), files.end(), [](const auto& x, const auto& y) { return x.Stamp > y.Stamp; });
    return files;
}

[[noreturn]] void CannotWrite(const fs::path& folder, const std::string& why) {
    throw ConfigFileError(ConfigFault::CannotWrite, folder.string(), "the history cannot be kept here: " + why);
}

// A name of its own even for two reads in one millisecond.
fs::path FreeName(const fs::path& folder, TimePoint when) {
    for (int attempt = 0; attempt < 1000; ++attempt, when += std::chrono::milliseconds(1)) {
        fs::path file = folder / (IsoUtcFileStamp(when) + kConfigExtension);
        std::error_code error;
        if (!fs::exists(file, error)) return file;
    }
    CannotWrite(folder, "no free file name");
}

}  // namespace

std::string HistoryRoot() {
    // XDG takes an absolute path only; a relative one counts as unset.
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data != nullptr && data[0] == '/') return (fs::path(data) / "servicebay" / "history").string();
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] == '\0') {
        const passwd* user = ::getpwuid(::getuid());
        home = user != nullptr ? user->pw_dir : nullptr;
    }
    if (home == nullptr || home[0] == '\0')
        throw ConfigFileError(ConfigFault::CannotWrite, "history", "no home folder and no XDG_DATA_HOME");
    return (fs::path(home) / ".local" / "share" / "servicebay" / "history").string();
}

std::string KeepInHistory(const ConfigDocument& document, const std::string& root, TimePoint when) {
    const fs::path folder = fs::path(root) / FolderName(document.Module.SN);
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) CannotWrite(folder, error.message());
    const fs::path file = FreeName(folder, when);
    WriteConfigFile(file.string(), document);
    const std::vector<HistoryFile> files = FilesIn(folder);
    for (size_t i = kHistoryLimit; i < files.size(); ++i) fs::remove(files[i].Path, error);
    return file.string();
}

std::vector<HistoryGroup> ListHistory(const std::string& root) {
    std::vector<HistoryGroup> groups;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(root, error)) {
        if (!entry.is_directory(error)) continue;
        HistoryGroup group{SerialNumber(entry.path().filename().string()), FilesIn(entry.path())};
        if (!group.Files.empty()) groups.push_back(std::move(group));
    }
    std::sort(groups.begin(), groups.end(),
              [](const auto& x, const auto& y) { return x.Files.front().Stamp > y.Files.front().Stamp; });
    return groups;
}

}  // namespace sb
