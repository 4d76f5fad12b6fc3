#pragma once
#include <QElapsedTimer>
#include <QObject>

#include "helpers/Waiting.h"

namespace sb::ui {

// Waiting on Qt's event loop: the events are processed as they come, with a
// single-shot timer for the end, so a wait sleeps while nothing happens and
// screens stay alive.
class QtWaitContext final : public QObject, public WaitContext {
    Q_OBJECT
public:
    QtWaitContext();
    int32_t Tick() override;
    void PumpEvents() override;
    bool Sleep(double ms, bool stopOnInput) override;
    void NotifyInput() override;
    void ForgetInput() override { inputPending_ = false; }

private:
    QElapsedTimer clock_;
    int32_t offset_ = 0;
    bool inputPending_ = false;
};

}  // namespace sb::ui
