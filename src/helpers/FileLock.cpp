#include "helpers/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace sb {

FileLock::FileLock(const std::string& guardedPath) {
    fd_ = ::open((guardedPath + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd_ < 0) return;
    int locked;
    while ((locked = ::flock(fd_, LOCK_EX)) != 0 && errno == EINTR) {
    }
    if (locked != 0) {
        ::close(fd_);
        fd_ = -1;
    }
}

FileLock::~FileLock() {
    if (fd_ >= 0) ::close(fd_);  // closing lets the lock go
}

}  // namespace sb
