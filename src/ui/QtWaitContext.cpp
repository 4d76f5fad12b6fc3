#include "ui/QtWaitContext.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <cmath>

namespace sb::ui {

QtWaitContext::QtWaitContext() {
    clock_.start();
    // Start the counter where the machine's own would be, so that a long
    // running program meets the wrap like the original tick does.
    offset_ = static_cast<int32_t>(static_cast<uint32_t>(QDeadlineTimer::current().deadline()));
}

int32_t QtWaitContext::Tick() {
    return static_cast<int32_t>(static_cast<uint32_t>(offset_) + static_cast<uint32_t>(clock_.elapsed()));
}

void QtWaitContext::PumpEvents() { QCoreApplication::processEvents(QEventLoop::AllEvents); }

// The events are taken as they come until the time is up or input came: no
// loop to quit, so an end of a wait costs no wake-up of the loop, which a
// download pays at every block. Each wait has its own timer, for a handler
// that runs within a wait may wait in turn.
bool QtWaitContext::Sleep(double ms, bool stopOnInput) {
    if (stopOnInput && inputPending_) {
        inputPending_ = false;
        return true;
    }
    bool timedOut = false;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, [&timedOut] { timedOut = true; });
    timer.start(static_cast<int>(std::ceil(ms > 0 ? ms : 0)));
    while (!timedOut && !(stopOnInput && inputPending_))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (stopOnInput && inputPending_) {
        inputPending_ = false;
        return true;
    }
    return false;
}

void QtWaitContext::NotifyInput() {
    inputPending_ = true;
}

}  // namespace sb::ui
