#pragma once
#include <cstdint>
#include <string>

// Reading and replacing whole files, for the INI access and the binary file
// reader.
namespace sb {

enum class WholeFileRead {
    Missing,     // no file of that name
    NotAFile,    // a directory, a device or a pipe
    CannotOpen,  // there, but not readable (rights, a bad path)
    TooLarge,    // longer than the caller's limit; nothing read
    Complete,
    Partial,     // the read failed or the file shrank; bytes keep the file's length
};

// Reads the file into bytes, which end up as long as the file was when it
// was opened (empty for every outcome but Complete and Partial).
WholeFileRead ReadWholeFile(const std::string& path, std::string& bytes, int64_t maxLength);

// Writes a temporary file beside the target, flushes it to the disk and
// renames it over the target, so that a crash leaves the old file or the
// new one. A symbolic link is followed; an existing file keeps its rights.
// False when anything fails; the target is then untouched.
bool ReplaceFileAtomically(const std::string& path, const std::string& content);

}  // namespace sb
