#include "production/StopSignals.h"

#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace sb {
namespace {

sigset_t StopSet() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

}  // namespace

StopSignals::StopSignals() {
    const sigset_t set = StopSet();
    if (::sigprocmask(SIG_BLOCK, &set, nullptr) != 0) throw std::system_error(errno, std::generic_category(), "sigprocmask");
    fd_ = ::signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (fd_ < 0) {
        const int error = errno;
        ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
        throw std::system_error(error, std::generic_category(), "signalfd");
    }
}

StopSignals::~StopSignals() {
    ::close(fd_);
    const sigset_t set = StopSet();
    ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

void StopSignals::AddPollFd(std::vector<pollfd>& fds) const { fds.push_back({fd_, POLLIN, 0}); }

int StopSignals::Take() {
    int count = 0;
    signalfd_siginfo info;
    while (::read(fd_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) ++count;
    return count;
}

}  // namespace sb
