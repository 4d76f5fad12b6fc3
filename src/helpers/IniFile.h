#pragma once
#include <string>
#include <system_error>
#include <vector>

// Keys of an INI file with the semantics of the classic profile calls:
// sections and keys without regard to case, blanks and one pair of quotes
// around a value dropped, the file created on the first write. Writes go
// through ReplaceFileAtomically (helpers/WholeFile.h): a crash leaves the old
// file or the new one, links are followed, and a write-protected file is not
// written. Lines may end in LF or CR LF; new lines take the file's own line
// break (CR LF in a new file), and lines that a write does not touch stay as
// they were. Nothing here throws but std::bad_alloc.
namespace sb {

// A non-empty value writes the key; an empty value deletes the key; an empty
// value and an empty key delete the section. False when the file cannot be
// read or replaced, and for what could not be read back as written: an empty
// section name, a line break anywhere, "]" in the section or "=" in the key.
bool IniWriteValue(const std::string& section, const std::string& key, const std::string& value,
                   const std::string& path);

// Several writes as one: each entry acts as IniWriteValue would, in order,
// and the file is replaced once, so a crash leaves all of them or none. One
// entry that IniWriteValue would refuse refuses them all (invalid_argument).
// False when nothing was written; failure (when given) then says why, as
// the platform says it (permission_denied for a write-protected file).
struct IniEntry {
    std::string section;
    std::string key;
    std::string value;
};
bool IniWriteValues(const std::vector<IniEntry>& entries, const std::string& path,
                    std::error_code* failure = nullptr);

// The key's value; the default when the section, the key or the file is
// missing (or the key holds the text "NothingFound"); empty when the key is
// empty.
std::string IniReadValue(const std::string& section, const std::string& key, const std::string& defaultValue,
                         const std::string& path);

}  // namespace sb
