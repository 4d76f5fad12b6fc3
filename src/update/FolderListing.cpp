#include "update/FolderListing.h"

#include <fnmatch.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace sb {
namespace {

namespace fs = std::filesystem;

bool Hidden(const fs::path& entry) { return entry.filename().string().starts_with('.'); }

bool IsUnder(const std::string& path, const std::string& folder) {
    if (folder == "/") return true;
    return path == folder || (path.starts_with(folder) && path[folder.size()] == '/');
}

std::vector<std::string> SplitPatterns(const std::string& pattern) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (;;) {
        const size_t end = pattern.find(';', start);
        parts.push_back(pattern.substr(start, end - start));
        if (end == std::string::npos) return parts;
        start = end + 1;
    }
}

template <class Keep>
std::vector<std::string> SortedEntries(const std::string& folder, Keep keep) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        if (!Hidden(it->path()) && keep(*it)) names.push_back(it->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

std::string ExistingFolder(const std::string& path) {
    const fs::path absolute = fs::absolute(path).lexically_normal();
    if (!fs::is_directory(absolute))
        throw fs::filesystem_error("no such folder", absolute, std::make_error_code(std::errc::not_a_directory));
    std::string plain = absolute.string();
    while (plain.size() > 1 && plain.back() == '/') plain.pop_back();
    return plain;
}

std::string MountPointOf(const std::string& path, const std::vector<std::string>& mountPoints) {
    std::string best = "/";
    for (const std::string& point : mountPoints) {
        if (point.size() > best.size() && IsUnder(path, point)) best = point;
    }
    return best;
}

std::string FolderOnDrive(const std::string& folder, const std::string& drive,
                          const std::vector<std::string>& mountPoints) {
    return MountPointOf(folder, mountPoints) == drive ? folder : drive;
}

std::vector<FolderRow> FolderRows(const std::string& folder) {
    std::vector<FolderRow> rows{{"/", "/", 0, true}};
    const fs::path current(folder);
    fs::path above("/");
    for (const fs::path& part : current.relative_path()) {
        above /= part;
        rows.push_back({part.string(), above.string(), static_cast<int>(rows.size()), true});
    }
    const int level = static_cast<int>(rows.size());
    for (const std::string& name : SortedEntries(folder, [](const fs::directory_entry& e) {
             std::error_code ignored;
             return e.is_directory(ignored);
         }))
        rows.push_back({name, (current / name).string(), level, false});
    return rows;
}

bool MatchesFilePattern(const std::string& name, const std::string& pattern) {
    const auto patterns = SplitPatterns(pattern);
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& one) {
        return ::fnmatch(one.c_str(), name.c_str(), FNM_CASEFOLD | FNM_PERIOD) == 0;
    });
}

std::vector<std::string> MatchingFiles(const std::string& folder, const std::string& pattern) {
    return SortedEntries(folder, [&](const fs::directory_entry& e) {
        std::error_code ignored;
        return e.is_regular_file(ignored) && MatchesFilePattern(e.path().filename().string(), pattern);
    });
}

std::string ChosenFile(const std::string& folder, const std::string& name) { return folder + "/" + name; }

}  // namespace sb
