#pragma once
#include <poll.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

// Programs run side by side, each in a process group of its own, watched
// without threads: their standard output comes in as lines, the end of their
// standard error is kept for the reason of a failure, and their exit is seen
// through a process descriptor. A child that says nothing for too long, or
// runs past its time, is stopped (TERM to its group, KILL after a grace) and
// ends as hung; a hang or crash of one never holds up the others.
//
// The supervisor does not own a loop: a caller puts its descriptors into a
// poll() together with its own (AddPollFds, PollTimeoutMs), and hands the
// answer back to Service. Wait does that for callers without descriptors
// of their own.
namespace sb {

using SteadyClock = std::chrono::steady_clock;

struct ChildLimits {
    // Longest time without a byte on standard output or error; zero: none.
    std::chrono::milliseconds Silence{0};
    // Longest time from the start; zero: none.
    std::chrono::milliseconds Total{0};
    // Between TERM and KILL when the child is stopped.
    std::chrono::milliseconds Grace{2000};
};

enum class ChildEndKind {
    Exited,     // ended by itself; ExitStatus holds its status
    Signalled,  // killed by a signal it did not get from us
    Silent,     // stopped after the silence limit
    Overdue,    // stopped after the time limit
    Stopped,    // stopped on request
};

struct ChildEnd {
    ChildEndKind Kind = ChildEndKind::Exited;
    int ExitStatus = -1;  // when it exited
    int Signal = 0;       // when a signal ended it
    std::string ErrorTail;  // the last lines of its standard error
    double Seconds = 0;
};

class ChildSupervisor {
public:
    using Id = int;
    struct Hooks {
        // A line of a child's standard output, without its line end.
        std::function<void(Id, const std::string& line)> Line;
        // Last of all for a child: its output is read to the end.
        std::function<void(Id, const ChildEnd&)> Ended;
    };

    explicit ChildSupervisor(Hooks hooks);
    // Kills what still runs and waits for it.
    ~ChildSupervisor();
    ChildSupervisor(const ChildSupervisor&) = delete;
    ChildSupervisor& operator=(const ChildSupervisor&) = delete;

    // Starts argv[0] (searched in PATH when it holds no slash) with standard
    // input from /dev/null. Throws std::system_error when it cannot be started.
    Id Start(const std::vector<std::string>& argv, ChildLimits limits);
    // TERM now, KILL after the grace; it ends as Stopped.
    void Stop(Id id);
    void StopAll();
    size_t Running() const { return children_.size(); }

    void AddPollFds(std::vector<pollfd>& fds) const;
    // Until the nearest limit or kill of a child, in ms; -1 when none is due.
    int PollTimeoutMs() const;
    // Reads what the descriptors in fds announce, ends the children that
    // exited, and acts on the limits that have passed. Descriptors not its own are left alone.
    void Service(const std::vector<pollfd>& fds);
    // One poll over the children's descriptors, at most maxMs (-1: until
    // something happens), then Service. Returns at once without children.
    void Wait(int maxMs);

private:
    struct Child;
    void Read(Child& child, int fd);
    void Reap(Id id);
    void Signal(Child& child, ChildEndKind why);
    void Deadlines();

    Hooks hooks_;
    Id next_ = 1;
    std::map<Id, std::unique_ptr<Child>> children_;
};

}  // namespace sb
