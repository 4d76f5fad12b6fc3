#include "production/ChildSupervisor.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>

extern char** environ;

namespace sb {
namespace {

constexpr size_t kErrorTail = 4096;

[[noreturn]] void Throw(int error, const std::string& what) {
    throw std::system_error(error, std::generic_category(), what);
}

void Close(int& fd) {
    if (fd >= 0) ::close(fd);
    fd = -1;
}

// A pipe whose reading end does not block; the writing end stays blocking,
// for it becomes the child's standard output or error.
void MakePipe(int ends[2]) {
    if (::pipe2(ends, O_CLOEXEC) != 0) Throw(errno, "pipe");
    ::fcntl(ends[0], F_SETFL, ::fcntl(ends[0], F_GETFL) | O_NONBLOCK);
}

// The child gets the signals a program expects: none blocked, INT, TERM,
// HUP and PIPE at their defaults, whatever the parent has set for itself.
// Its own process group keeps the terminal's Ctrl-C away from it, so that a
// module in progress ends its work when the parent is interrupted.
class SpawnSettings {
public:
    SpawnSettings(int out, int err) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_addopen(&actions_, 0, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_adddup2(&actions_, out, 1);
        ::posix_spawn_file_actions_adddup2(&actions_, err, 2);
        ::posix_spawnattr_init(&attributes_);
        sigset_t none, defaults;
        sigemptyset(&none);
        sigemptyset(&defaults);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGCHLD}) sigaddset(&defaults, signal);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setsigdefault(&attributes_, &defaults);
        ::posix_spawnattr_setpgroup(&attributes_, 0);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings() {
        ::posix_spawnattr_destroy(&attributes_);
        ::posix_spawn_file_actions_destroy(&actions_);
    }
    const posix_spawn_file_actions_t* Actions() const { return &actions_; }
    const posix_spawnattr_t* Attributes() const { return &attributes_; }

private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

int MsUntil(SteadyClock::time_point when, SteadyClock::time_point now) {
    if (when <= now) return 0;
    // Rounded up, so that a poll never wakes a moment before the limit.
    return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(when - now).count());
}

}  // namespace

struct ChildSupervisor::Child {
    Id id = 0;
    pid_t pid = -1;
    int process = -1;  // pidfd
    int out = -1;
    int err = -1;
    std::string partLine;
    std::string errorTail;
    ChildLimits limits;
    SteadyClock::time_point started;
    SteadyClock::time_point lastOutput;
    std::optional<ChildEndKind> stopping;
    SteadyClock::time_point killAt;
    bool killed = false;

    ~Child() {
        Close(out);
        Close(err);
        Close(process);
    }
    std::optional<SteadyClock::time_point> NextDeadline() const {
        if (stopping) return killed ? std::nullopt : std::optional(killAt);
        std::optional<SteadyClock::time_point> next;
        if (limits.Silence.count() > 0) next = lastOutput + limits.Silence;
        if (limits.Total.count() > 0) next = std::min(next.value_or(SteadyClock::time_point::max()), started + limits.Total);
        return next;
    }
};

ChildSupervisor::ChildSupervisor(Hooks hooks) : hooks_(std::move(hooks)) {}

ChildSupervisor::~ChildSupervisor() {
    for (auto& [id, child] : children_) {
        ::kill(-child->pid, SIGKILL);
        ::waitpid(child->pid, nullptr, 0);
    }
}

ChildSupervisor::Id ChildSupervisor::Start(const std::vector<std::string>& argv, ChildLimits limits) {
    if (argv.empty()) throw std::invalid_argument("no program to start");
    int out[2], err[2];
    MakePipe(out);
    try {
        MakePipe(err);
    } catch (...) {
        ::close(out[0]);
        ::close(out[1]);
        throw;
    }
    auto child = std::make_unique<Child>();
    child->out = out[0];
    child->err = err[0];
    std::vector<char*> args;
    for (const std::string& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    int spawned;
    {
        const SpawnSettings settings(out[1], err[1]);
        spawned = ::posix_spawnp(&child->pid, args[0], settings.Actions(), settings.Attributes(), args.data(), environ);
    }
    ::close(out[1]);
    ::close(err[1]);
    if (spawned != 0) Throw(spawned, "cannot start " + argv[0]);
    child->process = static_cast<int>(::syscall(SYS_pidfd_open, child->pid, 0));
    if (child->process < 0) {
        const int error = errno;
        ::kill(-child->pid, SIGKILL);
        ::waitpid(child->pid, nullptr, 0);
        Throw(error, "cannot watch " + argv[0]);
    }
    ::fcntl(child->process, F_SETFD, FD_CLOEXEC);
    child->limits = limits;
    child->started = child->lastOutput = SteadyClock::now();
    const Id id = child->id = next_++;
    children_.emplace(id, std::move(child));
    return id;
}

void ChildSupervisor::Stop(Id id) {
    const auto found = children_.find(id);
    if (found != children_.end() && !found->second->stopping) Signal(*found->second, ChildEndKind::Stopped);
}

void ChildSupervisor::StopAll() {
    for (auto& [id, child] : children_)
        if (!child->stopping) Signal(*child, ChildEndKind::Stopped);
}

void ChildSupervisor::Signal(Child& child, ChildEndKind why) {
    child.stopping = why;
    child.killAt = SteadyClock::now() + child.limits.Grace;
    ::kill(-child.pid, SIGTERM);
}

void ChildSupervisor::AddPollFds(std::vector<pollfd>& fds) const {
    for (const auto& [id, child] : children_)
        for (const int fd : {child->out, child->err, child->process})
            if (fd >= 0) fds.push_back({fd, POLLIN, 0});
}

int ChildSupervisor::PollTimeoutMs() const {
    const auto now = SteadyClock::now();
    int timeout = -1;
    for (const auto& [id, child] : children_)
        if (const auto deadline = child->NextDeadline()) {
            const int ms = MsUntil(*deadline, now);
            timeout = timeout < 0 ? ms : std::min(timeout, ms);
        }
    return timeout;
}

void ChildSupervisor::Read(Child& child, int fd) {
    char buffer[4096];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return;  // nothing more now
        if (got == 0) {
            Close(fd == child.out ? child.out : child.err);
            return;
        }
        child.lastOutput = SteadyClock::now();
        if (fd == child.err) {
            child.errorTail.append(buffer, static_cast<size_t>(got));
            if (child.errorTail.size() > kErrorTail) child.errorTail.erase(0, child.errorTail.size() - kErrorTail);
            continue;
        }
        child.partLine.append(buffer, static_cast<size_t>(got));
        for (size_t end; (end = child.partLine.find('\n')) != std::string::npos;) {
            std::string line = child.partLine.substr(0, end);
            child.partLine.erase(0, end + 1);
            if (hooks_.Line) hooks_.Line(child.id, line);
        }
    }
}

void ChildSupervisor::Reap(Id id) {
    Child& child = *children_.at(id);
    siginfo_t info{};
    if (::waitid(P_PID, static_cast<id_t>(child.pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == 0)
        return;
    // The group still holds the exited child, so its id names no other
    // process: anything the child left behind goes with it.
    ::kill(-child.pid, SIGKILL);
    int status = 0;
    while (::waitpid(child.pid, &status, 0) < 0 && errno == EINTR) {
    }
    for (const int fd : {child.out, child.err})
        if (fd >= 0) Read(child, fd);
    ChildEnd end;
    if (!child.partLine.empty() && hooks_.Line) hooks_.Line(id, child.partLine);
    end.ErrorTail = child.errorTail;
    end.Seconds = std::chrono::duration<double>(SteadyClock::now() - child.started).count();
    if (WIFEXITED(status)) end.ExitStatus = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) end.Signal = WTERMSIG(status);
    end.Kind = child.stopping ? *child.stopping : WIFEXITED(status) ? ChildEndKind::Exited : ChildEndKind::Signalled;
    children_.erase(id);
    if (hooks_.Ended) hooks_.Ended(id, end);
}

void ChildSupervisor::Deadlines() {
    const auto now = SteadyClock::now();
    for (auto& [id, child] : children_) {
        if (child->stopping) {
            if (!child->killed && now >= child->killAt) {
                ::kill(-child->pid, SIGKILL);
                child->killed = true;
            }
            continue;
        }
        if (child->limits.Silence.count() > 0 && now - child->lastOutput >= child->limits.Silence)
            Signal(*child, ChildEndKind::Silent);
        else if (child->limits.Total.count() > 0 && now - child->started >= child->limits.Total)
            Signal(*child, ChildEndKind::Overdue);
    }
}

void ChildSupervisor::Service(const std::vector<pollfd>& fds) {
    // The hooks may start and stop children, so each child is looked up anew.
    std::vector<Id> ids;
    for (const auto& [id, child] : children_) ids.push_back(id);
    for (const Id id : ids) {
        const auto found = children_.find(id);
        if (found == children_.end()) continue;
        Child& child = *found->second;
        bool exited = false;
        for (const pollfd& p : fds) {
            if (p.revents == 0) continue;
            if (p.fd == child.process) exited = true;
            else if (p.fd == child.out || p.fd == child.err) Read(child, p.fd);
        }
        if (exited) Reap(id);
    }
    Deadlines();
}

void ChildSupervisor::Wait(int maxMs) {
    std::vector<pollfd> fds;
    AddPollFds(fds);
    // Without a child nothing could ever wake the poll.
    if (fds.empty()) return;
    const int due = PollTimeoutMs();
    const int timeout = due < 0 ? maxMs : maxMs < 0 ? due : std::min(due, maxMs);
    if (::poll(fds.data(), fds.size(), timeout) < 0 && errno != EINTR) Throw(errno, "poll");
    Service(fds);
}

}  // namespace sb
