#pragma once
#include <string>
#include <vector>

// What the file chooser's three lists show, as plain data: the mount point
// that holds a folder (the "drive"), the rows of the directory list, the
// names of the file list under its pattern, and the result of a click in the
// file list. Paths use "/" between their parts.
namespace sb {

// The folder in its plain form: absolute, without "." and "..", without a
// slash at its end (except "/" itself). Throws std::filesystem::filesystem_error
// when there is no such folder, as the lists refuse a path that does not exist.
std::string ExistingFolder(const std::string& path);

// The longest of mountPoints that is path or a folder above it; "/" when
// none is. path is in plain form.
std::string MountPointOf(const std::string& path, const std::vector<std::string>& mountPoints);

// Where the directory list goes when the drive changes: the current folder
// when it lies on that drive, else the drive's mount point.
std::string FolderOnDrive(const std::string& folder, const std::string& drive,
                          const std::vector<std::string>& mountPoints);

// One row of the directory list: the folders from "/" down to the current
// one (Open), then the current one's subfolders, each indented by its level.
struct FolderRow {
    std::string Name;  // as shown: "/" for the root, else the last part
    std::string Path;  // where a choice of the row leads
    int Level = 0;     // 0 for "/"
    bool Open = false;
};
std::vector<FolderRow> FolderRows(const std::string& folder);

// Whether a file name matches a pattern such as "*.cod"; several patterns
// are separated by ";". Letters match in either case, as firmware files come
// named FW.COD as often as fw.cod.
bool MatchesFilePattern(const std::string& name, const std::string& pattern);

// The plain files of folder (a link to one counts) that match pattern, sorted;
// hidden ones (a leading dot) are left out.
std::vector<std::string> MatchingFiles(const std::string& folder, const std::string& pattern);

// The result of a click in the file list: the folder, "/", the name. The
// separator is always put, so in the root the result begins with two.
std::string ChosenFile(const std::string& folder, const std::string& name);

}  // namespace sb
