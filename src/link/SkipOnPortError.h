#pragma once
#include <optional>
#include <utility>

#include "link/SerialPort.h"

namespace sb {

// "Skip and go on": once a user action has opened its port, a step whose port
// operation fails is skipped and the action goes on with the next step. The
// failure is handed back for callers that report it (the command-line tool);
// the screens drop it.
template <class Step>
std::optional<PortError> SkipOnPortError(Step&& step) {
    try {
        std::forward<Step>(step)();
        return std::nullopt;
    } catch (const PortError& failure) {
        return failure;
    }
}

}  // namespace sb
