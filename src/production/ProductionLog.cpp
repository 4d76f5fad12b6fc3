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
    // Behind a line that was cut short, a line end first.
    const std::string line = (cutShort_ ? "\n" : "") + LogLine(record);
    ssize_t written;
    // A signal that comes before anything is written leaves nothing behind.
    do written = ::write(fd_, line.data(), line.size());
    while (written < 0 && errno == EINTR);
    if (written < 0) throw LogError("The log " + path_ + " cannot be written: " + Reason(errno));
    // Only a full disk cuts a write to a file short; the part that stands
    // there has no line end, and the next line starts on a line of its own.
    cutShort_ = static_cast<size_t>(written) != line.size();
    if (cutShort_)
        throw LogError("The log " + path_ + " took only part of a line: the disk is full.");
}

}  // namespace sb
