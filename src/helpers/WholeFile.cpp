#include "helpers/WholeFile.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <string_view>
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

std::error_code LastError() { return {errno, std::generic_category()}; }

// ".NAME.tmp-" stands in front of a writer's process id and its running
// number in the name of its temporary file beside NAME.
std::string TemporaryPrefix(const std::filesystem::path& target) { return "." + target.filename().string() + ".tmp-"; }

// A name beside the target that no other writer uses: this process's id and
// a running number.
Descriptor CreateTemporaryBeside(const std::filesystem::path& target, std::string& name) {
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        const auto suffix = std::to_string(::getpid()) + "-" + std::to_string(counter++);
        name = (target.parent_path() / (TemporaryPrefix(target) + suffix)).string();
        // 0666 before the umask, as for any new file; a replaced file's
        // owner and rights are copied later.
        const int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST) return Descriptor(fd);
    }
    return Descriptor(-1);
}

bool AllDigits(std::string_view text) { return !text.empty() && text.find_first_not_of("0123456789") == text.npos; }

// The process that wrote a temporary file of that name, or 0 for a name
// that is no temporary file of the target's.
pid_t WriterOf(std::string_view name, std::string_view prefix) {
    if (!name.starts_with(prefix)) return 0;
    name.remove_prefix(prefix.size());
    const auto dash = name.find('-');
    if (dash == name.npos || !AllDigits(name.substr(0, dash)) || !AllDigits(name.substr(dash + 1))) return 0;
    pid_t writer = 0;
    std::from_chars(name.data(), name.data() + dash, writer);
    return writer;
}

// A writer that was killed leaves its temporary file behind. One whose
// process is gone is removed; a live writer's file stays, for it is about
// to be renamed.
void RemoveTemporariesOfDeadWriters(const std::filesystem::path& target) {
    const std::string prefix = TemporaryPrefix(target);
    std::error_code error;
    std::filesystem::directory_iterator entry(target.parent_path().empty() ? "." : target.parent_path(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const pid_t writer = WriterOf(entry->path().filename().native(), prefix);
        if (writer > 0 && ::kill(writer, 0) != 0 && errno == ESRCH) ::unlink(entry->path().c_str());
    }
}

// The file that a path names: symbolic links at its end are followed, a
// relative one from its own folder. A missing file is the answer as well.
std::error_code FollowLinks(std::filesystem::path& target) {
    constexpr int kMostLinks = 40;  // the kernel's own limit
    for (int hop = 0; hop < kMostLinks; ++hop) {
        struct stat status{};
        if (::lstat(target.c_str(), &status) != 0) return errno == ENOENT ? std::error_code() : LastError();
        if (!S_ISLNK(status.st_mode)) return {};
        std::error_code error;
        const std::filesystem::path next = std::filesystem::read_symlink(target, error);
        if (error) return error;
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return std::make_error_code(std::errc::too_many_symbolic_link_levels);
}

// Rights decide for everyone but the superuser; a file that grants no write
// right at all is write-protected for the superuser too.
std::error_code WriteRefused(const std::filesystem::path& target, const struct stat& status) {
    if (S_ISDIR(status.st_mode)) return std::make_error_code(std::errc::is_a_directory);
    if (!S_ISREG(status.st_mode)) return std::make_error_code(std::errc::invalid_argument);
    if ((status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)
        return std::make_error_code(std::errc::permission_denied);
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return LastError();
    return {};
}

// The road that keeps everything of the file but its bytes. Not atomic: a
// crash in the middle can leave the file half written.
std::error_code WriteInPlace(const std::filesystem::path& target, const std::string& content) {
    Descriptor fd(::open(target.c_str(), O_WRONLY | O_CLOEXEC));
    if (!fd.IsOpen() || !WriteAll(fd.Get(), content) ||
        ::ftruncate(fd.Get(), static_cast<off_t>(content.size())) != 0 || ::fsync(fd.Get()) != 0 || !fd.Close())
        return LastError();
    return {};
}

// The new file takes the old one's owner and rights; false when the owner
// cannot be given to it.
bool TakeOverOwnerAndRights(int fd, const struct stat& old) {
    struct stat now{};
    if (::fstat(fd, &now) != 0) return false;
    if ((now.st_uid != old.st_uid || now.st_gid != old.st_gid) && ::fchown(fd, old.st_uid, old.st_gid) != 0)
        return false;
    return ::fchmod(fd, old.st_mode & 07777) == 0;
}

void SyncDirectory(const std::filesystem::path& directory) {
    // Makes the rename itself durable; a file system that cannot do this
    // still has the rename, so a failure is no failure of the write.
    Descriptor fd(::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.IsOpen()) ::fsync(fd.Get());
}

// Fills the temporary file, flushes it to the disk and moves it to the
// target by move(from, to); the temporary file goes on every road but
// success.
template <class Move>
std::error_code FillAndMove(Descriptor& fd, const std::string& temporary, const std::filesystem::path& target,
                            const std::string& content, Move move) {
    if (!WriteAll(fd.Get(), content) || ::fsync(fd.Get()) != 0 || !fd.Close() ||
        !move(temporary.c_str(), target.c_str())) {
        const std::error_code error = LastError();
        ::unlink(temporary.c_str());
        return error;
    }
    SyncDirectory(target.parent_path());
    return {};
}

// A rename that fails with EEXIST where the name is taken. A file system
// without RENAME_NOREPLACE (NFS) gets a hard link, which fails the same way.
bool RenameUnlessTaken(const char* from, const char* to) {
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL || ::link(from, to) != 0) return false;
    ::unlink(from);
    return true;
}

std::error_code Replace(const std::string& path, const std::string& content) {
    std::filesystem::path target = path;
    if (const std::error_code error = FollowLinks(target)) return error;
    struct stat old{};
    const bool replacing = ::stat(target.c_str(), &old) == 0;
    if (!replacing && errno != ENOENT) return LastError();
    if (replacing)
        if (const std::error_code error = WriteRefused(target, old)) return error;
    RemoveTemporariesOfDeadWriters(target);
    // A rename would take the other names of the file away from the content.
    if (replacing && old.st_nlink > 1) return WriteInPlace(target, content);

    std::string temporary;
    Descriptor fd = CreateTemporaryBeside(target, temporary);
    if (!fd.IsOpen()) {
        // A folder that may not be written still holds a file that may be.
        if (replacing && (errno == EACCES || errno == EPERM)) return WriteInPlace(target, content);
        return LastError();
    }
    if (replacing && !TakeOverOwnerAndRights(fd.Get(), old)) {
        fd.Close();
        ::unlink(temporary.c_str());
        return WriteInPlace(target, content);
    }
    return FillAndMove(fd, temporary, target, content,
                       [](const char* from, const char* to) { return std::rename(from, to) == 0; });
}

std::error_code Create(const std::string& path, const std::string& content) {
    std::string temporary;
    Descriptor fd = CreateTemporaryBeside(path, temporary);
    if (!fd.IsOpen()) return LastError();
    return FillAndMove(fd, temporary, path, content, RenameUnlessTaken);
}

}  // namespace

WholeFileRead ReadWholeFile(const std::string& path, std::string& bytes, int64_t maxLength,
                            std::error_code* failure) {
    bytes.clear();
    const auto fail = [failure](WholeFileRead read, std::error_code why) {
        if (failure) *failure = why;
        return read;
    };
    // Non-blocking, so that a pipe of that name cannot hold the program.
    Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!fd.IsOpen()) return fail(errno == ENOENT ? WholeFileRead::Missing : WholeFileRead::CannotOpen, LastError());
    struct stat status{};
    if (::fstat(fd.Get(), &status) != 0) return fail(WholeFileRead::CannotOpen, LastError());
    if (!S_ISREG(status.st_mode)) {
        const auto why = S_ISDIR(status.st_mode) ? std::errc::is_a_directory : std::errc::invalid_argument;
        return fail(WholeFileRead::NotAFile, std::make_error_code(why));
    }
    const int64_t length = status.st_size;
    if (length > maxLength) return fail(WholeFileRead::TooLarge, std::make_error_code(std::errc::file_too_large));

    bytes.resize(static_cast<size_t>(length));
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = ::read(fd.Get(), bytes.data() + done, bytes.size() - done);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0)
            return fail(WholeFileRead::Partial, got < 0 ? LastError() : std::make_error_code(std::errc::io_error));
        done += static_cast<size_t>(got);
    }
    return WholeFileRead::Complete;
}

bool ReplaceFileAtomically(const std::string& path, const std::string& content, std::error_code* failure) {
    const std::error_code error = Replace(path, content);
    if (failure) *failure = error;
    return !error;
}

bool CreateFileAtomically(const std::string& path, const std::string& content, std::error_code* failure) {
    const std::error_code error = Create(path, content);
    if (failure) *failure = error;
    return !error;
}

}  // namespace sb
