#pragma once
#include <cstdint>
#include <string>
#include <system_error>

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
// was opened (empty for every outcome but Complete and Partial). failure
// (when given) says why a read was not Complete, as the platform says it.
WholeFileRead ReadWholeFile(const std::string& path, std::string& bytes, int64_t maxLength,
                            std::error_code* failure = nullptr);

// Writes content into the file, as a write in place would leave it: a
// symbolic link is followed to the file it names (which is made when it is
// missing), and the file keeps its owner, its rights and its hard links.
// Where that allows, the content goes into a temporary file beside the
// target, which is flushed to the disk and renamed over the target, so that
// a crash leaves the old file or the new one. A file with hard links, one
// whose owner a new file could not be given, or one in a folder that may
// not be written is rewritten in place instead. A file without any write
// right is write-protected and not written, not even by the superuser.
// Temporary files that dead writers left beside the target (".NAME.tmp-PID-N")
// are removed; those of live writers stay. False when the file was not
// written; failure (when given) then says why, and the target is untouched.
// Throws nothing.
bool ReplaceFileAtomically(const std::string& path, const std::string& content,
                           std::error_code* failure = nullptr);

// Writes content into a new file at path in one step, as
// ReplaceFileAtomically does, but never over a file of that name: two
// writers of one name get one file each or a failure. False when the file
// was not written; failure (when given) then says why, file_exists when the
// name was taken. Throws nothing.
bool CreateFileAtomically(const std::string& path, const std::string& content, std::error_code* failure = nullptr);

}  // namespace sb
