#pragma once
#include <type_traits>
#include <utility>

// No exception may reach Qt's event loop: a handler of the screens ends at
// the first failure that gets that far, silently. Failures with a road of
// their own (an action's error step, a refused entry) take it before.
namespace sb::ui {

// The handler takes the signal's arguments, or none of them.
template <class Handler>
auto Guarded(Handler handler) {
    return [handler = std::move(handler)](auto&&... args) noexcept {
        try {
            if constexpr (std::is_invocable_v<const Handler&, decltype(args)...>)
                handler(std::forward<decltype(args)>(args)...);
            else
                handler();
        } catch (...) {
        }
    };
}

}  // namespace sb::ui
