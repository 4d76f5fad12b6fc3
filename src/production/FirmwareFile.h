#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>

// The firmware file of a production run, read once at its start. Every module
// gets these very bytes: the programs that download them read a sealed copy
// in memory, not the file, so a file that is replaced while the station runs
// cannot slip into a module unseen. Check tells whether the file on disk
// still holds them; MayHaveChanged is the cheap question to ask often.
namespace sb {

struct FirmwareError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class FirmwareState { Unchanged, Changed, Gone };

class FirmwareFile {
public:
    // Throws FirmwareError for a file that is missing, not a normal file,
    // empty, unreadable or 2 GiB and more, and when the copy cannot be made.
    explicit FirmwareFile(std::string path);
    ~FirmwareFile();
    FirmwareFile(const FirmwareFile&) = delete;
    FirmwareFile& operator=(const FirmwareFile&) = delete;

    const std::string& Path() const { return path_; }  // absolute
    std::string Name() const;  // the file's name without its folder
    int64_t Size() const { return static_cast<int64_t>(bytes_.size()); }
    const std::string& Sha256() const { return sha256_; }
    const std::string& Bytes() const { return bytes_; }

    // A path under which child processes read the sealed copy: it names a
    // descriptor that they inherit, so it is valid in children only.
    std::string CopyPath() const;

    // Reads the file again and compares its SHA-256 with the one read at the start.
    FirmwareState Check() const;
    // Whether the file's identity, size or times differ from the last time
    // this was asked (the first time: from the start).
    bool MayHaveChanged() const;

private:
    std::string path_;
    mutable std::string stamp_;  // as MayHaveChanged saw the file last
    std::string bytes_;
    std::string sha256_;
    int copy_ = -1;
};

}  // namespace sb
