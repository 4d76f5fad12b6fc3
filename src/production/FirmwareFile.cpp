#include "production/FirmwareFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "helpers/Sha256.h"
#include "helpers/WholeFile.h"

namespace sb {
namespace {

// The update run refuses files of 2 GiB and more.
constexpr int64_t kLongestFirmware = (int64_t{1} << 31) - 1;

const char* Why(WholeFileRead read) {
    switch (read) {
        case WholeFileRead::Missing: return "there is no such file";
        case WholeFileRead::NotAFile: return "it is not a normal file";
        case WholeFileRead::CannotOpen: return "it cannot be opened";
        case WholeFileRead::TooLarge: return "it is 2 GiB or larger";
        case WholeFileRead::Partial: return "it could not be read to its end";
        case WholeFileRead::Complete: break;
    }
    return "";
}

// An anonymous file that holds the bytes and can be neither written nor
// resized any more; not closed on exec, so that children inherit it.
int SealedCopy(const std::string& bytes) {
    const int fd = ::memfd_create("servicebay-firmware", MFD_ALLOW_SEALING);
    if (fd < 0) return -1;
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) break;
        done += static_cast<size_t>(written);
    }
    if (done != bytes.size() ||
        ::fcntl(fd, F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

// What the system tells of a file without reading it; empty when it is not there.
std::string StatusStamp(const std::string& path) {
    struct stat s {};
    if (::stat(path.c_str(), &s) != 0) return {};
    const auto parts = {static_cast<uint64_t>(s.st_dev),         static_cast<uint64_t>(s.st_ino),
                        static_cast<uint64_t>(s.st_size),        static_cast<uint64_t>(s.st_mtim.tv_sec),
                        static_cast<uint64_t>(s.st_mtim.tv_nsec), static_cast<uint64_t>(s.st_ctim.tv_sec),
                        static_cast<uint64_t>(s.st_ctim.tv_nsec)};
    std::string stamp;
    for (const uint64_t part : parts) stamp += std::to_string(part) + ' ';
    return stamp;
}

// The folder as the system resolves it, the name as it was given: a link
// that is pointed at another file is seen as a change of the file.
std::string Absolute(const std::string& path) {
    std::error_code failed;
    const auto absolute = std::filesystem::absolute(path, failed);
    if (path.empty() || failed) return path;
    const auto folder = std::filesystem::weakly_canonical(absolute.parent_path(), failed);
    return (failed ? absolute : folder / absolute.filename()).string();
}

}  // namespace

FirmwareFile::FirmwareFile(std::string path) : path_(Absolute(path)) {
    // Taken before the bytes are read: a change behind it shows.
    stamp_ = StatusStamp(path_);
    const WholeFileRead read = ReadWholeFile(path_, bytes_, kLongestFirmware);
    if (read != WholeFileRead::Complete)
        throw FirmwareError("The firmware file " + path_ + " cannot be used: " + Why(read) + ".");
    if (bytes_.empty()) throw FirmwareError("The firmware file " + path_ + " is empty.");
    sha256_ = Sha256Hex(bytes_);
    copy_ = SealedCopy(bytes_);
    if (copy_ < 0)
        throw FirmwareError("No copy of the firmware file could be made in memory: " + std::string(std::strerror(errno)));
}

FirmwareFile::~FirmwareFile() {
    if (copy_ >= 0) ::close(copy_);
}

std::string FirmwareFile::Name() const { return std::filesystem::path(path_).filename().string(); }

std::string FirmwareFile::CopyPath() const { return "/dev/fd/" + std::to_string(copy_); }

bool FirmwareFile::MayHaveChanged() const {
    std::string now = StatusStamp(path_);
    if (now == stamp_) return false;
    stamp_ = std::move(now);
    return true;
}

FirmwareState FirmwareFile::Check() const {
    std::string now;
    if (ReadWholeFile(path_, now, kLongestFirmware) != WholeFileRead::Complete) return FirmwareState::Gone;
    return now.size() == bytes_.size() && Sha256Hex(now) == sha256_ ? FirmwareState::Unchanged
                                                                     : FirmwareState::Changed;
}

}  // namespace sb
