#pragma once
#include <cstdint>
#include <functional>
#include <map>

#include "helpers/Waiting.h"

namespace sb::test {

// A WaitContext on virtual time: a sleep advances the clock to the next
// scheduled action (or to its end), runs what falls due and returns there,
// as an event ends a real sleep; so a fake module acts "during" the waits of
// the code under test, and a wait sees the tick of each action. Installs
// itself for its lifetime.
class VirtualClock final : public WaitContext {
public:
    explicit VirtualClock(int32_t startTick = 1000) : now_(startTick) { SetWaitContext(this); }
    ~VirtualClock() override { SetWaitContext(nullptr); }

    int32_t Tick() override { return static_cast<int32_t>(static_cast<uint32_t>(now_)); }
    void PumpEvents() override { RunDue(); }
    bool Sleep(double ms, bool stopOnInput) override;
    void NotifyInput() override { inputPending_ = true; }
    void ForgetInput() override { inputPending_ = false; }

    // Runs action when the virtual time reaches at (ms since construction
    // plus the start tick); actions at the same time run in schedule order.
    void At(int64_t at, std::function<void()> action) { actions_.emplace(at, std::move(action)); }
    void After(int64_t delay, std::function<void()> action) { At(now_ + delay, std::move(action)); }

    int64_t Now() const { return now_; }
    // Lets a test jump the tick, e.g. to just below the signed wrap.
    void SetNow(int64_t now) { now_ = now; }

private:
    bool RunDue();  // true when an action ran
    bool TakeInput(bool stopOnInput);

    int64_t now_;
    bool inputPending_ = false;
    std::multimap<int64_t, std::function<void()>> actions_;
};

}  // namespace sb::test
