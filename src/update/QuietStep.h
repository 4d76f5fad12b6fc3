#pragma once
#include <exception>
#include <utility>

namespace sb {

// Runs one step of a screen's event and swallows a failure of the platform
// (a folder that has gone, a file that cannot be written), so that no
// exception leaves the event. Tells whether the step went through; the
// caller decides what a failure leads to.
template <class Step>
bool QuietStep(Step&& step) noexcept {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace sb
