#include "stationscreen/ChildPump.h"

#include <set>

#include "ui/Guarded.h"

namespace sb::ui {

ChildPump::ChildPump(ChildSupervisor& children, QObject* parent) : QObject(parent), children_(children) {
    due_.setSingleShot(true);
    connect(&due_, &QTimer::timeout, this, Guarded([this] { Serve(); }));
}

void ChildPump::Serve() {
    children_.Wait(0);
    Follow();
    emit served();
}

void ChildPump::Follow() {
    std::vector<pollfd> fds;
    children_.AddPollFds(fds);
    std::set<int> open;
    for (const pollfd& fd : fds) open.insert(fd.fd);
    // A descriptor that was closed may come back under the same number for
    // another child: its old notifier goes in any case, and after the event
    // in which it fired.
    for (auto it = notifiers_.begin(); it != notifiers_.end();) {
        if (open.count(it->first)) {
            ++it;
            continue;
        }
        it->second->setEnabled(false);
        it->second.release()->deleteLater();
        it = notifiers_.erase(it);
    }
    for (const int fd : open) {
        if (notifiers_.count(fd)) continue;
        auto notifier = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
        connect(notifier.get(), &QSocketNotifier::activated, this, Guarded([this] { Serve(); }));
        notifiers_[fd] = std::move(notifier);
    }
    const int due = children_.PollTimeoutMs();
    if (due >= 0) due_.start(due);
    else due_.stop();
}

}  // namespace sb::ui
