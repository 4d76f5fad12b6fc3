#include "configfiles/ConfigHistory.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <regex>

#include "configfiles/ConfigFile.h"
#include "helpers/Sha256.h"
#include "helpers/WholeFile.h"
#include "link/CommandSet.h"
#include "link/Terminal.h"

namespace sb {
namespace fs = std::filesystem;
namespace {

// A folder name stays below the 255 bytes of common file systems; a longer
// one keeps its start and, behind a "~" (never kept as it is either), a
// hash of the whole serial number, so that two long ones stay apart.
constexpr size_t kLongestFolderName = 255;
constexpr size_t kKeptOfLongName = 200;

// The answers of a module that did not tell its serial number.
bool IsSerialNumber(const std::string& sn) {
    return !sn.empty() && sn != kNoAnswer && sn != cmd::AnswerError;
}

// A long folder name cut at most at kKeptOfLongName, never inside a %XX.
std::string CutFolderName(const std::string& name, const std::string& sn) {
    size_t cut = kKeptOfLongName;
    while (name[cut - 1] == '%' || name[cut - 2] == '%') --cut;
    return name.substr(0, cut) + "~" + Sha256Hex(sn).substr(0, 16);
}

// A serial number is the module's bytes: anything but letters, digits, "-",
// "_" and an inner "." is written %XX, so that no answer can climb out of
// the history or hide its folder.
std::string FolderName(const std::string& sn) {
    // "(" is never kept as it is: no module's folder has the group's name.
    if (!IsSerialNumber(sn)) return kUnknownModule;
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
    return name.size() > kLongestFolderName ? CutFolderName(name, sn) : name;
}

// The serial number a folder keeps, with "..." where it was cut.
std::string SerialNumber(const std::string& folder) {
    if (folder == kUnknownModule) return kUnknownModule;
    const size_t cut = folder.find('~');
    std::string sn;
    for (size_t i = 0; i < std::min(cut, folder.size()); ++i) {
        if (folder[i] == '%' && i + 2 < folder.size() && std::isxdigit(static_cast<unsigned char>(folder[i + 1])) &&
            std::isxdigit(static_cast<unsigned char>(folder[i + 2]))) {
            sn += static_cast<char>(std::stoi(folder.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            sn += folder[i];
        }
    }
    return cut == std::string::npos ? sn : sn + "...";
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

// The file is created under a name of its own: two programs keeping a read
// of one serial number in one millisecond take the next millisecond's name.
std::string KeepInHistory(const ConfigDocument& document, const std::string& root, TimePoint when) {
    const fs::path folder = fs::path(root) / FolderName(document.Module.SN);
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) CannotWrite(folder, error.message());
    const std::string text = ConfigDocumentText(document);
    for (int attempt = 0; attempt < 1000; ++attempt, when += std::chrono::milliseconds(1)) {
        const fs::path file = folder / (IsoUtcFileStamp(when) + kConfigExtension);
        if (fs::exists(file, error)) continue;  // spares writing a file only to find the name taken
        if (!CreateFileAtomically(file.string(), text, &error)) {
            if (error == std::errc::file_exists) continue;
            CannotWrite(folder, error.message());
        }
        const std::vector<HistoryFile> files = FilesIn(folder);
        for (size_t i = kHistoryLimit; i < files.size(); ++i) fs::remove(files[i].Path, error);
        return file.string();
    }
    CannotWrite(folder, "no free file name");
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
