#include "helpers/WholeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace sb {
namespace {

// Closes a descriptor on every road out of a function.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return fd_; }
    bool IsOpen() const { return fd_ >= 0; }
    bool Close() {
        if (fd_ < 0) return true;
        const bool closed = ::close(fd_) == 0;
        fd_ = -1;
        return closed;
    }

private:
    int fd_;
};

bool WriteAll(int fd, const std::string& content) {
    const char* p = content.data();
    size_t left = content.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, p, left);
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        p += written;
        left -= static_cast<size_t>(written);
    }
    return true;
}

// A name beside the target that no other writer uses: this process's id and
// a running number.
Descriptor CreateTemporaryBeside(const std::filesystem::path& target, std::string& name) {
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        const auto suffix = ".tmp-" + std::to_string(::getpid()) + "-" + std::to_string(counter++);
        name = (target.parent_path() / ("." + target.filename().string() + suffix)).string();
        // 0666 before the umask, as for any new file; a replaced file's
        // rights are copied later.
        const int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST) return Descriptor(fd);
    }
    return Descriptor(-1);
}

void SyncDirectory(const std::filesystem::path& directory) {
    // Makes the rename itself durable; a file system that cannot do this
    // still has the rename, so a failure is no failure of the write.
    Descriptor fd(::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.IsOpen()) ::fsync(fd.Get());
}

}  // namespace

WholeFileRead ReadWholeFile(const std::string& path, std::string& bytes, int64_t maxLength) {
    bytes.clear();
    // Non-blocking, so that a pipe of that name cannot hold the program.
    Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!fd.IsOpen()) return errno == ENOENT ? WholeFileRead::Missing : WholeFileRead::CannotOpen;
    struct stat status{};
    if (::fstat(fd.Get(), &status) != 0) return WholeFileRead::CannotOpen;
    if (!S_ISREG(status.st_mode)) return WholeFileRead::NotAFile;
    const int64_t length = status.st_size;
    if (length > maxLength) return WholeFileRead::TooLarge;

    bytes.resize(static_cast<size_t>(length));
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = ::read(fd.Get(), bytes.data() + done, bytes.size() - done);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return WholeFileRead::Partial;
        done += static_cast<size_t>(got);
    }
    return WholeFileRead::Complete;
}

bool ReplaceFileAtomically(const std::string& path, const std::string& content) {
    std::error_code error;
    std::filesystem::path target = path;
    if (std::filesystem::is_symlink(target, error)) {
        target = std::filesystem::weakly_canonical(target, error);
        if (error) return false;
    }

    struct stat old{};
    const bool replacing = ::stat(target.c_str(), &old) == 0;
    if (replacing && !S_ISREG(old.st_mode)) return false;

    std::string temporary;
    Descriptor fd = CreateTemporaryBeside(target, temporary);
    if (!fd.IsOpen()) return false;
    bool written = WriteAll(fd.Get(), content);
    if (written && replacing) written = ::fchmod(fd.Get(), old.st_mode & 07777) == 0;
    written = written && ::fsync(fd.Get()) == 0;
    written = fd.Close() && written;
    if (!written || std::rename(temporary.c_str(), target.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    SyncDirectory(target.parent_path());
    return true;
}

}  // namespace sb
