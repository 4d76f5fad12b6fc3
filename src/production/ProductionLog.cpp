#include "production/ProductionLog.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace sb {
namespace {

std::string Reason(int error) { return std::strerror(error); }

}  // namespace

ProductionLog::ProductionLog(const std::string& path) : path_(path) {
    // Not blocking: a fifo without a reader fails here instead of waiting for one.
    fd_ = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0644);
    if (fd_ < 0) throw LogError("The log " + path + " cannot be written: " + Reason(errno));
    struct stat status {};
    if (::fstat(fd_, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(fd_);
        fd_ = -1;
        throw LogError("The log " + path + " is not a normal file.");
    }
}

ProductionLog::~ProductionLog() {
    if (fd_ >= 0) ::close(fd_);
}

void ProductionLog::Append(const ModuleRecord& record) {
    // Behind a part of a line that could not be taken back, a line end first.
    const std::string line = (cutShort_ ? "\n" : "") + LogLine(record);
    ssize_t written;
    // A signal that comes before anything is written leaves nothing behind.
    do written = ::write(fd_, line.data(), line.size());
    while (written < 0 && errno == EINTR);
    if (written < 0) throw LogError("The log " + path_ + " cannot be written: " + Reason(errno));
    if (static_cast<size_t>(written) != line.size()) {
        // Only a full disk (or a limit on the file's size) cuts a write to a
        // file short. The part that stands there is cut off again, so that a
        // reader finds whole lines only; appending, the write ended at the
        // descriptor's offset.
        const off_t end = ::lseek(fd_, 0, SEEK_CUR);
        cutShort_ = end < written || ::ftruncate(fd_, end - written) != 0;
        throw LogError("The log " + path_ + " took only part of a line: the disk is full.");
    }
    cutShort_ = false;
    // On the disk before the next module starts: a station that loses its
    // power keeps every line it has written.
    if (::fdatasync(fd_) != 0) throw LogError("The log " + path_ + " cannot be written: " + Reason(errno));
}

}  // namespace sb
