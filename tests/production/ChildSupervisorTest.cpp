#include "production/ChildSupervisor.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <map>
#include <system_error>
#include <vector>

namespace sb {
namespace {

using namespace std::chrono_literals;

// Children of a test: what each said on standard output, and how it ended.
struct Outcomes {
    std::map<ChildSupervisor::Id, std::vector<std::string>> lines;
    std::map<ChildSupervisor::Id, ChildEnd> ends;
    ChildSupervisor children{{[this](ChildSupervisor::Id id, const std::string& line) { lines[id].push_back(line); },
                              [this](ChildSupervisor::Id id, const ChildEnd& end) { ends[id] = end; }}};

    ChildSupervisor::Id Shell(const std::string& script, ChildLimits limits = {}) {
        // No test child may outlive a broken supervisor for long.
        if (limits.Total == 0ms) limits.Total = 60s;
        return children.Start({"sh", "-c", script}, limits);
    }
    void WaitAll() {
        while (children.Running() > 0) children.Wait(-1);
    }
};

TEST(ChildSupervisor, EachChildEndsItsOwnWay) {
    struct Case {
        const char* script;
        ChildLimits limits;
        ChildEndKind kind;
        int exitStatus;
        int signal;
    };
    const Case cases[] = {
        {"echo one; printf 'two\\nthree'; echo oops >&2; exit 3", {}, ChildEndKind::Exited, 3, 0},
        {"kill -SEGV $$", {}, ChildEndKind::Signalled, -1, SIGSEGV},
        {"for i in 1 2 3 4 5 6 7 8; do echo tick; sleep 0.2; done", {.Silence = 1s}, ChildEndKind::Exited, 0, 0},
        // Silent: its sleep keeps the pipes open, and goes with it.
        {"echo started; sleep 30", {.Silence = 300ms}, ChildEndKind::Silent, -1, SIGTERM},
        // Deaf to TERM: KILL follows after the grace.
        {"trap '' TERM; while :; do echo busy; sleep 0.05; done", {.Total = 300ms, .Grace = 200ms},
         ChildEndKind::Overdue, -1, SIGKILL},
    };
    Outcomes run;
    std::vector<ChildSupervisor::Id> ids;
    for (const Case& c : cases) ids.push_back(run.Shell(c.script, c.limits));
    run.WaitAll();
    for (size_t i = 0; i < ids.size(); ++i) {
        const ChildEnd& end = run.ends.at(ids[i]);
        EXPECT_EQ(end.Kind, cases[i].kind) << cases[i].script;
        EXPECT_EQ(end.ExitStatus, cases[i].exitStatus) << cases[i].script;
        EXPECT_EQ(end.Signal, cases[i].signal) << cases[i].script;
    }
    EXPECT_EQ(run.lines[ids[0]], (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_EQ(run.ends[ids[0]].ErrorTail, "oops\n");
}

// A parent that takes Ctrl-C through a signal descriptor blocks TERM; were
// its children to inherit that, a stop would reach them only as KILL.
TEST(ChildSupervisor, AStoppedChildGetsTERMAndHoldsUpNoOther) {
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &blocked, &before);
    Outcomes run;
    const auto hung = run.children.Start({"sleep", "30"}, {.Grace = 30s});
    const auto quick = run.Shell("echo done");
    while (!run.ends.count(quick)) run.children.Wait(-1);
    EXPECT_FALSE(run.ends.count(hung));
    run.children.Stop(hung);
    run.WaitAll();
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(run.ends[hung].Kind, ChildEndKind::Stopped);
    EXPECT_EQ(run.ends[hung].Signal, SIGTERM);
    // A program that cannot start is refused at once, and leaves nothing behind.
    EXPECT_THROW(run.children.Start({"/nonexistent/servicebay-cli"}, {}), std::system_error);
    EXPECT_EQ(run.children.Running(), 0u);
}

}  // namespace
}  // namespace sb
