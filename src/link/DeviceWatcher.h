#pragma once
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>

#include "link/DeviceEvents.h"

namespace sb {

// DeviceEvents on Qt's event loop: portsChanged comes once for each burst
// of device events (a module that re-enumerates leaves and comes back in
// one), a moment after the burst began. Whoever listens scans the inventory
// again.
class DeviceWatcher final : public QObject {
    Q_OBJECT
public:
    explicit DeviceWatcher(QObject* parent = nullptr);
    const DeviceEvents& Events() const { return events_; }

signals:
    void portsChanged();

private:
    void Watch(int fd, bool (DeviceEvents::*drain)());

    DeviceEvents events_;
    std::vector<std::unique_ptr<QSocketNotifier>> notifiers_;
    QTimer burst_;
};

}  // namespace sb
