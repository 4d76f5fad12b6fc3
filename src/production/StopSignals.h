#pragma once
#include <poll.h>
#include <signal.h>

#include <vector>

// Ctrl-C (SIGINT), SIGTERM and SIGHUP as something to read in the poll loop
// of a production run instead of a handler that can strike anywhere: while
// an object lives, they are blocked and arrive on a signal descriptor. One
// that is ignored when the object is made stays ignored (nohup).
// Children started by ChildSupervisor get them back at their defaults.
namespace sb {

class StopSignals {
public:
    // Throws std::system_error when the descriptor cannot be made.
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    void AddPollFd(std::vector<pollfd>& fds) const;
    // How many stop requests arrived since the last call.
    int Take();

private:
    sigset_t set_;
    int fd_ = -1;
};

}  // namespace sb
