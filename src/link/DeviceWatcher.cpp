#include "link/DeviceWatcher.h"

namespace sb {
namespace {

// Long enough to take a leaving and a coming of one re-enumeration together.
constexpr int kBurstMs = 50;

}  // namespace

DeviceWatcher::DeviceWatcher(QObject* parent) : QObject(parent) {
    burst_.setSingleShot(true);
    burst_.setInterval(kBurstMs);
    connect(&burst_, &QTimer::timeout, this, &DeviceWatcher::portsChanged);
    Watch(events_.UdevFd(), &DeviceEvents::DrainUdev);
    Watch(events_.RegistryFd(), &DeviceEvents::DrainRegistry);
}

void DeviceWatcher::Watch(int fd, bool (DeviceEvents::*drain)()) {
    if (fd < 0) return;
    auto notifier = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, [this, drain] {
        if ((events_.*drain)() && !burst_.isActive()) burst_.start();
    });
    notifiers_.push_back(std::move(notifier));
}

}  // namespace sb
