#include "production/StopSignals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace sb {
namespace {

// A closed terminal or a dropped remote login (SIGHUP) asks as politely as
// Ctrl-C. A signal that the caller ignores stays ignored (nohup): blocked,
// it would be queued for the descriptor all the same.
sigset_t StopSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction now {};
        if (::sigaction(signal, nullptr, &now) == 0 && now.sa_handler == SIG_IGN) continue;
        sigaddset(&set, signal);
    }
    return set;
}

}  // namespace

StopSignals::StopSignals() : set_(StopSet()) {
    if (::sigprocmask(SIG_BLOCK, &set_, nullptr) != 0)
        throw std::system_error(errno, std::generic_category(), "sigprocmask");
    fd_ = ::signalfd(-1, &set_, SFD_NONBLOCK | SFD_CLOEXEC);
    if (fd_ < 0) {
        const int error = errno;
        ::sigprocmask(SIG_UNBLOCK, &set_, nullptr);
        throw std::system_error(error, std::generic_category(), "signalfd");
    }
}

StopSignals::~StopSignals() {
    ::close(fd_);
    ::sigprocmask(SIG_UNBLOCK, &set_, nullptr);
}

void StopSignals::AddPollFd(std::vector<pollfd>& fds) const { fds.push_back({fd_, POLLIN, 0}); }

int StopSignals::Take() {
    int count = 0;
    signalfd_siginfo info;
    while (::read(fd_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) ++count;
    return count;
}

}  // namespace sb
