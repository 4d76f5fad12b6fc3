#pragma once
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <map>
#include <memory>

#include "production/ChildSupervisor.h"

// The children of a production line on Qt's event loop: a notifier on each
// of their descriptors and one timer for the nearest limit, instead of the
// poll loop of the command line. Whoever starts or stops children calls
// Follow afterwards, so that the notifiers match the descriptors again.
namespace sb::ui {

class ChildPump final : public QObject {
    Q_OBJECT
public:
    explicit ChildPump(ChildSupervisor& children, QObject* parent = nullptr);

    void Follow();

signals:
    // The children's output was read and their ends taken.
    void served();

private:
    void Serve();

    ChildSupervisor& children_;
    std::map<int, std::unique_ptr<QSocketNotifier>> notifiers_;  // by descriptor
    QTimer due_;
};

}  // namespace sb::ui
