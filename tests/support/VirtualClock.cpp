#include "VirtualClock.h"

#include <algorithm>
#include <cmath>

namespace sb::test {

VirtualClock::VirtualClock(int32_t startTick) : now_(startTick) { SetWaitContext(this); }
VirtualClock::~VirtualClock() { SetWaitContext(nullptr); }

void VirtualClock::At(int64_t at, std::function<void()> action) { actions_.emplace(at, std::move(action)); }

void VirtualClock::RunDue() {
    while (!actions_.empty() && actions_.begin()->first <= now_) {
        auto action = std::move(actions_.begin()->second);
        actions_.erase(actions_.begin());
        action();
    }
}

void VirtualClock::PumpEvents() {
    ++pumps_;
    RunDue();
}

bool VirtualClock::Sleep(double ms, bool stopOnInput) {
    if (stopOnInput && inputPending_) {
        inputPending_ = false;
        return true;
    }
    const int64_t end = now_ + std::max<int64_t>(1, static_cast<int64_t>(std::ceil(ms)));
    // Step to each due action, so that input it brings ends an input wait there.
    while (now_ < end) {
        const int64_t next = actions_.empty() ? end : std::min(end, std::max(now_ + 1, actions_.begin()->first));
        now_ = next;
        PumpEvents();
        if (stopOnInput && inputPending_) {
            inputPending_ = false;
            return true;
        }
    }
    return false;
}

}  // namespace sb::test
