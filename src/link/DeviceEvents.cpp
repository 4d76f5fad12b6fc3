#include "link/DeviceEvents.h"

#include <libudev.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "link/ModuleRegistry.h"

namespace sb {
namespace {

constexpr uint32_t kRegistryEvents =
    IN_CREATE | IN_DELETE | IN_MOVED_TO | IN_MOVED_FROM | IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF;

}  // namespace

DeviceEvents::DeviceEvents() : folder_(ModuleRegistryFolder()) {
    udev_ = ::udev_new();
    // "udev": the events after the device manager has made the device node.
    if (udev_) monitor_ = ::udev_monitor_new_from_netlink(udev_, "udev");
    if (!monitor_ || ::udev_monitor_filter_add_match_subsystem_devtype(monitor_, "tty", nullptr) < 0 ||
        ::udev_monitor_enable_receiving(monitor_) < 0) {
        problems_.push_back("The device monitor cannot be reached: real ports are found by \"Scan\" only.");
        if (monitor_) ::udev_monitor_unref(monitor_);
        monitor_ = nullptr;
    }
    registry_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (registry_ < 0) problems_.push_back(std::string("inotify: ") + std::strerror(errno));
    else WatchRegistry();
}

DeviceEvents::~DeviceEvents() {
    if (monitor_) ::udev_monitor_unref(monitor_);
    if (udev_) ::udev_unref(udev_);
    if (registry_ >= 0) ::close(registry_);
}

// The folder may not be there before the first virtual module starts; it
// is made as the modules make it, for the owner alone.
void DeviceEvents::WatchRegistry() {
    std::error_code error;
    if (std::filesystem::create_directories(folder_, error))
        std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
    if (::inotify_add_watch(registry_, folder_.c_str(), kRegistryEvents) < 0)
        problems_.push_back("The module registry " + folder_ + " cannot be watched: " + std::strerror(errno));
}

int DeviceEvents::UdevFd() const { return monitor_ ? ::udev_monitor_get_fd(monitor_) : -1; }

void DeviceEvents::AddPollFds(std::vector<pollfd>& fds) const {
    for (const int fd : {UdevFd(), registry_})
        if (fd >= 0) fds.push_back({fd, POLLIN, 0});
}

bool DeviceEvents::DrainUdev() {
    bool changed = false;
    if (!monitor_) return false;
    while (udev_device* device = ::udev_monitor_receive_device(monitor_)) {
        changed = true;
        ::udev_device_unref(device);
    }
    return changed;
}

bool DeviceEvents::DrainRegistry() {
    bool changed = false;
    bool folderGone = false;
    alignas(inotify_event) char buffer[4096];
    for (;;) {
        const ssize_t got = ::read(registry_, buffer, sizeof buffer);
        if (got <= 0) break;
        changed = true;
        for (ssize_t at = 0; at < got;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
            folderGone = folderGone || (event->mask & IN_IGNORED) != 0;
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
    // A folder removed and made again is a new folder to watch.
    if (folderGone) WatchRegistry();
    return changed;
}

}  // namespace sb
