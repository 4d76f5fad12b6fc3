#pragma once
#include <poll.h>

#include <string>
#include <vector>

struct udev;
struct udev_monitor;

// The platform's word that serial ports may have come or gone: libudev's
// monitor on the tty subsystem for real ports, and inotify on the registry
// folder for virtual modules. It says only that something changed; the port
// inventory stays the one source of what is there. Both are descriptors to
// wait on, so nothing polls.
namespace sb {

class DeviceEvents {
public:
    // A source that cannot be set up is left out; Problems says which.
    DeviceEvents();
    ~DeviceEvents();
    DeviceEvents(const DeviceEvents&) = delete;
    DeviceEvents& operator=(const DeviceEvents&) = delete;

    // -1 for a source that is left out.
    int UdevFd() const;
    int RegistryFd() const { return registry_; }
    void AddPollFds(std::vector<pollfd>& fds) const;

    // Read all that is pending on the source; true when ports may have changed.
    bool DrainUdev();
    bool DrainRegistry();

    // Why a source is left out, one line each; empty when both run.
    const std::vector<std::string>& Problems() const { return problems_; }

private:
    void WatchRegistry();

    udev* udev_ = nullptr;
    udev_monitor* monitor_ = nullptr;
    int registry_ = -1;
    std::string folder_;
    std::vector<std::string> problems_;
};

}  // namespace sb
