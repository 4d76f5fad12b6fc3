#pragma once
#include <string>

// An exclusive lock on a file beside the one it guards, held while the object
// lives: programs that read, count up and write back one file take it in
// turn. A lock file is used because the guarded file itself is replaced by
// each write, and a lock on the old one would guard nothing. When the lock
// cannot be made (a folder that cannot be written) the holder goes on
// without it; its write will fail on its own.
namespace sb {

class FileLock {
public:
    explicit FileLock(const std::string& guardedPath);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    bool Held() const { return fd_ >= 0; }

private:
    int fd_ = -1;
};

}  // namespace sb
