#include "ui/QtWaitContext.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
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

bool QtWaitContext::Sleep(double ms, bool stopOnInput) {
    if (stopOnInput && inputPending_) {
        inputPending_ = false;
        return true;
    }
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    if (stopOnInput) connect(this, &QtWaitContext::inputArrived, &loop, &QEventLoop::quit);
    timer.start(static_cast<int>(std::ceil(ms > 0 ? ms : 0)));
    loop.exec();
    if (stopOnInput && inputPending_) {
        inputPending_ = false;
        return true;
    }
    return false;
}

void QtWaitContext::NotifyInput() {
    inputPending_ = true;
    emit inputArrived();
}

}  // namespace sb::ui
