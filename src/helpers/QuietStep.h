#pragma once
#include <exception>
#include <utility>

namespace sb {

// Runs one step and swallows its failure: a step of a screen's event whose
// platform operation fails (a folder that has gone, a file that cannot be
// written), so that no exception leaves the event, and a step of an action
// once its port is open, which is skipped so that the action goes on with the
// next. Tells whether the step went through; the caller decides what a
// failure leads to.
template <class Step>
bool QuietStep(Step&& step) noexcept {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace sb
