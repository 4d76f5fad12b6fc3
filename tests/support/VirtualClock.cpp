#include "VirtualClock.h"

#include <algorithm>
#include <cmath>

namespace sb::test {

bool VirtualClock::RunDue() {
    bool ran = false;
    for (; !actions_.empty() && actions_.begin()->first <= now_; ran = true) {
        auto action = std::move(actions_.begin()->second);
        actions_.erase(actions_.begin());
        action();
    }
    return ran;
}

bool VirtualClock::TakeInput(bool stopOnInput) {
    const bool taken = stopOnInput && inputPending_;
    if (taken) inputPending_ = false;
    return taken;
}

bool VirtualClock::Sleep(double ms, bool stopOnInput) {
    if (TakeInput(stopOnInput)) return true;
    const int64_t end = now_ + std::max<int64_t>(1, static_cast<int64_t>(std::ceil(ms)));
    // Steps to the next due action; like an event, an action that ran ends
    // the sleep there.
    while (now_ < end) {
        now_ = actions_.empty() ? end : std::min(end, std::max(now_ + 1, actions_.begin()->first));
        if (RunDue()) return TakeInput(stopOnInput);
    }
    return false;
}

}  // namespace sb::test
