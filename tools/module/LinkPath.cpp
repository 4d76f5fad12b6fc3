#include "LinkPath.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace sb::module {

void LinkPath::PointTo(const std::string& device) {
    if (path_.empty()) return;
    // Made beside the path and renamed over it, so that a reader finds the
    // old link or the new one.
    const std::string temporary = path_ + ".tmp-" + std::to_string(::getpid());
    ::unlink(temporary.c_str());
    if (::symlink(device.c_str(), temporary.c_str()) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot make the link " + temporary);
    if (std::rename(temporary.c_str(), path_.c_str()) != 0) {
        const int error = errno;
        ::unlink(temporary.c_str());
        throw std::system_error(error, std::generic_category(), "cannot make the link " + path_);
    }
    target_ = device;
}

void LinkPath::Remove() {
    if (path_.empty() || target_.empty()) return;
    char pointsTo[4096];
    const ssize_t length = ::readlink(path_.c_str(), pointsTo, sizeof pointsTo - 1);
    if (length >= 0 && std::string(pointsTo, static_cast<size_t>(length)) == target_) ::unlink(path_.c_str());
    target_.clear();
}

}  // namespace sb::module
